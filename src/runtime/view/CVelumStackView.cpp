#include "runtime/view/CVelumStackView.h"

#include "core/CVelumChecked.h"
#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "runtime/view/CVelumFrameHost.h"
#include "runtime/view/CVelumGenForm.h"
#include "toolkit/CVelumToolkitLib.h"
#include "toolkit/CVelumWinMan.h"

#include <QScopedValueRollback>
#include <cmath>

Ref<CVelumStackView> gStackView;

namespace {

const QString gCardForm = u"CVelumGenForm"_s;
const QString gListForm = u"CVelumCardListForm"_s;
// The client area of the phone, 20 twips to a phone pixel.
const QSizeF gPhoneSize(208 * 20, 255 * 20);

// Lets the toolkit paint. Commands wait: they must not come in the middle of a change of cards.
void Yield() {
  CVelumSeams::EventPump().PumpPaint();
}

// Whether a stored rectangle is of no use: never set, or from a damaged file.
bool IsUnset(const Ref<CVelumRect>& aRect) {
  return !aRect || !std::isfinite(aRect->X()) || !std::isfinite(aRect->Y()) ||
         !std::isfinite(aRect->Width()) || !std::isfinite(aRect->Height()) || aRect->Width() <= 0 ||
         aRect->Height() <= 0;
}

QRectF PlaceOf(const CVelumRect& aRect) {
  return {static_cast<qreal>(aRect.X()), static_cast<qreal>(aRect.Y()), static_cast<qreal>(aRect.Width()),
          static_cast<qreal>(aRect.Height())};
}

// Takes the place of a window that is loaded.
void TakePlace(const QString& aName, CVelumRect& aRect) {
  if (!CVelumWinMan::FormIsLoaded(aName)) return;
  const QRectF place = CVelumWinMan::NameToForm(aName)->Place();
  aRect.SetX(static_cast<float>(place.x()));
  aRect.SetY(static_cast<float>(place.y()));
  aRect.SetWidth(static_cast<float>(place.width()));
  aRect.SetHeight(static_cast<float>(place.height()));
}

void UnloadForm(const QString& aName) {
  if (!CVelumWinMan::FormIsLoaded(aName)) return;
  CVelumForm* form = CVelumWinMan::NameToForm(aName);
  if (gFrameHost) gFrameHost->RemoveChild(form->Widget());
  CVelumWinMan::UnloadForm(*form);
}

} // namespace

CVelumStackView::CVelumStackView(const QString& aName, Ref<CVelumStack> aStack)
    : CVelumStackView(MakeRef<CVelumViewState>(aName), std::move(aStack)) {}

CVelumStackView::CVelumStackView(Ref<CVelumViewState> aState, Ref<CVelumStack> aStack)
    : iState(std::move(aState)), iStack(std::move(aStack)) {
  SetDefaultRects();
}

CVelumStackView::~CVelumStackView() = default;

void CVelumStackView::SetDefaultRects() {
  if (IsUnset(iState->iCardViewRect)) {
    const QSizeF size = CVelumLib::ClientSizeToWindow(gPhoneSize);
    iState->iCardViewRect = MakeRef<CVelumRect>(7248.0F, 160.0F, static_cast<float>(size.width()),
                                                static_cast<float>(size.height()));
  }
  if (IsUnset(iState->iCardListRect))
    iState->iCardListRect = MakeRef<CVelumRect>(180.0F, 160.0F, 5472.0F, 7056.0F);
}

QRectF CVelumStackView::CardViewPlace() const {
  return PlaceOf(*iState->iCardViewRect);
}

QRectF CVelumStackView::CardListPlace() const {
  return PlaceOf(*iState->iCardListRect);
}

void CVelumStackView::OpenViews() {
  StartUndo();
  if (iState->iCardListOpen) OpenCardList();
  OpenCardView();
}

void CVelumStackView::OpenCardView() {
  if (iCardViewOpen) return;
  if (!iCardView) iCardView = std::make_unique<CVelumCardView>(iStack, gCardForm);
  CVelumGenForm& form = iCardView->ViewForm();
  form.SetView(this);
  if (gFrameHost && !form.IsLoaded()) gFrameHost->AddChild(&form);
  CVelumWinMan::LoadForm(form);
  if (gFrameHost)
    gFrameHost->ShowChild(&form, true);
  else
    form.show();
  iCardViewOpen = true;
  iState->iCardViewOpen = true;
  Ref<CVelumCard> card;
  if (!OrderFirst(card)) iCardView->Clear();
  Yield();
}

void CVelumStackView::CloseCardView(bool aRemember) {
  if (!iCardViewOpen) return;
  const bool hadCard = iCurCard != nullptr;
  LeaveCurCard();
  UpdateRect();
  CVelumGenForm& form = iCardView->ViewForm();
  if (gFrameHost)
    gFrameHost->HideChild(&form);
  else
    form.hide();
  if (aRemember && hadCard) iCardView->PrepareClose();
  iCardViewOpen = false;
  iState->iCardViewOpen = false;
}

void CVelumStackView::Release() {
  CloseCardView(true);
  // Whether the list was open stays in the state of the stack.
  const bool listOpen = iCardListOpen;
  CloseCardList();
  iState->iCardListOpen = listOpen;
  iCardListView.reset();
  iCardView.reset();
  UnloadForm(gCardForm);
  UnloadForm(gListForm);
}

void CVelumStackView::LeaveCurCard() {
  if (!iCurCard) return;
  TakeLines();
  if (!iCurCard) return;
  TakeBackEntry();
  if (iCurObj && iCurObj->Visible()) {
    bool cancel = false;
    BaseObjValidate(iCurObj, cancel);
  }
  ForgetFocus();
  if (iCardChanged && iCardListOpen) OpenCardList();
  iCurCard = nullptr;
  iCardChanged = false;
}

void CVelumStackView::ForgetFocus() {
  if (iCurObj) iCurObj->HideNote();
  iCurObj = nullptr;
  iCurObjChanged = false;
}

void CVelumStackView::UpdateRect() {
  if (iCardViewOpen) TakePlace(gCardForm, *iState->iCardViewRect);
  if (iCardListOpen) TakePlace(gListForm, *iState->iCardListRect);
}

void CVelumStackView::SetCurCard(Ref<CVelumCard> aCard) {
  if (aCard == iCurCard || !Holds(aCard)) return;
  LeaveCurCard();
  Yield();
  // Leaving may have run a script that deleted the card, or went elsewhere.
  if (!Holds(aCard)) {
    if (!iCurCard) ShowCurCard();
    return;
  }
  iCurCard = aCard;
  ShowCurCard();
  ExecScript(aCard, u"openCard"_s);
  FocusCurrent();
}

void CVelumStackView::FocusCurrent() {
  if (!iCurCard || !iCardView || !iCardViewOpen) return;
  const Ref<CVelumControl> control = iCardView->FocusControl();
  if (control) BaseObjGotFocus(qobject_cast<CVelumBaseControl*>(control->BaseControl()));
}

void CVelumStackView::ShowCurCard() {
  // Fields of a card that was left take no values.
  if (!iCurCard && iCardViewOpen) iCardView->Clear();
  if (!iCurCard || !iCardView) return;
  const Ref<CVelumCard> card = iCurCard;
  const QScopedValueRollback noChange(iNoChange, true);
  try {
    iCardView->AssignControlSet(card, card->Background());
    Yield();
    iCardView->ShowValues(*card);
    ShowTitle();
    iFailedSet = nullptr;
  } catch (...) {
    CVelumError::CatchError(u"ShowCurCard"_s);
    ShowCurCardFailed(card);
  }
  iCardChanged = false;
}

void CVelumStackView::ShowCurCardFailed(const Ref<CVelumCard>& aCard) {
  const TVelumError error = CVelumError::GetErrorRecord();
  const Ref<CVelumControlSet> set = aCard->Background();
  const bool told = iFailedSet && iFailedSet == set;
  iFailedSet = set;
  // Half a layout is not kept; the fields that it has show this card and no other.
  iCardView->ResetCurSet();
  try {
    iCardView->ShowBoundValues(*aCard);
    ShowTitle();
  } catch (...) {
    CVelumError::CatchError(u"ShowCurCard"_s);
  }
  if (told) return;
  gLastError = error;
  CVelumMsg::ShowLastError();
}

void CVelumStackView::ShowTitle() {
  if (!iCurCard || !iCardView) return;
  qint32 num = 0;
  const qint32 index = iStack->GetCardIndex(*iCurCard, num);
  iCardView->SetTitle(CVelumGenForm::tr("%1 - %2 of %3")
                          .arg(iCurCard->Name(), QString::number(index + 1), QString::number(num)));
}

void CVelumStackView::BaseFormResize() {
  iResizePending = false;
  if (!iCardViewOpen || !iCurCard || iCardView->FitsForm()) return;
  iResizePending = iNoChange || iValidating;
  if (!iResizePending) Relayout();
}

void CVelumStackView::RefreshViews(bool aCardView, bool aCardList) {
  if (aCardView && iCardViewOpen && iCurCard) Relayout();
  TellCardShown();
  if (!aCardList || !iCardListOpen) return;
  const QScopedValueRollback keep(iKeepListPos, true);
  OpenCardList();
}

void CVelumStackView::GoToCard(Ref<CVelumCard> aCard) {
  if (!Holds(aCard) || (aCard != iCurCard && RefuseEntry())) return;
  SetCurCard(aCard);
  if (Holds(aCard)) iHistory.Add(aCard);
  FollowCard();
}

void CVelumStackView::SetFocusToCardView() {
  if (!iCardViewOpen) return;
  CVelumGenForm& form = iCardView->ViewForm();
  if (gFrameHost) gFrameHost->ShowChild(&form, true);
  QWidget* focus = form.focusWidget();
  (focus ? focus : &form)->setFocus(Qt::OtherFocusReason);
}

bool CVelumStackView::GetCurCard(Ref<CVelumCard>& aCard) const {
  aCard = iCurCard;
  return aCard != nullptr;
}

bool CVelumStackView::HistoryPrev(Ref<CVelumCard>& aCard) {
  if (RefuseEntry() || !iHistory.Prev(iCurCard, aCard)) return false;
  SetCurCard(aCard);
  FollowCard();
  return true;
}

bool CVelumStackView::HistoryNext(Ref<CVelumCard>& aCard) {
  if (RefuseEntry() || !iHistory.Next(iCurCard, aCard)) return false;
  SetCurCard(aCard);
  FollowCard();
  return true;
}

bool CVelumStackView::OrderFirst(Ref<CVelumCard>& aCard) {
  if (!iStack->OrderFirst(aCard)) return false;
  GoToCard(aCard);
  return true;
}

bool CVelumStackView::OrderLast(Ref<CVelumCard>& aCard) {
  if (!iStack->OrderLast(aCard)) return false;
  GoToCard(aCard);
  return true;
}

bool CVelumStackView::OrderNext(Ref<CVelumCard>& aCard) {
  aCard = nullptr;
  if (!iCurCard || !iStack->OrderNext(*iCurCard, aCard)) return false;
  GoToCard(aCard);
  return true;
}

bool CVelumStackView::OrderPrev(Ref<CVelumCard>& aCard) {
  aCard = nullptr;
  if (!iCurCard || !iStack->OrderPrev(*iCurCard, aCard)) return false;
  GoToCard(aCard);
  return true;
}

void CVelumStackView::AddCard(const Ref<CVelumCard>& aCard, const Ref<CVelumCard>& aBefore) {
  iStack->AddCard(aCard, aBefore, true);
  if (iCurCard) iCurCard->UpdateCardLists();
  RefreshViews(true, true);
}

void CVelumStackView::DeleteCard(Ref<CVelumCard> aCard, const Ref<CVelumControlSet>& aExclude) {
  CVelumError::AssertObj(aCard->Stack() == iStack.Get(), this, u"DeleteCard"_s, u"stack"_s);
  if (!Holds(aCard)) return;
  iHistory.Remove(*aCard);
  if (aCard == iCurCard) {
    // What was typed into it goes with the card.
    TakeBackEntry();
    LeaveDeletedCard(aCard, aExclude);
  }
  if (!iCurCard && iCardViewOpen) iCardView->Clear();
  iStack->DeleteCard(aCard);
  if (iCardListOpen) OpenCardList();
  iStack->SetCardListsDirty(nullptr);
  RenewCardLists();
  // There is a card less, and the current one may have moved up.
  ShowTitle();
  FollowCard();
}

void CVelumStackView::LeaveDeletedCard(Ref<CVelumCard> aCard, const Ref<CVelumControlSet>& aExclude) {
  Ref<CVelumCard> other;
  if (iCardViewOpen && FindOtherCard(aExclude, other)) GoToCard(other);
  if (iCurCard == aCard) LeaveCurCard();
  // Scripts that ran meanwhile may have been at the card once more.
  iHistory.Remove(*aCard);
}

bool CVelumStackView::FindOtherCard(const Ref<CVelumControlSet>& aExclude, Ref<CVelumCard>& aCard) const {
  const qint32 exclude = aExclude ? aExclude->Id() : ENoInt;
  const auto fits = [&](const Ref<CVelumCard>& aOther) {
    return aOther != iCurCard && aOther->BackgroundId() != exclude;
  };
  bool found = iStack->OrderNext(*iCurCard, aCard);
  while (found && !fits(aCard)) found = iStack->OrderNext(*Ref<CVelumCard>(aCard), aCard);
  if (found) return true;
  found = iStack->OrderFirst(aCard);
  while (found && !fits(aCard)) found = iStack->OrderNext(*Ref<CVelumCard>(aCard), aCard);
  return found;
}

void CVelumStackView::DeleteBackground(const Ref<CVelumControlSet>& aBackground, bool aOnlyCards) {
  LeaveBackground(aBackground);
  iStack->DeleteBackground(aBackground, aOnlyCards);
  ShowTitle();
  FollowCard();
  RefreshViews(false, true);
}

// Its cards are about to go without a word from here, and no way may lead back to them.
void CVelumStackView::LeaveBackground(const Ref<CVelumControlSet>& aBackground) {
  if (iCurCard && iCurCard->BackgroundId() == aBackground->Id()) DeleteCard(iCurCard, aBackground);
  iHistory.RemoveBackground(aBackground->Id());
}

void CVelumStackView::DeleteOldCards(const Ref<CVelumControlSet>& aBackground, qint32 aEnd) {
  LeaveBackground(aBackground);
  iStack->DeleteCardsOf(*aBackground, aEnd);
  ShowTitle();
  RefreshViews(false, true);
}

void CVelumStackView::EmptyStack() {
  DropLines();
  iStack->DeleteAllCards();
  iHistory.Empty();
  iCurCard = nullptr;
  ForgetFocus();
  if (iCardViewOpen) {
    CloseCardView(false);
    OpenCardView();
  }
  RefreshViews(true, true);
}

void CVelumStackView::UpdateAfterControlChange() {
  iStack->SetControlDynFlags();
  iStack->SetCardListsDirty(nullptr);
  if (iCurCard) iCurCard->UpdateCardLists();
  Yield();
}

bool CVelumStackView::Holds(const Ref<CVelumCard>& aCard) const {
  return aCard && aCard->Stack() == iStack.Get() && iStack->GetCardById(aCard->Id()) == aCard;
}
