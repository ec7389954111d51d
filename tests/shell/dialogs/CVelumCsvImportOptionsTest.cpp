#include "shell/dialogs/CVelumCsvImportOptions.h"

#include "shell/CsvFormTest.h"
#include "shell/dialogs/CVelumImportOptions.h"
#include "shell/dialogs/CVelumImportProgress.h"
#include "shell/dialogs/CVelumMsgForm.h"
#include "shell/frame/CVelumShellPresenter.h"
#include "shell/frame/CVelumSilence.h"

#include <QProgressDialog>
#include <QTimer>

using CVelumCsvImportOptionsTest = CsvFormTest;

TEST_F(CVelumCsvImportOptionsTest, ProposesAndShowsTheFirstLines) {
  Start();
  OpenClassic("a\tb\n1\t2\n");
  EXPECT_TRUE(Checked(u"fTab"_s));
  EXPECT_TRUE(Checked(u"fLatin1"_s));
  EXPECT_TRUE(Checked(u"fHeaderLine"_s));
  EXPECT_EQ(Find<CVelumListWidget>(u"fLineBox"_s).CellText(0, 0), u"a<tab>b"_s);
  EXPECT_EQ(Find<CVelumListWidget>(u"fLineBox"_s).model()->rowCount(), 2);
  EXPECT_EQ(CVelumWinMan::NameToForm(Form())->Widget()->windowTitle(), u"CSV Import Options"_s);
}

TEST_F(CVelumCsvImportOptionsTest, HasTheCaptionsThatPeopleKnow) {
  Start();
  OpenForm("a\n1\n");
  const auto caption = [](const QString& aName) { return Find<QAbstractButton>(aName).text().remove(u'&'); };
  EXPECT_EQ(caption(u"fComma"_s), u"Comma , , , , , ,"_s);
  EXPECT_EQ(caption(u"fSemiColon"_s), u"Semicolon ; ; ; ; ;"_s);
  EXPECT_EQ(caption(u"fTab"_s), u"Tab characters"_s);
  EXPECT_EQ(caption(u"fLatin1"_s), u"Latin-1 / Windows"_s);
  EXPECT_EQ(caption(u"fUtf8"_s), u"Unicode in UTF-8 encoding"_s);
  EXPECT_EQ(caption(u"fHeaderLine"_s), u"First line is header line with column names?"_s);
  EXPECT_EQ(caption(u"fDetectTypes"_s), u"Try to detect field types?"_s);
  EXPECT_EQ(caption(u"fGuessKey"_s), u"Try to detect order / create sort key?"_s);
  EXPECT_EQ(caption(u"fTryCardName"_s), u"First field as card name if suitable?"_s);
  EXPECT_EQ(caption(u"fImportBut"_s), u"Import"_s);
  EXPECT_EQ(caption(u"fCancel"_s), u"Cancel"_s);
  EXPECT_EQ(Find<QGroupBox>(u"fDelimiterFrame"_s).title(), u"Delimiter"_s);
  EXPECT_EQ(Find<QGroupBox>(u"fCodingFrame"_s).title(), u"Coding"_s);
}

TEST_F(CVelumCsvImportOptionsTest, ImportsIntoANewStack) {
  Start();
  OpenForm("Name,Size\nAnna,1\nBob,2\n");
  Press(u"fImportBut"_s);
  ASSERT_TRUE(gStack && gStackView);
  EXPECT_EQ(gStack->NumCards(), 2);
  EXPECT_EQ(gStack->Name(), iPath);
  EXPECT_EQ(CardName(), u"Anna"_s);
  EXPECT_TRUE(gStackView->CardListIsOpen());
  EXPECT_FALSE(IsOpen());
  EXPECT_FALSE(ImportIsOpen());
  EXPECT_EQ(iRunner.CountOf(u"openStack"_s), 1);
  EXPECT_EQ(gOptions.iImportCsvDialogInitDir, iFolder.Path());
}

TEST_F(CVelumCsvImportOptionsTest, RemembersTheChoicesOfAnImport) {
  Start();
  OpenClassic("b\n1\n");
  Press(u"fDetectTypes"_s);
  Press(u"fCancel"_s);
  EXPECT_TRUE(gOptions.iCsvDetectTypes) << "not those of one that was given up";
  EXPECT_TRUE(ImportIsOpen());
  OpenClassic("b\n1\n");
  Press(u"fDetectTypes"_s);
  Press(u"fTryCardName"_s);
  Press(u"fHeaderLine"_s);
  Press(u"fImportBut"_s);
  EXPECT_FALSE(gOptions.iCsvDetectTypes);
  EXPECT_FALSE(gOptions.iCsvTryCardName);
  EXPECT_TRUE(gOptions.iCsvGuessKey);
  OpenClassic("b\n1\n");
  EXPECT_FALSE(Checked(u"fDetectTypes"_s));
  EXPECT_TRUE(Checked(u"fHeaderLine"_s)) << "always proposed";
}

TEST_F(CVelumCsvImportOptionsTest, AsksAboutAChangedStackBeforeItGoes) {
  Start(CopyStack(u"a.Orvelle"_s));
  Change();
  const Ref<CVelumStack> old = gStack;
  OpenForm("a\n1\n");
  AnswerSave(u"fBackBut"_s);
  Press(u"fImportBut"_s);
  EXPECT_TRUE(iAsked);
  EXPECT_EQ(gStack, old);
  EXPECT_FALSE(IsOpen());
  OpenForm("a\n1\n");
  AnswerSave(u"fSaveBut"_s);
  Press(u"fImportBut"_s);
  EXPECT_NE(gStack, old);
  EXPECT_FALSE(old->Changed()) << "saved first";
}

TEST_F(CVelumCsvImportOptionsTest, ASaveThatDoesNotSucceedStopsTheImport) {
  Start(CopyStack(u"a.Orvelle"_s));
  Change();
  const Ref<CVelumStack> old = gStack;
  OpenForm("a\n1\n");
  gStack->SetFilename({});
  iPath.clear(); // the question for a name is cancelled
  AnswerSave(u"fSaveBut"_s);
  Press(u"fImportBut"_s);
  EXPECT_TRUE(iAsked);
  EXPECT_EQ(gStack, old);
  EXPECT_TRUE(gStack->Changed());
  EXPECT_FALSE(IsOpen());
}

TEST_F(CVelumCsvImportOptionsTest, TellsOfACellThatIsNeverClosed) {
  Start();
  OpenClassic("a\nB\n\"C\nD\n");
  Press(u"fImportBut"_s);
  ASSERT_TRUE(gStack);
  EXPECT_EQ(gStack->NumCards(), 1);
  ASSERT_EQ(iPresenter.Told().size(), 1);
  EXPECT_TRUE(iPresenter.Told().first().contains(u"line 3"_s));
}

TEST_F(CVelumCsvImportOptionsTest, AFailureLeavesTheOpenStack) {
  Start(CopyStack(u"a.Orvelle"_s));
  const Ref<CVelumStack> old = gStack;
  OpenClassic("a\n" + QByteArray(40000, 'x') + "\n");
  Press(u"fImportBut"_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgSystemError);
  EXPECT_TRUE(iPresenter.LastText().contains(u"line 2"_s));
  EXPECT_EQ(gStack, old);
  EXPECT_EQ(CardName(), u"card 00"_s);
  EXPECT_TRUE(IsOpen());
}

TEST_F(CVelumCsvImportOptionsTest, AnEmptyFileLeavesTheOpenStack) {
  Start(CopyStack(u"a.Orvelle"_s));
  const Ref<CVelumStack> old = gStack;
  OpenForm("");
  Press(u"fImportBut"_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgEmptyFile);
  EXPECT_EQ(gStack, old);
}

TEST_F(CVelumCsvImportOptionsTest, ADelimiterAndACodingHaveToBeChosen) {
  const auto none = [](std::initializer_list<QString> aNames) {
    for (const QString& name : aNames) {
      Find<QRadioButton>(name).setAutoExclusive(false);
      Find<QRadioButton>(name).setChecked(false);
    }
  };
  Start();
  OpenClassic("a\n1\n");
  none({u"fLatin1"_s, u"fUtf8"_s});
  Press(u"fImportBut"_s);
  EXPECT_TRUE(iPresenter.Shown().value(0).iText.contains(u"fImportBut_Click iCoding"_s));
  none({u"fComma"_s, u"fSemiColon"_s, u"fTab"_s});
  iPresenter.Clear();
  Press(u"fImportBut"_s);
  EXPECT_TRUE(iPresenter.Shown().value(0).iText.contains(u"fImportBut_Click iCsvDelim"_s));
  EXPECT_FALSE(gStack);
}

TEST_F(CVelumCsvImportOptionsTest, FillsTheChosenBackground) {
  Start();
  OpenForm("Name,Size\nAnna,1\nBob,2\n");
  Press(u"fImportBut"_s);
  const Ref<CVelumStack> stack = gStack;
  OpenForm("Name,Size\nCyd,3\n", true);
  EXPECT_EQ(Find<QLabel>(u"fTarget"_s).text(), u"Replaces the 2 cards of “First Background”."_s);
  Press(u"fImportBut"_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgDeleteCardsOk);
  EXPECT_TRUE(iPresenter.LastText().contains(u"2 cards of “First Background”"_s));
  EXPECT_EQ(gStack->NumCards(), 2) << "the answer was no";
  iPresenter.Answer(true);
  Press(u"fImportBut"_s);
  EXPECT_EQ(gStack, stack);
  EXPECT_EQ(gStack->NumCards(), 1);
  EXPECT_EQ(CardName(), u"Cyd"_s);
  EXPECT_FALSE(IsOpen());
}

TEST_F(CVelumCsvImportOptionsTest, ForgetsTheTickOfAnImport) {
  Start();
  OpenForm("Name,Size\nAnna,1\n");
  Press(u"fImportBut"_s);
  for (const bool classic : {false, true}) {
    OpenForm("Name,Size\nCyd,3\n", true);
    if (classic) Press(u"fClassic"_s);
    iPresenter.Answer(true);
    Press(u"fImportBut"_s);
    EXPECT_FALSE(IsOpen());
    Choose(u"fImport"_s);
    EXPECT_FALSE(CVelumWinMan::NameToForm(u"CVelumImportOptions"_s)
                     ->Widget()
                     ->findChild<QCheckBox*>(u"fIntoCurStack"_s)
                     ->isChecked());
  }
}

TEST_F(CVelumCsvImportOptionsTest, ReplacesNoCardsByAFileThatAQuoteBreaksOff) {
  Start();
  OpenForm("Name,Size\nAnna,1\n");
  Press(u"fImportBut"_s);
  OpenClassic("Name,Size\nCyd,3\nDan,\"4\n", true);
  iPresenter.Answer(true);
  Press(u"fImportBut"_s);
  EXPECT_EQ(CardName(), u"Anna"_s);
  EXPECT_TRUE(Find<QPlainTextEdit>(u"fFaults"_s)
                  .toPlainText()
                  .contains(u"line 3, column 2: a quote that is never closed"_s));
  EXPECT_FALSE(Find<QPushButton>(u"fImportBut"_s).isEnabled());
  Press(u"fDrop"_s);
  iPresenter.Answer(true);
  Press(u"fImportBut"_s);
  EXPECT_EQ(CardName(), u"Cyd"_s);
}

TEST_F(CVelumCsvImportOptionsTest, PreviewsWhatWillComeIn) {
  Start();
  OpenClassic("Zip,Day\n007,1/2/2003\n8,\"\"\n9\n");
  EXPECT_EQ(Titles(), QStringList({u"Zip\nInteger\n1 change"_s, u"Day\nInteger\n2 change"_s}));
  EXPECT_EQ(Cell(0, 0), u"7"_s);
  EXPECT_EQ(Cell(2, 1), u"(none)"_s);
  Press(u"fHeaderLine"_s);
  EXPECT_EQ(Titles().first(), u"Field 1\nText"_s);
  EXPECT_EQ(Cell(0, 0), u"Zip"_s);
}

TEST_F(CVelumCsvImportOptionsTest, ThePreviewTakesTypesOfTheUser) {
  Start();
  OpenClassic("Zip,Size\n007,1\n008,2\n");
  Find<QTableWidget>(u"fPreviewBox"_s).setCurrentCell(0, 0);
  auto& type = Find<QComboBox>(u"fColumnType"_s);
  EXPECT_EQ(type.currentIndex(), 0);
  type.setCurrentIndex(1);
  EXPECT_EQ(Titles(), QStringList({u"Zip\nText"_s, u"Size\nInteger"_s}));
  EXPECT_EQ(Cell(0, 0), u"007"_s);
  Find<QTableWidget>(u"fPreviewBox"_s).setCurrentCell(0, 1);
  EXPECT_EQ(type.currentIndex(), 0);
  Find<QTableWidget>(u"fPreviewBox"_s).setCurrentCell(1, 0);
  EXPECT_EQ(type.currentIndex(), 1);
  Press(u"fImportBut"_s);
  EXPECT_EQ(CardName(), u"007"_s);
}

TEST_F(CVelumCsvImportOptionsTest, ThePreviewShowsAHundredRows) {
  Start();
  OpenClassic("a\n" + QByteArray("1\n").repeated(200));
  EXPECT_EQ(Find<QTableWidget>(u"fPreviewBox"_s).rowCount(), 100);
}

TEST_F(CVelumCsvImportOptionsTest, AFileThatCannotBeReadIsToldInThePreview) {
  Start();
  OpenClassic("a\n" + QByteArray(40000, 'x') + "\n");
  EXPECT_TRUE(Find<QLabel>(u"fPreviewNote"_s).text().contains(u"line 2"_s));
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumCsvImportOptionsTest, GoesWithTheStackAndWithTheImportWindow) {
  Start(CopyStack(u"a.Orvelle"_s));
  OpenForm("a\n1\n");
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(IsOpen());
  EXPECT_FALSE(ImportIsOpen());
  OpenForm("a\n1\n");
  CVelumWinMan::NameToForm(u"CVelumImportOptions"_s)->Widget()->close();
  EXPECT_FALSE(IsOpen());
}

TEST_F(CVelumCsvImportOptionsTest, CancelStopsAnImport) {
  Start();
  CVelumImportProgress progress(gFrame, u"table.csv"_s);
  EXPECT_TRUE(progress.Progress(10));
  auto* dialog = gFrame->findChild<QProgressDialog*>(u"CVelumProgressBox"_s);
  ASSERT_NE(dialog, nullptr);
  dialog->cancel();
  EXPECT_FALSE(progress.Progress(20));
}

TEST_F(CVelumCsvImportOptionsTest, WorkWithoutAKnownEndIsShownAndCanBeCancelled) {
  Start();
  CVelumImportProgress progress(gFrame, u"table.csv"_s);
  auto* dialog = gFrame->findChild<QProgressDialog*>(u"CVelumProgressBox"_s);
  ASSERT_NE(dialog, nullptr);
  qint64 done = 0;
  for (int i = 0; i < 100 && !dialog->isVisible(); ++i) {
    EXPECT_TRUE(progress.Step(done += 500, 0));
    QTest::qSleep(50);
  }
  ASSERT_TRUE(dialog->isVisible());
  QTimer::singleShot(0, dialog, [dialog] { dialog->findChild<QPushButton*>()->click(); });
  EXPECT_FALSE(progress.Step(done + 500, 0));
}

TEST_F(CVelumCsvImportOptionsTest, ShowsNoMoreOfALineThanARowCanHold) {
  Start();
  OpenClassic(QByteArray(1 << 20, 'x'));
  EXPECT_EQ(Find<CVelumListWidget>(u"fLineBox"_s).CellText(0, 0).size(), 32766);
  Press(u"fImportBut"_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgSystemError);
}

TEST_F(CVelumCsvImportOptionsTest, ThePreviewReadsRealsOfTheUserByTheirSeparator) {
  Start();
  OpenClassic("a;b\n1,5;1,234\nABC;5,678\n");
  EXPECT_EQ(Titles(), QStringList({u"a\nText"_s, u"b\nInteger\n2 change"_s}));
  for (const int column : {0, 1}) {
    Find<QTableWidget>(u"fPreviewBox"_s).setCurrentCell(0, column);
    Find<QComboBox>(u"fColumnType"_s).setCurrentIndex(3);
  }
  EXPECT_EQ(Cell(0, 0), u"1.5"_s);
  EXPECT_EQ(Cell(0, 1), u"1.234"_s);
}

TEST_F(CVelumCsvImportOptionsTest, MarksInTheClassicWayToo) {
  Start();
  OpenClassic("Zip,Size\n01234,1\n56789,2\n00001,3\n");
  EXPECT_EQ(Titles(), QStringList({u"Zip\nInteger\n2 change"_s, u"Size\nInteger"_s}));
  auto& box = Find<QTableWidget>(u"fPreviewBox"_s);
  EXPECT_TRUE(box.item(0, 0)->font().bold());
  EXPECT_FALSE(box.item(1, 0)->font().bold());
  EXPECT_TRUE(box.item(2, 0)->font().bold());
  EXPECT_FALSE(box.item(0, 1)->font().bold());
  Press(u"fImportBut"_s);
  const QString report = ReportText();
  EXPECT_TRUE(report.contains(u"2 cells show another text than the file"_s)) << report.toStdString();
  EXPECT_TRUE(ReportForm().findChild<QPushButton*>(u"fShowCells"_s)->isVisible());
}

TEST_F(CVelumCsvImportOptionsTest, MessagesOfManyLinesCanBeSilenced) {
  Start();
  CVelumShellPresenter windows;
  CVelumSeams::SetPresenter(&windows);
  CVelumImportProgress progress(gFrame, u"table.csv"_s);
  int boxes = 0;
  bool silence = false;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, gFrame, [&] {
    auto* box = qobject_cast<CVelumMsgForm*>(QApplication::activeModalWidget());
    if (!box) return;
    ++boxes;
    auto* silent = box->findChild<QCheckBox*>(u"fSilent"_s);
    EXPECT_TRUE(silent->isVisible());
    if (silence) silent->click();
    box->findChild<QPushButton*>(u"fOk"_s)->click();
  });
  timer.start(1);
  progress.Message(EMsgTooManyItems, CVelumMsg::EUndefParam);
  EXPECT_EQ(boxes, 1);
  silence = true;
  progress.Message(EMsgTooManyItems, CVelumMsg::EUndefParam);
  progress.Message(EMsgTooManyItems, CVelumMsg::EUndefParam);
  EXPECT_EQ(boxes, 2);
  EXPECT_EQ(CVelumSilence::Current(), nullptr);
  timer.stop();
  CVelumSeams::SetPresenter(&iPresenter);
}
