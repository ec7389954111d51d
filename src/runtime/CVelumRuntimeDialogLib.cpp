#include "runtime/CVelumRuntimeDialogLib.h"

#include "core/CVelumFieldTypes.h"
#include "core/CVelumLib.h"
#include "core/CVelumSeams.h"
#include "runtime/lists/CVelumCardLines.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumToolkitDialogLib.h"

#include <QCoreApplication>
#include <QLineEdit>

namespace {

constexpr qsizetype EMaxNames = 21;

// Replaces the lines of a list while it lives, and shows it then.
class CRefill {
public:
  CRefill(CVelumListBox& aList, const QString& aFirst) : iList(aList) {
    iList.Clear();
    iList.SetHold(true);
    if (!aFirst.isEmpty()) iList.AddLine(aFirst, nullptr);
  }
  ~CRefill() {
    iList.SetHold(false);
    iList.Show();
  }
  CRefill(const CRefill&) = delete;
  CRefill& operator=(const CRefill&) = delete;

private:
  CVelumListBox& iList;
};

QString ControlLine(const CVelumControl& aControl, bool aWithType, bool aOneColumn) {
  if (!aWithType) return aControl.Name();
  return (aOneColumn ? u"%1  (%2)"_s : u"%1\t%2"_s).arg(aControl.Name(), aControl.TypeStr());
}

void FillCommaList(CVelumListBox& aList, const QString& aLines) {
  const CRefill refill(aList, {});
  aList.AddCommaList(aLines);
}

} // namespace

namespace CVelumDialogLib {

void FillBackgroundList(CVelumListBox& aList, const CVelumStack* aStack, const QString& aFirst,
                        const CVelumObject* aExclude) {
  const CRefill refill(
      aList, aStack ? aFirst : QCoreApplication::translate("CVelumDialogLib", "(No stack available)"));
  Ref<CVelumControlSet> set;
  for (qint32 i = 0; aStack && aStack->GetNextBackground(set, i);)
    if (set.Get() != aExclude) aList.AddLine(set->Name(), set);
}

void RefillBackgroundList(CVelumListBox& aList, const CVelumStack* aStack, const CVelumObject* aExclude) {
  const auto selected = aList.SelObj();
  FillBackgroundList(aList, aStack, {}, aExclude);
  if (!aStack || aList.NumLines() == 0) return;
  int index = 0;
  bool found = false;
  aList.GetObjIndex(selected.Get(), index, found);
  aList.SetSelIndex(found ? index : 0);
}

void SelectCurBackground(CVelumListBox& aList) {
  const Ref<CVelumCard> card = gStackView ? gStackView->CurCard() : nullptr;
  int index = -1;
  bool found = false;
  if (card) aList.GetObjIndex(card->Background().Get(), index, found);
  aList.SetSelIndexOrClear(found ? index : 0);
}

void FillControlList(CVelumListBox& aList, const CVelumControlSet* aSet, const QString& aFirst,
                     bool aWithType, bool aOnlyCombo) {
  const CRefill refill(aList, aFirst);
  const bool oneColumn = aList.NumCols() == 1;
  Ref<CVelumControl> control;
  for (qint32 i = 0; aSet && aSet->GetNextControl(control, i);)
    if (!aOnlyCombo || control->AllowsCombo())
      aList.AddLine(ControlLine(*control, aWithType, oneColumn), control);
}

void FillSortKeyList(CVelumListBox& aList, const CVelumControlSet* aSet, const QString& aFirst) {
  const CRefill refill(aList, aFirst);
  const CVelumStack* stack = aSet ? aSet->Stack() : nullptr;
  Ref<CVelumSortKey> key;
  for (qint32 i = 0; stack && stack->GetNextSortKey(key, i);)
    if (key->BackgroundId() == aSet->Id()) aList.AddLine(key->Name(), key);
}

void FillCardList(CVelumListBox& aList, const CVelumControlSet& aSet, const CVelumObject* aExclude) {
  if (!aSet.Stack()) return aList.ClearAndShow();
  aList.Clear();
  aList.SetProvider(
      std::make_unique<CVelumCardLines>(*aSet.Stack(), &aSet, CVelumCardLines::EShow::Name, aExclude));
}

void FillTypeCombo(CVelumListBox& aList) {
  const CRefill refill(aList, {});
  for (const TVelumFieldType& type : CVelumFieldTypes::gRows) aList.AddLine(type.iChoice.toString(), nullptr);
}

void FillStdCmdCombo(CVelumListBox& aList) {
  FillCommaList(aList, QCoreApplication::translate(
                           "CVelumDialogLib",
                           "(None),First Card,Previous Card,Next Card,Last Card,Back in History,Forward in "
                           "History,Go to Card by Name,Show Card List,Select Card"));
}

void ShowFont(const CVelumFont* aFont, QLineEdit& aNameBox, QLineEdit& aSizeBox, QLabel& aColorBox) {
  aNameBox.setText(aFont ? aFont->FaceNameWithFlags() : QString());
  aSizeBox.setText(aFont ? aFont->PointSizeStr() : QString());
  ShowColor(aColorBox, aFont ? aFont->ForeColor() : ENoInt);
}

Ref<CVelumArray> ControlNameListToArray(const QString& aNames, const CVelumControlSet& aSet) {
  QList<QString> names;
  CVelumLib::SplitCommaList(aNames, names);
  if (names.size() > EMaxNames) CVelumError::RaiseHost(EHostIndex);
  if (names.isEmpty()) return nullptr;
  auto array = MakeRef<CVelumArray>(0, EValInt);
  for (const QString& name : std::as_const(names)) {
    Ref<CVelumControl> control;
    const bool found = aSet.GetControlByName(name, control);
    CVelumError::Assert(found, u"ControlNameListToArray control found"_s);
    if (found) array->CreateAtEnd({{}, ENoInt, TVelumValue::OfInt(control->Id())});
  }
  return array;
}

QString ArrayToControlNameList(const CVelumArray* aArray, const CVelumControlSet& aSet) {
  QStringList names;
  for (qint32 i = 0; aArray && i < aArray->Count(); ++i) {
    Ref<CVelumControl> control;
    const bool found = aSet.GetControl(aArray->IntNum(i), control);
    CVelumError::Assert(found, u"ArrayToControlNameList control found"_s);
    if (found) names.append(control->Name());
  }
  return names.join(u',');
}

void TellReadOnly() {
  CVelumSeams::Presenter().Tell(QCoreApplication::translate("CVelumDialogLib", "Read-only!"));
}

} // namespace CVelumDialogLib
