#include "runtime/lists/CVelumCardListView.h"

#include "core/CVelumSeams.h"
#include "model/CVelumModelLib.h"
#include "runtime/CVelumRuntimeDialogLib.h"
#include "runtime/lists/CVelumCardLines.h"
#include "runtime/lists/CVelumCardListForm.h"
#include "toolkit/CVelumComboWidget.h"
#include "toolkit/CVelumListWidget.h"

#include <QCoreApplication>
#include <QScopedValueRollback>

namespace {

constexpr float ENameChars = 10;
constexpr float EMixedChars = 25;

} // namespace

CVelumCardListView::CVelumCardListView(Ref<CVelumStack> aStack, CVelumCardListForm& aForm)
    : iForm(aForm), iStack(std::move(aStack)),
      iCardBox(MakeRef<CVelumListBox>(ELisSingle, aForm.CardBox(), &aForm)),
      iBackgroundCombo(MakeRef<CVelumListBox>(ELisCombo, aForm.BackgroundCombo(), &aForm)) {
  iCardBox->SetFlags(ELisFollowHeight | ELisFollowWidth);
  ApplyListFont();
  const QScopedValueRollback showing(iForm.iShowing, true);
  FillBackgrounds(nullptr);
  iBackgroundCombo->SetSelIndex(0);
}

void CVelumCardListView::ApplyListFont() {
  iCardBox->SetFont(CVelumLib::EvalListFont(iStack.Get()));
  iCardBox->ShowFont();
}

void CVelumCardListView::FillBackgrounds(const CVelumObject* aExclude) {
  CVelumDialogLib::FillBackgroundList(*iBackgroundCombo, iStack.Get(), u"(All)"_s, aExclude);
}

void CVelumCardListView::RefillBackgrounds(const CVelumObject* aExclude) {
  {
    const QScopedValueRollback showing(iForm.iShowing, true);
    const QString line = iBackgroundCombo->SelLine();
    FillBackgrounds(aExclude);
    iBackgroundCombo->SetSelIndexByLine(line);
    if (iBackgroundCombo->SelIndex() < 0) iBackgroundCombo->SetSelIndex(0);
  }
  if (!(iBackgroundCombo->SelObj() == iBackground.Get())) FillAndShowCardList(false);
}

void CVelumCardListView::FillAndShowCardList(bool aForce) {
  const Ref<CVelumObject> chosen = iBackgroundCombo->SelObj();
  const Ref<CVelumControlSet> set = dynamic_cast<CVelumControlSet*>(chosen.Get());
  if (!aForce && set && set == iBackground) return;
  iBackground = set;
  DefineColumns();
  const auto show = iWithName ? CVelumCardLines::EShow::NameFields : CVelumCardLines::EShow::Fields;
  iCardBox->SetProvider(std::make_unique<CVelumCardLines>(*iStack, iBackground.Get(), show));
  if (iCardBox->SelIndex() < 0) SelectFollowed();
}

void CVelumCardListView::FollowCard(const Ref<CVelumCard>& aCard) {
  iFollowed = aCard;
  if (!aCard || SelCard() != aCard) SelectFollowed();
}

void CVelumCardListView::SelectFollowed() {
  int index = -1;
  bool found = false;
  if (iFollowed) iCardBox->GetObjIndex(iFollowed.Get(), index, found);
  iCardBox->SetSelIndexOrClear(index);
}

// The background whose fields are the columns; nothing without one. Sets iMixed.
Ref<CVelumControlSet> CVelumCardListView::ScanBackgrounds(qint32& aMaxCols) {
  iMixed = false;
  if (iBackground) return iBackground;
  Ref<CVelumControlSet> first;
  Ref<CVelumControlSet> set;
  for (qint32 i = 0; iStack->GetNextBackground(set, i);) {
    aMaxCols = std::max(aMaxCols, set->NumControls());
    if (first) iMixed = true;
    if (!first) first = set;
  }
  if (!first) iMixed = true;
  return first;
}

void CVelumCardListView::DefineColumns() {
  const TVelumMetrics& metrics = CVelumSeams::Metrics();
  qint32 maxCols = 0;
  const Ref<CVelumControlSet> set = ScanBackgrounds(maxCols);
  iWithName = set && set->Flag(ECseCardNameInList);
  QList<QString> titles;
  QList<float> widths;
  const auto add = [&](const QString& aTitle, float aChars, float aMargin) {
    // What goes beyond the columns of a list is not seen.
    if (titles.size() >= CVelumListBox::EMaxCols) return;
    titles.append(aTitle);
    widths.append(aChars * metrics.iAvgCharWidth + aMargin);
  };
  if (iWithName) add(CVelumCardListForm::tr("Card"), ENameChars, metrics.iFieldGapY);
  for (qint32 i = 0; !iMixed && i < set->NumControls(); ++i) {
    const CVelumControl* control = set->ControlAt(i);
    if (control && control->InCardList())
      add(control->ListColTitle(), static_cast<float>(control->ListVisChar()), metrics.iFieldGapY);
  }
  for (qint32 i = 1; iMixed && i <= maxCols; ++i)
    add(CVelumCardListForm::tr("Field %1").arg(i), EMixedChars, 0);
  iCardBox->DefineColumns(titles, widths);
}

void CVelumCardListView::UpdateCard(const CVelumCard& aCard) {
  int index = -1;
  bool found = false;
  iCardBox->GetObjIndex(&aCard, index, found);
  if (found) iCardBox->RefreshLine(index);
}

Ref<CVelumCard> CVelumCardListView::SelCard() const {
  return dynamic_cast<CVelumCard*>(iCardBox->SelObj().Get());
}

bool CVelumCardListView::CanMove(bool aDown) const {
  const Ref<CVelumCard> card = iForm.CardBox()->DisplaySorted() ? nullptr : SelCard();
  Ref<CVelumCard> before;
  return card && MoveTarget(card, aDown, before);
}

// Moving cards.

bool CVelumCardListView::Kept(const CVelumCard& aCard) const {
  const CVelumControlSet* set = iStack->FindBackground(aCard.BackgroundId());
  return set && set->Flag(ECseKeepCardsSorted);
}

// The first or last card of the kept group of a card; the card itself when it is in none.
Ref<CVelumCard> CVelumCardListView::EndOfGroup(const Ref<CVelumCard>& aCard, bool aLast) const {
  if (!aCard || !Kept(*aCard)) return aCard;
  Ref<CVelumCard> end;
  qint32 index = 0;
  const bool found = aLast ? iStack->GetLastCardInBackground(aCard->BackgroundId(), end)
                           : iStack->GetFirstCardInBackground(aCard->BackgroundId(), end, index);
  return found ? end : aCard;
}

// The card in front of which a card comes when it is moved, or nothing for the end of the stack. False when
// there is nothing to move over.
bool CVelumCardListView::MoveTarget(const Ref<CVelumCard>& aCard, bool aDown,
                                    Ref<CVelumCard>& aBefore) const {
  Ref<CVelumCard> next;
  const Ref<CVelumCard> edge = EndOfGroup(aCard, aDown);
  if (!(aDown ? iStack->OrderNext(*edge, next) : iStack->OrderPrev(*edge, next))) return false;
  aBefore = EndOfGroup(next, aDown);
  if (aDown) static_cast<void>(iStack->OrderNext(*Ref<CVelumCard>(aBefore), aBefore));
  return true;
}

bool CVelumCardListView::MoveSelected(bool aDown) {
  if (!CanMove(aDown)) return false;
  const Ref<CVelumCard> card = SelCard();
  Ref<CVelumCard> before;
  if (!MoveTarget(card, aDown, before)) return false;
  const CVelumError::CCommand command(
      QCoreApplication::translate("CVelumCardListView", "Move card '%1'").arg(card->Name()));
  if (Kept(*card))
    iStack->MoveAllCardsOfBackground(card->Background(), before);
  else
    iStack->MoveCard(card, before);
  return true;
}
