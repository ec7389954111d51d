// What the classic import of CSV files tells, and what it keeps, when it replaces cards.
#include "CsvImportTest.h"

#include "exchange/CVelumImports.h"
#include "exchange/FailingTaker.h"
#include "persist/CVelumStackCheck.h"

namespace {

class CsvClassicTest : public CsvImportTest {
protected:
  ECsvOutcome ImportClassic(const QByteArray& aBytes) {
    iNew = {};
    return CVelumImports::ImportCsv1(iFolder.Write(u"a.csv"_s, aBytes), iOptions, iWatch, iNew, &iTold);
  }
  ECsvOutcome FillClassic(const QByteArray& aBytes) {
    CVelumPlainStackHost host(iNew.iStack);
    return CVelumImports::ImportCsv1(iFolder.Write(u"a.csv"_s, aBytes), iOptions, iWatch, Set(), host,
                                     &iTold);
  }

  TCsvOptions iOptions;
  TCsvReport iTold;
};

TEST_F(CsvClassicTest, CountsCellsThatShowAnotherText) {
  ASSERT_EQ(ImportClassic("zip,n,d\n01234,5,16/07/2010\n56789,,17/07/2010\n"), ECsvOutcome::Done);
  EXPECT_EQ(iTold.iRecords, 2);
  EXPECT_EQ(iTold.iChanged, 4) << "a zero in front, an empty cell, and the dates";
  ASSERT_EQ(iTold.iColumns.size(), 3);
  EXPECT_EQ(iTold.iColumns.at(0).iChanged, 1);
  EXPECT_EQ(iTold.iColumns.at(1).iEmpty, 1);
  EXPECT_EQ(iTold.iColumns.at(2).iChanged, 2);
  ASSERT_EQ(iTold.iCells.size(), 4U);
  EXPECT_EQ(iTold.iCells[0].iLine, 2);
  EXPECT_EQ(iTold.iCells[0].iText, u"01234");
  EXPECT_EQ(iTold.iCells[0].iShown, u"1234");
  EXPECT_TRUE(CVelumCsvReports::Lines(iTold).contains(u"4 cells show another text than the file"_s));
  EXPECT_TRUE(CVelumCsvReports::Lines(iTold).contains(
      u"First Background keeps its cards sorted, so they are in that order"_s));
  EXPECT_EQ(CVelumCsvReports::ToJson(iTold).value(u"way"_s).toString(), u"classic");
}

TEST_F(CsvClassicTest, ReplacesNoCardsByAFileThatAQuoteBreaksOff) {
  ASSERT_EQ(ImportClassic("id,note\n1,a\n2,b\n"), ECsvOutcome::Done);
  const QStringList before = Cards();
  EXPECT_EQ(FillClassic("id,note\n7,c\n9,\"oops\n"), ECsvOutcome::Faulty);
  EXPECT_EQ(Cards(), before);
  EXPECT_EQ(
      CVelumCsvReports::FaultLines(iTold.iFaults),
      QStringList({u"line 3, column 2: a quote that is never closed; the record and all that follows is "
                   "left out"_s}));
  iOptions.iDrop = true;
  EXPECT_EQ(FillClassic("id,note\n7,c\n9,\"oops\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"7|7|c"_s}));
  EXPECT_EQ(iTold.iReplaced, 2);
  iOptions.iDrop = false;
  EXPECT_EQ(ImportClassic("id,note\n7,c\n9,\"oops\n"), ECsvOutcome::Done)
      << "a new stack takes what there is";
}

TEST_F(CsvClassicTest, KeepsTheOldCardsWhenMemoryRunsOut) {
  ASSERT_EQ(ImportClassic("id,note\n1,a\n2,b\n"), ECsvOutcome::Done);
  const QStringList before = Cards();
  {
    CFailingTaker noMemory(2);
    const CVelumRecorder recorder(*iNew.iStack, noMemory);
    EXPECT_THROW(static_cast<void>(FillClassic("id,note\n7,c\n8,d\n9,e\n")), std::bad_alloc);
  }
  EXPECT_EQ(Cards(), before);
  EXPECT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
}

TEST_F(CsvClassicTest, DoesNotLetAStackGrowThatIsFilledAgainAndAgain) {
  iOptions.iGuessKey = false;
  ASSERT_EQ(ImportClassic("id,note\n1,a\n2,b\n"), ECsvOutcome::Done);
  for (int i = 0; i < 5; ++i) ASSERT_EQ(FillClassic("id,note\n1,a\n1,b\n3,c\n"), ECsvOutcome::Done);
  EXPECT_EQ(iNew.iStack->Cards().Count(), 3);
  EXPECT_EQ(Cards(), QStringList({u"1|1|a"_s, u"1|1|b"_s, u"3|3|c"_s}));
  EXPECT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
  Ref<CVelumCard> card;
  ASSERT_TRUE(iNew.iStack->GetCard(u"3"_s, card));
  EXPECT_EQ(card->Id(), 2);
}

} // namespace
