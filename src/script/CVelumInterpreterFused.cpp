// Instructions that stand for several of the byte code. Each does exactly what these would; where anything is
// out of the ordinary it refuses and leaves everything as it was, and the single ones run.
#include "script/CVelumInterpreter.h"

#include "core/CVelumChecked.h"
#include "core/CVelumValue.h"
#include "model/CVelumModel.h"

namespace {

// Field types whose values a script can take.
bool HasPlainValue(int aConType) {
  return (aConType >= EConText && aConType <= EConBoolean) || aConType == EConList;
}

// What a walk keeps on the stack: the number of its slot, a number or a background, its position.
constexpr qint32 EWalkSize = 3;

} // namespace

// The variables of a frame, which stay where they are while hot instructions run.
struct CVelumInterpreter::TFrameVars {
  const TVarRef* iVars;
  quint32 iCount;

  // The variable of a slot if it holds a whole number, else null.
  [[nodiscard]] CVelumVar* IntVar(qint16 aSlot) const {
    if (static_cast<quint32>(aSlot) >= iCount) return nullptr;
    CVelumVar* var = iVars[aSlot].Get();
    return var && var->GetValue().Type() == EValInt ? var : nullptr;
  }
  [[nodiscard]] bool Int(const TOperand& aOperand, qint32& aInt) const {
    aInt = aOperand.iNum;
    if (aOperand.iKind == TOperand::ENum) return true;
    const CVelumVar* var = IntVar(aOperand.iNum);
    if (!var) return false;
    aInt = var->IntVal();
    return true;
  }
};

// None where hot instructions may not run: no frame was entered, or the stack is nearly full.
inline CVelumInterpreter::TFrameVars CVelumInterpreter::FrameVars() const {
  if (iFrame < 0 || iFrame > Entries() || !HasRoom()) return {nullptr, 0};
  return {iStack.data() + iFrame, static_cast<quint32>(Entries() - iFrame)};
}

// False where anything is out of the ordinary.
inline bool CVelumInterpreter::ExecHot(const TInstr& aInstr, const TFrameVars& aVars, qint32& aIp) {
  if (aInstr.iHot == EHotNone) return false;
  if (aInstr.iHot <= EHotLine) {
    aIp = aInstr.iHot == EHotJump ? aInstr.iArg : aInstr.iNext;
    return true;
  }
  qint32 left = 0;
  qint32 right = 0;
  if (!aVars.iVars || !aVars.Int(aInstr.iLeft, left) || !aVars.Int(aInstr.iRight, right)) return false;
  if (aInstr.iHot == EHotCompare) {
    aIp = aInstr.Holds(left, right) ? aInstr.iNext : aInstr.iArg;
    return true;
  }
  CVelumVar* target = aVars.IntVar(aInstr.iArg);
  if (!target) return false;
  const bool overflow = aInstr.iHot == EHotAdd   ? __builtin_add_overflow(left, right, &left)
                        : aInstr.iHot == EHotSub ? __builtin_sub_overflow(left, right, &left)
                                                 : __builtin_mul_overflow(left, right, &left);
  if (overflow) return false;
  target->ReplaceInt(left);
  aIp = aInstr.iNext;
  return true;
}

// A fused instruction that is not hot. False, and nothing changed, when the single ones have to run.
inline bool CVelumInterpreter::RunCold(const TInstr& aInstr) {
  if (aInstr.iKind == EFusedNone || (iNearLimit && aInstr.iCount > iBudget)) return false;
  const qint32 oldLine = iLine;
  if (aInstr.iLine >= 0) iLine = aInstr.iLine;
  if (!ExecFused(aInstr)) {
    iLine = oldLine;
    return false;
  }
  iBudget -= aInstr.iCount;
  return true;
}

void CVelumInterpreter::RunFused() {
  // An assertion that is asked may end the script.
  const Ref<CVelumDecodedCode> code = iCode;
  const auto size = static_cast<quint32>(code->Bytes().size());
  TFrameVars vars = FrameVars();
  while (iBudget > 0) {
    qint32 ip = iIp;
    qint32 budget = iBudget;
    qint32 line = iLine;
    const TInstr* instr = nullptr;
    while (budget > 0 && static_cast<quint32>(ip) < size) {
      instr = &code->At(ip);
      if ((iNearLimit && instr->iCount > budget) || !ExecHot(*instr, vars, ip)) break;
      if (instr->iLine >= 0) line = instr->iLine;
      budget -= instr->iCount;
      instr = nullptr;
    }
    iIp = ip;
    iBudget = budget;
    iLine = line;
    if (!instr || !RunCold(*instr) || !(iCode == code)) return;
    vars = FrameVars();
  }
}

inline bool CVelumInterpreter::ExecFused(const TInstr& aInstr) {
  switch (aInstr.iKind) {
  case EFusedCmpJump:
    return FusedIntJump(aInstr) || FusedBinary(aInstr);
  case EFusedBinStore:
    return aInstr.iOp == EOpConcat ? FusedAppend(aInstr) || FusedBinary(aInstr)
                                   : FusedIntStore(aInstr) || FusedBinary(aInstr);
  case EFusedBinPush:
    return FusedIntPush(aInstr) || FusedBinary(aInstr);
  case EFusedJump:
    iIp = aInstr.iArg;
    return true;
  case EFusedLine:
    iIp = aInstr.iNext;
    return true;
  case EFusedPushVar:
  case EFusedPushStr:
  case EFusedPushField:
    return FusedPush(aInstr);
  case EFusedStore:
    return FusedStore(aInstr);
  case EFusedStoreOperand:
    return FusedStoreOperand(aInstr);
  case EFusedTopStore:
    return FusedTopStore(aInstr);
  case EFusedNextCard:
    return FusedNextCard(aInstr);
  default:
    return false;
  }
}

// ---- Operands

// The card of a field, if it can have one of the usual kind. The field is then known to be in its background.
inline CVelumCard* CVelumInterpreter::CardOfField(TFieldOperand& aField) const {
  CVelumCard* card = iCard.Get();
  if (aField.iCardSlot >= 0) {
    const CVelumVar* var = SlotFast(aField.iCardSlot);
    card = var ? CVelumModel::ObjAs<CVelumCard>(var->GetValue(), EValCard) : nullptr;
  }
  if (!card || !card->Stack()) return nullptr;
  const bool known = aField.iStamp == iStamp && aField.iStack == card->Stack() &&
                     aField.iBackgroundId == card->BackgroundId();
  return known || FindField(aField, *card) ? card : nullptr;
}

bool CVelumInterpreter::FindField(TFieldOperand& aField, const CVelumCard& aCard) const {
  const Ref<CVelumControlSet> set = aCard.Background();
  Ref<CVelumControl> control;
  if (!set || !(aField.iByName ? set->GetControlByName(aField.iName, control)
                               : set->GetControlByNum(aField.iNum, control)))
    return false;
  if (!HasPlainValue(control->ConType())) return false;
  aField.iStamp = iStamp;
  aField.iStack = aCard.Stack();
  aField.iBackgroundId = aCard.BackgroundId();
  aField.iControlId = control->Id();
  aField.iConType = control->ConType();
  return true;
}

// The value of a field that is a number which the card has itself.
bool CVelumInterpreter::FieldInt(qint16 aNum, qint32& aInt) const {
  TFieldOperand& field = iCode->Field(aNum);
  if (field.iConType != EConInteger && field.iStamp == iStamp) return false;
  const CVelumCard* card = CardOfField(field);
  if (!card) return false;
  const CVelumArray& values = card->Value();
  if (field.iHint >= values.Count() || values.IntKeyAt(field.iHint) != field.iControlId) {
    const qint32 index = values.FindIntKey(field.iControlId);
    if (index < 0) return false;
    field.iHint = index;
  }
  const TVelumValue& value = values.ValRef(field.iHint);
  aInt = value.Int();
  return value.Type() == EValInt;
}

CVelumInterpreter::TVarRef CVelumInterpreter::FieldVar(qint16 aNum) const {
  TFieldOperand& field = iCode->Field(aNum);
  CVelumCard* card = CardOfField(field);
  if (!card) return nullptr;
  TVelumValue value = card->GetControlVal(field.iControlId, false);
  if (value.Type() == EValUndef)
    CVelumValue::SetZero(value, CVelumValue::ConToValType(field.iConType), ENoDate, 0.0);
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

// ---- Numbers: most of a loop

inline bool CVelumInterpreter::OperandInts(const TInstr& aInstr, qint32& aLeft, qint32& aRight) const {
  return HasRoom() && OperandInt(aInstr.iLeft, aLeft) && OperandInt(aInstr.iRight, aRight);
}

// The result of an operator on two numbers, if it is a number that fits.
inline bool CVelumInterpreter::IntResult(int aOp, qint32 aLeft, qint32 aRight, qint32& aResult) {
  switch (aOp) {
  case EOpAdd:
    return !__builtin_add_overflow(aLeft, aRight, &aResult);
  case EOpSub:
    return !__builtin_sub_overflow(aLeft, aRight, &aResult);
  case EOpMul:
    return !__builtin_mul_overflow(aLeft, aRight, &aResult);
  case EOpRandom:
    if (aLeft < 1 || aRight != 1) return false;
    aResult = RandomUpTo(aLeft);
    return true;
  default:
    return false;
  }
}

inline bool CVelumInterpreter::FusedIntJump(const TInstr& aInstr) {
  qint32 left = 0;
  qint32 right = 0;
  if (!OperandInts(aInstr, left, right)) return false;
  iIp = aInstr.Holds(left, right) ? aInstr.iNext : aInstr.iArg;
  return true;
}

inline bool CVelumInterpreter::FusedIntStore(const TInstr& aInstr) {
  qint32 left = 0;
  qint32 right = 0;
  CVelumVar* target = SlotFast(aInstr.iArg);
  if (!target || target->ValType() != EValInt || !OperandInts(aInstr, left, right) ||
      !IntResult(aInstr.iOp, left, right, left))
    return false;
  target->ReplaceInt(left);
  iIp = aInstr.iNext;
  return true;
}

bool CVelumInterpreter::FusedIntPush(const TInstr& aInstr) {
  qint32 left = 0;
  qint32 right = 0;
  if (!OperandInts(aInstr, left, right) || !IntResult(aInstr.iOp, left, right, left)) return false;
  iStack[static_cast<size_t>(iSp++)] = MakeRef<CVelumVar>(TVelumValue::OfInt(left));
  iIp = aInstr.iNext;
  return true;
}

// ---- Any values

bool CVelumInterpreter::FusedPush(const TInstr& aInstr) {
  if (!HasRoom()) return false;
  TVarRef var = OperandVar(aInstr.iLeft);
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
  const TVarRef left = OperandVar(aInstr.iLeft);
  const TVarRef right = left ? OperandVar(aInstr.iRight) : nullptr;
  if (!left || !right) return false;
  const TVarRef result = BinResult(aInstr.iOp, *left, *right);
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

// The same with operands that other instructions pushed: the cell under x is that of s itself.
bool CVelumInterpreter::FusedTopStore(const TInstr& aInstr) {
  if (iSp < 2 || iSp >= EStackSize || iFrame + aInstr.iArg >= iSp - 2) return false;
  CVelumVar* target = SlotFast(aInstr.iArg);
  const CVelumVar* left = iStack[static_cast<size_t>(iSp - 2)].Get();
  const CVelumVar* right = iStack[static_cast<size_t>(iSp - 1)].Get();
  if (!target || !left || !right) return false;
  if (aInstr.iOp == EOpConcat) {
    if (target != left || target->ValType() != EValStr) return false;
    AppendTo(*target, *right);
  } else {
    qint32 result = 0;
    if (target->ValType() != EValInt || left->ValType() != EValInt || right->ValType() != EValInt ||
        !IntResult(aInstr.iOp, left->IntVal(), right->IntVal(), result))
      return false;
    target->ReplaceInt(result);
  }
  ExecPop();
  ExecPop();
  iIp = aInstr.iNext;
  return true;
}

// The step of a walk, and the jump back to its beginning.
bool CVelumInterpreter::FusedNextCard(const TInstr& aInstr) {
  if (iSp < EWalkSize || iSp > EStackSize) return false;
  const CVelumVar* slot = iStack[static_cast<size_t>(iSp - 3)].Get();
  const CVelumVar* set = iStack[static_cast<size_t>(iSp - 2)].Get();
  CVelumVar* pos = iStack[static_cast<size_t>(iSp - 1)].Get();
  if (!slot || !set || !pos || slot->ValType() != EValInt || pos->ValType() != EValInt) return false;
  const qint32 number = slot->IntVal();
  CVelumVar* cardVar = number >= 0 && number < EStackSize ? SlotFast(static_cast<qint16>(number)) : nullptr;
  if (!cardVar || cardVar->ValType() != EValCard) return false;
  const CVelumControlSet* background = nullptr;
  if (aInstr.iOp == EOpNextCardInBackground && !(background = set->ControlSetVal())) return false;
  qint32 index = pos->IntVal();
  Ref<CVelumCard> card;
  const bool found = background ? OpenStack().GetNextCardInBackground(background->Id(), card, index)
                                : OpenStack().GetNextCard(card, index);
  if (found) {
    cardVar->SwapCard(card);
    pos->ReplaceInt(index);
    iIp = aInstr.iNext;
  } else {
    ++iBudget; // without the jump
    iIp = aInstr.iArg;
  }
  return true;
}
