#include "exchange/CVelumCsvCells.h"

#include "core/CVelumObject.h"
#include "core/text/CVelumLocale.h"
#include "support/PrintQt.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace CVelumImports;

// -1 when it is no boolean word.
int Boolean(const QString& aText) {
  bool value = false;
  return CsvToBoolean(aText, value) ? (value ? 1 : 0) : -1;
}

// -1 when it is no whole number.
qint32 Int(const QString& aText) {
  qint32 value = 4711;
  const bool ok = CsvToInt(aText, value);
  EXPECT_TRUE(ok || value == 4711) << "left alone";
  return ok ? value : -1;
}

// -1 when it is no real.
double Real(const QString& aText, QChar aDecimal) {
  double value = 0.0;
  return CsvToReal(aText, aDecimal, value) ? value : -1.0;
}

TColStats Scanned(const QString& aText) {
  TColStats stats;
  ScanCell(aText, stats);
  return stats;
}

class CVelumCsvCells : public testing::Test {
protected:
  CVelumCsvCells() { CVelumLocale::Init(u"en_US"_s); }
};

TEST_F(CVelumCsvCells, BooleanWords) {
  for (const QString& word : {u"TRUE"_s, u"t"_s, u"Yes"_s, u"y"_s})
    EXPECT_EQ(Boolean(word), 1) << word.toStdString();
  for (const QString& word : {u"false"_s, u"F"_s, u"NO"_s, u"n"_s})
    EXPECT_EQ(Boolean(word), 0) << word.toStdString();
  for (const QString& word : {u""_s, u"1"_s, u"TR"_s, u"YESS"_s, u"NOT"_s, u"X"_s, u" T"_s, u"FALSES"_s})
    EXPECT_EQ(Boolean(word), -1) << word.toStdString();
}

TEST_F(CVelumCsvCells, WholeNumbersDropAllThatIsNoDigitOrSign) {
  EXPECT_EQ(Int(u"12"_s), 12);
  EXPECT_EQ(Int(u"+7"_s), 7);
  EXPECT_EQ(Int(u"-2147483648"_s), std::numeric_limits<qint32>::min());
  EXPECT_EQ(Int(u"2147483648"_s), -1) << "32 bits";
  EXPECT_EQ(Int(u"1.234"_s), 1234);
  EXPECT_EQ(Int(u"1,234,567"_s), 1234567);
  EXPECT_EQ(Int(u"n01"_s), 1);
  EXPECT_EQ(Int(u"abc"_s), -1);
  EXPECT_EQ(Int(u"12-3"_s), -1);
  EXPECT_EQ(Int(u"+-3"_s), -1);
  EXPECT_EQ(Int(u"\u0663"_s), -1) << "only digits of ASCII";
}

TEST_F(CVelumCsvCells, WholeNumbersAreTheSameInAllLocales) {
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(Int(u"1.234"_s), 1234);
  EXPECT_EQ(Real(u"1,5"_s, u','), 1.5);
  EXPECT_EQ(Real(u"1.5"_s, u'.'), 1.5);
}

TEST_F(CVelumCsvCells, RealsHaveTheDecimalOfTheirColumn) {
  EXPECT_EQ(Real(u"1.5"_s, u'.'), 1.5);
  EXPECT_EQ(Real(u"1.234,5"_s, u','), 1234.5);
  EXPECT_EQ(Real(u"$1,234.50"_s, u'.'), 1234.5);
  EXPECT_EQ(Real(u"+.25"_s, u'.'), 0.25);
  EXPECT_EQ(Real(u"-5."_s, u'.'), -5.0);
  EXPECT_EQ(Real(u"1e5"_s, u'.'), 15.0) << "a letter is dropped";
  EXPECT_EQ(Real(u"."_s, u'.'), -1.0);
  EXPECT_EQ(Real(u""_s, u'.'), -1.0);
  EXPECT_EQ(Real(u"1.2.3"_s, u'.'), -1.0);
  EXPECT_EQ(Real(u"1-2"_s, u'.'), -1.0);
  EXPECT_EQ(Real(u"9"_s.repeated(400), u'.'), -1.0) << "beyond all reals";
}

TEST_F(CVelumCsvCells, CountsNonDigits) {
  EXPECT_EQ(CountNonDigits(u""), 0);
  EXPECT_EQ(CountNonDigits(u"0123456789"), 0);
  EXPECT_EQ(CountNonDigits(u"1/2 a"), 3);
}

TEST_F(CVelumCsvCells, ScanCountsEmptyCellsAndBooleansAlone) {
  EXPECT_EQ(Scanned(u"  "_s).iEmpty, 1);
  const TColStats yes = Scanned(u" yes "_s);
  EXPECT_EQ(yes.iTrues, 1);
  EXPECT_EQ(yes.iWithLetter, 0);
  EXPECT_EQ(Scanned(u"F"_s).iFalses, 1);
}

TEST_F(CVelumCsvCells, ScanLooksAtTheLastSeparator) {
  const TColStats dot = Scanned(u"1,234.56"_s);
  EXPECT_EQ(dot.iDots, 1);
  EXPECT_EQ(dot.iDotDigits, 2);
  EXPECT_EQ(dot.iCommas, 0);
  const TColStats comma = Scanned(u"1.234,5"_s);
  EXPECT_EQ(comma.iCommas, 1);
  EXPECT_EQ(comma.iCommaDigits, 1);
  EXPECT_EQ(comma.iDots, 0);
  EXPECT_EQ(Scanned(u"x."_s).iDots, 1);
}

TEST_F(CVelumCsvCells, ScanCountsOnlyCapitalsOfAscii) {
  EXPECT_EQ(Scanned(u"abc"_s).iWithLetter, 0);
  EXPECT_EQ(Scanned(u"\u00C4\u00D6"_s).iWithLetter, 0);
  EXPECT_EQ(Scanned(u"aBc"_s).iWithLetter, 1);
  EXPECT_EQ(Scanned(u"a1"_s).iWithDigit, 1);
}

TEST_F(CVelumCsvCells, ScanFindsDatesAndTimesOfTheLocale) {
  EXPECT_EQ(Scanned(u"1/15/2020"_s).iDates, 1);
  EXPECT_EQ(Scanned(u"2020-01-15"_s).iDates, 1);
  EXPECT_EQ(Scanned(u"15.1.2020"_s).iDates, 0);
  EXPECT_EQ(Scanned(u"10:30:00"_s).iTimes, 1);
  EXPECT_EQ(Scanned(u"10:30"_s).iTimes, 1);
  EXPECT_EQ(Scanned(u"9:05"_s).iTimes, 0) << "too short";
  EXPECT_EQ(Scanned(u"00:00:00"_s).iTimes, 0) << "midnight is 0";
  EXPECT_EQ(Scanned(u"20200115"_s).iDates, 0) << "digits alone";
  EXPECT_EQ(Scanned(u"12/31/1899"_s).iDates, 0) << "a moment of 1.0 is neither";
  EXPECT_EQ(Scanned(u"12/31/1899"_s).iTimes, 0);
  EXPECT_EQ(Scanned(u"1/1/1900"_s).iDates, 1);
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(Scanned(u"15.1.2020"_s).iDates, 1);
  EXPECT_EQ(Scanned(u"1/15/2020"_s).iDates, 0);
  EXPECT_EQ(Scanned(u"1234.56"_s).iDates, 0);
}

} // namespace
