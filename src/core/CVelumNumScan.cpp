#include "core/CVelumNumScan.h"

#include "core/CVelumDecimal.h"
#include "core/CVelumError.h"

#include <QVarLengthArray>

namespace {

// The characters of a number, with which std::from_chars can do the rest.
class CNumberScan {
public:
  explicit CNumberScan(QStringView aText) : iText(aText) {}
  [[nodiscard]] double Read();

private:
  [[nodiscard]] char16_t Peek();
  void Take() { iPlain.append(static_cast<char>(iText[iPos++].unicode())); }
  int TakeDigits();
  void TakeExponent();

  QStringView iText;
  qsizetype iPos = 0;
  QVarLengthArray<char, 64> iPlain;
};

// The next character that is no blank; 0 at the end.
char16_t CNumberScan::Peek() {
  while (iPos < iText.size() && (iText[iPos] == u' ' || (iText[iPos] >= u'\t' && iText[iPos] <= u'\r')))
    ++iPos;
  return iPos < iText.size() ? iText[iPos].unicode() : u'\0';
}

int CNumberScan::TakeDigits() {
  int count = 0;
  for (char16_t c = Peek(); c >= u'0' && c <= u'9'; c = Peek()) {
    Take();
    ++count;
  }
  return count;
}

// Without digits it is no exponent, and ends the number.
void CNumberScan::TakeExponent() {
  const qsizetype size = iPlain.size();
  Take();
  if (Peek() == u'-')
    Take();
  else if (Peek() == u'+')
    ++iPos;
  if (TakeDigits() == 0) iPlain.resize(size);
}

double CNumberScan::Read() {
  if (Peek() == u'-')
    Take();
  else if (Peek() == u'+')
    ++iPos;
  int digits = TakeDigits();
  if (Peek() == u'.') {
    Take();
    digits += TakeDigits();
  }
  if (digits == 0) return 0.0;
  if (Peek() == u'E' || Peek() == u'e') TakeExponent();
  double real = 0.0;
  if (!CVelumDecimal::Parse({iPlain.data(), static_cast<size_t>(iPlain.size())}, real))
    CVelumError::RaiseHost(EHostOverflow);
  return real;
}

// Whole numbers of up to 15 digits with nothing but blanks behind: nearly all that are ever scanned.
bool ReadWhole(QStringView aText, double& aReal) {
  const QChar* c = aText.begin();
  const QChar* const end = aText.end();
  const bool negative = c != end && *c == u'-';
  if (negative) ++c;
  qint64 whole = 0;
  const QChar* const first = c;
  for (; c != end && *c >= u'0' && *c <= u'9'; ++c) {
    if (c - first == 15) return false;
    whole = whole * 10 + (c->unicode() - u'0');
  }
  const bool some = c != first;
  while (c != end && *c == u' ') ++c;
  if (!some || c != end) return false;
  aReal = static_cast<double>(negative ? -whole : whole);
  return true;
}

} // namespace

double CVelumNumScan::Read(QStringView aText) {
  double real = 0.0;
  return ReadWhole(aText, real) ? real : CNumberScan(aText).Read();
}
