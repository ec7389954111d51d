// Fused instructions on values of any type.
#include "script/CVelumInterpreter.h"

#include "core/CVelumFieldTypes.h"
#include "core/CVelumValue.h"

// ---- Operands

bool CVelumInterpreter::FindField(TFieldOperand& aField, const CVelumCard& aCard) const {
  const Ref<CVelumControlSet> set = aCard.Background();
  Ref<CVelumControl> control;
  if (!set || !(aField.iByName ? set->GetControlByName(aField.iName, control)
                               : set->GetControlByNum(aField.iNum, control)))
    return false;
  if (!CVelumFieldTypes::Of(control->ConType()).HasPlainValue()) return false;
  aField.iStamp = iStamp;
  aField.iStack = aCard.Stack();
  aField.iBackgroundId = aCard.BackgroundId();
  aField.iControl = control.Get();
  aField.iControlId = control->Id();
  aField.iConType = control->ConType();
  aField.iValType = CVelumValue::ConToValType(control->ConType());
  return true;
}

CVelumInterpreter::TVarRef CVelumInterpreter::FieldVar(qint16 aNum) const {
  TFieldOperand& field = iCode->Field(aNum);
  CVelumCard* card = CardOfField(field);
  if (!card) return nullptr;
  TVelumValue value = card->GetControlVal(field.iControlId, false);
  if (value.Type() == EValUndef) CVelumValue::SetZero(value, field.iValType, ENoDate, 0.0);
  return MakeRef<CVelumVar>(std::move(value));
}

// The variable itself, or a new one; nothing where anything is unusual.
CVelumInterpreter::TVarRef CVelumInterpreter::OperandVar(const TOperand& aOperand) const {
  switch (aOperand.iKind) {
  case TOperand::ENum:
    return MakeRef<CVelumVar>(TVelumValue::OfInt(aOperand.iNum));
  case TOperand::ESlot:
    return SlotFast(aOperand.iNum);
  case TOperand::EText:
    return MakeRef<CVelumVar>(TVelumValue::OfStr(iCode->Text(aOperand.iNum)));
  case TOperand::EField:
    return FieldVar(aOperand.iNum);
  }
  return nullptr;
}

// ---- Instructions

bool CVelumInterpreter::FusedPush(const TInstr& aInstr) {
  if (!HasRoom()) return false;
  TVarRef var = aInstr.iKind == EFusedPushVar ? TVarRef(SlotFast(aInstr.iArg)) : OperandVar(aInstr.iLeft);
  if (!var) return false;
  iStack[static_cast<size_t>(iSp++)] = std::move(var);
  iIp = aInstr.iNext;
  return true;
}

bool CVelumInterpreter::FusedStore(const TInstr& aInstr) {
  if (iSp < 1 || iSp >= EStackSize || !iStack[static_cast<size_t>(iSp - 1)] || !InFrame(aInstr.iArg))
    return false;
  iIp = aInstr.iNext;
  StoreVar(aInstr.iArg, Pop());
  return true;
}

bool CVelumInterpreter::FusedStoreOperand(const TInstr& aInstr) {
  if (!HasRoom() || !InFrame(aInstr.iArg)) return false;
  const TVarRef var = OperandVar(aInstr.iLeft);
  if (!var) return false;
  iIp = aInstr.iNext;
  StoreVar(aInstr.iArg, var);
  return true;
}

bool CVelumInterpreter::FusedBinary(const TInstr& aInstr) {
  if (!IsBinaryOp(aInstr.iOp) || !HasRoom() || (aInstr.iKind == EFusedBinStore && !InFrame(aInstr.iArg)))
    return false;
  TVarRef left = OperandVar(aInstr.iLeft);
  const TVarRef right = left ? OperandVar(aInstr.iRight) : nullptr;
  if (!left || !right) return false;
  const TVarRef result = aInstr.iOp == EOpConcat ? Join(std::move(left), *right, aInstr.iEndsIn)
                                                 : BinResult(aInstr.iOp, *left, *right);
  iIp = aInstr.iNext;
  if (aInstr.iKind == EFusedBinStore) {
    StoreVar(aInstr.iArg, result);
  } else if (aInstr.iKind == EFusedBinPush) {
    Push(result);
  } else if (!result->BooleanVal()) { // comparisons give nothing else
    iIp = aInstr.iArg;
  }
  return true;
}

// s = s & x grows the text in place.
bool CVelumInterpreter::FusedAppend(const TInstr& aInstr) {
  CVelumVar* target = SlotFast(aInstr.iArg);
  if (aInstr.iLeft.iKind != TOperand::ESlot || aInstr.iLeft.iNum != aInstr.iArg || !target ||
      target->ValType() != EValStr || !HasRoom())
    return false;
  if (aInstr.iRight.iKind == TOperand::EText) {
    target->AppendStr(iCode->Text(aInstr.iRight.iNum));
  } else {
    const TVarRef right = OperandVar(aInstr.iRight);
    if (!right) return false;
    AppendTo(*target, *right);
  }
  iIp = aInstr.iNext;
  return true;
}

void CVelumInterpreter::AppendTo(CVelumVar& aVar, const CVelumVar& aRight) {
  const QString text = aRight.ToStr();
  PumpIfLong(text);
  aVar.AppendStr(text);
}

// An operator on what other instructions left on the stack, and an operand.
bool CVelumInterpreter::FusedTopBin(const TInstr& aInstr) {
  if (iSp < 1 || !HasRoom() || !iStack[static_cast<size_t>(iSp - 1)]) return false;
  const TVarRef right = OperandVar(aInstr.iLeft);
  if (!right) return false;
  TVarRef left = Pop();
  Push(aInstr.iOp == EOpConcat ? Join(std::move(left), *right, aInstr.iEndsIn)
                               : BinResult(aInstr.iOp, *left, *right));
  iIp = aInstr.iNext;
  return true;
}

// Both texts were left on the stack.
bool CVelumInterpreter::FusedTopJoin(const TInstr& aInstr) {
  const TVarRef right = Pop();
  TVarRef left = Pop();
  StoreVar(aInstr.iArg, Join(std::move(left), *right, -1));
  iIp = aInstr.iNext;
  return true;
}

// A value of the field's own type.
bool CVelumInterpreter::FusedPut(const TInstr& aInstr) {
  if (iSp < 1 || !HasRoom()) return false;
  TFieldOperand& field = iCode->Field(aInstr.iArg);
  const Ref<CVelumCard> card = CardOfField(field);
  const CVelumVar* top = iStack[static_cast<size_t>(iSp - 1)].Get();
  if (!card || !top || top->ValType() != field.iValType || top->StrVal().size() > EMaxStoredText)
    return false;
  iIp = aInstr.iNext;
  const TVarRef value = std::exchange(iStack[static_cast<size_t>(--iSp)], nullptr);
  iHost->SetCardValue(card, *field.iControl, value->GetValue());
  PumpWithin(EPutSteps);
  return true;
}
