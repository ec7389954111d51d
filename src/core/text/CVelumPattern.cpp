#include "core/text/CVelumPattern.h"

#include "core/CVelumObject.h"
#include "core/text/CVelumDays.h"

#include <algorithm>
#include <array>

namespace {

bool IsAsciiLetter(QChar aChar) {
  return aChar.unicode() < 128 && aChar.isLetter();
}

bool IsDigit(QChar aChar) {
  return aChar >= u'0' && aChar <= u'9';
}

// Whether the character only steers the writing direction.
bool IsDirectionMark(QChar aChar) {
  return aChar == QChar(0x200E) || aChar == QChar(0x200F) || aChar == QChar(0x061C);
}

// With zeros in front up to aWidth.
void AppendNumber(QString& aText, int aNumber, qsizetype aWidth) {
  std::array<char16_t, 12> digits;
  size_t first = digits.size();
  for (int rest = aNumber; rest > 0 && first > 0; rest /= 10)
    digits[--first] = static_cast<char16_t>(u'0' + rest % 10);
  while (first > 0 && static_cast<qsizetype>(digits.size() - first) < aWidth) digits[--first] = u'0';
  aText += QStringView(digits.data() + first, digits.data() + digits.size());
}

QString WithoutBlanks(QString aText) {
  return aText.remove(u' ');
}

} // namespace

CVelumPattern::CVelumPattern(const QString& aFormat) {
  bool quoted = false;
  for (qsizetype i = 0, end = 0; i < aFormat.size(); i = end) {
    const QChar c = aFormat[i];
    end = i + 1;
    if (c == u'\'') {
      // Two quotes are one quote, inside and outside of quoted text.
      const bool twice = end < aFormat.size() && aFormat[end] == c;
      if (twice)
        AddText(aFormat[end++]);
      else
        quoted = !quoted;
    } else if (quoted || !IsAsciiLetter(c)) {
      AddText(c);
    } else if (c == u'A' || c == u'a' || c == u'B') {
      if (end < aFormat.size() && aFormat[end].toUpper() == u'P') ++end;
      AddLetters(u'a', 1);
    } else {
      while (end < aFormat.size() && aFormat[end] == c) ++end;
      AddLetters(c, end - i);
    }
  }
  Drop(EZone);
}

void CVelumPattern::AddLetters(QChar aLetter, qsizetype aCount) {
  constexpr EField known[] = {EDay, EMonth, EYear, EHour, EMinute, ESecond, EHalf, EZone};
  const char16_t letter = aLetter == u'h' ? u'H' : aLetter.unicode();
  const auto* const field = std::find(std::begin(known), std::end(known), letter);
  const bool asNumber = aCount <= 2 || letter == EYear || letter == EZone;
  iTokens.append({field == std::end(known) || !asNumber ? EOther : *field, aCount, {}, {}});
}

void CVelumPattern::AddText(const QString& aText) {
  if (iTokens.isEmpty() || iTokens.last().iField != ENone) iTokens.append(TToken());
  iTokens.last().iText += aText;
  iTokens.last().iPattern = WithoutBlanks(Normal(iTokens.last().iText));
}

void CVelumPattern::Drop(EField aField) {
  QList<TToken> old;
  old.swap(iTokens);
  for (const TToken& token : old) {
    if (token.iField == ENone)
      AddText(token.iText);
    else if (token.iField != aField)
      iTokens.append(token);
  }
  TrimEnds();
}

// What stood round a dropped field at an end goes with it: blanks, a comma, brackets.
void CVelumPattern::TrimEnds() {
  const auto isLoose = [](QChar aChar) { return aChar.isSpace() || u",()[]"_s.contains(aChar); };
  if (!iTokens.isEmpty() && iTokens.first().iField == ENone) {
    QString text = iTokens.takeFirst().iText;
    while (!text.isEmpty() && isLoose(text.front())) text.remove(0, 1);
    if (!text.isEmpty()) iTokens.prepend({ENone, 0, text, WithoutBlanks(Normal(text))});
  }
  if (!iTokens.isEmpty() && iTokens.last().iField == ENone) {
    QString text = iTokens.takeLast().iText;
    while (!text.isEmpty() && isLoose(text.back())) text.chop(1);
    if (!text.isEmpty()) AddText(text);
  }
}

qsizetype CVelumPattern::CountOf(EField aField) const {
  return std::count_if(iTokens.begin(), iTokens.end(),
                       [aField](const TToken& aToken) { return aToken.iField == aField; });
}

bool CVelumPattern::IsDate() const {
  const qsizetype texts = CountOf(ENone);
  return CountOf(EDay) == 1 && CountOf(EMonth) == 1 && CountOf(EYear) == 1 && iTokens.size() == 3 + texts;
}

bool CVelumPattern::IsTime() const {
  const qsizetype texts = CountOf(ENone);
  const qsizetype halves = CountOf(EHalf);
  return CountOf(EHour) == 1 && CountOf(EMinute) == 1 && CountOf(ESecond) == 1 && halves <= 1 &&
         iTokens.size() == 3 + texts + halves;
}

CVelumPattern CVelumPattern::WithoutHalf() const {
  CVelumPattern pattern = *this;
  pattern.Drop(EHalf);
  return pattern;
}

// The text in front of the seconds goes too, so that "12:30" remains of "12:30:00".
CVelumPattern CVelumPattern::WithoutSecond() const {
  CVelumPattern pattern = *this;
  for (qsizetype i = 0; i < pattern.iTokens.size(); ++i) {
    if (pattern.iTokens[i].iField != ESecond) continue;
    if (i > 0 && pattern.iTokens[i - 1].iField == ENone) pattern.iTokens.removeAt(i - 1);
    break;
  }
  pattern.Drop(ESecond);
  return pattern;
}

QString CVelumPattern::Write(const TVelumFields& aFields, const QString& aHalf) const {
  TVelumFields fields = aFields;
  QString text;
  text.reserve(24);
  for (const TToken& token : iTokens) {
    if (token.iField == ENone)
      text += token.iText;
    else if (token.iField == EHalf)
      text += aHalf;
    else if (const int* number = NumberOf(token.iField, fields))
      AppendNumber(text, *number, token.iField == EYear ? 4 : token.iWidth);
  }
  return text;
}

int* CVelumPattern::NumberOf(EField aField, TVelumFields& aFields) {
  switch (aField) {
  case EDay:
    return &aFields.iDay;
  case EMonth:
    return &aFields.iMonth;
  case EYear:
    return &aFields.iYear;
  case EHour:
    return &aFields.iHour;
  case EMinute:
    return &aFields.iMinute;
  case ESecond:
    return &aFields.iSecond;
  default:
    return nullptr;
  }
}

qsizetype CVelumPattern::Match(QStringView aText, qsizetype aPos, TVelumFields& aFields) const {
  qsizetype pos = aPos;
  for (qsizetype i = 0; i < iTokens.size(); ++i) {
    const TToken& token = iTokens[i];
    const bool isText = token.iField == ENone;
    const qsizetype end = isText ? MatchText(token, aText, pos) : MatchNumber(token, aText, pos, aFields);
    const bool atEnd = i == 0 || i + 1 == iTokens.size();
    if (end < 0 && !(isText && atEnd)) return -1;
    if (end >= 0) pos = end;
  }
  return pos;
}

qsizetype CVelumPattern::MatchText(const TToken& aToken, QStringView aText, qsizetype aPos) {
  qsizetype pos = aPos;
  const auto skipBlanks = [&] {
    while (pos < aText.size() && aText[pos] == u' ') ++pos;
  };
  skipBlanks();
  for (const QChar c : aToken.iPattern) {
    if (pos == aText.size() || aText[pos] != c) return -1;
    ++pos;
    skipBlanks();
  }
  return pos == aPos ? -1 : pos;
}

qsizetype CVelumPattern::MatchNumber(const TToken& aToken, QStringView aText, qsizetype aPos,
                                     TVelumFields& aFields) {
  qsizetype end = aPos;
  int number = 0;
  while (end < aText.size() && end - aPos < 5 && IsDigit(aText[end]))
    number = number * 10 + (aText[end++].unicode() - u'0');
  const qsizetype digits = end - aPos;
  const bool full = aToken.iField == EMinute || aToken.iField == ESecond;
  const bool fits = aToken.iField == EYear ? digits == 2 || digits == 4
                                           : digits == 2 || (digits == 1 && !(full && aToken.iWidth == 2));
  int* const to = NumberOf(aToken.iField, aFields);
  if (!fits || !to) return -1;
  *to = aToken.iField == EYear && digits == 2 ? static_cast<int>(CVelumDays::FullYear(number)) : number;
  return end;
}

QString CVelumPattern::Normal(const QString& aText) {
  // What most users type.
  if (std::all_of(aText.begin(), aText.end(), [](QChar aChar) { return aChar.unicode() < 128; }))
    return aText.trimmed();
  QString text;
  text.reserve(aText.size());
  for (qsizetype i = 0; i < aText.size(); ++i) {
    const QChar c = aText[i];
    if (c.unicode() < 128) {
      text += c;
      continue;
    }
    if (IsDirectionMark(c)) continue;
    const bool pair = c.isHighSurrogate() && i + 1 < aText.size();
    const char32_t code = pair ? QChar::surrogateToUcs4(c, aText[i + 1]) : c.unicode();
    const int digit = QChar::digitValue(code);
    if (digit >= 0 && QChar::category(code) == QChar::Number_DecimalDigit) {
      text += QChar(static_cast<char16_t>(u'0' + digit));
      i += pair ? 1 : 0;
    } else {
      text += c.category() == QChar::Separator_Space ? QChar(u' ') : c;
    }
  }
  return text.trimmed();
}
