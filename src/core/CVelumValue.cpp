#include "core/CVelumValue.h"

#include "core/CVelumError.h"
#include "core/CVelumFieldTypes.h"
#include "core/CVelumLib.h"
#include "core/text/CVelumDays.h"
#include "core/text/CVelumDecimal.h"
#include "core/text/CVelumLocale.h"
#include "core/text/CVelumNumScan.h"

#include <cmath>
#include <limits>

namespace {

using CVelumError::Assert;

constexpr double EPlainReal = 1e14; // from here on no picture
constexpr int EPictureDigits = 8;   // decimals of the picture without a set number of them

struct TTypeName {
  int iType;
  const char16_t* iName;
};

constexpr TTypeName ETypeNames[] = {
    {EValUndef, u"Undefined"},  {EValStr, u"String"},      {EValInt, u"Integer"},
    {EValReal, u"Real"},        {EValDate, u"Date"},       {EValTime, u"Time"},
    {EValBoolean, u"Boolean"},  {EValBlobId, u"Blob id"},  {EValIntPair, u"Integer pair"},
    {EValCard, u"Card"},        {EValControl, u"Control"}, {EValControlSet, u"Control set"},
    {EValSortKey, u"Sort key"}, {EValArray, u"Array"},     {EValBlob, u"Blob"},
};

QString RealToExtText(double aReal, int aDigits) {
  if (!(std::fabs(aReal) < EPlainReal)) return CVelumLocale::General(aReal);
  if (aDigits == ENoShort) return CVelumLocale::Real(aReal, EPictureDigits, false);
  return CVelumLocale::Real(aReal, aDigits, true);
}

QString BlobText(qint32 aId) {
  return u"(Blob "_s + QString::number(aId) + u")"_s;
}

// Half away from zero, by the decimal digits that the number is shown with.
double RoundToDigits(double aReal, int aDigits) {
  if (aDigits == ENoShort) return aReal;
  CVelumDecimal decimal(aReal);
  decimal.RoundTo(qMax(aDigits, 0));
  return decimal.ToReal();
}

// The lenient scan of what the user typed.
double LenientExtNum(const QString& aText) {
  return CVelumNumScan::Read(aText, CVelumLocale::GroupsByBlanks());
}

// The readings below leave in aVal what they had when they failed.

void ExtTextToInt(const QString& aText, TVelumValue& aVal) {
  aVal = TVelumValue::OfInt(CVelumValue::RoundToInt(LenientExtNum(aText)));
  qint16 strict = 0;
  if (CVelumLocale::ToShort(aText, strict)) aVal = TVelumValue::OfInt(strict);
}

void ExtTextToReal(const QString& aText, int aDigits, TVelumValue& aVal) {
  aVal = TVelumValue::OfReal(LenientExtNum(aText));
  double strict = 0.0;
  if (CVelumLocale::ToReal(aText, strict)) aVal = TVelumValue::OfReal(RoundToDigits(strict, aDigits));
}

void ExtTextToDate(const QString& aText, TVelumValue& aVal) {
  aVal = TVelumValue::OfDate(ENoDate);
  double strict = 0.0;
  if (CVelumLocale::ToDateTime(aText, strict)) aVal = TVelumValue::OfDate(std::floor(strict));
}

void ExtTextToTime(const QString& aText, TVelumValue& aVal) {
  double strict = 0.0;
  if (CVelumLocale::ToDateTime(aText, strict)) aVal = TVelumValue::OfTime(strict);
}

// Of texts that are not blank.
void ReadExtText(const QString& aText, const TVelumFieldInfo& aField, TVelumValue& aVal) {
  switch (aVal.Type()) {
  case EValStr:
    aVal = TVelumValue::OfStr(aText);
    break;
  case EValInt:
    ExtTextToInt(aText, aVal);
    break;
  case EValReal:
    ExtTextToReal(aText, aField.iDigits, aVal);
    break;
  case EValDate:
    ExtTextToDate(aText, aVal);
    break;
  case EValTime:
    ExtTextToTime(aText, aVal);
    break;
  case EValBoolean:
    aVal = TVelumValue::OfBoolean(aText == u"T"_s);
    break;
  default:
    Assert(false, u"ExtTextToVal type"_s);
  }
}

void ReadIntText(const QString& aText, TVelumValue& aVal) {
  const auto number = [&] { return CVelumValue::RoundToInt(CVelumValue::LenientNum(aText)); };
  switch (aVal.Type()) {
  case EValStr:
    aVal = TVelumValue::OfStr(aText);
    break;
  case EValInt:
    aVal = TVelumValue::OfInt(number());
    break;
  case EValReal:
    aVal = TVelumValue::OfReal(CVelumValue::LenientNum(aText));
    break;
  case EValDate:
    aVal = TVelumValue::OfDate(CVelumValue::IntToDate(number()));
    break;
  case EValTime:
    aVal = TVelumValue::OfTime(CVelumValue::IntToTime(number()));
    break;
  case EValBoolean:
    aVal = TVelumValue::OfBoolean(aText == u"-1"_s);
    break;
  default:
    Assert(false, u"IntTextToVal type"_s);
  }
}

// A host error in aRead leaves the value as it stands.
template <class F> TVelumValue ReadText(const QString& aText, const TVelumFieldInfo& aField, F aRead) {
  TVelumValue val = TVelumValue::OfType(CVelumValue::ConToValType(aField.iConType));
  if (CVelumLib::IsBlank(aText)) return val;
  try {
    aRead(val);
  } catch (const CVelumException& e) {
    if (e.Number() >= 1000) throw;
  }
  return val;
}

} // namespace

double CVelumValue::IntToDate(qint32 aInt) {
  if (aInt == ENoInt) return ENoDate;
  return CVelumDays::Build(aInt / 10000, aInt % 10000 / 100, aInt % 100);
}

double CVelumValue::IntToTime(qint32 aInt) {
  if (aInt == ENoInt) return 0.0;
  return CVelumDays::Join(0, aInt / 10000 * qint64{3600} + aInt % 10000 / 100 * 60 + aInt % 100);
}

qint32 CVelumValue::DateToInt(double aDate) {
  int year = 0;
  int month = 0;
  int day = 0;
  CVelumDays::DateOf(CVelumDays::Split(aDate).iDay).getDate(&year, &month, &day);
  return year * 10000 + month * 100 + day;
}

qint32 CVelumValue::TimeToInt(double aTime) {
  const int second = CVelumDays::Split(aTime).iSecond;
  return second / 3600 * 10000 + second / 60 % 60 * 100 + second % 60;
}

bool CVelumValue::Equal(const TVelumValue& aVal1, const TVelumValue& aVal2) {
  if (aVal1.Type() == EValUndef || aVal2.Type() == EValUndef) return aVal1.Type() == aVal2.Type();
  Assert(aVal1.Type() == aVal2.Type(), u"Equal type"_s);
  switch (aVal1.Type()) {
  case EValStr:
    return aVal1.Str() == aVal2.Str();
  case EValInt:
  case EValBlobId:
    return aVal1.Int() == aVal2.Int();
  case EValReal:
    return aVal1.Real() == aVal2.Real();
  case EValDate:
    return aVal1.Date() == aVal2.Date();
  case EValTime:
    return aVal1.Time() == aVal2.Time();
  case EValBoolean:
    return aVal1.Boolean() == aVal2.Boolean();
  default:
    Assert(aVal1.IsObjType(), u"Equal type"_s);
    return aVal1.IsObjType() && aVal1.Obj() == aVal2.Obj();
  }
}

QString CVelumValue::ValToExtText(const TVelumValue& aVal, const TVelumFieldInfo& aField) {
  switch (aVal.Type()) {
  case EValUndef:
    return {};
  case EValStr:
    return aVal.Str();
  case EValInt:
    return QString::number(aVal.Int());
  case EValReal:
    return RealToExtText(aVal.Real(), aField.iDigits);
  case EValDate:
    return CVelumLocale::ShortDate(aVal.Date());
  case EValTime:
    return CVelumLocale::LongTime(aVal.Time());
  case EValBoolean:
    return aVal.Boolean() ? u"T"_s : u"F"_s;
  case EValBlobId:
    return BlobText(aVal.Int());
  default:
    Assert(aVal.IsObjType(), u"ValToExtText type"_s);
    return aVal.IsObjType() ? u"(Object)"_s : QString();
  }
}

QString CVelumValue::ValToIntText(const TVelumValue& aVal) {
  switch (aVal.Type()) {
  case EValUndef:
    return {};
  case EValStr:
    return aVal.Str();
  case EValInt:
    return QString::number(aVal.Int());
  case EValReal:
    return ShortestReal(aVal.Real());
  case EValDate:
    return QString::number(DateToInt(aVal.Date()));
  case EValTime:
    return QString::number(TimeToInt(aVal.Time()));
  case EValBoolean:
    return aVal.Boolean() ? u"-1"_s : u"0"_s;
  case EValBlobId:
    return BlobText(aVal.Int());
  default:
    Assert(aVal.IsObjType(), u"ValToIntText type"_s);
    return aVal.IsObjType() ? u"(Object)"_s : QString();
  }
}

int CVelumValue::ConToValType(int aConType) {
  const TVelumFieldType& type = CVelumFieldTypes::Of(aConType);
  Assert(type.HasValue(), u"ConToValType type"_s);
  return type.iValType;
}

TVelumValue CVelumValue::ExtTextToVal(const QString& aText, const TVelumFieldInfo& aField) {
  return ReadText(aText, aField, [&](TVelumValue& aVal) { ReadExtText(aText, aField, aVal); });
}

TVelumValue CVelumValue::IntTextToVal(const QString& aText, const TVelumFieldInfo& aField) {
  return ReadText(aText, aField, [&](TVelumValue& aVal) { ReadIntText(aText, aVal); });
}

TVelumValue CVelumValue::StrToVal(const QString& aStr) {
  return aStr.isEmpty() ? TVelumValue() : TVelumValue::OfStr(aStr);
}

void CVelumValue::UndefToStr(TVelumValue& aVal) {
  if (aVal.Type() == EValUndef) aVal = TVelumValue::OfStr({});
}

qint32 CVelumValue::ToInt(const TVelumValue& aVal) {
  switch (aVal.Type()) {
  case EValStr:
    return RoundToInt(ToReal(aVal));
  case EValInt:
    return aVal.Int();
  case EValReal:
    return RoundToInt(aVal.Real());
  default:
    Assert(false, u"ToInt aVal.iType"_s);
    return 0;
  }
}

double CVelumValue::ToReal(const TVelumValue& aVal) {
  double real = 0.0;
  switch (aVal.Type()) {
  case EValStr:
    if (!CVelumLocale::ToReal(aVal.Str(), real)) CVelumError::RaiseHost(EHostTypeMismatch);
    return real;
  case EValInt:
    return aVal.Int();
  case EValReal:
    return aVal.Real();
  default:
    Assert(false, u"ToReal aVal.iType"_s);
    return real;
  }
}

void CVelumValue::Convert(const TVelumValue& aFrom, const TVelumFieldInfo& aField, TVelumValue& aTo) {
  switch (aTo.Type()) {
  case EValStr:
    aTo = TVelumValue::OfStr(ValToExtText(aFrom, aField));
    break;
  case EValInt:
    aTo = TVelumValue::OfInt(ToInt(aFrom));
    break;
  case EValReal:
    aTo = TVelumValue::OfReal(ToReal(aFrom));
    break;
  case EValBoolean:
    Assert(aFrom.Type() == EValStr, u"Convert FromType Str"_s);
    aTo = TVelumValue::OfBoolean(aFrom.Str() == u"T"_s);
    break;
  default:
    Assert(false, u"Convert aTo.iType"_s);
  }
}

void CVelumValue::SetZero(TVelumValue& aVal, int aType, double aDate, double aTime) {
  switch (aType) {
  case EValStr:
  case EValInt:
  case EValReal:
  case EValBoolean:
    aVal = TVelumValue::OfType(aType);
    break;
  case EValDate:
    aVal = TVelumValue::OfDate(aDate);
    break;
  case EValTime:
    aVal = TVelumValue::OfTime(aTime);
    break;
  default:
    Assert(false, u"SetZero type"_s);
  }
}

void CVelumValue::Copy(const TVelumValue& aFrom, TVelumValue& aTo) {
  Assert(!TypeStr(aFrom).isEmpty(), u"Copy type"_s);
  aTo = aFrom;
}

QString CVelumValue::TypeStr(const TVelumValue& aVal) {
  return TypeStr(aVal.Type());
}

QString CVelumValue::TypeStr(int aType) {
  for (const TTypeName& name : ETypeNames)
    if (name.iType == aType) return QString::fromUtf16(name.iName);
  return {};
}

double CVelumValue::LenientNum(QStringView aText) {
  return CVelumNumScan::Read(aText, false);
}

qint32 CVelumValue::RoundToInt(double aReal) {
  const double whole = std::nearbyint(aReal);
  if (!(whole >= std::numeric_limits<qint32>::min() && whole <= std::numeric_limits<qint32>::max()))
    CVelumError::RaiseHost(EHostOverflow);
  return static_cast<qint32>(whole);
}

QString CVelumValue::ShortestReal(double aReal) {
  return CVelumDecimal::TextOf(aReal);
}

double CVelumValue::Today() {
  return static_cast<double>(CVelumDays::DayOf(QDate::currentDate()));
}

double CVelumValue::Now() {
  return CVelumDays::Join(0, QTime::currentTime().msecsSinceStartOfDay() / 1000);
}
