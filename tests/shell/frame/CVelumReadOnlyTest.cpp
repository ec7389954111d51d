// A stack that can only be read, in the main window.
#include "core/CVelumMsg.h"
#include "persist/CVelumAccess.h"
#include "persist/CVelumStackFile.h"
#include "shell/FrameTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "support/DropRights.h"

#include <QDir>
#include <QFile>

namespace {

class CVelumReadOnlyTest : public FrameTest {
protected:
  CVelumReadOnlyTest() {
    const QString source = CopyStack(u"a.Orvelle"_s);
    QDir(iFolder.Path()).mkdir(u"shut"_s);
    QDir(iFolder.Path()).mkdir(u"own"_s);
    EXPECT_TRUE(QFile::rename(source, iStack));
    CVelumAccess::SetInstalledFolder(iFolder.Path(u"shut"_s));
    CVelumFileDialog::SetAnswer([this](const CVelumFileDialog& aDialog, bool aSave) {
      ++iDialogs;
      iSave = aSave;
      iTitle = aDialog.Title();
      iFolderOffered = aDialog.InitDir();
      iNameOffered = aDialog.ProposedName();
      return iPath;
    });
    iBefore = iFolder.Read(u"shut/a.Orvelle"_s);
  }
  ~CVelumReadOnlyTest() override { CVelumAccess::SetInstalledFolder({}); }

  QString iStack = iFolder.Path(u"shut/a.Orvelle"_s);
  QByteArray iBefore;
  bool iSave = false;
  QString iTitle;
  QString iFolderOffered;
  QString iNameOffered;
};

} // namespace

TEST_F(CVelumReadOnlyTest, OpensLeafsAndRunsScripts) {
  Start(iStack);
  ASSERT_TRUE(gStack);
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_EQ(gFrame->windowTitle(), iStack + u" (read only)[*] - Orvelles"_s);
  EXPECT_EQ(iRunner.CountOf(u"openStack"_s), 1);
  Click(u"NextCard"_s);
  EXPECT_EQ(CardName(), u"card 01"_s);
  EXPECT_EQ(gFileHistory[0], iStack);
}

TEST_F(CVelumReadOnlyTest, SaveSaysWhyNotAndLeadsToSaveAs) {
  Start(iStack);
  gOptions.iStackFolder = iFolder.Path(u"own"_s);
  Change();
  Choose(u"fSaveStack"_s); // the dialog is cancelled
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgCouldNotSave);
  EXPECT_TRUE(iPresenter.LastText().contains(u"belongs to the program"_s))
      << iPresenter.LastText().toStdString();
  EXPECT_EQ(iDialogs, 1);
  EXPECT_TRUE(iSave);
  EXPECT_EQ(iTitle, u"Save Stack As"_s);
  EXPECT_EQ(iNameOffered, u"a.Orvelle"_s);
  EXPECT_EQ(iFolderOffered, gOptions.iStackFolder);
  EXPECT_EQ(gStack->Filename(), iStack);
  EXPECT_TRUE(gStack->Changed());
  iPath = iFolder.Path(u"own/mine.Orvelle"_s);
  Choose(u"fSaveStack"_s);
  EXPECT_EQ(gStack->Filename(), iPath);
  EXPECT_FALSE(gStack->Changed());
  EXPECT_EQ(gFrame->windowTitle(), iPath + u"[*] - Orvelles"_s);
  EXPECT_EQ(iFolder.Read(u"shut/a.Orvelle"_s), iBefore);
  Change();
  Choose(u"fSaveStack"_s); // an ordinary one
  EXPECT_EQ(iDialogs, 2);
  EXPECT_FALSE(gStack->Changed());
}

TEST_F(CVelumReadOnlyTest, SaveOnLeavingLeadsThereToo) {
  Start(iStack);
  Change();
  AnswerSave(u"fSaveBut"_s);
  Choose(u"fCloseStack"_s);
  EXPECT_TRUE(gStack) << "nothing was saved";
  iPath = iFolder.Path(u"own/mine.Orvelle"_s);
  AnswerSave(u"fSaveBut"_s);
  Choose(u"fCloseStack"_s);
  EXPECT_FALSE(gStack);
  EXPECT_TRUE(QFile::exists(iPath));
  EXPECT_EQ(iFolder.Read(u"shut/a.Orvelle"_s), iBefore);
}

TEST_F(CVelumReadOnlyTest, SaveAsOverAStackThatCanOnlyBeReadIsRefused) {
  Start(CopyStack(u"b.Orvelle"_s));
  const QString name = gStack->Filename();
  iPath = iStack;
  Choose(u"fSaveStackAs"_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgCouldNotSave);
  EXPECT_EQ(iDialogs, 1);
  EXPECT_EQ(gStack->Filename(), name);
  EXPECT_EQ(iFolder.Read(u"shut/a.Orvelle"_s), iBefore);
}

TEST_F(CVelumReadOnlyTest, AUserWithoutRightsReadsItTheSameWay) {
  CVelumAccess::SetInstalledFolder({});
  DropRights::SetMode(iStack, 0444);
  DropRights::SetMode(iFolder.Path(u"shut"_s), 0555);
  DropRights::SetMode(iFolder.Path(), 0777);
  {
    const DropRights nobody;
    if (!nobody.Works()) GTEST_SKIP() << "root cannot be given up here";
    Start(iStack);
    ASSERT_TRUE(gStack);
    EXPECT_EQ(iPresenter.Count(), 0) << iPresenter.LastText().toStdString();
    EXPECT_EQ(gFrame->windowTitle(), iStack + u" (read only)[*] - Orvelles"_s);
    Change();
    Choose(u"fSaveStack"_s);
    EXPECT_EQ(iPresenter.LastMsg(), EMsgCouldNotSave);
    EXPECT_TRUE(iPresenter.LastText().contains(u"may only be read"_s)) << iPresenter.LastText().toStdString();
    EXPECT_TRUE(iSave);
  }
  DropRights::SetMode(iFolder.Path(u"shut"_s), 0755);
  EXPECT_EQ(iFolder.Read(u"shut/a.Orvelle"_s), iBefore);
}

TEST_F(CVelumReadOnlyTest, WhatMayNotBeReadIsNotCalledMissing) {
  CVelumAccess::SetInstalledFolder({});
  DropRights::SetMode(iStack, 0);
  DropRights::SetMode(iFolder.Path(), 0777);
  const DropRights nobody;
  if (!nobody.Works()) GTEST_SKIP() << "root cannot be given up here";
  Start(iStack);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgNoFileAccess);
  EXPECT_FALSE(gStack);
}
