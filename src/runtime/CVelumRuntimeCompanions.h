// What controls carry at run time in a program with windows.
#pragma once

#include "model/fields/CVelumCompanions.h"

// Makes list boxes and wiki text boxes; installed by InitRuntime.
class CVelumRuntimeCompanions final : public CVelumCompanionFactory {
public:
  Ref<CVelumListBoxBase> NewListBox(int aLisType) override;
  Ref<CVelumWikiTextBoxBase> NewWikiTextBox() override;
};
