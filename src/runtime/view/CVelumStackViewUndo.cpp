// The part of CVelumStackView that takes changes back and makes them again.
#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "model/change/CVelumCardChange.h"
#include "runtime/script/CVelumScriptRunner.h"
#include "runtime/view/CVelumStackView.h"

#include <QScopedValueRollback>

void CVelumStackView::StartUndo() {
  if (!iUndo) iUndo = std::make_unique<CVelumUndo>(*iStack);
}

bool CVelumStackView::CanUndo() const {
  return iUndo && (iUndo->CanUndo() || iCurObjChanged) && MayTakeBack();
}

bool CVelumStackView::CanRedo() const {
  return iUndo && iUndo->CanRedo() && MayTakeBack();
}

// Not while a script runs, nor in the middle of another replay.
bool CVelumStackView::MayTakeBack() const {
  return !iReplaying && !CVelumScriptRunner::ScriptRuns();
}

QString CVelumStackView::UndoName() const {
  return iUndo ? iUndo->UndoName() : QString();
}

QString CVelumStackView::RedoName() const {
  return iUndo ? iUndo->RedoName() : QString();
}

bool CVelumStackView::HasUnsavedChanges() const {
  return !(iUndo && iUndo->IsSaved()) && iStack->Changed();
}

bool CVelumStackView::MayDelete(const CVelumControlSet* aBackground) const {
  if (!iUndo) return true;
  qint64 cost = 0;
  Ref<CVelumCard> card;
  for (qint32 at = 0; cost <= iUndo->Bound() && iStack->GetNextCard(card, at);)
    if (!aBackground || card->BackgroundId() == aBackground->Id()) cost += CVelumCardChange::CostOf(*card);
  return cost <= iUndo->Bound() || CVelumMsg::Ask(EMsgCannotUndoOk, EMsgQuestion, CVelumMsg::EUndefParam);
}

void CVelumStackView::NoteSaved() {
  if (iUndo) iUndo->SetSaved();
}

QString CVelumStackView::Undo() {
  // What is being typed is a step of its own, and the first to go.
  return CanUndo() ? Replay(false) : QString();
}

QString CVelumStackView::Redo() {
  return CanRedo() ? Replay(true) : QString();
}

QString CVelumStackView::Replay(bool aAgain) {
  const Ref<CVelumStackView> alive = this; // a script that hears of the field may close the stack
  TakeLines();
  // What was typed is a step of its own. A field that was only visited is left without a word to its scripts.
  if (RefuseEntry() || (iCurObjChanged && !ValidateCurControl()) || gStackView != this) return {};
  iUndo->Recorder().EndGroup();
  if (!(aAgain ? CanRedo() : CanUndo())) return {};
  const QString name = aAgain ? RedoName() : UndoName();
  LetGo(aAgain ? iUndo->GoingWithRedo() : iUndo->GoingWithUndo());
  const QScopedValueRollback replaying(iReplaying, true);
  try {
    ShowReplayed(aAgain ? iUndo->Redo() : iUndo->Undo());
    return name;
  } catch (...) {
    // The stack is as it was, and its windows have let go of cards that are still there.
    CVelumError::CatchError(u"CVelumStackView.Replay"_s);
    const TVelumError error = CVelumError::GetErrorRecord();
    ShowReplayed({.iStructure = true, .iValues = true, .iCards = true, .iSortKeys = true, .iOrder = true});
    gLastError = error;
    CVelumMsg::ShowLastError();
    return {};
  }
}

// Windows and the card on show let go of what is about to leave the document.
void CVelumStackView::LetGo(const TGoing& aGoing) {
  for (const Ref<CVelumControlSet>& background : aGoing.iBackgrounds) {
    CVelumSeams::ChangeNotify(EChangeBackgroundGoes, background.Get());
    iHistory.RemoveBackground(background->Id());
  }
  if (aGoing.iCards.size() == 1)
    CVelumSeams::ChangeNotify(EChangeCardGoes, nullptr, aGoing.iCards.front().Get());
  for (const Ref<CVelumCard>& card : aGoing.iCards) iHistory.Remove(*card);
  const bool goes = std::find(aGoing.iCards.begin(), aGoing.iCards.end(), iCurCard) != aGoing.iCards.end();
  ForgetFocus();
  if (!goes) return;
  iCurCard = nullptr;
  iCardChanged = false;
}

// The view goes to what came back. No message is sent to a script.
void CVelumStackView::ShowReplayed(const TReplayed& aReplayed) {
  if (aReplayed.iStructure) UpdateAfterControlChange();
  Ref<CVelumCard> card = iStack->GetCardById(aReplayed.iCardId);
  if (!card) card = iCurCard;
  if (!card) static_cast<void>(iStack->OrderFirst(card));
  if (iCardViewOpen && card) {
    iCurCard = card;
    iHistory.Add(card);
    if (iCardView) iCardView->ResetCurSet();
    ShowCurCard();
    FocusField(aReplayed.iControlId);
  } else if (iCardViewOpen && iCardView) {
    iCardView->Clear();
  }
  if (aReplayed.iStructure) CVelumSeams::ChangeNotify(EChangeStructure);
  if (aReplayed.iValues) CVelumSeams::ChangeNotify(EChangeValues);
  if (aReplayed.iCards) CVelumSeams::ChangeNotify(EChangeCards);
  if (aReplayed.iSortKeys) CVelumSeams::ChangeNotify(EChangeSortKeys);
  if (aReplayed.iOrder) CVelumSeams::ChangeNotify(EChangeOrder);
  RefreshViews(false, true);
  FollowCard();
}

// The field whose value came back gets the focus, if it stands on the card window.
void CVelumStackView::FocusField(qint32 aControlId) {
  const Ref<CVelumControl> control = iCurCard ? iCurCard->ControlById(aControlId) : nullptr;
  auto* base = control ? qobject_cast<CVelumBaseControl*>(control->BaseControl()) : nullptr;
  if (base && Bound(base) && base->Visible()) base->SetFocus();
  FocusCurrent();
}
