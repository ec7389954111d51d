#include "core/text/CVelumDecimal.h"

#include "core/CVelumObject.h"

#include <QVarLengthArray>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

constexpr int EMaxWhole = 15; // digits before the point of a text without exponent
constexpr int EMaxZeros = 3;  // zeros between the point and the first digit of such a text

QChar CharOf(int aDigit) {
  return QChar(static_cast<char16_t>(u'0' + aDigit));
}

} // namespace

CVelumDecimal::CVelumDecimal(double aReal) : iNegative(std::signbit(aReal)) {
  // "d.ddde+xx" with at most 17 digits.
  std::array<char, 40> text;
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), std::fabs(aReal), std::chars_format::scientific);
  const char* c = text.data();
  for (; c != end.ptr && *c != 'e'; ++c)
    if (*c != '.') iDigits[static_cast<size_t>(iCount++)] = static_cast<char>(*c - '0');
  ++c;
  if (c < end.ptr && *c == '+') ++c;
  int exponent = 0;
  std::from_chars(c, end.ptr, exponent);
  iPoint = exponent + 1;
  while (iCount > 0 && iDigits[static_cast<size_t>(iCount - 1)] == 0) --iCount;
}

int CVelumDecimal::DigitAt(int aPlace) const {
  const int index = Point() + aPlace;
  return index < 0 || index >= iCount ? 0 : iDigits[static_cast<size_t>(index)];
}

void CVelumDecimal::RoundTo(int aDecimals) {
  const qint64 keep = qint64{Point()} + aDecimals;
  if (keep >= iCount) return;
  const bool up = keep >= 0 && iDigits[static_cast<size_t>(keep)] >= 5;
  iCount = static_cast<int>(qMax<qint64>(keep, 0));
  if (up) {
    while (iCount > 0 && iDigits[static_cast<size_t>(iCount - 1)] == 9) --iCount;
    if (iCount > 0) {
      ++iDigits[static_cast<size_t>(iCount - 1)];
    } else {
      iDigits[static_cast<size_t>(iCount++)] = 1;
      ++iPoint;
    }
  }
  while (iCount > 0 && iDigits[static_cast<size_t>(iCount - 1)] == 0) --iCount;
}

double CVelumDecimal::ToReal() const {
  if (iCount == 0) return 0.0;
  QVarLengthArray<char, 40> text;
  if (iNegative) text.append('-');
  text.append('.');
  for (int i = 0; i < iCount; ++i) text.append(static_cast<char>('0' + iDigits[static_cast<size_t>(i)]));
  const QByteArray exponent = "e" + QByteArray::number(iPoint);
  text.append(exponent.constData(), exponent.size());
  // Rounded up from the largest reals it may be beyond all of them.
  double real = 0.0;
  const bool fits = Parse({text.data(), static_cast<size_t>(text.size())}, real);
  return fits ? real : std::copysign(std::numeric_limits<double>::max(), iNegative ? -1.0 : 1.0);
}

bool CVelumDecimal::Parse(std::string_view aPlain, double& aReal) {
  double real = 0.0;
  const auto result = std::from_chars(aPlain.data(), aPlain.data() + aPlain.size(), real);
  // Which of the two it is, from_chars does not tell.
  if (result.ec == std::errc::result_out_of_range)
    real = QString::fromLatin1(aPlain.data(), static_cast<qsizetype>(aPlain.size())).toDouble();
  if (std::isinf(real)) return false;
  aReal = real;
  return true;
}

QString CVelumDecimal::ToText() const {
  QString text;
  text.reserve(24);
  if (Negative()) text += u'-';
  if (Point() > EMaxWhole || Point() < -EMaxZeros)
    AppendExponent(text);
  else
    AppendFixed(text);
  return text;
}

QString CVelumDecimal::ToText(qsizetype aMost) const {
  const QString text = ToText();
  if (text.size() <= aMost) return text;
  if (!text.contains(u'E')) {
    // What must stay: all before the point, and the first digit that is not 0.
    const qsizetype whole = (Negative() ? 1 : 0) + qMax(Point(), 1);
    if (aMost >= (Point() > 0 ? whole : whole + 2 - Point())) return text.left(aMost);
  }
  const QString shorter = ShortExponentText(aMost);
  return shorter.isEmpty() ? text.left(aMost) : shorter;
}

// Empty when no digit fits.
QString CVelumDecimal::ShortExponentText(qsizetype aMost) const {
  QString text;
  if (Negative()) text += u'-';
  AppendExponent(text);
  const qsizetype start = text.indexOf(u'E');
  const qsizetype keep = qMin(start, aMost - (text.size() - start));
  if (keep < (Negative() ? 2 : 1)) return {};
  QStringView digits = QStringView(text).left(keep);
  if (digits.endsWith(u'.')) digits.chop(1);
  return digits.toString() + text.mid(start);
}

QString CVelumDecimal::TextOf(double aReal) {
  if (std::isfinite(aReal)) return CVelumDecimal(aReal).ToText();
  if (std::isnan(aReal)) return u"NAN"_s;
  return aReal > 0 ? u"INF"_s : u"-INF"_s;
}

void CVelumDecimal::AppendFixed(QString& aText) const {
  for (int place = -qMax(Point(), 1); place < 0; ++place) aText += CharOf(DigitAt(place));
  if (Decimals() > 0) aText += u'.';
  for (int place = 0; place < Decimals(); ++place) aText += CharOf(DigitAt(place));
}

void CVelumDecimal::AppendExponent(QString& aText) const {
  for (int i = 0; i < iCount; ++i) {
    if (i == 1) aText += u'.';
    aText += CharOf(iDigits[static_cast<size_t>(i)]);
  }
  const int exponent = iPoint - 1;
  aText += u'E';
  aText += exponent < 0 ? u'-' : u'+';
  aText += QString::number(std::abs(exponent)).rightJustified(2, u'0');
}
