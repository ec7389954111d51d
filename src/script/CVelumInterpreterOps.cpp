// The single instructions.
#include "script/CVelumInterpreter.h"

#include "core/CVelumChecked.h"
#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"

#include <cmath>

using namespace CVelumError;
using CVelumChecked::Deref;

namespace {

// Dates that a calendar of four-digit years can show; sums beyond are host error 6.
constexpr double EMinDate = -657434.0;
constexpr double EMaxDate = 2958465.0;

TVelumValue CheckedDate(double aDate) {
  if (!(aDate >= EMinDate && aDate <= EMaxDate + 1)) RaiseHost(EHostOverflow);
  return TVelumValue::OfDate(aDate);
}

TVelumValue CheckedReal(double aReal) {
  if (!std::isfinite(aReal)) RaiseHost(EHostOverflow);
  return TVelumValue::OfReal(aReal);
}

// The real quotient rounded to nearest, a half to even.
TVelumValue IntQuotient(qint32 aLeft, qint32 aRight) {
  if (aRight == 0) RaiseHost(EHostDivisionByZero);
  return TVelumValue::OfInt(CVelumValue::RoundToInt(static_cast<double>(aLeft) / aRight));
}

bool IsDateInt(const CVelumVar& aLeft, const CVelumVar& aRight) {
  return aLeft.ValType() == EValDate && aRight.ValType() == EValInt;
}

Ref<CVelumVar> NewVar(TVelumValue aVal) {
  return MakeRef<CVelumVar>(std::move(aVal));
}
Ref<CVelumVar> NewBoolean(bool aVal) {
  return NewVar(TVelumValue::OfBoolean(aVal));
}
Ref<CVelumVar> NewInt(qint32 aVal) {
  return NewVar(TVelumValue::OfInt(aVal));
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

void CVelumInterpreter::ExecEnter() {
  const qint16 size = CodeInt();
  iFrame = iSp;
  iSp = CVelumChecked::Narrow<qint16>(iSp + size);
}

// Drops the frame and returns to the suspended handler. False when there is none.
bool CVelumInterpreter::ExecLeave() {
  const qint16 size = CodeInt();
  for (int i = 0; i < size; ++i) ExecPop();
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

void CVelumInterpreter::ExecUpdateCard() {
  iCard = iHost->CurCard();
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
  const CVelumControl& control = Deref(Deref(controlVar).ControlVal());
  const Ref<CVelumCard> card = &Deref(Deref(cardVar).CardVal());
  TVelumValue value = Deref(valueVar).GetValue();
  const int type = CVelumValue::ConToValType(control.ConType());
  if (value.Type() != type) {
    TVelumValue converted = TVelumValue::OfType(type);
    CVelumValue::Convert(value, control.FieldInfo(), converted);
    value = converted;
  }
  iHost->SetCardValue(card, control.Id(), value);
  PumpSoon();
}

void CVelumInterpreter::ExecAnswer() {
  const TVarRef var = Pop();
  iHost->Answer(Deref(var).ToStr());
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
  const TVarRef cardVar = MakeRef<CVelumVar>(EValCard);
  Slot(Deref(Peek(1)).IntVal()) = cardVar;
  const qint32 backgroundId = Deref(Deref(Peek(0)).ControlSetVal()).Id();
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

// ---- Operators

void CVelumInterpreter::ExecBinOp(int aOp) {
  const TVarRef right = Pop();
  const TVarRef left = Pop();
  Push(BinResult(aOp, Deref(left), Deref(right)));
}

// Both numeric, or both of one type; with aType other than 0 both of that type.
void CVelumInterpreter::CheckOpTypes(const CVelumVar& aLeft, const CVelumVar& aRight, int aType) {
  const bool ok = aType == EValUndef ? CVelumVar::TypesCompatible(aLeft.ValType(), aRight.ValType())
                                     : aLeft.ValType() == aType && aRight.ValType() == aType;
  if (!ok)
    RunFail(u"CheckOpTypes"_s, EMsgIncompatibleValTypes, CVelumValue::TypeStr(aLeft.ValType()),
            CVelumValue::TypeStr(aRight.ValType()));
}

CVelumInterpreter::TVarRef CVelumInterpreter::BinResult(int aOp, const CVelumVar& aLeft,
                                                        const CVelumVar& aRight) {
  PumpIfLong(aLeft.StrVal());
  PumpIfLong(aRight.StrVal());
  switch (aOp) {
  case EOpMul:
  case EOpDiv:
  case EOpAdd:
  case EOpSub:
    return NewVar(Arithmetic(aOp, aLeft, aRight));
  case EOpAnd:
    CheckOpTypes(aLeft, aRight, EValBoolean);
    return NewBoolean(aLeft.BooleanVal() && aRight.BooleanVal());
  case EOpOr:
    CheckOpTypes(aLeft, aRight, EValBoolean);
    return NewBoolean(aLeft.BooleanVal() || aRight.BooleanVal());
  case EOpConcat:
    return Concat(aLeft, aRight);
  default:
    return NewBoolean(Comparison(aOp, aLeft, aRight));
  }
}

CVelumInterpreter::TVarRef CVelumInterpreter::Concat(const CVelumVar& aLeft, const CVelumVar& aRight) {
  TVarRef result = NewVar(TVelumValue::OfStr(aLeft.ToStr()));
  result->AppendStr(aRight.ToStr());
  return result;
}

TVelumValue CVelumInterpreter::Arithmetic(int aOp, const CVelumVar& aLeft, const CVelumVar& aRight) {
  if (aOp == EOpAdd && IsDateInt(aLeft, aRight)) return CheckedDate(aLeft.DateVal() + aRight.IntVal());
  if (aOp == EOpSub && IsDateInt(aLeft, aRight)) return CheckedDate(aLeft.DateVal() - aRight.IntVal());
  if (aOp == EOpSub && aLeft.ValType() == EValDate && aRight.ValType() == EValDate) {
    const qint32 days = CVelumValue::RoundToInt(aLeft.DateVal() - aRight.DateVal());
    return TVelumValue::OfInt(CVelumChecked::Narrow<qint16>(days));
  }
  if (aLeft.ValType() == EValInt && aRight.ValType() == EValInt) {
    const qint32 left = aLeft.IntVal();
    const qint32 right = aRight.IntVal();
    switch (aOp) {
    case EOpMul:
      return TVelumValue::OfInt(CVelumChecked::Mul(left, right));
    case EOpDiv:
      return IntQuotient(left, right);
    case EOpAdd:
      return TVelumValue::OfInt(CVelumChecked::Add(left, right));
    default:
      return TVelumValue::OfInt(CVelumChecked::Sub(left, right));
    }
  }
  CheckOpTypes(aLeft, aRight, EValUndef);
  const double left = aLeft.ToReal();
  const double right = aRight.ToReal();
  switch (aOp) {
  case EOpMul:
    return CheckedReal(left * right);
  case EOpDiv:
    if (right == 0.0) RaiseHost(EHostDivisionByZero);
    return CheckedReal(left / right);
  case EOpAdd:
    return CheckedReal(left + right);
  default:
    return CheckedReal(left - right);
  }
}

bool CVelumInterpreter::Comparison(int aOp, const CVelumVar& aLeft, const CVelumVar& aRight) {
  CheckOpTypes(aLeft, aRight, EValUndef);
  switch (aOp) {
  case EOpEqual:
    return aLeft.Equal(aRight);
  case EOpNotEqual:
    return !aLeft.Equal(aRight);
  case EOpGreater:
    return aLeft.Gt(aRight);
  case EOpLess:
    return aLeft.Lt(aRight);
  case EOpGreaterEqual:
    return aLeft.Gt(aRight) || aLeft.Equal(aRight);
  case EOpLessEqual:
    return aLeft.Lt(aRight) || aLeft.Equal(aRight);
  default:
    AssertObj(false, this, u"ExecBinOp"_s, u"op "_s + QString::number(aOp));
    return false;
  }
}
