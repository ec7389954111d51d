#include "runtime/CVelumRuntimeDialogLib.h"

#include "runtime/CVelumCardLines.h"

namespace CVelumDialogLib {

void FillBackgroundList(CVelumListBox& aList, const CVelumStack* aStack, const QString& aFirst,
                        const CVelumObject* aExclude) {
  aList.Clear();
  aList.SetHold(true);
  if (!aStack) aList.AddLine(u"(No stack available)"_s, nullptr);
  if (aStack && !aFirst.isEmpty()) aList.AddLine(aFirst, nullptr);
  Ref<CVelumControlSet> set;
  for (qint32 i = 0; aStack && aStack->GetNextBackground(set, i);)
    if (set.Get() != aExclude) aList.AddLine(set->Name(), set);
  aList.SetHold(false);
  aList.Show();
}

void FillCardList(CVelumListBox& aList, const CVelumControlSet& aSet) {
  if (!aSet.Stack()) return aList.ClearAndShow();
  aList.Clear();
  aList.SetProvider(std::make_unique<CVelumCardLines>(*aSet.Stack(), &aSet, CVelumCardLines::EShow::Name));
}

} // namespace CVelumDialogLib
