// The exact way in the window of the CSV settings.
#include "exchange/FailingTaker.h"
#include "shell/CsvFormTest.h"

#include <QFile>

using CVelumCsvImportOptionsExactTest = CsvFormTest;

TEST_F(CVelumCsvImportOptionsExactTest, ShowsTheFirstRecordsAtOnceAndExactly) {
  Start();
  OpenForm("Zip|Day|Count\n01234|16/07/2010|1\n02345||2\n");
  EXPECT_TRUE(Checked(u"fExact"_s));
  EXPECT_TRUE(Checked(u"fBar"_s));
  EXPECT_TRUE(Checked(u"fAutoCoding"_s));
  EXPECT_EQ(Find<QTabWidget>(u"fTabs"_s).currentWidget()->objectName(), u"fPreviewPage"_s);
  EXPECT_EQ(Titles(), QStringList({u"Zip\nText"_s, u"Day\nDate"_s, u"Count\nInteger"_s}));
  EXPECT_EQ(Cell(0, 0), u"01234"_s);
  EXPECT_EQ(Find<QLabel>(u"fPreviewNote"_s).text(), u"2 cards in the file"_s);
  Press(u"fComma"_s);
  EXPECT_EQ(Titles(), QStringList({u"Zip|Day|Count\nText"_s})) << "shown at once";
  Find<QLineEdit>(u"fOtherDelim"_s).setFocus();
  QTest::keyClicks(&Find<QLineEdit>(u"fOtherDelim"_s), u"/"_s);
  EXPECT_TRUE(Checked(u"fOther"_s));
  EXPECT_EQ(Cell(0, 0), u"01234|16"_s);
  Press(u"fBar"_s);
  Press(u"fHeaderLine"_s);
  EXPECT_EQ(Titles().first(), u"Field 1\nText"_s);
  Find<QSpinBox>(u"fSkipLines"_s).setValue(1);
  EXPECT_EQ(Cell(0, 0), u"01234"_s);
  Press(u"fUtf16"_s);
  EXPECT_NE(Cell(0, 0), u"01234"_s);
  Press(u"fClassic"_s);
  EXPECT_EQ(Titles().size(), 1) << "the older rules know no bars";
}

TEST_F(CVelumCsvImportOptionsExactTest, MarksAndCountsCellsThatAChosenTypeChanges) {
  Start();
  OpenForm("Zip,Size\n01234,1\n56789,x\n00001,\n");
  auto& box = Find<QTableWidget>(u"fPreviewBox"_s);
  EXPECT_EQ(TypesOf(0).at(2), u"Integer"_s);
  ChooseType(0, 2);
  EXPECT_EQ(Titles().first(), u"Zip\nInteger\n2 change"_s);
  EXPECT_TRUE(box.item(0, 0)->font().bold());
  EXPECT_FALSE(box.item(1, 0)->font().bold());
  EXPECT_TRUE(Find<QPushButton>(u"fImportBut"_s).isEnabled()) << "the user asked for it";
  box.setCurrentCell(0, 1);
  Find<QComboBox>(u"fColumnType"_s).setCurrentIndex(2);
  EXPECT_EQ(Titles().last(), u"Size\nInteger\n1 left out"_s);
  EXPECT_EQ(box.currentColumn(), 1) << "stays chosen";
  EXPECT_FALSE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  EXPECT_TRUE(Find<QPlainTextEdit>(u"fFaults"_s).toPlainText().contains(u"line 3, column 2"_s));
  Press(u"fDrop"_s);
  Press(u"fImportBut"_s);
  ASSERT_TRUE(gStack);
  ASSERT_TRUE(ReportForm().isVisible());
  EXPECT_TRUE(ReportText().contains(u"2 cells show another text than the file"_s));
  auto* cells = ReportForm().findChild<QTableWidget*>(u"fCells"_s);
  EXPECT_FALSE(cells->isVisible());
  ReportForm().findChild<QPushButton*>(u"fShowCells"_s)->click();
  EXPECT_TRUE(cells->isVisible());
  EXPECT_EQ(cells->rowCount(), 3);
  EXPECT_EQ(cells->item(0, 2)->text(), u"01234"_s);
  EXPECT_EQ(cells->item(0, 3)->text(), u"1234"_s);
  EXPECT_EQ(cells->item(1, 1)->text(), u"Size"_s);
}

TEST_F(CVelumCsvImportOptionsExactTest, NamesCardsByTheColumnThatIsChosen) {
  Start();
  OpenForm("Zip,Town\n01234,Lyon\n56789,Graz\n");
  auto& naming = Find<QComboBox>(u"fNaming"_s);
  EXPECT_EQ(naming.currentText(), u"the first column, if suitable"_s);
  naming.setCurrentIndex(naming.findText(u"Town"_s));
  Q_EMIT naming.activated(naming.currentIndex());
  Press(u"fImportBut"_s);
  EXPECT_EQ(CardName(), u"Lyon"_s);
}

TEST_F(CVelumCsvImportOptionsExactTest, OffersToKeepTheCardsSorted) {
  Start();
  OpenForm("Town,Size\nB,1\nA,2\nC,3\n");
  Press(u"fImportBut"_s);
  Ref<CVelumControlSet> set;
  qint32 index = 0;
  ASSERT_TRUE(gStack->GetFirstBackground(set, index));
  EXPECT_FALSE(set->Flag(ECseKeepCardsSorted));
  EXPECT_TRUE(ReportText().endsWith(u"sorted by Size: keep sorted?"_s));
  ReportForm().findChild<QPushButton*>(u"fKeepSorted"_s)->click();
  EXPECT_TRUE(set->Flag(ECseKeepCardsSorted));
  EXPECT_FALSE(ReportForm().findChild<QPushButton*>(u"fKeepSorted"_s)->isEnabled());
  EXPECT_TRUE(gStack->Changed());
  AnswerSave(u"fDiscardBut"_s);
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumCsvReport"_s));
}

TEST_F(CVelumCsvImportOptionsExactTest, TheReportLetsGoOfABackgroundThatIsDeleted) {
  Start();
  OpenForm("Town,Size\nB,1\nA,2\nC,3\n");
  Press(u"fImportBut"_s);
  Ref<CVelumControlSet> set;
  qint32 index = 0;
  ASSERT_TRUE(gStack->GetFirstBackground(set, index));
  auto* keep = ReportForm().findChild<QPushButton*>(u"fKeepSorted"_s);
  EXPECT_TRUE(keep->isVisible());
  CVelumSeams::ChangeNotify(6, set.Get());
  EXPECT_FALSE(keep->isVisible());
}

TEST_F(CVelumCsvImportOptionsExactTest, AddsToABackgroundAndMatchesFieldsByHand) {
  Start();
  OpenForm("Name,Size\nAnna,1\n");
  Press(u"fImportBut"_s);
  OpenForm("Weight,Name\n2,Bob\n", true);
  EXPECT_EQ(Titles(), QStringList({u"Weight\n(no field)"_s, u"Name\nText"_s}));
  EXPECT_FALSE(Find<QComboBox>(u"fColumnType"_s).isEnabled()) << "fields have their types";
  EXPECT_TRUE(Find<QTableWidget>(u"fPreviewBox"_s).item(0, 0)->font().strikeOut()) << "left out";
  EXPECT_FALSE(Find<QTableWidget>(u"fPreviewBox"_s).item(0, 1)->font().strikeOut());
  EXPECT_FALSE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  Find<QTableWidget>(u"fPreviewBox"_s).setCurrentCell(0, 0);
  auto& field = Find<QComboBox>(u"fColumnField"_s);
  ASSERT_TRUE(field.isVisible());
  field.setCurrentIndex(field.findText(u"Size"_s));
  Q_EMIT field.activated(field.currentIndex());
  EXPECT_EQ(Titles().first(), u"Weight\n→ Size: Integer"_s);
  Press(u"fAddCards"_s);
  EXPECT_EQ(Find<QLabel>(u"fTarget"_s).text(), u"Adds to the 1 card of “First Background”."_s);
  Press(u"fImportBut"_s);
  EXPECT_EQ(iPresenter.Count(), 0) << "nothing goes";
  EXPECT_EQ(gStack->NumCards(), 2);
}

TEST_F(CVelumCsvImportOptionsExactTest, StopsAtWhatCannotComeInWhole) {
  Start();
  OpenForm("a,b\n1,2,3\n");
  EXPECT_TRUE(Find<QPlainTextEdit>(u"fFaults"_s)
                  .toPlainText()
                  .contains(u"line 2, column 3: more cells than columns"_s));
  EXPECT_FALSE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  Press(u"fDrop"_s);
  EXPECT_TRUE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  Press(u"fDrop"_s);
  Press(u"fHeaderLine"_s);
  EXPECT_TRUE(Find<QPushButton>(u"fImportBut"_s).isEnabled()) << "there are three columns then";
  EXPECT_FALSE(Find<QCheckBox>(u"fDrop"_s).isVisible());
}

TEST_F(CVelumCsvImportOptionsExactTest, LooksThroughALongFileInSlicesAndImportsThen) {
  Start();
  OpenForm("n,zip\n" + QByteArray("1,12345678\n").repeated(1500000) + "2,01234\n");
  EXPECT_EQ(Titles().last(), u"zip\nInteger"_s) << "by the first records";
  EXPECT_EQ(Find<QTableWidget>(u"fPreviewBox"_s).rowCount(), 100);
  EXPECT_FALSE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  EXPECT_TRUE(Find<QLabel>(u"fPreviewNote"_s).text().contains(u"looking through the file"_s));
  ChooseType(0, 1);
  EXPECT_EQ(Titles().first(), u"n\nText"_s) << "shown at once";
  EXPECT_TRUE(QTest::qWaitFor([] { return Find<QPushButton>(u"fImportBut"_s).isEnabled(); }, 60000));
  EXPECT_EQ(Titles().last(), u"zip\nText"_s) << "by all of them";
  Press(u"fCancel"_s);
}

TEST_F(CVelumCsvImportOptionsExactTest, TellsOfAFileThatCannotBeReadAnyMore) {
  Start();
  OpenForm("n,zip\n1,2\n");
  ASSERT_TRUE(QFile::remove(iPath));
  Press(u"fUtf8"_s);
  EXPECT_TRUE(Find<QLabel>(u"fPreviewNote"_s).text().contains(u"table.csv"_s))
      << Find<QLabel>(u"fPreviewNote"_s).text().toStdString();
  EXPECT_FALSE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  Press(u"fHeaderLine"_s);
  EXPECT_FALSE(Find<QPushButton>(u"fImportBut"_s).isEnabled()) << "it is still gone";
  iFolder.Write(u"table.csv"_s, "n,zip\n1,2\n");
  Press(u"fHeaderLine"_s);
  EXPECT_TRUE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumCsvImportOptionsExactTest, OffersBothReadingsOfAnAmbiguousColumn) {
  Start();
  OpenForm("p,q\n,x\n\"1,234\",y\n\"5,678\",z\n");
  EXPECT_EQ(Titles().first(), u"p\nText ?"_s);
  EXPECT_EQ(TypesOf(0), QStringList({u"As proposed"_s, u"Text"_s, u"Integer: “1,234” is 1234"_s,
                                     u"Float: “1,234” is 1.234"_s, u"Date"_s, u"Time"_s, u"Boolean"_s}));
  EXPECT_EQ(TypesOf(1).at(2), u"Integer"_s);
  ChooseType(0, 3);
  EXPECT_EQ(Titles().first(), u"p\nFloat"_s);
  Press(u"fImportBut"_s);
  EXPECT_EQ(Values(), QStringList({u"-|x"_s, u"1.234|y"_s, u"5.678|z"_s}));
}

TEST_F(CVelumCsvImportOptionsExactTest, TheWayBackToTheOlderRulesForgetsWhatStoodInTheWay) {
  Start();
  OpenForm("a,b\n1,2,3\n");
  EXPECT_FALSE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  Press(u"fClassic"_s);
  EXPECT_TRUE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  EXPECT_FALSE(Find<QPlainTextEdit>(u"fFaults"_s).isVisible());
  Press(u"fExact"_s);
  EXPECT_FALSE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
}

TEST_F(CVelumCsvImportOptionsExactTest, TakesTheChoicesThatAreMadeLast) {
  Start();
  OpenForm("Town,Size\nB,1\nA,2\nC,3,4\n");
  Press(u"fGuessKey"_s);
  Press(u"fDrop"_s);
  auto& naming = Find<QComboBox>(u"fNaming"_s);
  naming.setCurrentIndex(1);
  Press(u"fImportBut"_s);
  EXPECT_EQ(CardName(), u"1"_s);
  EXPECT_FALSE(ReportText().contains(u"keep sorted"_s));
  EXPECT_TRUE(ReportText().contains(u"line 4, column 3: more cells than columns; 1 cell left out"_s));
}

TEST_F(CVelumCsvImportOptionsExactTest, FollowsTheBackgroundThatIsChosen) {
  Start();
  OpenForm("Name,Size\nAnna,1\n");
  Press(u"fImportBut"_s);
  OpenForm("Name,Size\nCyd,3\n");
  EXPECT_FALSE(Find<QLabel>(u"fTarget"_s).isVisible());
  EXPECT_FALSE(Find<QRadioButton>(u"fAddCards"_s).isVisible());
  Ref<CVelumControlSet> set;
  qint32 index = 0;
  ASSERT_TRUE(gStack->GetFirstBackground(set, index));
  CVelumWinMan::NameToForm(u"CVelumImportOptions"_s)
      ->Widget()
      ->findChild<QCheckBox*>(u"fIntoCurStack"_s)
      ->click();
  CVelumWinMan::NameToForm(u"CVelumImportOptions"_s)->Widget()->activateWindow();
  QCoreApplication::processEvents();
  CVelumWinMan::NameToForm(Form())->Widget()->activateWindow();
  QCoreApplication::processEvents();
  EXPECT_EQ(Find<QLabel>(u"fTarget"_s).text(), u"Replaces the 1 card of “First Background”."_s);
  set->ControlAt(1)->SetName(u"Weight"_s);
  CVelumSeams::ChangeNotify(1);
  EXPECT_EQ(Titles().last(), u"Size\n(no field)"_s);
  iPresenter.Answer(true);
  Press(u"fDrop"_s);
  Press(u"fImportBut"_s);
  EXPECT_EQ(Values(), QStringList({u"Cyd|-"_s}));
}

TEST_F(CVelumCsvImportOptionsExactTest, AnImportIsOneStepThatCanBeTakenBack) {
  Start();
  OpenForm("Name,Size\nAnna,1\nBob,2\n");
  Press(u"fImportBut"_s);
  const QStringList before = Values();
  for (const bool classic : {false, true}) {
    OpenForm("Name,Size\nCyd,3\nDan,4\nEve,5\n", true);
    if (classic) Press(u"fClassic"_s);
    iPresenter.Answer(true);
    Press(u"fImportBut"_s);
    const QStringList after = Values();
    EXPECT_EQ(after, QStringList({u"Cyd|3"_s, u"Dan|4"_s, u"Eve|5"_s}));
    EXPECT_TRUE(gStackView->UndoName().startsWith(u"Import "_s)) << gStackView->UndoName().toStdString();
    EXPECT_TRUE(gStackView->UndoName().endsWith(u".csv"_s)) << "without its folder";
    static_cast<void>(gStackView->Undo());
    EXPECT_EQ(Values(), before);
    static_cast<void>(gStackView->Redo());
    EXPECT_EQ(Values(), after);
    static_cast<void>(gStackView->Undo());
  }
}

TEST_F(CVelumCsvImportOptionsExactTest, BringsTheOldCardsBackWhenMemoryRunsOut) {
  Start();
  OpenForm("Name,Size\nAnna,1\nBob,2\n");
  Press(u"fImportBut"_s);
  for (const bool classic : {false, true}) {
    OpenForm("Name,Size\nCyd,3\nDan,4\nEve,5\n", true);
    if (classic) Press(u"fClassic"_s);
    iPresenter.Clear();
    iPresenter.Answer(true);
    {
      CFailingTaker noMemory(2);
      const CVelumRecorder recorder(*gStack, noMemory);
      Press(u"fImportBut"_s);
    }
    EXPECT_GE(iPresenter.Count(), 2) << "the question, and what went wrong";
    EXPECT_EQ(Values(), QStringList({u"Anna|1"_s, u"Bob|2"_s}));
    EXPECT_EQ(CardName(), u"Anna"_s);
    EXPECT_TRUE(IsOpen());
    Press(u"fCancel"_s);
    CVelumWinMan::NameToForm(u"CVelumImportOptions"_s)->Widget()->close();
  }
}
