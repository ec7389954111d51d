#include "script/CVelumVar.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumDecimal.h"
#include "core/text/CVelumLocale.h"
#include "model/CVelumCard.h"
#include "model/CVelumModel.h"

#include <cmath>
#include <memory>

using namespace CVelumError;

namespace {

int CommonType(int aTypeA, int aTypeB) {
  if (!CVelumVar::IsNumeric(aTypeA) || !CVelumVar::IsNumeric(aTypeB)) return aTypeA;
  return aTypeA == EValReal || aTypeB == EValReal ? EValReal : EValInt;
}

template <class T> int Order(const T& aA, const T& aB) {
  return aA < aB ? -1 : (aB < aA ? 1 : 0);
}

// Date and time in the general form: the part that is not there is left out.
QString GeneralDate(double aDateTime) {
  const double date = std::floor(aDateTime);
  const double time = aDateTime - date;
  if (time == 0.0 && date != 0.0) return CVelumLocale::ShortDate(date);
  if (date == 0.0) return CVelumLocale::LongTime(time);
  return CVelumLocale::ShortDate(date) + u' ' + CVelumLocale::LongTime(time);
}

// What a sum of decimal fractions is off by lies behind these digits.
constexpr int EShownDigits = 15;

QString GeneralReal(double aReal) {
  if (!std::isfinite(aReal)) return CVelumDecimal::TextOf(aReal);
  CVelumDecimal decimal(aReal);
  decimal.RoundTo(EShownDigits - decimal.Point());
  return decimal.ToText().replace(u'.', CVelumLocale::Locale().decimalPoint());
}

void CheckByte(const QByteArray& aCode, qint32 aIp, const CVelumObject* aObj, const QString& aProc) {
  if (aIp >= 0 && aIp < aCode.size()) return;
  AssertObj(false, aObj, aProc, aProc + u" len"_s);
  CVelumChecked::CheckIndex<qsizetype>(aIp, aCode.size());
}

} // namespace

namespace {

// Cells that are free to be used again. One thread runs scripts.
constexpr int EMaxFreeCells = 64;
void* gFreeCells[EMaxFreeCells];
int gNumFreeCells = 0;

} // namespace

void* CVelumVar::operator new(size_t aSize) {
  return gNumFreeCells > 0 ? gFreeCells[--gNumFreeCells] : ::operator new(aSize);
}

void CVelumVar::operator delete(void* aCell) noexcept {
  if (aCell && gNumFreeCells < EMaxFreeCells)
    gFreeCells[gNumFreeCells++] = aCell;
  else
    ::operator delete(aCell);
}

CVelumVar::CVelumVar(int aType) : iType(aType), iValue(TVelumValue::OfType(aType)) {
  AssertObj(aType != EValUndef, this, u"Construct"_s, u"undef"_s);
}

CVelumVar::CVelumVar(TVelumValue aVal) : iType(aVal.Type()), iValue(std::move(aVal)) {}

QString CVelumVar::TypeStr() const {
  switch (iType) {
  case EValUndef:
    return u"(Undef)"_s;
  case EValStr:
    return u"String"_s;
  case EValInt:
    return u"Int"_s;
  case EValReal:
    return u"Float"_s;
  case EValDate:
    return u"Date"_s;
  case EValTime:
    return u"Time"_s;
  case EValBoolean:
    return u"Boolean"_s;
  case EValCard:
    return u"Card"_s;
  case EValControl:
    return u"Control"_s;
  case EValControlSet:
    return u"ControlSet"_s;
  case EValSortKey:
    return u"SortKey"_s;
  case EValArray:
    return u"Array"_s;
  default:
    // Without this object: its description would ask for the same text again.
    AssertObj(false, nullptr, u"TypeStr"_s, u"TypeStr type"_s);
    return {};
  }
}

CVelumCard* CVelumVar::CardVal() const {
  return CVelumModel::ObjAs<CVelumCard>(iValue, EValCard);
}
CVelumControl* CVelumVar::ControlVal() const {
  return CVelumModel::ObjAs<CVelumControl>(iValue, EValControl);
}
CVelumControlSet* CVelumVar::ControlSetVal() const {
  return CVelumModel::ObjAs<CVelumControlSet>(iValue, EValControlSet);
}

void CVelumVar::Let(int aType, const QString& aProc, TVelumValue aVal) {
  AssertObj(iType == aType, this, aProc, u"type"_s);
  if (iType == aType) iValue = std::move(aVal);
}

void CVelumVar::LetStrVal(const QString& aStr) {
  Let(EValStr, u"LetStrVal"_s, TVelumValue::OfStr(aStr));
}
void CVelumVar::LetIntVal(qint32 aInt) {
  Let(EValInt, u"LetIntVal"_s, TVelumValue::OfInt(aInt));
}
void CVelumVar::LetRealVal(double aReal) {
  Let(EValReal, u"LetRealVal"_s, TVelumValue::OfReal(aReal));
}
void CVelumVar::LetDateVal(double aDate) {
  Let(EValDate, u"LetDateVal"_s, TVelumValue::OfDate(aDate));
}
void CVelumVar::LetTimeVal(double aTime) {
  Let(EValTime, u"LetTimeVal"_s, TVelumValue::OfTime(aTime));
}
void CVelumVar::LetBooleanVal(bool aBoolean) {
  Let(EValBoolean, u"LetBooleanVal"_s, TVelumValue::OfBoolean(aBoolean));
}
void CVelumVar::LetCardVal(const Ref<CVelumCard>& aCard) {
  Let(EValCard, u"LetCardVal"_s, TVelumValue::OfObj(EValCard, aCard));
}
void CVelumVar::LetControlVal(const Ref<CVelumControl>& aControl) {
  Let(EValControl, u"LetControlVal"_s, TVelumValue::OfObj(EValControl, aControl));
}
void CVelumVar::LetControlSetVal(const Ref<CVelumControlSet>& aSet) {
  Let(EValControlSet, u"LetControlSetVal"_s, TVelumValue::OfObj(EValControlSet, aSet));
}

int CVelumVar::CheckedCommonType(const CVelumVar& aVar, const QString& aProc) const {
  if (!TypesCompatible(iType, aVar.iType)) AssertObj(false, this, aProc, u"type "_s + TypeStr());
  return CommonType(iType, aVar.iType);
}

// -1, 0 or 1 by the own slot of aType against the other value converted to it. The own side is read as it
// is: an Int compared with a Float counts as 0.
int CVelumVar::Compare(const CVelumVar& aVar, int aType, const QString& aProc) const {
  switch (aType) {
  case EValStr:
    return Order(iValue.Str(), aVar.StrVal());
  case EValInt:
    return Order(IntVal(), aVar.ToInt());
  case EValReal:
    return Order(iValue.Real(), aVar.ToReal());
  case EValDate:
    return Order(iValue.Date(), aVar.DateVal());
  case EValTime:
    return Order(iValue.Time(), aVar.TimeVal());
  case EValBoolean:
    return Order(iValue.Boolean() ? -1 : 0, aVar.BooleanVal() ? -1 : 0);
  default:
    AssertObj(false, this, aProc, u"Type"_s);
    return 2;
  }
}

bool CVelumVar::Equal(const CVelumVar& aVar) const {
  const int type = CheckedCommonType(aVar, u"Equal"_s);
  if (type == EValCard || type == EValControl) return iValue.Obj() == aVar.iValue.Obj();
  return Compare(aVar, type, u"Equal"_s) == 0;
}

bool CVelumVar::Lt(const CVelumVar& aVar) const {
  return Compare(aVar, CheckedCommonType(aVar, u"Gt"_s), u"Lt"_s) == -1;
}

bool CVelumVar::Gt(const CVelumVar& aVar) const {
  return Compare(aVar, CheckedCommonType(aVar, u"Gt"_s), u"Gt"_s) == 1;
}

void CVelumVar::Assign(const CVelumVar& aVar) {
  if (iType != aVar.iType) AssertObj(false, this, u"Assign"_s, u"type "_s + TypeStr());
  const bool known = (iType >= EValStr && iType <= EValBoolean) || iType == EValCard || iType == EValControl;
  AssertObj(known, this, u"Assign"_s, u"Type"_s);
  if (known && iType == aVar.iType) iValue = aVar.iValue;
}

void CVelumVar::AppendStr(const QString& aStr) {
  if (iType != EValStr) return;
  if (iValue.Str().size() + aStr.size() > EMaxTextLen) RaiseHost(EHostOutOfMemory);
  iValue.AppendStr(aStr);
}

Ref<CVelumVar> CVelumVar::MoveStr() {
  return MakeRef<CVelumVar>(std::exchange(iValue, TVelumValue::OfStr(QString())));
}

QString CVelumVar::ToStr() const {
  switch (iType) {
  case EValStr:
    return iValue.Str();
  case EValInt:
    return QString::number(iValue.Int());
  case EValReal:
    return GeneralReal(iValue.Real());
  case EValDate:
    return GeneralDate(iValue.Date());
  case EValTime:
    return GeneralDate(iValue.Time());
  case EValBoolean:
    return iValue.Boolean() ? u"True"_s : u"False"_s;
  case EValCard:
    return CVelumChecked::Deref(CardVal()).Name();
  case EValControl:
    return CVelumChecked::Deref(ControlVal()).Name();
  default:
    AssertObj(false, this, u"ToStr"_s, u"Type"_s);
    return {};
  }
}

qint32 CVelumVar::ToInt() const {
  switch (iType) {
  case EValStr:
    return CVelumValue::RoundToInt(CVelumValue::LenientNum(iValue.Str()));
  case EValInt:
    return iValue.Int();
  case EValReal:
    return CVelumValue::RoundToInt(iValue.Real());
  case EValDate:
    return CVelumValue::RoundToInt(iValue.Date());
  case EValTime:
    return CVelumValue::RoundToInt(iValue.Time());
  case EValBoolean:
    return iValue.Boolean() ? -1 : 0;
  case EValCard:
  case EValControl:
    return 0;
  default:
    AssertObj(false, this, u"ToInt"_s, u"Type"_s);
    return 0;
  }
}

double CVelumVar::ToReal() const {
  switch (iType) {
  case EValStr:
    return CVelumValue::LenientNum(iValue.Str());
  case EValInt:
    return iValue.Int();
  case EValReal:
    return iValue.Real();
  case EValDate:
    return iValue.Date();
  case EValTime:
    return iValue.Time();
  case EValBoolean:
    return iValue.Boolean() ? 1.0 : 0.0;
  case EValCard:
  case EValControl:
    return 0.0;
  default:
    AssertObj(false, this, u"ToReal"_s, u"Type"_s);
    return 0.0;
  }
}

void CVelumVar::GetFromCode(const QByteArray& aCode, qint32& aIp) {
  CheckByte(aCode, aIp, this, u"CodeByte"_s);
  const int type = static_cast<quint8>(aCode.at(aIp++));
  if (type != iType) AssertObj(false, this, u"GetFromCode"_s, u"type "_s + QString::number(type));
  CheckByte(aCode, aIp, this, u"CodeByte"_s);
  const int len = static_cast<quint8>(aCode.at(aIp++));
  if (len > 0) CheckByte(aCode, aIp + len - 1, this, u"CodeChar"_s);
  iValue = TVelumValue::OfStr(CVelumLib::FromCodePage(aCode.mid(aIp, len)));
  aIp += len;
}
