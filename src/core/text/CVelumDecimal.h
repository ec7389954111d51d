// The decimal digits of a real, as few as read back to the same real.
#pragma once

#include <QString>
#include <array>
#include <string_view>

// 0.d1d2d3... times 10 to the power of iPoint. Zero has no digits and no sign; otherwise the first and the
// last digit are not 0.
class CVelumDecimal {
public:
  // aReal must be finite.
  explicit CVelumDecimal(double aReal);

  [[nodiscard]] bool Negative() const { return iNegative && iCount > 0; }
  [[nodiscard]] int Count() const { return iCount; }
  // Number of digits before the point; 0 or less when there are none.
  [[nodiscard]] int Point() const { return iCount > 0 ? iPoint : 0; }
  // The digit, 0 to 9, aPlace places behind the point (from 0), or before it when negative.
  [[nodiscard]] int DigitAt(int aPlace) const;
  // Digits behind the point.
  [[nodiscard]] int Decimals() const { return qMax(0, iCount - Point()); }
  // Keeps aDecimals digits behind the point; a half goes away from zero, as in the decimal text.
  void RoundTo(int aDecimals);
  // The real that a plain text of digits, "-", ".", "e" stands for; 0 when it is too small for a real, false
  // when it is too large.
  [[nodiscard]] static bool Parse(std::string_view aPlain, double& aReal);
  // The real nearest to the digits.
  [[nodiscard]] double ToReal() const;
  // The digits with a point where it belongs, without grouping; with an exponent of two digits or more when
  // there would be more than 15 before the point, or more than three zeros behind it.
  [[nodiscard]] QString ToText() const;
  // The same in at most aMost characters: digits at the end are left out, never the exponent, so that numbers
  // keep their order, and no two of them change places. Where not even one digit fits beside the exponent,
  // which takes 7 characters at most, the text is cut at its end.
  [[nodiscard]] QString ToText(qsizetype aMost) const;
  // The same of any real; "INF", "-INF" and "NAN" for what is no number.
  [[nodiscard]] static QString TextOf(double aReal);

private:
  void AppendFixed(QString& aText) const;
  void AppendExponent(QString& aText) const;
  [[nodiscard]] QString ShortExponentText(qsizetype aMost) const;

  bool iNegative = false;
  int iCount = 0;
  int iPoint = 0;
  std::array<char, 20> iDigits{}; // values 0 to 9
};
