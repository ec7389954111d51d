// The single instructions.
#include "script/CVelumInterpreter.h"

#include "core/CVelumChecked.h"
#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"

#include <cmath>

using namespace CVelumError;
using CVelumChecked::Deref;

namespace {

Ref<CVelumVar> NewVar(TVelumValue aVal) {
  return MakeRef<CVelumVar>(std::move(aVal));
}
Ref<CVelumVar> NewBoolean(bool aVal) {
  return NewVar(TVelumValue::OfBoolean(aVal));
}
Ref<CVelumVar> NewInt(qint32 aVal) {
  return NewVar(TVelumValue::OfInt(aVal));
}

// Whether CVelumValue::Convert knows a way.
bool CanConvert(int aFrom, int aTo) {
  const bool numeric = aFrom == EValStr || CVelumVar::IsNumeric(aFrom);
  if (CVelumVar::IsNumeric(aTo)) return numeric;
  return aTo == EValStr || (aTo == EValBoolean && aFrom == EValStr);
}

} // namespace

CVelumStack& CVelumInterpreter::OpenStack() const {
  return Deref(Deref(iHost).Stack());
}

// ---- Values and variables

void CVelumInterpreter::ExecPushStr() {
  auto var = MakeRef<CVelumVar>(EValStr);
  var->GetFromCode(iCode->Bytes(), iIp);
  Push(var);
}

// The variable itself is pushed, not a copy.
void CVelumInterpreter::ExecPushVarVal() {
  const TVarRef slot = Pop();
  const CVelumVar& slotVar = Deref(slot);
  if (slotVar.ValType() != EValInt)
    AssertObj(false, this, u"ExecPushVarVal"_s, u"int "_s + slotVar.TypeStr());
  TVarRef& var = Slot(slotVar.IntVal());
  if (!var) var = MakeRef<CVelumVar>(EValStr);
  Push(var);
}

void CVelumInterpreter::ExecStoreVar() {
  const TVarRef slot = Pop();
  const TVarRef value = Pop();
  StoreVar(Deref(slot).IntVal(), value);
}

// A variable takes the type of what was last stored: another type makes a new one.
void CVelumInterpreter::StoreVar(qint32 aSlot, const TVarRef& aVar) {
  const CVelumVar& value = Deref(aVar);
  TVarRef& target = Slot(aSlot);
  if (!target || target->ValType() != value.ValType()) target = MakeRef<CVelumVar>(value.ValType());
  target->Assign(value);
}

void CVelumInterpreter::ExecNot() {
  Push(NewBoolean(!Deref(Pop()).BooleanVal()));
}

void CVelumInterpreter::ExecNegate() {
  const TVarRef var = Pop();
  const CVelumVar& value = Deref(var);
  if (value.ValType() == EValInt) return Push(NewInt(CVelumChecked::Sub(0, value.IntVal())));
  Push(NewVar(TVelumValue::OfReal(-value.ToReal())));
}

void CVelumInterpreter::ExecJumpIfFalse() {
  const qint16 target = CodeInt();
  const TVarRef var = Pop();
  const CVelumVar& value = Deref(var);
  if (value.ValType() != EValBoolean)
    RunFail(u"ExecJumpIfFalse"_s, EMsgWrongValType, CVelumValue::TypeStr(value.ValType()));
  if (!value.BooleanVal()) iIp = target;
}

qint32 CVelumInterpreter::FrameSize() {
  return qMax(qint32{CodeInt()}, iCode->NumSlots());
}

void CVelumInterpreter::ExecEnter() {
  const qint32 size = FrameSize();
  iFrame = iSp;
  iSp = CVelumChecked::Narrow<qint16>(iSp + size);
}

// Drops the frame and returns to the suspended handler. False when there is none.
bool CVelumInterpreter::ExecLeave() {
  const qint32 size = FrameSize();
  for (qint32 i = 0; i < size; ++i) ExecPop();
  if (iNumFrames == 0) return false;
  PopFrame();
  return true;
}

void CVelumInterpreter::ExecRandom() {
  const TVarRef count = Pop();
  const qint32 numArg = Deref(count).ToInt();
  if (numArg != 1) AssertObj(false, this, u"ExecRandom"_s, u"numArg "_s + QString::number(numArg));
  const TVarRef var = Pop();
  const qint32 arg = Deref(var).ToInt();
  if (arg < 1) AssertObj(false, this, u"ExecRandom"_s, u"arg "_s + QString::number(arg));
  Push(NewInt(RandomUpTo(arg)));
}

qint32 CVelumInterpreter::RandomUpTo(qint32 aMost) {
  constexpr double step = 1.0 / (1 << 24); // single precision
  const double r = static_cast<double>(iRandom() >> 8) * step;
  return static_cast<qint32>(std::floor(r * aMost + 1));
}

// ---- Cards, fields, backgrounds

// A card, the name of one, or its number from 1.
Ref<CVelumCard> CVelumInterpreter::CardOfVar(const CVelumVar& aVar, const QString& aProc) {
  Ref<CVelumCard> card;
  switch (aVar.ValType()) {
  case EValCard:
    return &Deref(aVar.CardVal());
  case EValStr:
    PumpIfLong(aVar.StrVal());
    if (!OpenStack().GetCard(aVar.StrVal(), card)) RunFail(aProc, EMsgCardNotFound, aVar.StrVal());
    return card;
  case EValInt:
  case EValReal: {
    const qint32 num = aVar.ToInt();
    if (!OpenStack().GetCardByNum(CVelumChecked::Sub(num, 1), card))
      RunFail(aProc, EMsgCardNotFound, QString::number(num));
    return card;
  }
  default:
    RunFail(aProc, EMsgWrongValType, CVelumValue::TypeStr(aVar.ValType()));
  }
}

void CVelumInterpreter::ExecValToCard() {
  const TVarRef var = Pop();
  Push(NewVar(TVelumValue::OfObj(EValCard, CardOfVar(Deref(var), u"ExecValToCard"_s))));
}

void CVelumInterpreter::ExecGoToCard() {
  const TVarRef var = Pop();
  const Ref<CVelumCard> card = CardOfVar(Deref(var), u"ExecGoToCard"_s);
  iHost->GoToCard(card);
  ExecUpdateCard();
}

void CVelumInterpreter::ExecGoNextCard() {
  iHost->GoToNextCard();
  ExecUpdateCard();
}

// Going to a card lets events run.
void CVelumInterpreter::ExecUpdateCard() {
  iCard = iHost->CurCard();
  ++iStamp;
  PumpSoon();
}

void CVelumInterpreter::ExecPushCurCard() {
  AssertObj(bool(iCard), this, u"ExecPushCurCard"_s, u"found"_s);
  Push(NewVar(TVelumValue::OfObj(EValCard, Ref<CVelumCard>(&Deref(iCard)))));
}

void CVelumInterpreter::ExecValToBackground() {
  const TVarRef var = Pop();
  const CVelumVar& value = Deref(var);
  Ref<CVelumControlSet> set;
  if (value.ValType() == EValControlSet) {
    set = &Deref(value.ControlSetVal());
  } else if (value.ValType() != EValStr) {
    RunFail(u"ExecValToBackground"_s, EMsgWrongValType, CVelumValue::TypeStr(value.ValType()));
  } else if (!OpenStack().GetBackgroundByName(value.StrVal(), set)) {
    RunFail(u"ExecValToBackground"_s, EMsgBackgroundNotFound, value.StrVal());
  }
  Push(NewVar(TVelumValue::OfObj(EValControlSet, set)));
}

// The card stays under the control, so that the pair is there for the next instruction.
void CVelumInterpreter::ExecValToControl() {
  const TVarRef var = Pop();
  const CVelumVar& value = Deref(var);
  const Ref<CVelumControlSet> set = Deref(Deref(Peek(0)).CardVal()).Background();
  Ref<CVelumControl> control;
  bool found = false;
  QString sought;
  if (value.ValType() == EValStr) {
    sought = value.StrVal();
    found = Deref(set).GetControlByName(sought, control);
  } else if (value.ValType() == EValInt) {
    sought = QString::number(value.IntVal());
    found = Deref(set).GetControlByNum(CVelumChecked::Sub(value.IntVal(), 1), control);
  } else {
    RunFail(u"ExecStringToControl"_s, EMsgWrongValType, CVelumValue::TypeStr(value.ValType()));
  }
  if (!found) RunFail(u"ExecValToControl"_s, EMsgControlNotFound, sought);
  Push(NewVar(TVelumValue::OfObj(EValControl, control)));
}

void CVelumInterpreter::ExecGetField() {
  const TVarRef controlVar = Pop();
  const TVarRef cardVar = Pop();
  const CVelumControl& control = Deref(Deref(controlVar).ControlVal());
  CVelumCard& card = Deref(Deref(cardVar).CardVal());
  TVelumValue value = card.GetControlVal(control.Id(), false);
  if (value.Type() == EValUndef)
    CVelumValue::SetZero(value, CVelumValue::ConToValType(control.ConType()), ENoDate, 0.0);
  Push(NewVar(std::move(value)));
}

void CVelumInterpreter::ExecPutField() {
  const TVarRef controlVar = Pop();
  const TVarRef cardVar = Pop();
  const TVarRef valueVar = Pop();
  CVelumControl& control = Deref(Deref(controlVar).ControlVal());
  const Ref<CVelumCard> card = &Deref(Deref(cardVar).CardVal());
  const TVelumValue value = FittingVal(control, Deref(valueVar).GetValue());
  // Events may have taken card or field away since they were looked up.
  if (card->ControlById(control.Id()).Get() != &control) {
    AssertObj(false, card.Get(), u"SetControlVal"_s, u"Control found"_s);
    RaiseHost(EHostObjectNotSet);
  }
  iHost->SetCardValue(card, control, value);
  PumpWithin(EPutSteps);
}

// aVal as a field takes it. What cannot be converted, or be stored, is refused.
TVelumValue CVelumInterpreter::FittingVal(const CVelumControl& aControl, const TVelumValue& aVal) {
  const QString proc = u"ExecPutField"_s;
  const int type = CVelumValue::ConToValType(aControl.ConType());
  TVelumValue value = aVal;
  if (aVal.Type() != type) {
    if (!CanConvert(aVal.Type(), type))
      RunFail(proc, EMsgIncompatibleValTypes, CVelumValue::TypeStr(aVal.Type()), CVelumValue::TypeStr(type));
    value = TVelumValue::OfType(type);
    CVelumValue::Convert(aVal, aControl.FieldInfo(), value);
  }
  if (value.Str().size() > EMaxStoredText)
    RunFail(proc, EMsgControlNotUsable, aControl.Name(),
            u"the text has %1 characters, at most %2 can be stored"_s.arg(value.Str().size())
                .arg(EMaxStoredText));
  return value;
}

void CVelumInterpreter::ExecAnswer() {
  const TVarRef var = Pop();
  const QString text = Deref(var).ToStr();
  {
    const CEvents events(*this);
    iHost->Answer(text);
  }
  PumpSoon();
}

void CVelumInterpreter::ExecNumCards() {
  Push(NewInt(OpenStack().NumCards()));
}

void CVelumInterpreter::ExecNumCardsOfBackground() {
  const TVarRef var = Pop();
  Push(NewInt(OpenStack().NumBackgroundCards(Deref(Deref(var).ControlSetVal()).Id())));
}

// The handler starts at the next instruction; this one goes on when it has returned.
void CVelumInterpreter::ExecSend() {
  const TVarRef controlVar = Pop();
  const TVarRef cardVar = Pop();
  const TVarRef msgVar = Pop();
  const CVelumVar& msg = Deref(msgVar);
  if (msg.ValType() != EValStr) RunFail(u"ExecSend"_s, EMsgWrongValType, CVelumValue::TypeStr(msg.ValType()));
  const Ref<CVelumControl> control = &Deref(Deref(controlVar).ControlVal());
  const Ref<CVelumCard> card = &Deref(Deref(cardVar).CardVal());
  LocateAndExecScript(card, control, msg.StrVal());
  PumpSoon();
}

// ---- Walks over cards
// On the stack: the slot, then two numbers, or the background and one number. The top one keeps the position.

void CVelumInterpreter::StepWalk(bool aFound, const Ref<CVelumCard>& aCard, qint32 aIndex,
                                 const TVarRef& aCardVar, const TVarRef& aPos, qint16 aTarget) {
  if (!aFound) {
    iIp = aTarget;
    return;
  }
  Deref(aCardVar).LetCardVal(aCard);
  Deref(aPos).LetIntVal(aIndex);
}

void CVelumInterpreter::ExecFirstCard() {
  const TVarRef cardVar = MakeRef<CVelumVar>(EValCard);
  Slot(Deref(Peek(0)).IntVal()) = cardVar;
  const TVarRef pos = NewInt(0);
  Push(NewInt(0));
  Push(pos);
  const qint16 target = CodeInt();
  Ref<CVelumCard> card;
  qint32 index = 0;
  const bool found = OpenStack().GetFirstCard(card, index);
  StepWalk(found, card, index, cardVar, pos, target);
}

void CVelumInterpreter::ExecNextCard() {
  const TVarRef cardVar = Slot(Deref(Peek(2)).IntVal());
  const TVarRef pos = Peek(0);
  const qint16 target = CodeInt();
  Ref<CVelumCard> card;
  qint32 index = Deref(pos).IntVal();
  const bool found = OpenStack().GetNextCard(card, index);
  StepWalk(found, card, index, cardVar, pos, target);
}

void CVelumInterpreter::ExecFirstCardInBackground() {
  // The slot can be where the background lies.
  const qint32 backgroundId = Deref(Deref(Peek(0)).ControlSetVal()).Id();
  const TVarRef cardVar = MakeRef<CVelumVar>(EValCard);
  Slot(Deref(Peek(1)).IntVal()) = cardVar;
  const TVarRef pos = NewInt(0);
  Push(pos);
  const qint16 target = CodeInt();
  Ref<CVelumCard> card;
  qint32 index = 0;
  const bool found = OpenStack().GetFirstCardInBackground(backgroundId, card, index);
  StepWalk(found, card, index, cardVar, pos, target);
}

void CVelumInterpreter::ExecNextCardInBackground() {
  const TVarRef cardVar = Slot(Deref(Peek(2)).IntVal());
  const qint32 backgroundId = Deref(Deref(Peek(1)).ControlSetVal()).Id();
  const TVarRef pos = Peek(0);
  const qint16 target = CodeInt();
  Ref<CVelumCard> card;
  qint32 index = Deref(pos).IntVal();
  const bool found = OpenStack().GetNextCardInBackground(backgroundId, card, index);
  StepWalk(found, card, index, cardVar, pos, target);
}
