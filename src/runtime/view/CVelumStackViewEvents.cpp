// The part of CVelumStackView that answers the events of the card window.
#include "core/CVelumFieldTypes.h"
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "core/CVelumValue.h"
#include "runtime/CVelumRuntimeDialogLib.h"
#include "runtime/script/CVelumScriptRunner.h"
#include "runtime/view/CVelumFrameHost.h"
#include "runtime/view/CVelumStackView.h"
#include "runtime/wiki/CVelumWikiTextEdit.h"
#include "toolkit/CVelumBaseRichTextBox.h"
#include "toolkit/CVelumToolkitLib.h"

#include <QScopedValueRollback>

namespace {

// Begins a link that runs a script.
const QString gSelect = u"select:"_s;

// Until there is an editor to mark the line in, the message names owner, line and its text.
void ShowRunError(const TRunError& aError) {
  const QString text = CVelumMsg::Text(aError.iMsg, aError.iParam0, aError.iParam1);
  CVelumSeams::Presenter().Message(aError.iMsg, EMsgCritical, CVelumMsg::Name(aError.iMsg),
                                   text + u"\r\n\r\n"_s + CVelumRunError::Place(aError));
}

} // namespace

void CVelumStackView::SetCardValue(Ref<CVelumCard> aCard, qint32 aControlId, const TVelumValue& aValue) {
  const CVelumError::CCommand command(ValueStepName(*aCard, aControlId));
  const qint32 position = KeptPosition(*aCard);
  aCard->SetControlVal(aControlId, aValue);
  bool newTitle = false;
  if (aCard == iCurCard) {
    iCardChanged = true;
    const Ref<CVelumControl> control = aCard->ControlById(aControlId);
    if (control && control->InCardView() && Bound(qobject_cast<CVelumBaseControl*>(control->BaseControl())))
      ShowStored(*control);
    newTitle = control && control->Flag(EConCardName);
  }
  if (iCurCard && iCurCard->Dirty()) RenewCardLists();
  if (newTitle) ShowTitle();
  if (KeptPosition(*aCard) != position)
    ShowMovedCard();
  else
    UpdateLine(*aCard);
}

// What undo calls the change of a value. Scripts put values by the hundred thousand, and have a name of their
// own.
QString CVelumStackView::ValueStepName(const CVelumCard& aCard, qint32 aControlId) const {
  if (CVelumScriptRunner::ScriptRuns()) return {};
  const Ref<CVelumControl> control = aCard.ControlById(aControlId);
  return control ? tr("Change %1 of %2").arg(control->Name(), aCard.Name()) : QString();
}

// The place in the order of a card that has one by its key, else always the same.
qint32 CVelumStackView::KeptPosition(const CVelumCard& aCard) const {
  const CVelumControlSet* set = iStack->FindBackground(aCard.BackgroundId());
  if (aCard.Stack() != iStack.Get() || !set || !set->Flag(ECseKeepCardsSorted)) return ENoInt;
  qint32 num = 0;
  return iStack->GetCardIndex(aCard, num);
}

void CVelumStackView::RenewCardLists() {
  if (!iCurCard) return;
  iCurCard->UpdateCardLists();
  // A layout that failed has fields without a place.
  if (!iCardViewOpen || iFailedSet) return;
  const QScopedValueRollback noChange(iNoChange, true);
  // What the user is typing has not been taken yet and stays.
  iCardView->ShowValues(*iCurCard, iCurObjChanged ? iCurObj.data() : nullptr);
}

bool CVelumStackView::Bound(const CVelumBaseControl* aObj) const {
  return aObj && iCardView && iCardView->IsVelumControl(aObj);
}

void CVelumStackView::ShowStored(CVelumControl& aControl) {
  const QScopedValueRollback noChange(iNoChange, true);
  iCardView->SetBaseControlVal(aControl, iCurCard->GetControlVal(aControl.Id(), false), *iCurCard);
}

void CVelumStackView::BaseObjChange(CVelumBaseControl* aObj) {
  if (iNoChange || iValidating || !Bound(aObj)) return;
  // A text that is dropped elsewhere would be forgotten.
  if (aObj != iCurObj && RefuseEntry()) return ShowStored(*iCardView->VelumControl(aObj));
  Touch(aObj);
  iCurObjChanged = true;
}

void CVelumStackView::Touch(CVelumBaseControl* aObj) {
  // Text can be dropped into a field that has not the focus.
  if (aObj == iCurObj) return;
  ValidateCurControl();
  BaseObjGotFocus(aObj);
}

void CVelumStackView::BaseObjGotFocus(CVelumBaseControl* aObj) {
  // The field with an entry that is refused has the focus on its way back.
  if (aObj == iCurObj || !Bound(aObj) || UnreadControl()) return;
  const Ref<CVelumControlSet> set = iCurCard ? iCurCard->Background() : nullptr;
  if (set && set->Flag(ECseKeepCardsSorted)) {
    const Ref<CVelumArray> index = set->KeyIndex();
    const Ref<CVelumKeyOrder> key = index ? index->SortKey() : nullptr;
    if (const auto* sortKey = dynamic_cast<const CVelumSortKey*>(key.Get()))
      iOldKey = sortKey->BuildKey(*iCurCard);
  }
  iCurObj = aObj;
  iCurObjChanged = false;
}

void CVelumStackView::BaseObjPaste(CVelumBaseControl* aObj) {
  const Ref<CVelumControl> control = iCurCard && Bound(aObj) ? iCardView->VelumControl(aObj) : nullptr;
  const QString text = CVelumLib::ToCrLf(CVelumLib::GetClipboardText());
  if (!control || text.isEmpty()) return;
  if (control->Flag(EConReadOnly)) return CVelumDialogLib::TellReadOnly();
  const TVelumValue value = CVelumValue::ExtTextToVal(text.left(EMaxStoredText), control->FieldInfo());
  SetCardValue(iCurCard, control->Id(), value);
  if (text.size() > EMaxStoredText)
    aObj->TellNotFitting(static_cast<int>(text.size() - EMaxStoredText), EMaxStoredText);
}

bool CVelumStackView::ValidateCurControl() {
  TakeLines();
  const QPointer<CVelumBaseControl> base = iCurObj;
  if (!base || !base->Visible()) return true;
  bool cancel = false;
  BaseObjValidate(base, cancel);
  if (!cancel && base && base->HasFocus()) BaseObjGotFocus(base);
  return !cancel;
}

void CVelumStackView::BaseObjValidate(CVelumBaseControl* aObj, bool& ioCancel) {
  if (iNoChange || iValidating || !iCurCard || !iCurObj || !iCardView) return;
  ioCancel = RefuseEntry();
  if (ioCancel) return;
  Ref<CVelumControl> control;
  bool changed = false;
  {
    const QScopedValueRollback validating(iValidating, true);
    CVelumError::AssertObj(iCurObj == aObj, this, u"BaseObjValidate"_s, u"curObj"_s);
    control = iCardView->VelumControl(aObj);
    if (!control) return ForgetFocus();
    changed = TakeValue(*control);
    if (control->DynFlag(EDynRefControl) && iCurCard->Dirty()) {
      iCurCard->UpdateCardLists();
      CVelumError::AssertObj(iCurObj, this, u"BaseObjValidate"_s, u"iCurObj"_s);
    }
    if (CVelumFieldTypes::Of(control->ConType()).iShownAgain) ShowStored(*control);
    ForgetFocus();
    CVelumSeams::EventPump().PumpPaint();
  }
  if (iCurCard) UpdateLine(*iCurCard);
  ExecScript(control, changed ? u"closeField"_s : u"exitField"_s);
}

bool CVelumStackView::TakeValue(CVelumControl& aControl) {
  if (!iCurObjChanged) return false;
  if (aControl.Flag(EConReadOnly)) {
    CVelumDialogLib::TellReadOnly();
    ShowStored(aControl);
    return false;
  }
  // What is shown for the stored value, and would be read as another one.
  if (!iCardView->EntryIsWhole(aControl)) return false;
  const TVelumValue shown = iCardView->GetBaseControlVal(aControl);
  const TVelumValue stored = iCurCard->GetControlVal(aControl.Id(), false);
  if (aControl.ConType() != EConBoolean && CVelumValue::Equal(shown, stored)) return false;
  SetCardValue(iCurCard, aControl.Id(), shown);
  return true;
}

void CVelumStackView::BaseObjClick(QObject* aObj) {
  if (!iCurCard || !iCardView) return;
  auto* base = qobject_cast<CVelumBaseControl*>(aObj);
  if (base && base->Kind() == EBaseRichTextBox)
    ClickText(static_cast<CVelumBaseRichTextBox&>(*base));
  else if (base && base->Kind() == EBaseCheckBox)
    ClickCheckBox(*base);
  else
    ClickCommand(aObj);
}

void CVelumStackView::ClickText(CVelumBaseRichTextBox& aObj) {
  const Ref<CVelumControl> control = iCardView->VelumControl(&aObj);
  if (!control || aObj.SelLen() > 0 || !control->Flag(EConWikiText)) return;
  const Ref<CVelumWikiTextBoxBase> wiki = control->WikiTextBox();
  QString target;
  if (wiki && wiki->GetLink(aObj.ClickPos(), target)) BaseObjLink(&aObj, target);
}

void CVelumStackView::BaseObjLink(CVelumBaseControl* aObj, const QString& aTarget) {
  if (!iCurCard || !Bound(aObj)) return;
  const Ref<CVelumControl> control = iCardView->VelumControl(aObj);
  if (aTarget.startsWith(gSelect)) {
    if (RefuseEntry()) return;
    if (CVelumScriptRunner* runner = CVelumScriptRunner::Installed())
      runner->SetParamVal(aTarget.sliced(gSelect.size()));
    ExecScript(control, u"select"_s);
    return;
  }
  Ref<CVelumCard> card;
  if (iStack->GetCard(aTarget, card))
    GoToByClick(card);
  else
    CVelumMsg::Show(EMsgBadLinkTarget, EMsgCritical, aTarget);
}

void CVelumStackView::ClickCheckBox(CVelumBaseControl& aObj) {
  const Ref<CVelumControl> control = iCardView->VelumControl(&aObj);
  if (!control) return;
  if (control->Flag(EConReadOnly)) {
    CVelumDialogLib::TellReadOnly();
    ShowStored(*control);
    return;
  }
  if (RefuseEntry()) return ShowStored(*control);
  const TVelumValue shown = iCardView->GetBaseControlVal(*control);
  Touch(&aObj);
  SetCardValue(iCurCard, control->Id(), shown);
  iCurObjChanged = true;
}

void CVelumStackView::ClickCommand(const QObject* aObj) {
  const Ref<CVelumControlSet> set = iCurCard->Background();
  for (qint32 i = 0; set && i < set->NumControls(); ++i) {
    const Ref<CVelumControl> control = set->ControlAt(i);
    if (!control || !control->InCardView()) continue;
    if (control->BaseControl() != aObj && control->BaseFunc() != aObj) continue;
    if (RefuseEntry()) return;
    ExecScript(control, u"select"_s);
    UpdateCardInList();
    if (control->StdCmd() != ENoShort) ExecStdCmd(control->StdCmd(), *control);
    return;
  }
}

void CVelumStackView::ExecStdCmd(qint16 aCmd, const CVelumControl& aControl) {
  Ref<CVelumCard> card;
  switch (aCmd) {
  case EStdFirstCard:
    OrderFirst(card);
    break;
  case EStdPrevCard:
    OrderPrev(card);
    break;
  case EStdNextCard:
    OrderNext(card);
    break;
  case EStdLastCard:
    OrderLast(card);
    break;
  case EStdBackInHistory:
    HistoryPrev(card);
    break;
  case EStdForwInHistory:
    HistoryNext(card);
    break;
  case EStdGoToCard:
    GoToCard(iStack->GetCardById(aControl.DestCardId()));
    break;
  case EStdShowCardList:
    OpenCardList();
    RaiseCardList();
    break;
  case EStdSelectCard:
    if (gFrameHost) gFrameHost->ShowForm(u"CVelumCardSelect"_s);
    break;
  default:
    CVelumError::AssertObj(false, this, u"ExecStdCmd"_s, u"ExecStdCmd"_s);
  }
}

void CVelumStackView::BaseObjDblClick(CVelumBaseControl* aObj) {
  if (!gFrameHost || !Bound(aObj)) return;
  if (aObj->Kind() == EBaseRichTextBox) EditWikiText(*aObj);
  if (aObj->Kind() == EBasePictureBox) gFrameHost->ShowPicture();
}

void CVelumStackView::EditWikiText(const CVelumBaseControl& aObj) {
  const Ref<CVelumCard> card = iCurCard;
  const Ref<CVelumControl> control = iCardView->VelumControl(&aObj);
  // What is being typed in the field itself is to be in the editor too.
  if (iCurObjChanged && !ValidateCurControl()) return;
  if (!control || !Holds(card)) return;
  auto* form = qobject_cast<CVelumWikiTextEdit*>(gFrameHost->ShowForm(u"CVelumWikiTextEdit"_s));
  if (form) form->SetObj(card, control);
}

void CVelumStackView::ExecScript(const Ref<CVelumObject>& aObj, const QString& aMsg) {
  const Ref<CVelumObject> obj = aObj ? aObj : Ref<CVelumObject>(iCurCard);
  CVelumScriptRunner* const runner = CVelumScriptRunner::Installed();
  if (!obj || !runner) return;
  try {
    RunMessage(*runner, obj, aMsg);
  } catch (...) {
    CVelumError::CatchError(u"CVelumStackView.ExecScript"_s);
    const bool inScript = CVelumError::GetErrorCode() == EMsgRunError;
    const TRunError error = runner->RunError();
    runner->Reset();
    if (inScript)
      ShowRunError(error);
    else
      CVelumMsg::ShowLastError(CVelumRunError::Place(error));
  }
}

QString CVelumStackView::ScriptStepName(const CVelumObject* aObj) {
  if (const auto* control = dynamic_cast<const CVelumControl*>(aObj))
    return (control->ConType() == EConCommand ? tr("Script of button %1") : tr("Script of field %1"))
        .arg(control->Name());
  if (const auto* card = dynamic_cast<const CVelumCard*>(aObj))
    return tr("Script of card %1").arg(card->Name());
  return {};
}

void CVelumStackView::RunMessage(CVelumScriptRunner& aRunner, const Ref<CVelumObject>& aObj,
                                 const QString& aMsg) {
  const CVelumError::CCommand command(ScriptStepName(aObj.Get()));
  if (auto* control = dynamic_cast<CVelumControl*>(aObj.Get()))
    aRunner.LocateAndExecScript(iCurCard, control, aMsg);
  else if (auto* card = dynamic_cast<CVelumCard*>(aObj.Get()))
    aRunner.LocateAndExecScript(card, nullptr, aMsg);
}
