#include "exchange/CVelumCsvShapes.h"

#include "core/text/CVelumDays.h"
#include "core/text/CVelumDecimal.h"

#include <QVarLengthArray>
#include <limits>

namespace {

constexpr int EGroup = 3; // digits of a group
constexpr int EIsoLen = 10;
constexpr int EYearLen = 4;

bool IsDigit(char aChar) {
  return aChar >= '0' && aChar <= '9';
}

// Takes up to aMost digits off the front of aText; returns how many.
int TakeDigits(std::string_view& aText, int aMost, int& aValue) {
  int count = 0;
  aValue = 0;
  while (count < aMost && static_cast<size_t>(count) < aText.size() &&
         IsDigit(aText[static_cast<size_t>(count)]))
    aValue = aValue * 10 + (aText[static_cast<size_t>(count++)] - '0');
  aText.remove_prefix(static_cast<size_t>(count));
  return count;
}

bool TakeChar(std::string_view& aText, char aChar) {
  if (!aText.starts_with(aChar)) return false;
  aText.remove_prefix(1);
  return true;
}

size_t CountDigits(std::string_view aText) {
  size_t count = 0;
  while (count < aText.size() && IsDigit(aText[count])) ++count;
  return count;
}

bool OnlyZeros(std::string_view aText) {
  return aText.find_first_of("123456789") == std::string_view::npos;
}

// Takes groups of three digits, each behind a separator, off the front of aText.
bool TakeGroups(std::string_view& aText, char aGroup, CVelumCsvShapes::TNumber& aNumber) {
  while (TakeChar(aText, aGroup)) {
    if (CountDigits(aText) != EGroup) return false;
    aText.remove_prefix(EGroup);
    aNumber.iDigits += EGroup;
    ++aNumber.iGroups;
  }
  return true;
}

bool ReadIso(std::string_view aText, CVelumCsvShapes::TDate& aDate) {
  aDate.iYearFirst = true;
  aDate.iSeparator = '-';
  return TakeDigits(aText, EYearLen, aDate.iYear) == EYearLen && TakeChar(aText, '-') &&
         TakeDigits(aText, 2, aDate.iFirst) == 2 && TakeChar(aText, '-') &&
         TakeDigits(aText, 2, aDate.iSecond) == 2;
}

} // namespace

bool CVelumCsvShapes::ReadNumber(std::string_view aText, char aDecimal, char aGroup, TNumber& aNumber) {
  aNumber = {};
  std::string_view rest = aText;
  aNumber.iMinus = rest.starts_with('-');
  aNumber.iSigned = aNumber.iMinus || rest.starts_with('+');
  if (aNumber.iSigned) rest.remove_prefix(1);
  const size_t first = CountDigits(rest);
  if (first == 0 || rest.size() > static_cast<size_t>(std::numeric_limits<int>::max())) return false;
  aNumber.iZeroFirst = rest[0] == '0' && first > 1;
  aNumber.iDigits = static_cast<int>(first);
  const std::string_view digits = rest;
  rest.remove_prefix(first);
  if (aGroup != 0 && rest.starts_with(aGroup)) {
    if (first > EGroup || !TakeGroups(rest, aGroup, aNumber)) return false;
    aNumber.iZeroFirst |= digits[0] == '0';
  }
  if (TakeChar(rest, aDecimal)) {
    aNumber.iWithDecimals = true;
    aNumber.iDecimals = static_cast<int>(CountDigits(rest));
    if (aNumber.iDecimals == 0) return false;
    aNumber.iDigits += aNumber.iDecimals;
    rest.remove_prefix(static_cast<size_t>(aNumber.iDecimals));
  }
  if (!rest.empty()) return false;
  aNumber.iZero = digits[0] == '0' && OnlyZeros(digits);
  return true;
}

bool CVelumCsvShapes::WholeOf(std::string_view aText, qint32& aValue) {
  const bool minus = aText.starts_with('-');
  qint64 value = 0;
  for (const char c : aText) {
    if (!IsDigit(c)) continue;
    value = value * 10 + (c - '0');
    if (value > qint64{std::numeric_limits<qint32>::max()} + (minus ? 1 : 0)) return false;
  }
  aValue = static_cast<qint32>(minus ? -value : value);
  return true;
}

bool CVelumCsvShapes::RealOf(std::string_view aText, char aDecimal, double& aValue) {
  QVarLengthArray<char, 64> plain;
  for (const char c : aText) {
    if (IsDigit(c) || c == '-')
      plain.append(c);
    else if (c == aDecimal)
      plain.append('.');
  }
  return CVelumDecimal::Parse({plain.data(), static_cast<size_t>(plain.size())}, aValue);
}

bool CVelumCsvShapes::ReadDate(std::string_view aText, TDate& aDate) {
  aDate = {};
  if (aText.size() > EIsoLen) return false;
  if (CountDigits(aText) == EYearLen) return aText.size() == EIsoLen && ReadIso(aText, aDate);
  if (TakeDigits(aText, 2, aDate.iFirst) == 0 || aText.empty()) return false;
  aDate.iSeparator = aText[0];
  if (aDate.iSeparator != '/' && aDate.iSeparator != '.' && aDate.iSeparator != '-') return false;
  return TakeChar(aText, aDate.iSeparator) && TakeDigits(aText, 2, aDate.iSecond) > 0 &&
         TakeChar(aText, aDate.iSeparator) && aText.size() == EYearLen &&
         TakeDigits(aText, EYearLen, aDate.iYear) == EYearLen;
}

bool CVelumCsvShapes::DayOf(int aYear, int aMonth, int aDay, qint64& aDays) {
  constexpr int firstYear = 100;
  constexpr int lastYear = 9999;
  constexpr int firstMonth = 3;
  if (aYear < firstYear || aYear > lastYear || (aYear == firstYear && aMonth < firstMonth)) return false;
  const QDate date(aYear, aMonth, aDay);
  if (!date.isValid()) return false;
  aDays = CVelumDays::DayOf(date);
  return true;
}

bool CVelumCsvShapes::ReadTime(std::string_view aText, int& aSecond) {
  int hour = 0;
  int minute = 0;
  int second = 0;
  if (TakeDigits(aText, 2, hour) == 0 || !TakeChar(aText, ':') || TakeDigits(aText, 2, minute) != 2)
    return false;
  if (!aText.empty() && (!TakeChar(aText, ':') || TakeDigits(aText, 2, second) != 2)) return false;
  if (!aText.empty() || hour > 23 || minute > 59 || second > 59) return false;
  aSecond = hour * 3600 + minute * 60 + second;
  return true;
}
