#include "shell/dialogs/CVelumOptionEdit.h"

#include "core/CVelumMsg.h"
#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumOptions.h"
#include "toolkit/CVelumReg.h"
#include "toolkit/CVelumWinMan.h"

#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

class CVelumOptionEditTest : public ShellTest {
protected:
  void Open() {
    Start();
    gOptions.iAutoLoadName = u"/auto.Orvelle"_s;
    gOptions.iStackFolder = iFolder.Path();
    gOptions.iShowWelcome = false;
    Choose(u"fOptions"_s);
  }
  static CVelumForm* Form() {
    return CVelumWinMan::FormIsLoaded(u"CVelumOptionEdit"_s) ? CVelumWinMan::NameToForm(u"CVelumOptionEdit"_s)
                                                             : nullptr;
  }
  static QLineEdit* Entry(const QString& aName) { return Form()->Widget()->findChild<QLineEdit*>(aName); }
  static QCheckBox* Welcome() { return Form()->Widget()->findChild<QCheckBox*>(u"fShowWelcome"_s); }
  static void Press(const QString& aName) {
    QTest::mouseClick(Form()->Widget()->findChild<QPushButton*>(aName), Qt::LeftButton);
  }
  static void Fill() {
    Entry(u"fAutoLoadName"_s)->setText(u"/new.Orvelle"_s);
    Entry(u"fStackFolder"_s)->setText(u"/folder"_s);
    Welcome()->setChecked(true);
  }
  static void ExpectOptions(const QString& aAuto, const QString& aFolder, bool aWelcome) {
    EXPECT_EQ(gOptions.iAutoLoadName, aAuto);
    EXPECT_EQ(gOptions.iStackFolder, aFolder);
    EXPECT_EQ(gOptions.iShowWelcome, aWelcome);
  }
};

} // namespace

TEST_F(CVelumOptionEditTest, ShowsTheOptions) {
  Open();
  ASSERT_TRUE(Form());
  EXPECT_EQ(Form()->Widget()->windowTitle(), u"Options"_s);
  EXPECT_FALSE(Form()->Widget()->isModal());
  EXPECT_EQ(Entry(u"fAutoLoadName"_s)->text(), u"/auto.Orvelle"_s);
  EXPECT_EQ(Entry(u"fStackFolder"_s)->text(), iFolder.Path());
  EXPECT_FALSE(Welcome()->isChecked());
  EXPECT_EQ(Welcome()->text(), u"Show 'About' box at program startup?"_s);
}

TEST_F(CVelumOptionEditTest, OkKeepsAndWritesAtOnce) {
  Open();
  Fill();
  Press(u"fOkBut"_s);
  EXPECT_FALSE(Form());
  ExpectOptions(u"/new.Orvelle"_s, u"/folder"_s, true);
  CVelumOptions::LoadOptions(); // what the file says
  ExpectOptions(u"/new.Orvelle"_s, u"/folder"_s, true);
}

TEST_F(CVelumOptionEditTest, CancelAndEscapeLeaveAllAsItWas) {
  Open();
  Fill();
  Press(u"fCancelBut"_s);
  EXPECT_FALSE(Form());
  ExpectOptions(u"/auto.Orvelle"_s, iFolder.Path(), false);
  Choose(u"fOptions"_s);
  EXPECT_EQ(Entry(u"fAutoLoadName"_s)->text(), u"/auto.Orvelle"_s);
  Fill();
  QTest::keyClick(Form()->Widget(), Qt::Key_Escape);
  EXPECT_FALSE(Form());
  ExpectOptions(u"/auto.Orvelle"_s, iFolder.Path(), false);
}

TEST_F(CVelumOptionEditTest, AFileIsChosenForTheAutoLoad) {
  Open();
  Press(u"fSelectAutoBut"_s); // cancelled
  EXPECT_EQ(iDialogs, 1);
  EXPECT_EQ(Entry(u"fAutoLoadName"_s)->text(), u"/auto.Orvelle"_s);
  iPath = iFolder.Path(u"chosen.Orvelle"_s);
  Press(u"fSelectAutoBut"_s);
  EXPECT_EQ(Entry(u"fAutoLoadName"_s)->text(), iPath);
  EXPECT_EQ(gOptions.iAutoLoadName, u"/auto.Orvelle"_s) << "only OK counts";
}

TEST_F(CVelumOptionEditTest, AFolderIsChosenForTheStacks) {
  Open();
  Press(u"fSelectFolderBut"_s); // cancelled
  EXPECT_EQ(iDialogs, 1);
  EXPECT_EQ(Entry(u"fStackFolder"_s)->text(), iFolder.Path());
  iPath = iFolder.Path(u"stacks"_s);
  Press(u"fSelectFolderBut"_s);
  EXPECT_EQ(Entry(u"fStackFolder"_s)->text(), iPath);
}

TEST_F(CVelumOptionEditTest, OptionsThatCannotBeWrittenLeaveTheWindowOpen) {
  Open();
  Fill();
  iFolder.Write(u"blocked"_s, "x");
  CVelumReg::SetFolder(iFolder.Path(u"blocked"_s));
  Press(u"fOkBut"_s);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
  ASSERT_TRUE(Form());
  EXPECT_EQ(Entry(u"fAutoLoadName"_s)->text(), u"/new.Orvelle"_s);
  CVelumReg::SetFolder(iFolder.Path(u"settings"_s));
  Press(u"fOkBut"_s);
  EXPECT_FALSE(Form());
}

TEST_F(CVelumOptionEditTest, ClosingTheStackLeavesTheWindowOpen) {
  Open();
  CVelumSeams::ChangeNotify(EChangeStackCloses);
  EXPECT_TRUE(Form());
  Press(u"fCancelBut"_s);
}
