#include "exchange/CVelumCsvForm.h"

#include "core/CVelumFieldTypes.h"
#include "core/text/CVelumDays.h"
#include "core/text/CVelumDecimal.h"
#include "core/text/CVelumLocale.h"
#include "exchange/CVelumCsvCells.h"
#include "exchange/CVelumCsvShapes.h"
#include "exchange/CVelumCsvText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace {

using namespace CVelumCsvShapes;
using namespace CVelumCsvText;

// So many digits come back from any real.
constexpr int ESureDigits = 15;
// Reals between these are written without an exponent.
constexpr double ELeastFixed = 1e-15;
constexpr double EMostFixed = 1e15;

std::string_view Trimmed(std::string_view aText) {
  while (aText.starts_with(' ')) aText.remove_prefix(1);
  while (aText.ends_with(' ')) aText.remove_suffix(1);
  return aText;
}

// "-0" and "007" are values, but other ones than they look.
bool IsAsWritten(const TNumber& aNumber) {
  return !aNumber.iZeroFirst && !(aNumber.iMinus && aNumber.iZero);
}

ECsvFit ReadWhole(std::string_view aText, const TCsvForm& aForm, TVelumValue& aValue) {
  TNumber number;
  if (!ReadNumber(aText, aForm.iDecimal, aForm.iGroup, number)) return ECsvFit::Refused;
  const size_t point = number.iWithDecimals ? aText.rfind(aForm.iDecimal) : aText.size();
  if (number.iWithDecimals && aText.find_first_of("123456789", point) != std::string_view::npos)
    return ECsvFit::Refused;
  qint32 value = 0;
  if (!WholeOf(aText.substr(0, point), value)) return ECsvFit::Refused;
  aValue = TVelumValue::OfInt(value);
  return IsAsWritten(number) ? ECsvFit::Same : ECsvFit::Changed;
}

// A number as its shortest text would be, if it is one: without plus, groups, and zeros at the end.
std::string Reduced(std::string_view aText, const TCsvForm& aForm) {
  std::string text;
  bool decimals = false;
  for (const char c : aText) {
    if (c == '+' || (aForm.iGroup != 0 && c == aForm.iGroup)) continue;
    decimals |= c == aForm.iDecimal;
    text += c == aForm.iDecimal ? '.' : c;
  }
  if (!decimals) return text;
  while (text.ends_with('0')) text.pop_back();
  if (text.ends_with('.')) text.pop_back();
  return text;
}

// Numbers of other forms than digits with decimals: with an exponent, or with nothing before or behind the
// separator.
ECsvFit ReadOtherReal(std::string_view aText, const TCsvForm& aForm, TVelumValue& aValue) {
  std::string plain(aText.substr(aText.starts_with('+') ? 1 : 0));
  for (char& c : plain)
    if (c == aForm.iDecimal) c = '.';
  if (plain.empty() || plain.find_first_not_of("0123456789.eE+-") != std::string::npos)
    return ECsvFit::Refused;
  double value = 0.0;
  const auto result = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  if (result.ptr != plain.data() + plain.size() || !CVelumDecimal::Parse(plain, value))
    return ECsvFit::Refused;
  aValue = TVelumValue::OfReal(value);
  std::string back;
  CVelumCsvForms::AppendPlain(aValue, back);
  return back == aText ? ECsvFit::Same : ECsvFit::Changed;
}

ECsvFit ReadReal(std::string_view aText, const TCsvForm& aForm, TVelumValue& aValue) {
  TNumber number;
  if (!ReadNumber(aText, aForm.iDecimal, aForm.iGroup, number)) return ReadOtherReal(aText, aForm, aValue);
  double value = 0.0;
  if (!RealOf(aText, aForm.iDecimal, value)) return ECsvFit::Refused;
  aValue = TVelumValue::OfReal(value);
  if (!IsAsWritten(number)) return ECsvFit::Changed;
  if (number.iDigits <= ESureDigits) return ECsvFit::Same;
  std::string back;
  CVelumCsvForms::AppendPlain(aValue, back);
  return back == Reduced(aText, aForm) ? ECsvFit::Same : ECsvFit::Changed;
}

bool DaysOf(const TDate& aDate, ECsvOrder aOrder, qint64& aDays) {
  const bool dayFirst = !aDate.iYearFirst && aOrder == ECsvOrder::DayMonth;
  return DayOf(aDate.iYear, dayFirst ? aDate.iSecond : aDate.iFirst, dayFirst ? aDate.iFirst : aDate.iSecond,
               aDays);
}

ECsvFit ReadDateForm(std::string_view aText, const TCsvForm& aForm, TVelumValue& aValue) {
  TDate date;
  qint64 days = 0;
  if (ReadDate(aText, date) && DaysOf(date, aForm.iOrder, days)) {
    aValue = TVelumValue::OfDate(static_cast<double>(days));
    return ECsvFit::Same;
  }
  // A date with a time behind it, of which the date is kept.
  int second = 0;
  const size_t part = aText.find_first_of(" T");
  if (part != std::string_view::npos && ReadTime(aText.substr(part + 1), second) &&
      ReadDateForm(aText.substr(0, part), aForm, aValue) != ECsvFit::Refused)
    return ECsvFit::Changed;
  const QString text = Wide(aText);
  double moment = 0.0;
  if (!CVelumLocale::MayBeDateTime(text) || !CVelumLocale::ToDateTime(text, moment) || moment < 1.0)
    return ECsvFit::Refused;
  aValue = TVelumValue::OfDate(std::floor(moment));
  return ECsvFit::Changed;
}

ECsvFit ReadTimeForm(std::string_view aText, TVelumValue& aValue) {
  int second = 0;
  if (ReadTime(aText, second)) {
    aValue = TVelumValue::OfTime(CVelumDays::Join(0, second));
    return ECsvFit::Same;
  }
  const QString text = Wide(aText);
  double moment = 0.0;
  if (!CVelumLocale::MayBeDateTime(text) || !CVelumLocale::ToDateTime(text, moment) || moment >= 1.0)
    return ECsvFit::Refused;
  aValue = TVelumValue::OfTime(moment);
  return ECsvFit::Changed;
}

ECsvFit ReadBoolean(std::string_view aText, TVelumValue& aValue) {
  const bool isTrue = aText == "true";
  bool value = false;
  const bool word = CVelumImports::CsvToBoolean(Wide(aText), value);
  if (!word) return ECsvFit::Refused;
  aValue = TVelumValue::OfBoolean(value);
  return isTrue || aText == "false" ? ECsvFit::Same : ECsvFit::Changed;
}

ECsvFit ReadTyped(std::string_view aText, const TCsvForm& aForm, TVelumValue& aValue) {
  switch (CVelumFieldTypes::Of(aForm.iType).iValType) {
  case EValInt:
    return ReadWhole(aText, aForm, aValue);
  case EValReal:
    return ReadReal(aText, aForm, aValue);
  case EValDate:
    return ReadDateForm(aText, aForm, aValue);
  case EValTime:
    return ReadTimeForm(aText, aValue);
  case EValBoolean:
    return ReadBoolean(aText, aValue);
  default:
    return ECsvFit::Refused;
  }
}

void AppendReal(double aReal, std::string& aTo) {
  const double size = std::fabs(aReal);
  std::array<char, 64> text;
  char* end = text.data();
  if (size == 0.0)
    *end++ = '0';
  else if (size >= ELeastFixed && size < EMostFixed)
    end = std::to_chars(end, end + text.size(), aReal, std::chars_format::fixed).ptr;
  else
    return AppendUtf8(CVelumDecimal::TextOf(aReal), aTo);
  aTo.append(text.data(), end);
}

void AppendInt(qint32 aInt, std::string& aTo) {
  std::array<char, 16> text;
  aTo.append(text.data(), std::to_chars(text.data(), text.data() + text.size(), aInt).ptr);
}

// aNumber with zeros in front up to aWidth digits.
void AppendPadded(int aNumber, int aWidth, std::string& aTo) {
  const size_t start = aTo.size();
  AppendInt(aNumber, aTo);
  const size_t width = static_cast<size_t>(aWidth);
  if (const size_t len = aTo.size() - start; len < width) aTo.insert(start, width - len, '0');
}

void AppendDate(double aDate, std::string& aTo) {
  const QDate date = CVelumDays::DateOf(CVelumDays::Split(aDate).iDay);
  AppendPadded(date.year(), 4, aTo);
  aTo += '-';
  AppendPadded(date.month(), 2, aTo);
  aTo += '-';
  AppendPadded(date.day(), 2, aTo);
}

void AppendTime(double aTime, std::string& aTo) {
  const int second = CVelumDays::Split(aTime).iSecond;
  AppendPadded(second / 3600, 2, aTo);
  aTo += ':';
  AppendPadded(second / 60 % 60, 2, aTo);
  aTo += ':';
  AppendPadded(second % 60, 2, aTo);
}

} // namespace

ECsvFit CVelumCsvForms::Read(std::string_view aText, const TCsvForm& aForm, TVelumValue& aValue) {
  if (CVelumFieldTypes::Of(aForm.iType).iValType == EValStr) {
    aValue = TVelumValue::OfStr(Wide(aText));
    return ECsvFit::Same;
  }
  const ECsvFit fit = ReadTyped(aText, aForm, aValue);
  const std::string_view trimmed = Trimmed(aText);
  if (fit != ECsvFit::Refused || trimmed.size() == aText.size() || trimmed.empty()) return fit;
  return ReadTyped(trimmed, aForm, aValue) == ECsvFit::Refused ? ECsvFit::Refused : ECsvFit::Changed;
}

ECsvOrder CVelumCsvForms::LocaleOrder() {
  const QString format = CVelumLocale::Locale().dateFormat(QLocale::ShortFormat);
  return format.indexOf(u'd') < format.indexOf(u'M') ? ECsvOrder::DayMonth : ECsvOrder::MonthDay;
}

void CVelumCsvForms::AppendPlain(const TVelumValue& aValue, std::string& aTo) {
  switch (aValue.Type()) {
  case EValStr:
    return AppendUtf8(aValue.Str(), aTo);
  case EValInt:
    return AppendInt(aValue.Int(), aTo);
  case EValReal:
    return AppendReal(aValue.Real(), aTo);
  case EValDate:
    return AppendDate(aValue.Date(), aTo);
  case EValTime:
    return AppendTime(aValue.Time(), aTo);
  case EValBoolean:
    aTo += aValue.Boolean() ? "true" : "false";
    return;
  default:
    return;
  }
}

QString CVelumCsvForms::PlainText(const TVelumValue& aValue) {
  std::string text;
  AppendPlain(aValue, text);
  return Wide(text);
}
