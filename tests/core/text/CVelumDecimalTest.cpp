#include "core/text/CVelumDecimal.h"
#include "support/PrintQt.h"

#include "core/CVelumObject.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

QString Text(double aReal) {
  return CVelumDecimal::TextOf(aReal);
}

double Rounded(double aReal, int aDecimals) {
  CVelumDecimal decimal(aReal);
  decimal.RoundTo(aDecimals);
  return decimal.ToReal();
}

TEST(CVelumDecimal, WritesTheFewestDigitsThatReadBackEqual) {
  EXPECT_EQ(Text(0), u"0"_s);
  EXPECT_EQ(Text(-0.0), u"0"_s);
  EXPECT_EQ(Text(5), u"5"_s);
  EXPECT_EQ(Text(-1.5), u"-1.5"_s);
  EXPECT_EQ(Text(0.1), u"0.1"_s);
  EXPECT_EQ(Text(0.1 + 0.2), u"0.30000000000000004"_s);
  EXPECT_EQ(Text(100), u"100"_s);
  EXPECT_EQ(Text(1234567.25), u"1234567.25"_s);
}

TEST(CVelumDecimal, ExponentBeyondFifteenDigits) {
  EXPECT_EQ(Text(999999999999999), u"999999999999999"_s);
  EXPECT_EQ(Text(1e14), u"100000000000000"_s);
  EXPECT_EQ(Text(1e15), u"1E+15"_s);
  EXPECT_EQ(Text(1e16), u"1E+16"_s);
  EXPECT_EQ(Text(1234567890123456), u"1.234567890123456E+15"_s);
  EXPECT_EQ(Text(0.0001), u"0.0001"_s);
  EXPECT_EQ(Text(0.00012345), u"0.00012345"_s);
  EXPECT_EQ(Text(0.00001), u"1E-05"_s);
  EXPECT_EQ(Text(-2.5e-7), u"-2.5E-07"_s);
  EXPECT_EQ(Text(1.5e300), u"1.5E+300"_s);
  EXPECT_EQ(Text(5e-324), u"5E-324"_s);
  EXPECT_EQ(Text(std::numeric_limits<double>::max()), u"1.7976931348623157E+308"_s);
}

TEST(CVelumDecimal, WhatIsNoNumber) {
  EXPECT_EQ(Text(HUGE_VAL), u"INF"_s);
  EXPECT_EQ(Text(-HUGE_VAL), u"-INF"_s);
  EXPECT_EQ(Text(std::nan("")), u"NAN"_s);
}

TEST(CVelumDecimal, RandomRealsReadBack) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    const quint64 bits = random();
    double real = 0.0;
    memcpy(&real, &bits, sizeof real);
    if (!std::isfinite(real)) continue;
    const QByteArray text = Text(real).toLatin1();
    ASSERT_EQ(text.toDouble(), real) << text.constData();
    double parsed = 0.0;
    ASSERT_TRUE(CVelumDecimal::Parse(text.constData(), parsed));
    ASSERT_EQ(parsed, real);
    ASSERT_EQ(CVelumDecimal(real).ToReal(), real);
  }
}

TEST(CVelumDecimal, AShorterTextLosesDigitsAndNoMagnitude) {
  const auto cut = [](double aReal, qsizetype aMost) { return CVelumDecimal(aReal).ToText(aMost); };
  EXPECT_EQ(cut(1.5, 15), u"1.5"_s);
  EXPECT_EQ(cut(1.234567890123456, 15), u"1.2345678901234"_s);
  EXPECT_EQ(cut(12345678901234.56, 15), u"12345678901234."_s);
  EXPECT_EQ(cut(123456789012345, 15), u"123456789012345"_s);
  EXPECT_EQ(cut(-123456789012345, 15), u"-1.23456789E+14"_s);
  EXPECT_EQ(cut(-0.0001234567890123, 15), u"-0.000123456789"_s);
  EXPECT_EQ(cut(1.23456789012345e+25, 15), u"1.234567890E+25"_s);
  EXPECT_EQ(cut(1.23456789012e-05, 15), u"1.234567890E-05"_s);
  EXPECT_EQ(cut(-1.7976931348623157e308, 15), u"-1.7976931E+308"_s);
  EXPECT_EQ(cut(-1.7976931348623157e308, 9), u"-1.7E+308"_s);
  EXPECT_EQ(cut(-1.7976931348623157e308, 8), u"-1E+308"_s) << "no point at the end";
  EXPECT_EQ(cut(-1.7976931348623157e308, 7), u"-1E+308"_s);
  EXPECT_EQ(cut(123456, 5), u"1E+05"_s);
  EXPECT_EQ(cut(0.000123, 6), u"0.0001"_s);
  EXPECT_EQ(cut(0.000123, 5), u"1E-04"_s);
  EXPECT_EQ(cut(0.5, 3), u"0.5"_s);
  EXPECT_EQ(cut(0.25, 3), u"0.2"_s);
  EXPECT_EQ(cut(-123456, 5), u"-1234"_s) << "too narrow for any digit";
  EXPECT_EQ(cut(0, 1), u"0"_s);
  EXPECT_EQ(cut(12, 0), QString());
}

TEST(CVelumDecimal, RoundsByTheDecimalText) {
  EXPECT_EQ(Rounded(2.675, 2), 2.68);
  EXPECT_EQ(Rounded(0.125, 2), 0.13);
  EXPECT_EQ(Rounded(-2.5, 0), -3.0);
  EXPECT_EQ(Rounded(2.4999, 0), 2.0);
  EXPECT_EQ(Rounded(0.5, 0), 1.0);
  EXPECT_EQ(Rounded(0.05, 0), 0.0);
  EXPECT_EQ(Rounded(0.0004, 2), 0.0);
  EXPECT_EQ(Rounded(99.995, 2), 100.0);
  EXPECT_EQ(Rounded(1e300, 2), 1e300);
  EXPECT_EQ(Rounded(1.5, 31998), 1.5);
  EXPECT_EQ(Rounded(0, 2), 0.0);
}

TEST(CVelumDecimal, ParseTellsTooLargeFromTooSmall) {
  double real = 7.0;
  EXPECT_FALSE(CVelumDecimal::Parse("1e999", real));
  EXPECT_FALSE(CVelumDecimal::Parse("-1e999", real));
  EXPECT_EQ(real, 7.0);
  EXPECT_TRUE(CVelumDecimal::Parse("1e-999", real));
  EXPECT_EQ(real, 0.0);
}

} // namespace
