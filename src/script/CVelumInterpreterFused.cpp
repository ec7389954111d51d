// Instructions that stand for several of the byte code. Each does exactly what these would; where anything is
// out of the ordinary it refuses and leaves everything as it was, and the single ones run.
#include "script/CVelumInterpreter.h"

namespace {

// The result of an operator on two numbers, if it is a number that fits.
bool IntResult(int aOp, qint32 aLeft, qint32 aRight, qint32& aResult) {
  switch (aOp) {
  case EOpAdd:
    return !__builtin_add_overflow(aLeft, aRight, &aResult);
  case EOpSub:
    return !__builtin_sub_overflow(aLeft, aRight, &aResult);
  case EOpMul:
    return !__builtin_mul_overflow(aLeft, aRight, &aResult);
  default:
    return false;
  }
}

// Whether aOp compares, and what comes out of it.
bool IntCompare(int aOp, qint32 aLeft, qint32 aRight, bool& aResult) {
  switch (aOp) {
  case EOpEqual:
    aResult = aLeft == aRight;
    return true;
  case EOpNotEqual:
    aResult = aLeft != aRight;
    return true;
  case EOpLess:
    aResult = aLeft < aRight;
    return true;
  case EOpLessEqual:
    aResult = aLeft <= aRight;
    return true;
  case EOpGreater:
    aResult = aLeft > aRight;
    return true;
  case EOpGreaterEqual:
    aResult = aLeft >= aRight;
    return true;
  default:
    return false;
  }
}

// Entries that the longest of these needs for a moment: a value, and the number of a slot.
constexpr int ERoom = 2;

} // namespace

bool CVelumInterpreter::ExecFused(const TInstr& aInstr) {
  switch (aInstr.iKind) {
  case EFusedLine:
    iLine = aInstr.iArg;
    break;
  case EFusedJump:
    iIp = aInstr.iArg;
    return true;
  case EFusedPushVar: {
    CVelumVar* var = SlotFast(aInstr.iArg);
    if (!var || iSp >= EStackSize) return false;
    iStack[static_cast<size_t>(iSp++)] = var;
    break;
  }
  case EFusedStore: {
    if (iSp < 1 || iSp >= EStackSize || !iStack[static_cast<size_t>(iSp - 1)] || !SlotFast(aInstr.iArg))
      return false;
    iIp = aInstr.iNext;
    StoreVar(aInstr.iArg, Pop());
    return true;
  }
  default:
    return FusedBinary(aInstr);
  }
  iIp = aInstr.iNext;
  return true;
}

CVelumVar* CVelumInterpreter::OperandVar(const TOperand& aOperand, const TVarRef& aConst) const {
  if (aOperand.iIsSlot) return SlotFast(aOperand.iNum);
  aConst->SetIntFast(aOperand.iNum);
  return aConst.Get();
}

bool CVelumInterpreter::FusedBinary(const TInstr& aInstr) {
  if (iSp < 0 || iSp + ERoom > EStackSize) return false;
  CVelumVar* left = OperandVar(aInstr.iLeft, iLeftConst);
  CVelumVar* right = OperandVar(aInstr.iRight, iRightConst);
  if (!left || !right) return false;
  if (aInstr.iKind == EFusedBinStore && !SlotFast(aInstr.iArg)) return false;
  if (left->ValType() == EValInt && right->ValType() == EValInt &&
      FusedInts(aInstr, left->IntVal(), right->IntVal()))
    return true;
  if (FusedAppend(aInstr, *left, *right)) return true;
  FinishBinary(aInstr, BinResult(aInstr.iOp, *left, *right));
  return true;
}

bool CVelumInterpreter::FusedInts(const TInstr& aInstr, qint32 aLeft, qint32 aRight) {
  bool holds = false;
  if (aInstr.iKind == EFusedCmpJump && IntCompare(aInstr.iOp, aLeft, aRight, holds)) {
    iIp = holds ? aInstr.iNext : aInstr.iArg;
    return true;
  }
  if (aInstr.iKind != EFusedBinStore) return false;
  CVelumVar* target = SlotFast(aInstr.iArg);
  qint32 result = 0;
  if (target->ValType() != EValInt || !IntResult(aInstr.iOp, aLeft, aRight, result)) return false;
  target->SetIntFast(result);
  iIp = aInstr.iNext;
  return true;
}

// s = s & x grows the text in place.
bool CVelumInterpreter::FusedAppend(const TInstr& aInstr, CVelumVar& aLeft, const CVelumVar& aRight) {
  if (aInstr.iOp != EOpConcat || aInstr.iKind != EFusedBinStore || !aInstr.iLeft.iIsSlot ||
      aInstr.iLeft.iNum != aInstr.iArg || aLeft.ValType() != EValStr)
    return false;
  const QString text = aRight.ToStr();
  aLeft.AppendStr(text);
  iIp = aInstr.iNext;
  return true;
}

void CVelumInterpreter::FinishBinary(const TInstr& aInstr, const TVarRef& aResult) {
  iIp = aInstr.iNext;
  if (aInstr.iKind == EFusedBinStore) return StoreVar(aInstr.iArg, aResult);
  if (aInstr.iKind == EFusedCmpJump && aResult->ValType() == EValBoolean) {
    if (!aResult->BooleanVal()) iIp = aInstr.iArg;
    return;
  }
  Push(aResult);
}
