#include "runtime/CVelumRuntimeCompanions.h"

#include "runtime/lists/CVelumListBox.h"
#include "runtime/wiki/CVelumWikiTextBox.h"

Ref<CVelumListBoxBase> CVelumRuntimeCompanions::NewListBox(int aLisType) {
  return MakeRef<CVelumListBox>(aLisType);
}

Ref<CVelumWikiTextBoxBase> CVelumRuntimeCompanions::NewWikiTextBox() {
  return MakeRef<CVelumWikiTextBox>();
}
