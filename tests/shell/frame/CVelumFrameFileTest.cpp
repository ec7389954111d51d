// Opening, saving and closing by the main window, and its recent files.
#include "core/CVelumMsg.h"
#include "runtime/view/CVelumGenForm.h"
#include "shell/FrameTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/frame/CVelumReport.h"
#include "toolkit/CVelumReg.h"
#include "toolkit/CVelumToolkitLib.h"
#include "toolkit/CVelumWinMan.h"

#include <QFile>

namespace {

class CVelumFrameFileTest : public FrameTest {};

} // namespace

TEST_F(CVelumFrameFileTest, OpenFollowsTheDialog) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start();
  Choose(u"fOpenStack"_s); // cancelled
  EXPECT_FALSE(gStack);
  EXPECT_EQ(iPresenter.Count(), 0);
  iPath = path;
  Choose(u"fOpenStack"_s);
  ASSERT_TRUE(gStack);
  EXPECT_EQ(gFrame->windowTitle(), path + u"[*] - Orvelles"_s);
  EXPECT_EQ(CardName(), u"card 00"_s);
  EXPECT_EQ(iRunner.CountOf(u"openStack"_s), 1);
  EXPECT_EQ(gOptions.iLoadDialogInitDir, iFolder.Path());
  EXPECT_EQ(gFileHistory[0], path);
  // A second stack replaces the first without a question, as nothing was changed.
  iPath = CopyStack(u"b.Orvelle"_s);
  Click(u"OpenStack"_s);
  EXPECT_EQ(gStack->Filename(), iPath);
  EXPECT_EQ(gFileHistory[0], iPath);
  EXPECT_EQ(gFileHistory[1], path);
}

TEST_F(CVelumFrameFileTest, CancelledOpenLeavesTheStackAlone) {
  Start(CopyStack(u"a.Orvelle"_s));
  Change();
  Choose(u"fOpenStack"_s);
  EXPECT_TRUE(gStack);
  EXPECT_EQ(iDialogs, 1);
}

TEST_F(CVelumFrameFileTest, RecentListStandsOldestFirst) {
  Start();
  Open(u"fOpenRecent"_s);
  for (const QAction* item : Menu(u"fOpenRecent"_s)->actions()) {
    EXPECT_FALSE(item->isVisible());
    EXPECT_EQ(item->text(), QString());
    EXPECT_EQ(item->data().toString(), QString());
  }
  for (const QString& name : {u"/x/a.Orvelle"_s, u"/y/b & c.Orvelle"_s, u"/x/d.Orvelle"_s})
    CVelumOptions::AddToFileHistory(name);
  Open(u"fOpenRecent"_s);
  EXPECT_EQ(Captions(*Menu(u"fOpenRecent"_s)).mid(0, 4),
            (QStringList{u"a.Orvelle"_s, u"b && c.Orvelle"_s, u"d.Orvelle"_s, QString()}));
  EXPECT_EQ(Action(u"fHistory0"_s)->data().toString(), u"/x/a.Orvelle"_s);
  EXPECT_EQ(Action(u"fHistory2"_s)->data().toString(), u"/x/d.Orvelle"_s);
  EXPECT_TRUE(Action(u"fHistory2"_s)->isVisible());
  EXPECT_FALSE(Action(u"fHistory3"_s)->isVisible());
  for (int i = 0; i < 9; ++i) CVelumOptions::AddToFileHistory(u"/n/"_s + QString::number(i));
  Open(u"fOpenRecent"_s);
  EXPECT_EQ(Action(u"fHistory0"_s)->text(), u"2"_s);
  EXPECT_EQ(Action(u"fHistory6"_s)->text(), u"8"_s);
}

TEST_F(CVelumFrameFileTest, RecentFileOpens) {
  const QString a = CopyStack(u"a.Orvelle"_s);
  const QString b = CopyStack(u"b.Orvelle"_s);
  Start(a);
  CVelumOptions::AddToFileHistory(b);
  Choose(u"fHistory1"_s); // the newest stands last
  EXPECT_EQ(gStack->Filename(), b);
  Choose(u"fHistory0"_s);
  EXPECT_EQ(gStack->Filename(), a);
}

TEST_F(CVelumFrameFileTest, RecentFileThatIsGoneGivesTheMessageAndStaysInTheList) {
  Start();
  CVelumOptions::AddToFileHistory(u"/nowhere/a.Orvelle"_s);
  Choose(u"fHistory0"_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgFileNotFound);
  EXPECT_TRUE(iPresenter.LastText().contains(u"/nowhere/a.Orvelle"_s));
  EXPECT_EQ(gFileHistory[0], u"/nowhere/a.Orvelle"_s);
  EXPECT_FALSE(gStack);
}

TEST_F(CVelumFrameFileTest, SaveWritesTheChangesAndThePlacesOfWindows) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start(path);
  Change();
  const QString descr = gStack->Descr();
  CVelumForm* card = CVelumWinMan::NameToForm(u"CVelumGenForm"_s);
  card->SetPlace(QRectF(150, 300, 4500, 4800), true);
  Click(u"SaveStack"_s);
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_FALSE(gStack->Changed());
  Choose(u"fCloseStack"_s);
  CVelumOptions::AddToFileHistory(path);
  Choose(u"fHistory0"_s);
  ASSERT_TRUE(gStack);
  EXPECT_EQ(gStack->Descr(), descr);
  EXPECT_EQ(CVelumWinMan::NameToForm(u"CVelumGenForm"_s)->Place(), QRectF(150, 300, 4500, 4800));
}

TEST_F(CVelumFrameFileTest, FailedSaveIsShownAndLeavesTheStackOpenAndChanged) {
  Start(CopyStack(u"a.Orvelle"_s));
  Change();
  gStack->SetFilename(iFolder.Path(u"no/such/folder/a.Orvelle"_s));
  Choose(u"fSaveStack"_s);
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_TRUE(gStack->Changed());
  Click(u"NextCard"_s);
  EXPECT_EQ(CardName(), u"card 01"_s);
}

TEST_F(CVelumFrameFileTest, RefusedSaveSaysWhy) {
  Start(CopyStack(u"a.Orvelle"_s));
  gStack->SetDescr(QString(20000, u'x'));
  Choose(u"fSaveStack"_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgCouldNotSave);
  EXPECT_TRUE(iPresenter.LastText().contains(u"too long"_s)) << iPresenter.LastText().toStdString();
  EXPECT_TRUE(gStack->Changed());
}

TEST_F(CVelumFrameFileTest, StackWithoutNameIsSavedAs) {
  Start(CopyStack(u"a.Orvelle"_s));
  gStack->SetFilename({});
  Choose(u"fSaveStack"_s);
  EXPECT_EQ(iDialogs, 1);
  EXPECT_EQ(gStack->Filename(), QString()); // cancelled, silently
  EXPECT_EQ(iPresenter.Count(), 0);
  iPath = iFolder.Path(u"new.Orvelle"_s);
  Choose(u"fSaveStack"_s);
  EXPECT_EQ(gStack->Filename(), iPath);
  EXPECT_TRUE(QFile::exists(iPath));
}

TEST_F(CVelumFrameFileTest, SaveAsShowsTheNewNameAtOnceAndOpensAgain) {
  const QString old = CopyStack(u"a.Orvelle"_s);
  const QByteArray before = iFolder.Read(u"a.Orvelle"_s);
  Start(old);
  Change();
  iRunner.iSent.clear();
  iPath = iFolder.Path(u"b.Orvelle"_s);
  Choose(u"fSaveStackAs"_s);
  EXPECT_EQ(gFrame->windowTitle(), iPath + u"[*] - Orvelles"_s);
  EXPECT_EQ(gFileHistory[0], iPath);
  EXPECT_EQ(gFileHistory[1], old);
  EXPECT_FALSE(gStack->Changed());
  EXPECT_EQ(iRunner.CountOf(u"openStack"_s), 1);
  EXPECT_EQ(iFolder.Read(u"a.Orvelle"_s), before);
}

TEST_F(CVelumFrameFileTest, FailedSaveAsKeepsTheName) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start(path);
  iPath = iFolder.Path(u"no/such/folder/b.Orvelle"_s);
  Choose(u"fSaveStackAs"_s);
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(gStack->Filename(), path);
  EXPECT_EQ(gFrame->windowTitle(), path + u"[*] - Orvelles"_s);
  EXPECT_EQ(gFileHistory[0], path);
}

TEST_F(CVelumFrameFileTest, CloseOfAnUnchangedStackAsksNothing) {
  Start(CopyStack(u"a.Orvelle"_s));
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(gStack);
  EXPECT_FALSE(gStackView);
  EXPECT_EQ(gFrame->windowTitle(), u"Orvelles"_s);
  EXPECT_FALSE(CVelumWinMan::FormIsLoaded(u"CVelumGenForm"_s));
  gFrame->Commands().CloseStack(); // nothing open: nothing happens
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumFrameFileTest, CloseOfAChangedStackAsks) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  const QByteArray before = iFolder.Read(u"a.Orvelle"_s);
  Start(path);
  Change();
  for (const QString& button : {u"fBackBut"_s, QString()}) { // Back, and the close box
    AnswerSave(button);
    Choose(u"fCloseStack"_s);
    EXPECT_TRUE(iAsked);
    ASSERT_TRUE(gStack);
    EXPECT_TRUE(gStack->Changed());
    EXPECT_EQ(iFolder.Read(u"a.Orvelle"_s), before);
  }
  AnswerSave(u"fDiscardBut"_s);
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(gStack);
  EXPECT_EQ(iFolder.Read(u"a.Orvelle"_s), before);
}

TEST_F(CVelumFrameFileTest, CloseWithSaveWritesFirst) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  const QByteArray before = iFolder.Read(u"a.Orvelle"_s);
  Start(path);
  Change();
  AnswerSave(u"fSaveBut"_s);
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(gStack);
  EXPECT_NE(iFolder.Read(u"a.Orvelle"_s), before);
}

TEST_F(CVelumFrameFileTest, CloseStopsWhenTheSaveFailsOrIsCancelled) {
  Start(CopyStack(u"a.Orvelle"_s));
  Change();
  gStack->SetFilename({});
  AnswerSave(u"fSaveBut"_s);
  EXPECT_FALSE(gFrame->close()); // the name is asked for, and cancelled
  EXPECT_EQ(iDialogs, 1);
  EXPECT_TRUE(gStack);
  EXPECT_FALSE(iEnded);
  gStack->SetFilename(iFolder.Path(u"no/such/folder/a.Orvelle"_s));
  AnswerSave(u"fSaveBut"_s);
  EXPECT_FALSE(gFrame->close());
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_TRUE(gStack);
  EXPECT_FALSE(iEnded);
  EXPECT_TRUE(gFrame->isVisible());
}

TEST_F(CVelumFrameFileTest, ClosingTheWindowSavesSettingsAndEnds) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start(path);
  gFrame->move(30, 40);
  gFrame->resize(500, 400);
  gOptions.iAutoLoadName = u"kept"_s;
  EXPECT_TRUE(gFrame->close());
  EXPECT_TRUE(iEnded);
  EXPECT_FALSE(gStack);
  CVelumOptions::LoadOptions();
  EXPECT_EQ(gOptions.iAutoLoadName, u"kept"_s);
  EXPECT_EQ(gFileHistory[0], path);
  QString place;
  bool found = false;
  CVelumReg::GetVal(u"Windows"_s, u"CVelumFrame"_s, place, found, false);
  EXPECT_EQ(place, u" 450, 600, 7500, 6000"_s);
}

TEST_F(CVelumFrameFileTest, CloseCommandOfTheProgramEndsIt) {
  Start();
  Choose(u"fClose"_s);
  EXPECT_TRUE(iEnded);
}

TEST_F(CVelumFrameFileTest, SettingsThatCannotBeWrittenDoNotKeepTheWindowOpen) {
  iFolder.Write(u"blocked"_s, "x");
  CVelumReg::SetFolder(iFolder.Path(u"blocked"_s));
  Start();
  EXPECT_TRUE(gFrame->close());
  EXPECT_TRUE(iEnded);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
}

TEST_F(CVelumFrameFileTest, CloseBoxOfTheCardWindowClosesTheStack) {
  Start(CopyStack(u"a.Orvelle"_s));
  Change();
  AnswerSave(u"fBackBut"_s);
  QWidget* child = CVelumWinMan::NameToForm(u"CVelumGenForm"_s)->Widget()->parentWidget();
  EXPECT_FALSE(child->close());
  EXPECT_TRUE(gStack);
  AnswerSave(u"fDiscardBut"_s);
  child->close();
  EXPECT_FALSE(gStack);
}

TEST_F(CVelumFrameFileTest, DeleteCardAsksByName) {
  Start(CopyStack(u"a.Orvelle"_s));
  Choose(u"fDeleteCard"_s);
  EXPECT_EQ(iPresenter.LastText(), u"Delete card 'card 00'?"_s);
  EXPECT_EQ(gStack->NumCards(), 13);
  iPresenter.Answer(true);
  Choose(u"fDeleteCard"_s);
  EXPECT_EQ(gStack->NumCards(), 12);
  EXPECT_EQ(CardName(), u"card 01"_s);
}

TEST_F(CVelumFrameFileTest, EmptyStackAsks) {
  Start(CopyStack(u"a.Orvelle"_s));
  Choose(u"fEmptyStack"_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgEmptyStackOk);
  const QString text = iPresenter.LastText();
  EXPECT_TRUE(text.startsWith(u"Delete all cards?"_s)) << text.toStdString();
  EXPECT_TRUE(text.endsWith(CVelumReport::CardsOf(*gStack) + u'.')) << text.toStdString();
  EXPECT_EQ(gStack->NumCards(), 13);
  iPresenter.Answer(true);
  Choose(u"fEmptyStack"_s);
  EXPECT_EQ(gStack->NumCards(), 0);
  Choose(u"fDeleteCard"_s); // no card: nothing
  EXPECT_EQ(iPresenter.Count(), 2);
}
