// What dialogs have in common: filling lists from the model.
#pragma once

#include "model/CVelumStack.h"
#include "runtime/CVelumListBox.h"

namespace CVelumDialogLib {

// aFirst, if it is not empty, and all backgrounds but aExclude (may be null) by name, each with its object.
// Without a stack the one line "(No stack available)".
void FillBackgroundList(CVelumListBox& aList, const CVelumStack* aStack, const QString& aFirst,
                        const CVelumObject* aExclude);
// The cards of a background in order by name, each with its object; made as they are seen.
void FillCardList(CVelumListBox& aList, const CVelumControlSet& aSet);

} // namespace CVelumDialogLib
