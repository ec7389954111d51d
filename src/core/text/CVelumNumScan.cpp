#include "core/text/CVelumNumScan.h"

#include "core/CVelumError.h"
#include "core/text/CVelumDecimal.h"

#include <QVarLengthArray>

namespace {

// The characters of a number, with which std::from_chars can do the rest.
class CNumberScan {
public:
  CNumberScan(QStringView aText, bool aBlankGroups) : iText(aText), iBlankGroups(aBlankGroups) {}
  [[nodiscard]] double Read();
  // Of a text that was read.
  [[nodiscard]] bool ToTheEnd();

private:
  [[nodiscard]] char16_t Peek() const { return iPos < iText.size() ? iText[iPos].unicode() : u'\0'; }
  [[nodiscard]] bool AtDigit(qsizetype aPos) const {
    return aPos < iText.size() && iText[aPos] >= u'0' && iText[aPos] <= u'9';
  }
  [[nodiscard]] bool AtGroupBlank() const;
  void Take() { iPlain.append(static_cast<char>(iText[iPos++].unicode())); }
  void SkipBlanks();
  void TakeSign();
  int TakeDigits();
  int TakeWhole();
  void TakeExponent();

  QStringView iText;
  bool iBlankGroups;
  qsizetype iPos = 0;
  qsizetype iEnd = 0; // behind the number; 0 when there is none
  QVarLengthArray<char, 64> iPlain;
};

void CNumberScan::SkipBlanks() {
  while (Peek() == u' ' || (Peek() >= u'\t' && Peek() <= u'\r')) ++iPos;
}

// A blank, or a no-break space wide or narrow, between two groups of digits.
bool CNumberScan::AtGroupBlank() const {
  const char16_t c = Peek();
  return iBlankGroups && (c == u' ' || c == u'\u00a0' || c == u'\u202f') && AtDigit(iPos + 1);
}

void CNumberScan::TakeSign() {
  if (Peek() == u'-')
    Take();
  else if (Peek() == u'+')
    ++iPos;
}

int CNumberScan::TakeDigits() {
  int count = 0;
  for (; AtDigit(iPos); ++count) Take();
  return count;
}

// The digits before the point.
int CNumberScan::TakeWhole() {
  int count = TakeDigits();
  while (count > 0 && AtGroupBlank()) {
    ++iPos;
    count += TakeDigits();
  }
  return count;
}

// Without digits it is no exponent, and ends the number.
void CNumberScan::TakeExponent() {
  const qsizetype size = iPlain.size();
  Take();
  TakeSign();
  if (TakeDigits() == 0)
    iPlain.resize(size);
  else
    iEnd = iPos;
}

double CNumberScan::Read() {
  SkipBlanks();
  TakeSign();
  int digits = TakeWhole();
  if (Peek() == u'.') {
    Take();
    digits += TakeDigits();
  }
  if (digits == 0) return 0.0;
  iEnd = iPos;
  if (Peek() == u'E' || Peek() == u'e') TakeExponent();
  double real = 0.0;
  if (!CVelumDecimal::Parse({iPlain.data(), static_cast<size_t>(iPlain.size())}, real))
    CVelumError::RaiseHost(EHostOverflow);
  return real;
}

bool CNumberScan::ToTheEnd() {
  if (iEnd == 0) return false;
  iPos = iEnd;
  SkipBlanks();
  return iPos == iText.size();
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

double CVelumNumScan::Read(QStringView aText, bool aBlankGroups, bool& aToTheEnd) {
  CNumberScan scan(aText, aBlankGroups);
  const double real = scan.Read();
  aToTheEnd = scan.ToTheEnd();
  return real;
}

double CVelumNumScan::Read(QStringView aText, bool aBlankGroups) {
  double real = 0.0;
  return ReadWhole(aText, real) ? real : CNumberScan(aText, aBlankGroups).Read();
}
