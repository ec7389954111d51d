#include "exchange/CVelumCsvCells.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/text/CVelumDecimal.h"
#include "core/text/CVelumLocale.h"

#include <QVarLengthArray>
#include <algorithm>
#include <charconv>

namespace {

// A longer text is no boolean word. Letters outside of ASCII may have capitals inside of it.
constexpr qsizetype EMaxWord = 5;
// A shorter text is not tried as a date or time.
constexpr qsizetype EMinMoment = 5;

bool IsDigit(QChar aChar) {
  return aChar >= u'0' && aChar <= u'9';
}

using TPlain = QVarLengthArray<char, 64>;

// Keeps what can belong to a number; aDecimal (0: none) becomes a point.
void KeepNumber(QStringView aText, QChar aDecimal, TPlain& aPlain) {
  aPlain.resize(aText.size());
  char* to = aPlain.data();
  for (const QChar c : aText) {
    if (IsDigit(c) || c == u'-' || c == u'+')
      *to++ = static_cast<char>(c.unicode());
    else if (!aDecimal.isNull() && c == aDecimal)
      *to++ = '.';
  }
  aPlain.resize(to - aPlain.data());
}

// A whole number of up to 9 digits with nothing else but a minus: nearly all that come.
bool ReadPlainInt(QStringView aText, qint32& aValue) {
  constexpr qsizetype most = 9;
  const bool negative = aText.startsWith(u'-');
  const QStringView digits = negative ? aText.sliced(1) : aText;
  if (digits.isEmpty() || digits.size() > most || !std::all_of(digits.begin(), digits.end(), IsDigit))
    return false;
  qint32 value = 0;
  for (const QChar c : digits) value = value * 10 + (c.unicode() - u'0');
  aValue = negative ? -value : value;
  return true;
}

// What of aPlain is behind a plus; from_chars does not know that one.
std::string_view WithoutPlus(const TPlain& aPlain) {
  const std::string_view text(aPlain.data(), static_cast<size_t>(aPlain.size()));
  return text.starts_with('+') && !text.starts_with("+-") ? text.substr(1) : text;
}

bool IsPlainReal(std::string_view aText) {
  if (aText.starts_with('-')) aText.remove_prefix(1);
  const auto isDigit = [](char aChar) { return aChar >= '0' && aChar <= '9'; };
  const auto point = std::find_if_not(aText.begin(), aText.end(), isDigit);
  const bool pointed = point != aText.end() && *point == '.';
  const bool whole = point == aText.end() || (pointed && std::all_of(point + 1, aText.end(), isDigit));
  return whole && aText.size() > (pointed ? 1U : 0U);
}

// Where the last separator stands, or -1.
qsizetype LastSeparator(QStringView aText) {
  qsizetype i = aText.size() - 1;
  while (i >= 0 && aText[i] != u'.' && aText[i] != u',') --i;
  return i;
}

void CountSeparator(QStringView aText, TColStats& aStats) {
  const qsizetype at = LastSeparator(aText);
  if (at < 0) return;
  const bool dot = aText[at] == u'.';
  ++(dot ? aStats.iDots : aStats.iCommas);
  qint32& digits = dot ? aStats.iDotDigits : aStats.iCommaDigits;
  digits = CVelumChecked::Add(digits, static_cast<qint32>(aText.size() - at - 1));
}

void CountMoment(QStringView aText, TColStats& aStats) {
  double moment = 0.0;
  if (!CVelumLocale::MayBeDateTime(aText)) return;
  if (!CVelumLocale::ToDateTime(aText.toString(), moment)) return;
  if (moment > 1.0)
    ++aStats.iDates;
  else if (moment > 0.0 && moment < 1.0)
    ++aStats.iTimes;
}

} // namespace

bool CVelumImports::CsvToBoolean(QStringView aText, bool& aValue) {
  if (aText.isEmpty() || aText.size() > EMaxWord) return false;
  // Nearly all texts are turned away by their first letter, which no other one has as its capital.
  const char16_t first = aText.front().unicode() & ~0x20;
  if (first != u'T' && first != u'F' && first != u'Y' && first != u'N') return false;
  const QString word = aText.toString().toUpper();
  const bool isTrue = word == u"TRUE" || word == u"T" || word == u"YES" || word == u"Y";
  const bool isFalse = word == u"FALSE" || word == u"F" || word == u"NO" || word == u"N";
  if (isTrue || isFalse) aValue = isTrue;
  return isTrue || isFalse;
}

bool CVelumImports::CsvToInt(QStringView aText, qint32& aValue) {
  if (ReadPlainInt(aText, aValue)) return true;
  TPlain plain;
  KeepNumber(aText, QChar(), plain);
  const std::string_view text = WithoutPlus(plain);
  qint32 value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return false;
  aValue = value;
  return true;
}

bool CVelumImports::CsvToReal(QStringView aText, QChar aDecimal, double& aValue) {
  TPlain plain;
  KeepNumber(aText, aDecimal, plain);
  const std::string_view text = WithoutPlus(plain);
  return IsPlainReal(text) && CVelumDecimal::Parse(text, aValue);
}

qint32 CVelumImports::CountNonDigits(QStringView aText) {
  return static_cast<qint32>(std::count_if(aText.begin(), aText.end(), [](QChar c) { return !IsDigit(c); }));
}

void CVelumImports::ClearColStats(TColStats& aStats) {
  aStats = TColStats();
}

void CVelumImports::ScanCell(QStringView aText, TColStats& aStats) {
  const QStringView text = CVelumLib::TrimBlanks(aText);
  if (text.isEmpty()) {
    ++aStats.iEmpty;
    return;
  }
  if (bool value = false; CsvToBoolean(text, value)) {
    ++(value ? aStats.iTrues : aStats.iFalses);
    return;
  }
  CountSeparator(text, aStats);
  const auto isCapital = [](QChar c) { return c >= u'A' && c <= u'Z'; };
  const qint32 others = CountNonDigits(text);
  if (others < text.size()) ++aStats.iWithDigit;
  if (others > 0 && std::any_of(text.begin(), text.end(), isCapital)) ++aStats.iWithLetter;
  if (others > 0 && text.size() >= EMinMoment) CountMoment(text, aStats);
}
