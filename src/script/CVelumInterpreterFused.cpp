// Instructions that stand for several of the byte code. Each does exactly what these would; where anything is
// out of the ordinary it refuses and leaves everything as it was, and the single ones run.
#include "script/CVelumInterpreter.h"

namespace {

// The result of an operator on two numbers, if it is a number that fits.
inline bool IntResult(int aOp, qint32 aLeft, qint32 aRight, qint32& aResult) {
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
inline bool IntCompare(int aOp, qint32 aLeft, qint32 aRight, bool& aResult) {
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

void CVelumInterpreter::RunFused() {
  while (iBudget > 0 && iIp >= 0 && iIp < iCode->Bytes().size()) {
    const TInstr& instr = iCode->At(iIp);
    if (instr.iKind == EFusedNone || instr.iCount > iBudget) return;
    const qint32 oldLine = iLine;
    const int count = instr.iCount;
    if (instr.iLine >= 0) iLine = instr.iLine;
    if (!ExecFused(instr)) {
      iLine = oldLine;
      return;
    }
    iBudget -= count;
  }
}

inline bool CVelumInterpreter::ExecFused(const TInstr& aInstr) {
  switch (aInstr.iKind) {
  case EFusedLine:
    iIp = aInstr.iNext;
    return true;
  case EFusedJump:
    iIp = aInstr.iArg;
    return true;
  case EFusedPushVar: {
    CVelumVar* var = SlotFast(aInstr.iArg);
    if (!var || iSp >= EStackSize) return false;
    iStack[static_cast<size_t>(iSp++)] = var;
    iIp = aInstr.iNext;
    return true;
  }
  case EFusedPushStr:
    if (iSp >= EStackSize) return false;
    iStack[static_cast<size_t>(iSp++)] = MakeRef<CVelumVar>(TVelumValue::OfStr(iCode->Literal(aInstr.iArg)));
    iIp = aInstr.iNext;
    return true;
  case EFusedStore:
    if (iSp < 1 || iSp >= EStackSize || !iStack[static_cast<size_t>(iSp - 1)] || !SlotFast(aInstr.iArg))
      return false;
    iIp = aInstr.iNext;
    StoreVar(aInstr.iArg, Pop());
    return true;
  case EFusedConcatStore:
    return FusedConcatStore(aInstr);
  default:
    return FusedInts(aInstr) || FusedBinary(aInstr);
  }
}

CVelumVar* CVelumInterpreter::OperandVar(const TOperand& aOperand, const TVarRef& aConst) const {
  if (aOperand.iIsSlot) return SlotFast(aOperand.iNum);
  aConst->ReplaceInt(aOperand.iNum);
  return aConst.Get();
}

bool CVelumInterpreter::FusedBinary(const TInstr& aInstr) {
  if (iSp < 0 || iSp + ERoom > EStackSize) return false;
  CVelumVar* left = OperandVar(aInstr.iLeft, iLeftConst);
  CVelumVar* right = OperandVar(aInstr.iRight, iRightConst);
  if (!left || !right) return false;
  if (aInstr.iKind == EFusedBinStore && !SlotFast(aInstr.iArg)) return false;
  if (FusedAppend(aInstr, *left, *right)) return true;
  FinishBinary(aInstr, BinResult(aInstr.iOp, *left, *right));
  return true;
}

// Numbers that are compared ahead of a jump, or whose sum and the like goes to a variable: most of a loop.
inline bool CVelumInterpreter::FusedInts(const TInstr& aInstr) {
  qint32 left = 0;
  qint32 right = 0;
  if (iSp < 0 || iSp + ERoom > EStackSize || !OperandInt(aInstr.iLeft, left) ||
      !OperandInt(aInstr.iRight, right))
    return false;
  if (aInstr.iKind == EFusedCmpJump) {
    bool holds = false;
    if (!IntCompare(aInstr.iOp, left, right, holds)) return false;
    iIp = holds ? aInstr.iNext : aInstr.iArg;
    return true;
  }
  if (aInstr.iKind != EFusedBinStore) return false;
  CVelumVar* target = SlotFast(aInstr.iArg);
  qint32 result = 0;
  if (!target || target->ValType() != EValInt || !IntResult(aInstr.iOp, left, right, result)) return false;
  target->ReplaceInt(result);
  iIp = aInstr.iNext;
  return true;
}

// The same where x was pushed by other instructions: the cell under it is that of s itself.
bool CVelumInterpreter::FusedConcatStore(const TInstr& aInstr) {
  if (iSp < 2 || iSp >= EStackSize) return false;
  CVelumVar* target = SlotFast(aInstr.iArg);
  const auto left = static_cast<size_t>(iSp - 2);
  if (!target || target->ValType() != EValStr || !(iStack[left] == target) || !iStack[left + 1]) return false;
  target->AppendStr(iStack[left + 1]->ToStr());
  ExecPop();
  ExecPop();
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
