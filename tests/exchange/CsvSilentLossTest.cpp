// Cells that a freer reading of numbers and dates destroys: read exactly, each comes back as it was.
#include "CsvImportTest.h"

namespace {

struct TLine {
  const char* iWhat;
  QStringList iCells;
  QString iType;     // of the column
  QStringList iBack; // what is written for other programs; empty: the cells themselves
};

using CsvSilentLossTest = CsvImportTest;

QByteArray FileOf(const QStringList& aCells) {
  QByteArray bytes("c,n\n");
  for (const QString& cell : aCells) bytes += cell.toUtf8() + ",x\n";
  return bytes;
}

// The cells of the first column as they are written for other programs.
QStringList Back(const QByteArray& aExported) {
  QStringList cells;
  for (const QByteArray& line : aExported.split('\n').mid(1))
    if (!line.isEmpty()) cells.append(QString::fromUtf8(line.left(line.lastIndexOf(','))));
  return cells;
}

TEST_F(CsvSilentLossTest, KeepsEveryCell) {
  const TLine lines[] = {
      {"day first", {u"16/07/2010"_s, u"17/07/2010"_s}, u"Date"_s, {u"2010-07-16"_s, u"2010-07-17"_s}},
      {"month first", {u"12/27/2017"_s, u"12/28/2017"_s}, u"Date"_s, {u"2017-12-27"_s, u"2017-12-28"_s}},
      {"a midnight", {u"12:30:00"_s, u"00:00:00"_s}, u"Time"_s, {}},
      {"hours and minutes", {u"9:30"_s, u"10:15"_s}, u"Time"_s, {u"09:30:00"_s, u"10:15:00"_s}},
      {"decimals of unequal length", {u"1.5"_s, u"1.12345"_s}, u"Real"_s, {}},
      {"addresses", {u"10.0.0.100"_s, u"10.0.0.101"_s}, u"Text"_s, {}},
      {"letters between", {u"24h/24"_s, u"24h/24"_s}, u"Text"_s, {}},
      {"fractions", {u"1/4"_s, u"-1/2"_s, u"a-12"_s}, u"Text"_s, {}},
      {"letters in front", {u"tt0012349"_s, u"tt0012350"_s}, u"Text"_s, {}},
      {"letters behind", {u"16a"_s, u"16b"_s}, u"Text"_s, {}},
      {"percent", {u"12%"_s, u"13%"_s}, u"Text"_s, {}},
      {"amounts in brackets", {u"($3.50)"_s, u"($4.50)"_s}, u"Text"_s, {}},
      {"one in brackets", {u"($3.50)"_s, u"4.50"_s}, u"Text"_s, {}},
      {"an exponent", {u"1e7"_s, u"1e8"_s}, u"Text"_s, {}},
      {"postal codes", {u"01234"_s, u"56789"_s}, u"Text"_s, {}},
      {"an empty cell among numbers", {u"1"_s, u""_s}, u"Integer"_s, {}},
      {"an empty cell among truths", {u"true"_s, u""_s}, u"Boolean"_s, {}},
  };
  for (const QString& locale : {u"en_US"_s, u"de_DE"_s, u"C"_s}) {
    CVelumLocale::Init(locale);
    for (const TLine& line : lines) {
      ASSERT_EQ(Import(FileOf(line.iCells)), ECsvOutcome::Done) << line.iWhat;
      EXPECT_EQ(Fields().first(), u"c "_s + line.iType) << line.iWhat << locale.toStdString();
      EXPECT_EQ(Back(Exported().replace("\r\n", "\n")), line.iBack.isEmpty() ? line.iCells : line.iBack)
          << line.iWhat << locale.toStdString();
      EXPECT_EQ(iRun->Report().iChanged, 0) << line.iWhat;
    }
  }
}

TEST_F(CsvSilentLossTest, ThreeDecimalsThroughoutMeanWhatTheLocaleHas) {
  const QByteArray bytes = FileOf({u"52.123"_s, u"48.856"_s});
  ASSERT_EQ(Import(bytes), ECsvOutcome::Done);
  EXPECT_EQ(Fields().first(), u"c Real"_s);
  EXPECT_EQ(Back(Exported().replace("\r\n", "\n")), QStringList({u"52.123"_s, u"48.856"_s}));
  CVelumLocale::Init(u"de_DE"_s);
  ASSERT_EQ(Import(bytes), ECsvOutcome::Done);
  EXPECT_EQ(Fields().first(), u"c Text"_s);
  EXPECT_TRUE(Report().contains(
      u"stay Text, as the points could part thousands (as Integer) or decimals (as Real): c\n"_s))
      << Report().toStdString();
}

TEST_F(CsvSilentLossTest, KeepsRowsBehindCellsThatEndWithALineBreak) {
  ASSERT_EQ(Import("id,v\n1,\"a\n\"\n2,b\n3,\"c \"\"d\"\" e\"\n4,f\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|1|a\n"_s, u"2|2|b"_s, u"3|3|c \"d\" e"_s, u"4|4|f"_s}));
}

TEST_F(CsvSilentLossTest, WritesAllDigitsAndNoPointBehindWholeOnes) {
  ASSERT_EQ(Import("n,r\n1,0.123456789012\n2,0.000000001\n3,2000\n"), ECsvOutcome::Done);
  EXPECT_EQ(Exported(), "n,r\r\n1,0.123456789012\r\n2,0.000000001\r\n3,2000\r\n");
}

TEST_F(CsvSilentLossTest, QuotesDoNotDoubleWithEachRound) {
  QByteArray bytes = "q,n\r\n\"He said \"\"hi\"\"\",1\r\n";
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(Import(bytes), ECsvOutcome::Done);
    EXPECT_EQ(Exported(), bytes);
    bytes = Exported();
  }
  EXPECT_EQ(Cards().first(), u"He said \"hi\"|He said \"hi\"|1"_s);
}

TEST_F(CsvSilentLossTest, NumbersGoIntoFieldsOfTexts) {
  ASSERT_EQ(Import("n,v\nx,text\n"), ECsvOutcome::Done);
  ASSERT_EQ(Fill("n,v\nx,5\ny,6\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"x|x|5"_s, u"y|y|6"_s}));
}

TEST_F(CsvSilentLossTest, KeepsTheOrderOfTheFile) {
  QByteArray bytes("d,n\n");
  for (int day = 7; day <= 31; ++day)
    bytes += QByteArray::number(day).rightJustified(2, '0') + ".12.2020,x\n";
  for (int day = 1; day <= 5; ++day) bytes += "0" + QByteArray::number(day) + ".01.2021,x\n";
  ASSERT_EQ(Import(bytes), ECsvOutcome::Done);
  EXPECT_EQ(Fields().first(), u"d Date"_s);
  EXPECT_TRUE(Cards().first().contains(u"2020-12-07"_s));
  EXPECT_TRUE(Cards().last().contains(u"2021-01-05"_s));
  EXPECT_TRUE(Report().endsWith(u"sorted by d: keep sorted?"_s));
}

} // namespace
