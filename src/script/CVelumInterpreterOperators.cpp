// Operators.
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
  if (!(aDate >= EMinDate && aDate < EMaxDate + 1)) RaiseHost(EHostOverflow);
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
} // namespace

void CVelumInterpreter::ExecBinOp(int aOp) {
  const TVarRef right = Pop();
  TVarRef left = Pop();
  if (aOp == EOpConcat) return Push(Join(std::move(left), Deref(right), EndsIn(iIp - 1)));
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
  default:
    return NewBoolean(Comparison(aOp, aLeft, aRight));
  }
}

// The slot that the text of the & at aPos ends in, or -1.
qint16 CVelumInterpreter::EndsIn(qint32 aPos) const {
  return aPos < iCode->NumDecoded() ? iCode->At(aPos).iEndsIn : qint16{-1};
}

// Both as one text. A left text that nobody else sees grows in place: one that was made on the way, or that
// of the variable aSlot, which is to take the result, and which nothing reads before. So a text that a loop
// appends to is not copied at each turn.
CVelumInterpreter::TVarRef CVelumInterpreter::Join(TVarRef aLeft, const CVelumVar& aRight, qint16 aSlot) {
  CVelumVar& left = Deref(aLeft);
  const bool made = aLeft->Refs() == 1;
  const bool own = aLeft->Refs() == 2 && aSlot >= 0 && SlotFast(aSlot) == &left;
  const bool inPlace = left.ValType() == EValStr && (made || own) && !iPumpAlways;
  if (!inPlace) PumpIfLong(left.StrVal());
  TVarRef result = inPlace ? std::move(aLeft) : NewVar(TVelumValue::OfStr(left.ToStr()));
  const QString text = aRight.ToStr();
  PumpIfLong(text);
  if (inPlace && own) result = left.MoveStr();
  result->AppendStr(text);
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
