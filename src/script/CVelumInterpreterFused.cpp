// Instructions that stand for several of the byte code. Each does exactly what these would; where anything is
// out of the ordinary it refuses and leaves everything as it was, and the single ones run.
#include "script/CVelumInterpreter.h"

#include "core/CVelumChecked.h"
#include "core/CVelumValue.h"

#include <cstdlib>

namespace {

// The real quotient rounded to nearest, a half to even; false where that is no number that fits.
bool Quotient(qint32 aLeft, qint32 aRight, qint32& aResult) {
  if (aRight == 0 || aRight == -1) return false;
  const qint32 whole = aLeft / aRight;
  const qint64 rest = 2 * std::abs(qint64{aLeft % aRight});
  const qint64 unit = std::abs(qint64{aRight});
  const bool away = rest > unit || (rest == unit && whole % 2 != 0);
  const int sign = (aLeft < 0) == (aRight < 0) ? 1 : -1;
  aResult = away ? whole + sign : whole;
  return true;
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

// The result of an operator on two numbers, if it is a number that fits.
inline bool CVelumInterpreter::IntResult(int aOp, qint32 aLeft, qint32 aRight, qint32& aResult) {
  switch (aOp) {
  case EOpAdd:
    return !__builtin_add_overflow(aLeft, aRight, &aResult);
  case EOpSub:
    return !__builtin_sub_overflow(aLeft, aRight, &aResult);
  case EOpMul:
    return !__builtin_mul_overflow(aLeft, aRight, &aResult);
  case EOpDiv:
    return Quotient(aLeft, aRight, aResult);
  case EOpRandom:
    if (aLeft < 1 || aRight != 1) return false;
    aResult = RandomUpTo(aLeft);
    return true;
  default:
    return false;
  }
}

// A whole expression of numbers that fit, for a variable that holds one. Nothing is changed before all is
// known.
bool CVelumInterpreter::RunExpr(const TExpr& aExpr) {
  CVelumVar* target = SlotFast(aExpr.iSlot);
  if (!target || target->ValType() != EValInt || iSp < 0 || iSp + aExpr.iDepth + EFusedRoom > EStackSize ||
      (iNearLimit && aExpr.iCount > iBudget))
    return false;
  std::array<qint32, TExpr::EMaxDepth> nums{};
  size_t depth = 0;
  for (int i = 0; i < aExpr.iNumSteps; ++i) {
    const TExpr::TStep& step = aExpr.iSteps[static_cast<size_t>(i)];
    if (step.iOp == 0) {
      if (!OperandInt(step.iOperand, nums[depth++])) return false;
    } else {
      --depth;
      if (!IntResult(step.iOp, nums[depth - 1], nums[depth], nums[depth - 1])) return false;
    }
  }
  target->ReplaceInt(nums[0]);
  iIp = aExpr.iNext;
  iBudget -= aExpr.iCount;
  return true;
}

// A fused instruction that is not hot. False, and nothing changed, when the single ones have to run.
inline bool CVelumInterpreter::RunCold(const TInstr& aInstr) {
  if (aInstr.iExpr >= 0 && RunExpr(iCode->Expr(aInstr.iExpr))) {
    if (aInstr.iLine >= 0) iLine = aInstr.iLine;
    return true;
  }
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

// As many hot instructions as come one behind the other; false when there was none.
inline bool CVelumInterpreter::RunHot(CVelumDecodedCode& aCode) {
  const TFrameVars vars = FrameVars();
  const auto size = static_cast<quint32>(aCode.NumDecoded());
  qint32 ip = iIp;
  qint32 budget = iBudget;
  qint32 line = iLine;
  while (budget > 0 && static_cast<quint32>(ip) < size) {
    const TInstr& instr = aCode.At(ip);
    if ((iNearLimit && instr.iCount > budget) || !ExecHot(instr, vars, ip)) break;
    if (instr.iLine >= 0) line = instr.iLine;
    budget -= instr.iCount;
  }
  const bool any = budget != iBudget;
  iIp = ip;
  iBudget = budget;
  iLine = line;
  return any;
}

void CVelumInterpreter::RunFused() {
  // An assertion that is asked may end the script.
  const Ref<CVelumDecodedCode> code = iCode;
  const auto size = static_cast<quint32>(code->NumDecoded());
  while (iBudget > 0 && static_cast<quint32>(iIp) < size) {
    const TInstr& instr = code->At(iIp);
    if (instr.iHot != EHotNone && RunHot(*code)) continue;
    if (!RunCold(instr) || !(iCode == code)) return;
  }
}

inline bool CVelumInterpreter::ExecFused(const TInstr& aInstr) {
  switch (aInstr.iKind) {
  case EFusedCmpJump:
    return FusedIntJump(aInstr) || FusedTextJump(aInstr) || FusedBinary(aInstr);
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
  case EFusedTopBin:
    return FusedTopInt(aInstr) || FusedTopBin(aInstr);
  case EFusedPut:
    return FusedPut(aInstr);
  case EFusedNextCard:
    return FusedNextCard(aInstr);
  default:
    return false;
  }
}

// ---- Operands

// The value of a field of type aConType that the card has itself, where it lies; null where it is not so.
inline const TVelumValue* CVelumInterpreter::OwnFieldVal(qint16 aNum, int aConType) const {
  TFieldOperand& field = iCode->Field(aNum);
  if (field.iConType != aConType && field.iStamp == iStamp) return nullptr;
  const CVelumCard* card = CardOfField(field);
  if (!card || field.iConType != aConType) return nullptr;
  const CVelumArray& values = card->Value();
  if (field.iHint >= values.Count() || values.IntKeyAt(field.iHint) != field.iControlId) {
    const qint32 index = values.FindIntKey(field.iControlId);
    if (index < 0) return nullptr;
    field.iHint = index;
  }
  return &values.ValRef(field.iHint);
}

bool CVelumInterpreter::FieldInt(qint16 aNum, qint32& aInt) const {
  const TVelumValue* value = OwnFieldVal(aNum, EConInteger);
  if (!value || value->Type() != EValInt) return false;
  aInt = value->Int();
  return true;
}

// The text of an operand where it lies; null where it is none, or has to be made first.
inline const QString* CVelumInterpreter::OperandText(const TOperand& aOperand) const {
  if (aOperand.iKind == TOperand::EText) return &iCode->Text(aOperand.iNum);
  const TVelumValue* value = nullptr;
  if (aOperand.iKind == TOperand::EField) value = OwnFieldVal(aOperand.iNum, EConText);
  if (aOperand.iKind == TOperand::ESlot)
    if (const CVelumVar* var = SlotFast(aOperand.iNum)) value = &var->GetValue();
  return value && value->Type() == EValStr ? &value->Str() : nullptr;
}

// ---- Numbers: most of a loop

inline bool CVelumInterpreter::OperandInts(const TInstr& aInstr, qint32& aLeft, qint32& aRight) const {
  return HasRoom() && OperandInt(aInstr.iLeft, aLeft) && OperandInt(aInstr.iRight, aRight);
}

inline bool CVelumInterpreter::FusedIntJump(const TInstr& aInstr) {
  qint32 left = 0;
  qint32 right = 0;
  if (!OperandInts(aInstr, left, right)) return false;
  iIp = aInstr.Holds(left, right) ? aInstr.iNext : aInstr.iArg;
  return true;
}

inline bool CVelumInterpreter::FusedTextJump(const TInstr& aInstr) {
  if (!HasRoom()) return false;
  const QString* left = OperandText(aInstr.iLeft);
  const QString* right = left ? OperandText(aInstr.iRight) : nullptr;
  if (!right) return false;
  PumpIfLong(*left);
  PumpIfLong(*right);
  iIp = aInstr.Holds(*left, *right) ? aInstr.iNext : aInstr.iArg;
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

// An operator on a number that other instructions left on the stack, where nobody else sees it.
inline bool CVelumInterpreter::FusedTopInt(const TInstr& aInstr) {
  if (iSp < 1 || !HasRoom()) return false;
  CVelumVar* top = iStack[static_cast<size_t>(iSp - 1)].Get();
  qint32 result = 0;
  if (!top || top->ValType() != EValInt || top->Refs() != 1 || !OperandInt(aInstr.iLeft, result) ||
      !IntResult(aInstr.iOp, top->IntVal(), result, result))
    return false;
  top->ReplaceInt(result);
  iIp = aInstr.iNext;
  return true;
}

// s = s & x, or x + y, with operands that other instructions pushed: the cell under x is that of s itself.
bool CVelumInterpreter::FusedTopStore(const TInstr& aInstr) {
  if (iSp < 2 || iSp >= EStackSize || iFrame + aInstr.iArg >= iSp - 2) return false;
  CVelumVar* target = SlotFast(aInstr.iArg);
  const CVelumVar* left = iStack[static_cast<size_t>(iSp - 2)].Get();
  const CVelumVar* right = iStack[static_cast<size_t>(iSp - 1)].Get();
  if (!left || !right) return false;
  if (aInstr.iOp == EOpConcat) {
    if (target != left || target->ValType() != EValStr) return FusedTopJoin(aInstr);
    AppendTo(*target, *right);
  } else {
    qint32 result = 0;
    if (!target || target->ValType() != EValInt || left->ValType() != EValInt ||
        right->ValType() != EValInt || !IntResult(aInstr.iOp, left->IntVal(), right->IntVal(), result))
      return false;
    target->ReplaceInt(result);
  }
  DropTop();
  DropTop();
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
