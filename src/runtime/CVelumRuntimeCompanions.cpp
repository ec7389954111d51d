#include "runtime/CVelumRuntimeCompanions.h"

#include "runtime/CVelumListBox.h"

Ref<CVelumListBoxBase> CVelumRuntimeCompanions::NewListBox(int aLisType) {
  return MakeRef<CVelumListBox>(aLisType);
}

Ref<CVelumWikiTextBoxBase> CVelumRuntimeCompanions::NewWikiTextBox() {
  return nullptr;
}
