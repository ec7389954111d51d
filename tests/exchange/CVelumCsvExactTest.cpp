#include "CsvImportTest.h"

#include "exchange/CVelumCsvSample.h"
#include "exchange/FailingTaker.h"
#include "persist/CVelumStackCheck.h"

#include <QJsonArray>

namespace {

using CVelumCsvExactTest = CsvImportTest;

QByteArray Repeat(const QByteArray& aText, int aTimes) {
  return aText.repeated(aTimes);
}

TEST_F(CVelumCsvExactTest, MakesFieldsAndCardsInTheOrderOfTheFile) {
  ASSERT_EQ(Import("name,size,born\nB,2,2003-01-02\nA,1,\n"), ECsvOutcome::Done);
  EXPECT_EQ(Fields(), QStringList({u"name Text"_s, u"size Integer"_s, u"born Date"_s}));
  EXPECT_EQ(Cards(), QStringList({u"B|B|2|2003-01-02"_s, u"A|A|1|-"_s})) << "an empty cell gives no value";
  EXPECT_FALSE(Set()->Flag(ECseKeepCardsSorted));
  EXPECT_TRUE(Field(0).Flag(EConCardName));
  EXPECT_EQ(iNew.iStack->Name(), iFolder.Path(u"a.csv"_s));
  EXPECT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
}

TEST_F(CVelumCsvExactTest, ProposesDelimitersByTheFirstRecords) {
  for (const char delim : {',', ';', '\t', '|'}) {
    QByteArray bytes = "name^size^note\nx^1^\"a,b;c\td|e,,;;||\"\ny^2^z\n";
    ASSERT_EQ(Import(bytes.replace('^', delim)), ECsvOutcome::Done);
    EXPECT_EQ(Set()->NumControls(), 3) << delim;
  }
  ASSERT_EQ(Import("a title, with commas, many, of them\na;b\n1,5;2\n3;4,5\n"), ECsvOutcome::Faulty)
      << "a title is no header line";
  EXPECT_EQ(iRun->Layout().iDelim, u';');
  ASSERT_EQ(Import(Repeat("\n", 150) + "a;b\n1;2\n"), ECsvOutcome::Done);
  EXPECT_EQ(iRun->Layout().iDelim, u';') << "lines with nothing on them do not count";
}

TEST_F(CVelumCsvExactTest, ReadsAsMuchAsTheFirstRecordsNeed) {
  const QByteArray record = Repeat("x", 10000) + "," + Repeat("y", 10000) + "\n";
  const auto begin = CVelumCsvSamples::Begin(iFolder.Write(u"long.csv"_s, "a,b\n" + Repeat(record, 600)));
  EXPECT_EQ(CVelumCsvSamples::Take(begin->Text(), {}, begin->HasZero()).iRecords.size(), 100);
}

TEST_F(CVelumCsvExactTest, SkipsLinesAndTakesAnyDelimiter) {
  iReading.iSkipLines = 2;
  iReading.iDelim = u'^';
  ASSERT_EQ(Import("title \"\n\na^b\n1^2\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|1|2"_s}));
  EXPECT_TRUE(Report().contains(u"2 lines skipped"_s));
}

TEST_F(CVelumCsvExactTest, NumbersEqualNamesAndNamesEmptyOnes) {
  ASSERT_EQ(Import("a,a,,a\n1,2,3,4\n"), ECsvOutcome::Done);
  EXPECT_EQ(Fields(),
            QStringList({u"a Integer"_s, u"a 2 Integer"_s, u"Field 3 Integer"_s, u"a 3 Integer"_s}));
  EXPECT_TRUE(Report().contains(u"names that were empty or there already: a 2, Field 3, a 3"_s));
}

TEST_F(CVelumCsvExactTest, TakesTheWidestRecordWithoutAHeaderLine) {
  iReading.iHeaderLine = false;
  ASSERT_EQ(Import("1\n1,2,3\n\n1,2\n"), ECsvOutcome::Done);
  EXPECT_EQ(Fields().size(), 3);
  EXPECT_EQ(Fields().first(), u"Field 1 Integer");
  EXPECT_EQ(Cards(), QStringList({u"1|1|-|-"_s, u"2|1|2|3"_s, u"3|1|2|-"_s}));
  EXPECT_TRUE(Report().contains(u"2 records have fewer cells than there are columns, the first in line 1"_s));
  EXPECT_TRUE(Report().contains(u"1 line with nothing on them left out"_s));
}

TEST_F(CVelumCsvExactTest, TakesLinesWithNothingOnThemForRecordsOfOneColumn) {
  iReading.iDelim = u',';
  ASSERT_EQ(Import("a\nx\n\ny\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|x"_s, u"2|-"_s, u"3|y"_s}));
  iReading.iHeaderLine = false;
  ASSERT_EQ(Import("x\n\ny\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards().size(), 3);
  EXPECT_EQ(iRun->Report().iRecords, 3);
}

TEST_F(CVelumCsvExactTest, ReadsThousandColumns) {
  QByteArray header;
  QByteArray record;
  for (int i = 0; i < 1000; ++i) {
    header += (i > 0 ? ",c" : "c") + QByteArray::number(i);
    record += (i > 0 ? "," : "") + QByteArray::number(i);
  }
  ASSERT_EQ(Import(header + "\n" + record + "\n"), ECsvOutcome::Done);
  EXPECT_EQ(Set()->NumControls(), 1000);
  EXPECT_TRUE(Cards().first().endsWith(u"|999"_s));
  EXPECT_TRUE(Field(19).InCardView());
  EXPECT_FALSE(Field(20).InCardView());
  EXPECT_TRUE(Field(20).InCardList());
  EXPECT_TRUE(Report().contains(u"not visible in the card view, which has no place for them: c20, c21"_s));
  iReading.iHeaderLine = false;
  EXPECT_EQ(Import(record + ",1000\n"), ECsvOutcome::Faulty);
  EXPECT_EQ(Faults(), QStringList({u"line 1, column 1001: more than 1,000 columns; "
                                   "1 cell beyond column 1,000 left out"_s}));
}

TEST_F(CVelumCsvExactTest, KeepsFieldsInsideOfWhatTheCardWindowHolds) {
  const QByteArray text(200, 'x');
  QByteArray header("l");
  QByteArray record(text);
  for (int i = 0; i < 11; ++i) header += ",l" + QByteArray::number(i), record += "," + text;
  for (int i = 0; i < 11; ++i) header += ",b" + QByteArray::number(i), record += ",true";
  for (int i = 0; i < 11; ++i) header += ",t" + QByteArray::number(i), record += ",x";
  ASSERT_EQ(Import(header + "\n" + record + "\n"), ECsvOutcome::Done);
  QStringList outside;
  for (const TCsvReportColumn& column : iRun->Report().iColumns)
    if (column.iOutside) outside.append(column.iName);
  EXPECT_EQ(outside, QStringList({u"l9"_s, u"l10"_s, u"b10"_s, u"t9"_s, u"t10"_s}))
      << "the last ones for want of a label";
}

TEST_F(CVelumCsvExactTest, StopsAtWhatCannotComeInWhole) {
  const struct {
    QByteArray iBytes;
    QString iFault;
    QStringList iCards; // with "drop"
  } cases[] = {
      {"a,b\n1,2\n3,\"x\n4,5\n",
       u"line 3, column 2: a quote that is never closed; the record and all that follows is left out"_s,
       {u"1|1|2"_s}},
      {"a,b\n1,x\"y\n2,\"z\"z\n",
       u"line 2, column 2: a quote in the middle of a cell: x\"y; 2 cells with such quotes kept as they stand"_s,
       {u"1|1|x\"y"_s, u"2|2|\"z\"z"_s}},
      {QByteArray("a,b\n1,x\0y\n", 10),
       u"line 2, column 2: a zero byte; zero bytes in 1 cell left out"_s,
       {u"1|1|xy"_s}},
      {"a,b\n1," + Repeat("x", 15001) + "\n2,y\n",
       u"line 2, column 2: a cell of more than 15,000 characters; 1 cell left out"_s,
       {u"1|1|-"_s, u"2|2|y"_s}},
      {"a,b\n1,2\n1,2,3,4\n",
       u"line 3, column 3: more cells than columns; 2 cells left out"_s,
       {u"1|1|2"_s, u"2|1|2"_s}},
      {"\xEF\xBB\xBF"
       "a,b\n1,\xFF\n",
       u"line 2: bytes that the encoding does not have; 1 byte has no meaning"_s,
       {u"1|1|\uFFFD"_s}},
  };
  for (const auto& one : cases) {
    iChoice.iDrop = false;
    EXPECT_EQ(Import(one.iBytes), ECsvOutcome::Faulty) << one.iFault.toStdString();
    EXPECT_FALSE(iNew.iStack);
    EXPECT_EQ(Faults(), QStringList({one.iFault}));
    iChoice.iDrop = true;
    ASSERT_EQ(Import(one.iBytes), ECsvOutcome::Done) << one.iFault.toStdString();
    EXPECT_EQ(Cards(), one.iCards);
    EXPECT_TRUE(Report().contains(one.iFault)) << Report().toStdString();
  }
}

TEST_F(CVelumCsvExactTest, TellsOfMixedEncodings) {
  ASSERT_EQ(Import("a,b\n\xC3\xA9,2\n\xE9,3\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"\u00C3\u00A9|\u00C3\u00A9|2"_s, u"\u00E9|\u00E9|3"_s}));
  EXPECT_TRUE(Report().contains(
      u"line 3: bytes that are not UTF-8, though other letters are; all was read as Windows 1252"_s));
  ASSERT_EQ(Import("a,b\n\xE9,2\n\x81,3\n"), ECsvOutcome::Done);
  EXPECT_TRUE(Report().contains(u"line 3: bytes that mean nothing in Windows 1252"_s));
}

TEST_F(CVelumCsvExactTest, TellsWhyNumbersStayTexts) {
  ASSERT_EQ(Import("zip,big,long,n\n01234,3000000000,1.234567890123456,5\n00001,1,2.5,6\n"),
            ECsvOutcome::Done);
  EXPECT_EQ(Fields(), QStringList({u"zip Text"_s, u"big Text"_s, u"long Text"_s, u"n Integer"_s}));
  EXPECT_TRUE(Report().contains(u"stay Text, as zeros in front would go: zip\n"_s)) << Report().toStdString();
  EXPECT_TRUE(Report().contains(u"stay Text, as whole numbers hold 32 bits: big\n"_s));
  EXPECT_TRUE(Report().contains(u"stay Text, as numbers keep 15 digits: long\n"_s));
}

TEST_F(CVelumCsvExactTest, CountsLongCellsAsAStackDoes) {
  EXPECT_EQ(Import("a,b\n1," + Repeat("x", 15000) + "\n"), ECsvOutcome::Done);
  EXPECT_EQ(Import("a,b\n1," + Repeat("\xC3\xA9", 15000) + "\n"), ECsvOutcome::Done);
  EXPECT_EQ(Import("a,b\n1," + Repeat("\xF0\x9F\x98\x80", 7500) + "\n"), ECsvOutcome::Done);
  EXPECT_EQ(Import("a,b\n1," + Repeat("\xF0\x9F\x98\x80", 7501) + "\n"), ECsvOutcome::Faulty);
  EXPECT_EQ(Import("a,b\n1,\"" + Repeat("\"\"", 15000) + "\"\n"), ECsvOutcome::Done)
      << "doubled quotes are one";
}

TEST_F(CVelumCsvExactTest, TellsOfEmptyFiles) {
  for (const char* const bytes : {"", "\n", "\r\n\r\n", "\xEF\xBB\xBF"}) {
    iPresenter.Clear();
    EXPECT_EQ(Import(bytes), ECsvOutcome::Empty);
    EXPECT_EQ(iPresenter.CountOf(EMsgEmptyFile), 1);
    EXPECT_FALSE(iNew.iStack);
  }
  EXPECT_EQ(Import("a,b\n"), ECsvOutcome::Done) << "fields without cards";
  EXPECT_EQ(Fields(), QStringList({u"a Text"_s, u"b Text"_s}));
}

TEST_F(CVelumCsvExactTest, ReadsRecordsThatEndWithCarriageReturns) {
  ASSERT_EQ(Import("a,b\r1,\"x\ry\"\r2,z\r"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|1|x\ry"_s, u"2|2|z"_s}));
}

TEST_F(CVelumCsvExactTest, NamesCardsAsItIsTold) {
  ASSERT_EQ(Import("a,b\nx,1\nx,2\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards().first(), u"1|x|1") << "one name twice, of two";
  EXPECT_TRUE(Report().contains(u"named by numbers"_s));
  iChoice.iNaming = ECsvNaming::Column;
  iChoice.iNameColumn = 1;
  ASSERT_EQ(Import("a,b\nx,0.123456789012\ny,\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"0.12345679|x|0.123456789012"_s, u"2|y|-"_s}))
      << "the value stays whole, whatever the name shows";
  EXPECT_TRUE(Report().contains(u"named by b"_s));
  iChoice.iNaming = ECsvNaming::Numbers;
  ASSERT_EQ(Import("a,b\nx,1\ny,2\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards().last(), u"2|y|2");
  EXPECT_FALSE(Field(0).Flag(EConCardName));
}

TEST_F(CVelumCsvExactTest, LetsOneNameIn25BeThereTwice) {
  QByteArray names;
  for (int i = 0; i < 24; ++i) names += "n" + QByteArray::number(i) + ",x\n";
  ASSERT_EQ(Import("a,b\n" + names + "n0,x\n"), ECsvOutcome::Done);
  EXPECT_TRUE(Field(0).Flag(EConCardName));
  ASSERT_EQ(Import("a,b\n" + names + "n0,x\nn0,x\n"), ECsvOutcome::Done);
  EXPECT_FALSE(Field(0).Flag(EConCardName));
}

TEST_F(CVelumCsvExactTest, ProposesASortKeyButSetsNone) {
  ASSERT_EQ(Import("n,d\nb,2003-01-02\na,2003-01-02\nc,2003-02-01\n"), ECsvOutcome::Done);
  EXPECT_TRUE(Report().endsWith(u"sorted by d: keep sorted?"_s)) << Report().toStdString();
  EXPECT_FALSE(Set()->Flag(ECseKeepCardsSorted));
  CVelumCsvExact::KeepSorted(*iNew.iStack, Set(), iRun->SortField());
  EXPECT_TRUE(Set()->Flag(ECseKeepCardsSorted));
  EXPECT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
  EXPECT_EQ(Cards().first().left(1), u"b");
  for (const char* const bytes : {"n,d\nb,2\na,1\n", "n,d\nb,\na,1\n", "n,d\nb,1\na,1\n"}) {
    ASSERT_EQ(Import(bytes), ECsvOutcome::Done);
    EXPECT_EQ(iRun->SortField(), ENoInt) << bytes;
  }
  iChoice.iProposeKey = false;
  ASSERT_EQ(Import("n\n1\n2\n"), ECsvOutcome::Done);
  EXPECT_EQ(iRun->SortField(), ENoInt);
}

TEST_F(CVelumCsvExactTest, MakesTheTypesThatAreChosenAndCountsWhatChanges) {
  iChoice.iTypes.insert(0, EConInteger);
  ASSERT_EQ(Import("zip,n\n01234,1\n56789,2\n"), ECsvOutcome::Done);
  EXPECT_EQ(Fields().first(), u"zip Integer");
  EXPECT_EQ(Cards().first(), u"1234|1234|1");
}

TEST_F(CVelumCsvExactTest, ReportsCellsThatAChosenTypeChanges) {
  iChoice.iTypes.insert(1, EConInteger);
  iChoice.iNaming = ECsvNaming::Numbers;
  ASSERT_EQ(Import("n,zip\n1,01234\n2,56789\n3,\n"), ECsvOutcome::Done);
  EXPECT_EQ(iRun->Report().iChanged, 1);
  EXPECT_EQ(iRun->Report().iColumns.at(1).iChanged, 1);
  ASSERT_EQ(iRun->Report().iCells.size(), 1U);
  EXPECT_EQ(iRun->Report().iCells[0].iLine, 2);
  EXPECT_EQ(iRun->Report().iCells[0].iText, u"01234");
  EXPECT_EQ(iRun->Report().iCells[0].iShown, u"1234");
  EXPECT_TRUE(Report().contains(u"1 cell shows another text than the file"_s));
  EXPECT_TRUE(Report().contains(u"zip Integer (1 empty, 1 changed)"_s)) << Report().toStdString();
  EXPECT_EQ(Import("n,zip\n1,abc\n2,5\n"), ECsvOutcome::Faulty);
  EXPECT_EQ(Faults(), QStringList({u"line 2, column 2: a cell that does not fit the type of its column: abc; "
                                   "1 cell left out"_s}));
}

TEST_F(CVelumCsvExactTest, ChecksChosenTypesToTheLastRecord) {
  iChoice.iTypes.insert(1, EConInteger);
  ASSERT_EQ(Import("n,zip\n" + Repeat("x,05\n", 20000)), ECsvOutcome::Done);
  EXPECT_EQ(iRun->Report().iChanged, 20000);
  EXPECT_EQ(iRun->Report().iCells.size(), TCsvReport::EMaxCells);
  EXPECT_EQ(Import("n,zip\n1,5\n\"x\ny\",abc\n"), ECsvOutcome::Faulty);
  EXPECT_TRUE(Faults().first().startsWith(u"line 4, column 2: "_s)) << "on the line of the cell";
}

TEST_F(CVelumCsvExactTest, TellsOfWhatTheLocaleDecided) {
  ASSERT_EQ(Import("d,n,g\n1/2/2003,\"1,234\",\"1,234,567\"\n"), ECsvOutcome::Done);
  EXPECT_TRUE(Report().contains(
      u"dates that do not tell day from month, read with the month first, as the locale has it: d\n"_s));
  EXPECT_TRUE(Report().contains(
      u"stay Text, as the commas could part thousands (as Integer) or decimals (as Real): n\n"_s));
  EXPECT_TRUE(Report().contains(u"commas part thousands: g\n"_s)) << Report().toStdString();
  iChoice.iDetectTypes = false;
  ASSERT_EQ(Import("d,n\n1/2/2003,1\n"), ECsvOutcome::Done);
  EXPECT_EQ(Fields(), QStringList({u"d Text"_s, u"n Text"_s}));
}

TEST_F(CVelumCsvExactTest, MatchesColumnsToFieldsByName) {
  ASSERT_EQ(Import("n,a,b\n1,x,y\n"), ECsvOutcome::Done);
  ASSERT_EQ(Fill("b,n,a\ny2,2,x2\ny3,3,\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"2|2|x2|y2"_s, u"3|3|-|y3"_s}));
  EXPECT_TRUE(Report().startsWith(u"2 cards into 'First Background', in place of 1 card;"_s))
      << Report().toStdString();
  iReading.iHeaderLine = false;
  ASSERT_EQ(Fill("4,x4,y4\n"), ECsvOutcome::Done) << "without names by place";
  EXPECT_EQ(Cards(), QStringList({u"4|4|x4|y4"_s}));
  EXPECT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
}

TEST_F(CVelumCsvExactTest, AddsCardsToABackground) {
  ASSERT_EQ(Import("n,a\n1,x\n2,y\n"), ECsvOutcome::Done);
  iChoice.iAdd = true;
  ASSERT_EQ(Fill("a,n\nz,3\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|1|x"_s, u"2|2|y"_s, u"3|3|z"_s}));
  EXPECT_EQ(iRun->Report().iReplaced, 0);
  iChoice.iNaming = ECsvNaming::Numbers;
  Field(0).SetFlag(EConCardName, false);
  ASSERT_EQ(Fill("a\nq\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards().last(), u"4|-|q");
}

TEST_F(CVelumCsvExactTest, StopsAtColumnsWithoutAField) {
  ASSERT_EQ(Import("n,a\n1,x\n"), ECsvOutcome::Done);
  EXPECT_EQ(Fill("n,A,other\n2,y,z\n"), ECsvOutcome::Faulty);
  EXPECT_EQ(Faults(), QStringList({u"line 1, column 2: a column without a field: A; 2 columns left out"_s}));
  EXPECT_EQ(Cards(), QStringList({u"1|1|x"_s}));
  iChoice.iFields.insert(1, Field(1).Id());
  EXPECT_EQ(Fill("n,A,other\n2,y,\n"), ECsvOutcome::Done) << "a column of empty cells loses nothing";
  EXPECT_EQ(Cards(), QStringList({u"2|2|y"_s}));
  iChoice.iFields.insert(0, ENoInt);
  iChoice.iDrop = true;
  EXPECT_EQ(Fill("n,A\n3,z\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|-|z"_s}));
}

TEST_F(CVelumCsvExactTest, StopsAtCellsThatAFieldDoesNotTake) {
  ASSERT_EQ(Import("n,size,born\n1,5,2003-01-02\n"), ECsvOutcome::Done);
  EXPECT_EQ(Fill("n,size,born\n2,many,2003-01-03\n3,007,16/07/2010\n"), ECsvOutcome::Faulty);
  EXPECT_EQ(Faults(),
            QStringList({u"line 2, column 2: a cell that does not fit the type of its column: many; "
                         "2 cells left out"_s}))
      << "the dates are of two forms";
  EXPECT_EQ(Cards().size(), 1);
  iChoice.iDrop = true;
  EXPECT_EQ(Fill("n,size,born\n2,many,2003-01-03\n3,007,2010-07-16\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"2|2|-|2003-01-03"_s, u"3|3|7|2010-07-16"_s}));
  EXPECT_EQ(iRun->Report().iChanged, 1) << "the zeros of 007";
}

TEST_F(CVelumCsvExactTest, TakesFieldsByTheTypeOfTheField) {
  ASSERT_EQ(Import("n,v\n1,text\n"), ECsvOutcome::Done);
  ASSERT_EQ(Fill("n,v\n2,5\n3,0006\n"), ECsvOutcome::Done) << "numbers into a field of texts";
  EXPECT_EQ(Cards(), QStringList({u"2|2|5"_s, u"3|3|0006"_s}));
  Field(1).SetFlags(Field(1).Flags() | EConCardList);
  EXPECT_EQ(Fill("n,v\n2,5\n"), ECsvOutcome::Faulty) << "a computed list takes nothing";
}

TEST_F(CVelumCsvExactTest, SortsIntoABackgroundThatIsKeptSorted) {
  ASSERT_EQ(Import("n,a\n1,x\n2,y\n"), ECsvOutcome::Done);
  CVelumCsvExact::KeepSorted(*iNew.iStack, Set(), Field(0).Id());
  iChoice.iAdd = true;
  ASSERT_EQ(Fill("n,a\n5,v\n0,w\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"0|0|w"_s, u"1|1|x"_s, u"2|2|y"_s, u"5|5|v"_s}));
  EXPECT_TRUE(Report().contains(u"First Background keeps its cards sorted"_s));
  iChoice.iAdd = false;
  ASSERT_EQ(Fill("n,a\n2,v\n1,w\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|1|w"_s, u"2|2|v"_s}));
  ASSERT_EQ(Fill("n,a\n1,v\n2,w\n"), ECsvOutcome::Done);
  EXPECT_EQ(iRun->SortField(), ENoInt) << "it has a key";
  EXPECT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
}

TEST_F(CVelumCsvExactTest, KeepsAnEmptyTextApartFromADefault) {
  ASSERT_EQ(Import("n,a\n1,x\n"), ECsvOutcome::Done);
  Field(1).SetDefaultVal(u"preset"_s);
  ASSERT_EQ(Fill("n,a\n1,\n2,\"\"\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|1|-"_s, u"2|2|"_s}));
}

// Cancels while cards come in.
class CBreaks final : public CVelumImportWatch {
public:
  [[nodiscard]] bool Progress(int aDone) override { return aDone < iCancelAt; }

  int iCancelAt = EAll + 1;
};

TEST_F(CVelumCsvExactTest, LeavesTheOldCardsWhereItIsCancelledOrFails) {
  ASSERT_EQ(Import("n,a\n1,x\n2,y\n3,z\n"), ECsvOutcome::Done);
  const QStringList before = Cards();
  CVelumPlainStackHost host(iNew.iStack);
  CBreaks breaks;
  breaks.iCancelAt = 0;
  EXPECT_EQ(Run("n,a\n4,x\n", Set()).Into(breaks, host), ECsvOutcome::Cancelled);
  breaks.iCancelAt = 460;
  EXPECT_EQ(Run("n,a\n" + Repeat("4,x\n", 10000), Set()).Into(breaks, host), ECsvOutcome::Cancelled);
  EXPECT_EQ(Cards(), before);
  breaks.iCancelAt = CVelumImportWatch::EAll + 1;
  CFailingTaker noMemory(3);
  const auto recorder = std::make_unique<CVelumRecorder>(*iNew.iStack, noMemory);
  EXPECT_THROW(static_cast<void>(Run("n,a\n1,b\n2,c\n3,d\n4,e\n", Set()).Into(breaks, host)), std::bad_alloc);
  EXPECT_EQ(Cards(), before);
  EXPECT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
}

TEST_F(CVelumCsvExactTest, ChoosesAnewWithoutReadingAnew) {
  CVelumCsvExact& run = Run("n,a\n1,x\n");
  ASSERT_TRUE(run.Finish(100, iWatch));
  TCsvChoice choice;
  choice.iTypes.insert(1, EConInteger);
  run.Choose(choice, {});
  ASSERT_TRUE(run.Finish(100, iWatch));
  EXPECT_EQ(run.Check().NumRefused(1), 1);
  run.Choose({}, {});
  ASSERT_TRUE(run.Finish(100, iWatch));
  EXPECT_TRUE(run.Faults().IsEmpty());
}

TEST_F(CVelumCsvExactTest, ReportsInJson) {
  ASSERT_EQ(Import("n,a\n1,x\n2,\n"), ECsvOutcome::Done);
  const QJsonObject json = CVelumCsvReports::ToJson(iRun->Report());
  EXPECT_EQ(json.value(u"records"_s).toInt(), 2);
  EXPECT_EQ(json.value(u"way"_s).toString(), u"exact");
  const QJsonArray columns = json.value(u"columns"_s).toArray();
  ASSERT_EQ(columns.size(), 2);
  EXPECT_EQ(columns.at(1).toObject().value(u"empty"_s).toInt(), 1);
  EXPECT_EQ(columns.at(0).toObject().value(u"type"_s).toString(), u"Integer");
  EXPECT_EQ(json.value(u"sortedBy"_s).toString(), u"n");
}

} // namespace
