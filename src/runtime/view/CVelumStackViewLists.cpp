// The part of CVelumStackView that works with the card list's window and with the lists of the card window.
#include "core/CVelumChecked.h"
#include "core/CVelumSeams.h"
#include "model/CVelumModelLib.h"
#include "runtime/CVelumRuntimeDialogLib.h"
#include "runtime/lists/CVelumCardListForm.h"
#include "runtime/lists/CVelumListBox.h"
#include "runtime/script/CVelumScriptRunner.h"
#include "runtime/view/CVelumFrameHost.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumWinMan.h"

#include <QApplication>

namespace {

const QString gListForm = u"CVelumCardListForm"_s;

CVelumCardListForm& ListForm() {
  return CVelumChecked::Deref(dynamic_cast<CVelumCardListForm*>(CVelumWinMan::NameToForm(gListForm)));
}

} // namespace

void CVelumStackView::OpenCardList() {
  CVelumCardListForm& form = ListForm();
  form.SetView(this);
  if (gFrameHost && !form.IsLoaded()) gFrameHost->AddChild(&form);
  CVelumWinMan::LoadForm(form);
  if (!iCardListView) iCardListView = std::make_unique<CVelumCardListView>(iStack, form);
  iCardListView->ApplyListFont();
  // A list that is open stays where it is among the windows.
  if (!iKeepListPos && !iCardListOpen) RaiseCardList();
  iCardListView->FillAndShowCardList(true);
  if (!iCardListOpen) iCardListView->FollowCard(iCurCard);
  iCardListOpen = true;
  iState->iCardListOpen = true;
}

void CVelumStackView::ShowCardList() {
  if (!iCardListOpen) OpenCardList();
  RaiseCardList();
}

void CVelumStackView::RaiseCardList() {
  CVelumCardListForm& form = ListForm();
  if (gFrameHost)
    gFrameHost->ShowChild(&form, true);
  else
    form.show();
}

bool CVelumStackView::CanGoUp() const {
  Ref<CVelumCard> card;
  return Holds(iCurCard) ? iStack->OrderPrev(*iCurCard, card) : iStack->NumCards() > 0;
}

bool CVelumStackView::CanGoDown() const {
  Ref<CVelumCard> card;
  return Holds(iCurCard) ? iStack->OrderNext(*iCurCard, card) : iStack->NumCards() > 0;
}

void CVelumStackView::TellCardShown() const {
  if (gFrameHost) gFrameHost->CardShown();
}

// The list and the main window go along with the card on show.
void CVelumStackView::FollowCard() {
  if (iCardListOpen && iCardListView) iCardListView->FollowCard(iCurCard);
  TellCardShown();
}

void CVelumStackView::CloseCardList() {
  if (!iCardListOpen) return;
  UpdateRect();
  CVelumCardListForm& form = ListForm();
  if (gFrameHost)
    gFrameHost->HideChild(&form);
  else
    form.hide();
  iCardListView->CardBox().ClearAndShow();
  iCardListOpen = false;
  iState->iCardListOpen = false;
}

void CVelumStackView::ResizeCardList() {
  if (iCardListView) iCardListView->CardBox().Resize();
}

void CVelumStackView::GoToSelectedCard() {
  const Ref<CVelumCard> card = iCardListView ? iCardListView->SelCard() : nullptr;
  if (!card) return;
  const QPointer<QWidget> focus = QApplication::focusWidget();
  GoToCard(card);
  // Refused: the line of the card on show is chosen again.
  if (UnreadControl()) return iCardListView->FollowCard(iCurCard);
  // A new layout takes the focus; whoever works in the list goes on there.
  if (focus && iCardListOpen && ListForm().isAncestorOf(focus)) focus->setFocus();
}

void CVelumStackView::UpdateCardInList() {
  if (CVelumScriptRunner::ScriptRuns() || !iCardListOpen) return;
  const TVelumChangeInfo info = iStack->ChangeInfo();
  const bool one = !info.iCardListChanged && info.iNumCardsChanged == 1 && Holds(info.iLastChangedCard);
  if (one)
    UpdateLine(*info.iLastChangedCard);
  else if (info.iCardChanged || info.iCardListChanged)
    iCardListView->FillAndShowCardList(true);
  iStack->ResetChangeInfo();
}

// A new key has moved a card, and with it the positions of others.
void CVelumStackView::ShowMovedCard() {
  ShowTitle();
  TellCardShown();
  if (!CVelumScriptRunner::ScriptRuns() && iCardListOpen) iCardListView->FillAndShowCardList(true);
}

void CVelumStackView::UpdateLine(const CVelumCard& aCard) {
  if (!CVelumScriptRunner::ScriptRuns() && iCardListOpen) iCardListView->UpdateCard(aCard);
}

void CVelumStackView::BaseObjItemClick(CVelumBaseControl* aObj) {
  if (!iCurCard || !Bound(aObj)) return;
  const Ref<CVelumControl> control = iCardView->VelumControl(aObj);
  if (!control->Flag(EConCardList)) return;
  const Ref<CVelumListBoxBase> box = control->ListBox();
  const auto* list = dynamic_cast<CVelumListBox*>(box.Get());
  const Ref<CVelumObject> obj = list ? list->SelObj() : nullptr;
  GoToByClick(dynamic_cast<CVelumCard*>(obj.Get()));
}

void CVelumStackView::GoToByClick(const Ref<CVelumCard>& aCard) {
  const Ref<CVelumCard> before = iCurCard;
  GoToCard(aCard);
  if (iCurCard != before && iCardViewOpen) iCardView->ViewForm().DropDblClick();
}

// The field whose lines a control shows, if they can be edited.
Ref<CVelumControl> CVelumStackView::LinesControl(CVelumBaseControl* aObj) const {
  Ref<CVelumControl> control = iCardView->VelumControl(aObj);
  const Ref<CVelumControlSet> set = iCurCard->Background();
  if (control->ConType() != EConList && (!set || !set->GetControl(control->PartnerId(), control)))
    return nullptr;
  return control->ConType() == EConList && !control->Flag(EConCardList) ? control : nullptr;
}

void CVelumStackView::EditLines(CVelumBaseControl* aObj) {
  if (!iCurCard || !Bound(aObj) || !ValidateCurControl()) return;
  const Ref<CVelumControl> control = iCurCard && Bound(aObj) ? LinesControl(aObj) : nullptr;
  if (!control) return;
  if (control->Flag(EConReadOnly)) return CVelumDialogLib::TellReadOnly();
  const Ref<CVelumCard> card = iCurCard;
  CVelumGenForm& form = iCardView->ViewForm();
  form.ShowLines(*aObj, card->GetControlVal(control->Id(), false).Str());
  // The field that had the focus may have run a script that went elsewhere.
  const bool stays = iCurCard == card && Bound(aObj) && form.LinesBox().Visible();
  if (stays)
    iLinesOf = control;
  else
    form.LinesBox().SetVisible(false);
}

void CVelumStackView::CloseLines() {
  auto* list = qobject_cast<CVelumBaseControl*>(std::exchange(iLinesOf, nullptr)->BaseControl());
  CVelumBaseControl& box = iCardView->ViewForm().LinesBox();
  if (list && box.HasFocus()) list->SetFocus();
  box.SetVisible(false);
  box.Clear();
}

void CVelumStackView::DropLines() {
  if (iLinesOf) CloseLines();
}

void CVelumStackView::TakeLines() {
  const Ref<CVelumControl> control = iLinesOf;
  if (!control || !iCurCard) return;
  const QString text = iCardView->ViewForm().LinesBox().Text();
  // Hiding the box takes the focus from it, which asks for its lines once more.
  CloseLines();
  if (text == iCurCard->GetControlVal(control->Id(), false).Str()) return;
  SetCardValue(iCurCard, control->Id(), TVelumValue::OfStr(text));
  if (iCurCard && Bound(qobject_cast<CVelumBaseControl*>(control->BaseControl()))) ShowStored(*control);
  ExecScript(control, u"closeField"_s);
}
