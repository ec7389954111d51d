#include "runtime/CVelumRuntimeCompanions.h"

#include "runtime/CVelumListBox.h"
#include "runtime/CVelumWikiTextBox.h"

Ref<CVelumListBoxBase> CVelumRuntimeCompanions::NewListBox(int aLisType) {
  return MakeRef<CVelumListBox>(aLisType);
}

Ref<CVelumWikiTextBoxBase> CVelumRuntimeCompanions::NewWikiTextBox() {
  return MakeRef<CVelumWikiTextBox>();
}
