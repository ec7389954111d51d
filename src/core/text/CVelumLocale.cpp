#include "core/text/CVelumLocale.h"

#include "core/CVelumObject.h"
#include "core/text/CVelumCollation.h"
#include "core/text/CVelumDays.h"
#include "core/text/CVelumDecimal.h"
#include "core/text/CVelumPattern.h"

#include <QVarLengthArray>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace {

constexpr int EGroup = 3; // digits of a group in the number pictures

// Latin letters and digits only, so that it can be read everywhere.
const QString& IsoFormat() {
  static const QString format = u"yyyy-MM-dd"_s;
  return format;
}

// All that follows from the locale.
struct TLocaleState {
  explicit TLocaleState(const QLocale& aLocale);

  QLocale iLocale;
  QString iAm; // normal forms, for reading
  QString iPm;
  CVelumPattern iDate;
  CVelumPattern iTime;
  // What a time is tried against, day halves taken off.
  QList<CVelumPattern> iTimes;
  bool iHalfFirst;
  bool iDigitFirst; // whether a moment always starts with a digit
  QString iPoint;
  QString iGroup;
  QChar iGroupRead;
  QChar iPointRead;
};

CVelumPattern DatePattern(const QLocale& aLocale) {
  const CVelumPattern pattern(aLocale.dateFormat(QLocale::ShortFormat));
  return pattern.IsDate() ? pattern : CVelumPattern(IsoFormat());
}

// Twelve hours need two day halves that differ.
CVelumPattern TimePattern(const QLocale& aLocale) {
  const CVelumPattern pattern(aLocale.timeFormat(QLocale::LongFormat));
  const bool halves =
      !aLocale.amText().isEmpty() && aLocale.amText() != aLocale.pmText() && !aLocale.pmText().isEmpty();
  return pattern.IsTime() && (halves || !pattern.HasHalf()) ? pattern : CVelumPattern(u"HH:mm:ss"_s);
}

// A separator as it stands in a normal text.
QChar ReadForm(const QString& aSeparator) {
  if (aSeparator.isEmpty()) return QChar();
  return aSeparator.front().isSpace() ? QChar(u' ') : aSeparator.front();
}

TLocaleState::TLocaleState(const QLocale& aLocale)
    : iLocale(aLocale), iAm(CVelumPattern::Normal(aLocale.amText())),
      iPm(CVelumPattern::Normal(aLocale.pmText())), iDate(DatePattern(aLocale)), iTime(TimePattern(aLocale)),
      iHalfFirst(iTime.StartsWithHalf()),
      iDigitFirst(!iHalfFirst && iTime.StartsWithField() && iDate.StartsWithField()),
      iPoint(aLocale.decimalPoint()), iGroup(aLocale.groupSeparator()), iGroupRead(ReadForm(iGroup)),
      iPointRead(ReadForm(iPoint)) {
  const CVelumPattern plain(u"H:mm:ss"_s);
  const CVelumPattern bare = iTime.WithoutHalf();
  iTimes = {bare, bare.WithoutSecond(), plain, plain.WithoutSecond()};
}

std::unique_ptr<TLocaleState> sState;

const TLocaleState& State() {
  if (!sState) CVelumLocale::Init();
  return *sState;
}

bool IsDigit(QChar aChar) {
  return aChar >= u'0' && aChar <= u'9';
}

// Takes a day half off aText; 0 for none, 1 for the first, 2 for the second.
int TakeHalf(QStringView& aText) {
  const TLocaleState& state = State();
  int half = 0;
  for (const QString* name : {&state.iAm, &state.iPm}) {
    ++half;
    if (name->isEmpty()) continue;
    if (aText.endsWith(*name, Qt::CaseInsensitive)) {
      aText = aText.chopped(name->size()).trimmed();
      return half;
    }
    if (state.iHalfFirst && aText.startsWith(*name, Qt::CaseInsensitive)) {
      aText = aText.sliced(name->size()).trimmed();
      return half;
    }
  }
  return 0;
}

// aText is in normal form and holds nothing but the time.
bool ReadTime(QStringView aText, int& aSecond) {
  QStringView text = aText.trimmed();
  const int half = TakeHalf(text);
  for (const CVelumPattern& pattern : State().iTimes) {
    TVelumFields fields;
    if (pattern.Match(text, 0, fields) != text.size()) continue;
    if (fields.iMinute > 59 || fields.iSecond > 59 || fields.iHour > 23) return false;
    if (half != 0 && (fields.iHour < 1 || fields.iHour > 12)) return false;
    const int hour = half == 0 ? fields.iHour : fields.iHour % 12 + (half == 2 ? 12 : 0);
    aSecond = hour * 3600 + fields.iMinute * 60 + fields.iSecond;
    return true;
  }
  return false;
}

// Whether a date of exactly the form yyyy-MM-dd is at the start.
bool StartsWithIso(QStringView aText) {
  constexpr QStringView form(u"yyyy-MM-dd");
  if (aText.size() < form.size()) return false;
  return std::equal(form.begin(), form.end(), aText.begin(),
                    [](QChar aForm, QChar aChar) { return aForm == u'-' ? aChar == u'-' : IsDigit(aChar); });
}

// The position behind a date at the start of a normal text, or -1.
qsizetype ReadDate(QStringView aText, qint64& aDay) {
  TVelumFields fields;
  qsizetype end = State().iDate.Match(aText, 0, fields);
  if (end < 0) {
    static const CVelumPattern iso(IsoFormat());
    end = StartsWithIso(aText) ? iso.Match(aText, 0, fields) : -1;
  }
  if (end < 0) return -1;
  const QDate date(fields.iYear, fields.iMonth, fields.iDay);
  if (!date.isValid() || fields.iYear < 100) return -1;
  aDay = CVelumDays::DayOf(date);
  return end;
}

using TPlain = QVarLengthArray<char, 64>;

bool IsMinus(QChar aChar) {
  return aChar == u'-' || aChar == QChar(0x2212);
}

// Appends the digits from aPos on; the position behind them.
qsizetype TakeDigits(QStringView aText, qsizetype aPos, TPlain& aPlain) {
  while (aPos < aText.size() && IsDigit(aText[aPos]))
    aPlain.append(static_cast<char>(aText[aPos++].unicode()));
  return aPos;
}

bool IsGroup(QChar aChar) {
  const QChar group = State().iGroupRead;
  // Either form of the apostrophe.
  return aChar == group || (group == QChar(0x2019) && aChar == u'\'');
}

// The whole part: digits alone, or in groups, the last of three digits and those between of two or three.
// -1 when the groups are wrong.
qsizetype TakeWhole(QStringView aText, qsizetype aPos, TPlain& aPlain) {
  qsizetype start = aPos;
  qsizetype pos = TakeDigits(aText, aPos, aPlain);
  bool grouped = false;
  while (pos < aText.size() && IsGroup(aText[pos]) && pos + 1 < aText.size() && IsDigit(aText[pos + 1])) {
    const qsizetype size = pos - start;
    if (size < (grouped ? 2 : 1) || size > EGroup) return -1;
    grouped = true;
    start = pos + 1;
    pos = TakeDigits(aText, start, aPlain);
  }
  return grouped && pos - start != EGroup ? -1 : pos;
}

// "E", a sign and digits; -1 when something else follows the number.
qsizetype TakeExponent(QStringView aText, qsizetype aPos, TPlain& aPlain) {
  qsizetype pos = aPos;
  if (pos == aText.size()) return pos;
  if (aText[pos] != u'E' && aText[pos] != u'e') return -1;
  aPlain.append('e');
  if (++pos < aText.size() && (IsMinus(aText[pos]) || aText[pos] == u'+')) {
    if (IsMinus(aText[pos])) aPlain.append('-');
    ++pos;
  }
  const qsizetype end = TakeDigits(aText, pos, aPlain);
  return end == pos ? -1 : end;
}

bool ReadsBack(const QString& aText, double aDateTime) {
  double read = 0.0;
  return CVelumLocale::ToDateTime(aText, read) && read == aDateTime;
}

bool DatesReadBack() {
  const QDate samples[] = {QDate(2003, 1, 2), QDate(1912, 10, 11), QDate(2099, 12, 31)};
  return std::all_of(std::begin(samples), std::end(samples), [](QDate aDate) {
    const auto day = static_cast<double>(CVelumDays::DayOf(aDate));
    return ReadsBack(CVelumLocale::ShortDate(day), day);
  });
}

// A time such as 10.11.12 would be a date in some locales.
bool TimesReadBack() {
  const int samples[] = {0, 3723, 36672, 43200, 45296, 86399};
  return std::all_of(std::begin(samples), std::end(samples), [](int aSecond) {
    const double time = CVelumDays::Join(0, aSecond);
    return ReadsBack(CVelumLocale::LongTime(time), time);
  });
}

} // namespace

void CVelumLocale::Init(const QString& aName) {
  const QLocale locale = aName.isEmpty() ? QLocale::system() : QLocale(aName);
  sState = std::make_unique<TLocaleState>(locale);
  // What is shown must be what is read when the field is left.
  if (!DatesReadBack()) sState->iDate = CVelumPattern(IsoFormat());
  if (!TimesReadBack()) sState->iTime = CVelumPattern(u"HH:mm:ss"_s);
  CVelumCollation::Init(locale.collation().name());
}

const QLocale& CVelumLocale::Locale() {
  return State().iLocale;
}

QString CVelumLocale::ShortDate(double aDate) {
  const QDate date = CVelumDays::DateOf(CVelumDays::Split(aDate).iDay);
  TVelumFields fields;
  fields.iDay = date.day();
  fields.iMonth = date.month();
  fields.iYear = date.year();
  return State().iDate.Write(fields, {});
}

QString CVelumLocale::LongTime(double aTime) {
  const TLocaleState& state = State();
  const int second = CVelumDays::Split(aTime).iSecond;
  TVelumFields fields;
  fields.iHour = second / 3600;
  fields.iMinute = second / 60 % 60;
  fields.iSecond = second % 60;
  const bool afternoon = fields.iHour >= 12;
  if (state.iTime.HasHalf()) fields.iHour = (fields.iHour + 11) % 12 + 1;
  return state.iTime.Write(fields, afternoon ? state.iLocale.pmText() : state.iLocale.amText());
}

QString CVelumLocale::Real(double aReal, int aDigits, bool aFixed) {
  const int digits = qMax(aDigits, 0);
  CVelumDecimal decimal(aReal);
  decimal.RoundTo(digits);
  const TLocaleState& state = State();
  const auto digit = [&](int aPlace) { return QChar(static_cast<char16_t>(u'0' + decimal.DigitAt(aPlace))); };
  QString text;
  text.reserve(32);
  if (decimal.Negative()) text += u'-';
  for (int place = -qMax(decimal.Point(), 1); place < 0; ++place) {
    text += digit(place);
    if (place < -1 && (place + 1) % EGroup == 0) text += state.iGroup;
  }
  text += state.iPoint;
  const int decimals = aFixed ? digits : decimal.Decimals();
  for (int place = 0; place < decimals; ++place) text += digit(place);
  return text;
}

QString CVelumLocale::General(double aReal) {
  return CVelumDecimal::TextOf(aReal).replace(u'.', State().iPoint);
}

bool CVelumLocale::GroupsByBlanks() {
  return State().iGroupRead == u' ';
}

bool CVelumLocale::ToShort(const QString& aText, qint16& aInt) {
  qint32 number = 0;
  if (!ToInt(aText, number) || number != static_cast<qint16>(number)) return false;
  aInt = static_cast<qint16>(number);
  return true;
}

bool CVelumLocale::ToInt(const QString& aText, qint32& aInt) {
  double real = 0.0;
  if (!ToReal(aText, real)) return false;
  const double whole = std::nearbyint(real);
  if (!(whole >= std::numeric_limits<qint32>::min() && whole <= std::numeric_limits<qint32>::max()))
    return false;
  aInt = static_cast<qint32>(whole);
  return true;
}

bool CVelumLocale::ToReal(const QString& aText, double& aReal) {
  const QString text = CVelumPattern::Normal(aText);
  TPlain plain;
  qsizetype pos = 0;
  if (pos < text.size() && IsMinus(text[pos])) plain.append('-');
  if (pos < text.size() && (IsMinus(text[pos]) || text[pos] == u'+')) ++pos;
  const qsizetype sign = plain.size();
  pos = TakeWhole(text, pos, plain);
  if (pos < 0) return false;
  bool some = plain.size() > sign;
  if (pos < text.size() && text[pos] == State().iPointRead) {
    plain.append('.');
    const qsizetype end = TakeDigits(text, pos + 1, plain);
    some = some || end > pos + 1;
    pos = end;
  }
  if (!some || TakeExponent(text, pos, plain) != text.size()) return false;
  return CVelumDecimal::Parse({plain.data(), static_cast<size_t>(plain.size())}, aReal);
}

// A time has at least two numbers of one or two digits, a date three of one, two or four, whatever the
// locale.
bool CVelumLocale::MayBeDateTime(QStringView aText) {
  if (State().iDigitFirst && !aText.isEmpty() && aText.front().isLetter()) return false;
  int numbers = 0;
  int digits = 0;
  bool year = false;
  for (qsizetype i = 0; i <= aText.size(); ++i) {
    const QChar c = i < aText.size() ? aText[i] : QChar(u' ');
    if (c.unicode() > 127) return true; // digits of other scripts, or nothing at all
    if (IsDigit(c)) {
      if (++digits > 4) return false;
      continue;
    }
    if (digits == 3) return false;
    if (digits > 0) ++numbers;
    year = year || digits == 4;
    digits = 0;
  }
  return numbers >= (year ? 3 : 2);
}

bool CVelumLocale::ToDateTime(const QString& aText, double& aDateTime) {
  if (!MayBeDateTime(aText)) return false;
  const QString text = CVelumPattern::Normal(aText);
  if (text.isEmpty()) return false;
  qint64 day = 0;
  int second = 0;
  const qsizetype end = ReadDate(text, day);
  if (end < 0) {
    if (!ReadTime(text, second)) return false;
  } else if (end < text.size()) {
    const bool apart = text[end] == u' ' || text[end - 1] == u' ';
    if (!apart || !ReadTime(QStringView(text).sliced(end), second)) return false;
  }
  aDateTime = CVelumDays::Join(day, second);
  return true;
}
