#include "shell/frame/CVelumMain.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumMsg.h"
#include "runtime/CVelumRuntimeLib.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "toolkit/CVelumReg.h"
#include "toolkit/CVelumWinMan.h"

#include <QApplication>
#include <QDir>
#include <QScreen>
#include <QTimer>

using CVelumMainTest = ShellTest;

TEST_F(CVelumMainTest, CommandLineIsTrimmedAndLosesItsQuotes) {
  EXPECT_EQ(CVelumMain::StackPath({}), QString());
  EXPECT_EQ(CVelumMain::StackPath(u"   "_s), QString());
  EXPECT_EQ(CVelumMain::StackPath(u"  /no/a b.Orvelle "_s), u"/no/a b.Orvelle"_s);
  EXPECT_EQ(CVelumMain::StackPath(u" \"/no/a b.Orvelle\" "_s), u"/no/a b.Orvelle"_s);
  EXPECT_EQ(CVelumMain::StackPath(u"\"/no/a"_s), u"\"/no/a"_s);
  EXPECT_EQ(CVelumMain::StackPath(u"/no/a\""_s), u"/no/a\""_s);
  EXPECT_EQ(CVelumMain::StackPath(u"\"\""_s), QString());
  EXPECT_EQ(CVelumMain::StackPath(u"\"\"/no/a\"\""_s), u"\"/no/a\""_s); // one pair only
  EXPECT_EQ(CVelumMain::StackPath(u" \n/no/a\t "_s), u"\n/no/a\t"_s);   // only blanks
  try {
    static_cast<void>(CVelumMain::StackPath(u"\""_s));
    FAIL() << "no error";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostBadCall);
  }
}

TEST_F(CVelumMainTest, PathOfAFileThatIsThereBecomesAbsolute) {
  CopyStack(u"a.Orvelle"_s);
  const QString before = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(iFolder.Path()));
  EXPECT_EQ(CVelumMain::StackPath(u"a.Orvelle"_s), QDir::currentPath() + u"/a.Orvelle"_s);
  EXPECT_EQ(CVelumMain::StackPath(u"b.Orvelle"_s), u"b.Orvelle"_s);
  QDir::setCurrent(before);
}

TEST_F(CVelumMainTest, FileThatIsTheOnlyArgumentOpensWhateverItsName) {
  for (const QString& name : {u"a.Orvelle "_s, u"b \"c\".Orvelle"_s, u"\"d\""_s}) {
    const QString path = CopyStack(name);
    Start(CVelumMain::CommandLine({path}));
    ASSERT_TRUE(gStack) << name.toStdString();
    EXPECT_EQ(gStack->Filename(), path);
    CVelumMain::End();
  }
  EXPECT_EQ(CVelumMain::CommandLine({}), QString());
  EXPECT_EQ(CVelumMain::CommandLine({u"/no/a"_s, u"b.Orvelle"_s}), u"/no/a b.Orvelle"_s);
  EXPECT_EQ(CVelumMain::CommandLine({u"\"/no/a\""_s}), u"\"/no/a\""_s);
}

TEST_F(CVelumMainTest, ShowsTheMainWindowWithoutStack) {
  Start();
  EXPECT_TRUE(gFrame->isVisible());
  EXPECT_FALSE(gFrame->isModal());
  EXPECT_EQ(gFrame->windowTitle(), u"Orvelles"_s);
  EXPECT_FALSE(gStack);
  EXPECT_EQ(CVelumWinMan::FormCount(), 25);
  EXPECT_EQ(CVelumWinMan::NameToForm(u"CVelumFrame"_s), gFrame);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumMainTest, OpensTheQuotedPathOfTheCommandLine) {
  const QString path = CopyStack(u"a b.Orvelle"_s);
  Start(u" \"%1\" "_s.arg(path));
  ASSERT_TRUE(gStack);
  EXPECT_EQ(gStack->Filename(), path);
  EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
}

TEST_F(CVelumMainTest, LeadingQuoteAloneIsPartOfTheName) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  Start(u'"' + path);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgFileNotFound);
  EXPECT_TRUE(iPresenter.LastText().contains(u'"' + path));
  EXPECT_FALSE(gStack);
  EXPECT_TRUE(gFrame->isVisible());
}

TEST_F(CVelumMainTest, SingleQuoteIsShownAsAHostError) {
  Start(u"\""_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgSystemError);
  EXPECT_TRUE(gFrame->isVisible());
}

TEST_F(CVelumMainTest, EmptyCommandLineOpensTheStackOfTheSettings) {
  const QString path = CopyStack(u"a.Orvelle"_s);
  CVelumReg::PutVal(u"Options"_s, u"AutoLoadName"_s, path, false);
  Start(u"  "_s);
  ASSERT_TRUE(gStack);
  EXPECT_EQ(gStack->Filename(), path);
}

TEST_F(CVelumMainTest, QuotesAroundNothingNameAFileThatIsNotThere) {
  CVelumReg::PutVal(u"Options"_s, u"AutoLoadName"_s, CopyStack(u"a.Orvelle"_s), false);
  Start(u"\"\""_s);
  EXPECT_EQ(iPresenter.LastMsg(), EMsgFileNotFound);
  EXPECT_FALSE(gStack);
}

TEST_F(CVelumMainTest, WelcomeBoxGreetsWhoeverNamedNoStack) {
  const auto greets = [this](const QString& aCommandLine) {
    Start(aCommandLine);
    const bool shown = CVelumWinMan::FormIsLoaded(u"CVelumWelcome"_s);
    if (shown) {
      QWidget* box = CVelumWinMan::NameToForm(u"CVelumWelcome"_s)->Widget();
      EXPECT_TRUE(box->isVisible());
      EXPECT_TRUE(box->findChild<QTimer*>(u"fWaitTimer"_s)->isActive());
      delete box;
    }
    CVelumMain::End();
    return shown;
  };
  const QString path = CopyStack(u"a.Orvelle"_s);
  EXPECT_FALSE(greets({})) << "switched off";
  CVelumReg::PutBoolVal(u"ShowWelcome"_s, true);
  EXPECT_TRUE(greets({}));
  EXPECT_TRUE(greets(u"  "_s));
  EXPECT_FALSE(greets(path));
  EXPECT_FALSE(greets(u"/nowhere/a.Orvelle"_s));
  EXPECT_FALSE(greets(u"\""_s));
  CVelumReg::PutVal(u"Options"_s, u"AutoLoadName"_s, path, false);
  EXPECT_TRUE(greets({}));
  CVelumReg::PutVal(u"Options"_s, u"AutoLoadName"_s, u"/nowhere/a.Orvelle"_s, false);
  EXPECT_TRUE(greets({})) << "also when that stack is gone";
}

TEST_F(CVelumMainTest, TheWindowCanBeClosedWhileTheProgramStarts) {
  QTimer::singleShot(0, qApp, [] { gFrame->close(); });
  Start();
  EXPECT_TRUE(iEnded);
}

TEST_F(CVelumMainTest, CommandLineGoesBeforeTheSettings) {
  CVelumReg::PutVal(u"Options"_s, u"AutoLoadName"_s, CopyStack(u"a.Orvelle"_s), false);
  const QString path = CopyStack(u"b.Orvelle"_s);
  Start(path);
  EXPECT_EQ(gStack->Filename(), path);
}

TEST_F(CVelumMainTest, StackOfTheSettingsThatIsGoneGivesTheMessage) {
  CVelumReg::PutVal(u"Options"_s, u"AutoLoadName"_s, u"/nowhere/a.Orvelle"_s, false);
  Start();
  EXPECT_EQ(iPresenter.LastMsg(), EMsgFileNotFound);
  EXPECT_FALSE(gStack);
}

TEST_F(CVelumMainTest, BrokenSettingsAreDefaultsWithoutAWord) {
  QDir(iFolder.Path()).mkpath(u"settings/Brindleway"_s);
  iFolder.Write(u"settings/Brindleway/Orvelles.conf"_s, "\x01\x02 rubbish\n[[[\nx");
  CVelumReg::SetFolder(iFolder.Path(u"settings"_s));
  Start();
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_TRUE(gOptions.iShowWelcome);
  EXPECT_TRUE(gFrame->close());
  EXPECT_TRUE(iFolder.Has(u"settings/Brindleway/Orvelles.conf.broken1"_s));
}

TEST_F(CVelumMainTest, SettingsThatPointNowhereAreNoObstacle) {
  QDir(iFolder.Path()).mkpath(u"settings/Brindleway"_s);
  iFolder.Write(u"settings/Brindleway/Orvelles.conf"_s,
                "[1.x]\nOptions\\ShowWelcome=False\nOptions\\StackFolder=/gone\n"
                "Options\\LoadDialogInitDir=/gone/too\n"
                "Windows\\CVelumFrame=\"1500000,1500000,9000,7500\"\n"
                "Windows\\CVelumOptionEdit=\"-90000,-90000,9000,7500\"\n"
                "Windows\\CVelumCardEdit=\"1500000,1500000,9000,7500\"\n");
  CVelumReg::SetFolder(iFolder.Path(u"settings"_s));
  Start(CopyStack(u"a.Orvelle"_s));
  const auto onScreen = [](const QWidget& aForm) {
    return aForm.screen()->virtualGeometry().contains(aForm.geometry().topLeft());
  };
  EXPECT_TRUE(onScreen(*gFrame));
  EXPECT_EQ(gFrame->pos(), QPoint(0, 0));
  EXPECT_EQ(gFrame->size(), QSize(600, 500).boundedTo(gFrame->screen()->virtualSize()));
  for (const auto& [command, name] :
       {std::pair{u"fOptions"_s, u"CVelumOptionEdit"_s}, std::pair{u"fEditCards"_s, u"CVelumCardEdit"_s}}) {
    Choose(command);
    EXPECT_TRUE(onScreen(*CVelumWinMan::NameToForm(name)->Widget())) << name.toStdString();
  }
  QString begun;
  CVelumFileDialog::SetAnswer([&begun](const CVelumFileDialog& aDialog, bool) {
    begun = aDialog.InitDir();
    return QString();
  });
  Choose(u"fOpenStack"_s);
  EXPECT_FALSE(begun.startsWith(u"/gone"_s));
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_FALSE(iFolder.Has(u"settings/Brindleway/Orvelles.conf.broken1"_s));
}

TEST_F(CVelumMainTest, DamagedStackLeavesTheOpenOneOpen) {
  const QString good = CopyStack(u"a.Orvelle"_s);
  Start(good);
  const QByteArray bytes = iFolder.Read(u"a.Orvelle"_s);
  for (const QByteArray& bad : {QByteArray(), QByteArray("no stack"), bytes.left(bytes.size() / 2)}) {
    iPresenter.Clear();
    const QString path = iFolder.Write(u"bad.Orvelle"_s, bad);
    EXPECT_FALSE(CVelumLib::HandleLoadStack(path));
    EXPECT_EQ(iPresenter.Count(), 1);
    ASSERT_TRUE(gStack);
    EXPECT_EQ(gStack->Filename(), good);
    EXPECT_EQ(CardName(), u"card 00"_s);
    EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
  }
}

TEST_F(CVelumMainTest, FolderIsNoStack) {
  Start(iFolder.Path());
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_FALSE(gStack);
}

TEST_F(CVelumMainTest, FrameComesBackWhereItWas) {
  CVelumReg::PutVal(u"Windows"_s, u"CVelumFrame"_s, u" 300, 450, 7500, 6000"_s, false);
  Start();
  EXPECT_EQ(gFrame->pos(), QPoint(20, 30));
  EXPECT_EQ(gFrame->size(), QSize(500, 400));
}
