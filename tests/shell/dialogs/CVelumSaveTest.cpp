#include "shell/dialogs/CVelumSave.h"

#include "shell/ShellTest.h"
#include "shell/dialogs/CVelumShellDialogLib.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace {

class CVelumSaveTest : public ShellTest {
protected:
  CVelumSaveTest() { Start(CopyStack(u"a.Orvelle"_s)); }
  // Asks, answers with a click, and hands back both results.
  std::pair<bool, bool> Leave(const QString& aButton) {
    AnswerSave(aButton);
    bool proceed = false;
    bool save = true;
    CVelumDialogLib::CheckLeaveStack(proceed, save);
    EXPECT_TRUE(iAsked);
    return {proceed, save};
  }
};

} // namespace

TEST_F(CVelumSaveTest, UnchangedStackIsLeftWithoutAQuestion) {
  bool proceed = false;
  bool save = true;
  CVelumDialogLib::CheckLeaveStack(proceed, save);
  EXPECT_TRUE(proceed);
  EXPECT_FALSE(save);
}

TEST_F(CVelumSaveTest, EachAnswerHasItsNumberAndItsConsequence) {
  Change();
  EXPECT_EQ(Leave(u"fSaveBut"_s), std::make_pair(true, true));
  EXPECT_EQ(iDialogRes, 0);
  EXPECT_EQ(Leave(u"fDiscardBut"_s), std::make_pair(true, false));
  EXPECT_EQ(iDialogRes, 1);
  EXPECT_EQ(Leave(u"fBackBut"_s), std::make_pair(false, false));
  EXPECT_EQ(iDialogRes, 2);
}

TEST_F(CVelumSaveTest, CloseBoxGoesBack) {
  Change();
  EXPECT_EQ(Leave({}), std::make_pair(false, false));
  EXPECT_EQ(iDialogRes, 2);
}

TEST_F(CVelumSaveTest, AnyOtherAnswerAssertsAndLosesNothing) {
  Change();
  for (const bool overruled : {false, true}) {
    WhenOpen([](QWidget& aBox) {
      iDialogRes = 7;
      aBox.close();
    });
    bool proceed = false;
    bool save = true;
    if (overruled) {
      iPresenter.Answer(true);
      CVelumDialogLib::CheckLeaveStack(proceed, save);
      EXPECT_FALSE(proceed);
      EXPECT_FALSE(save);
    } else {
      EXPECT_THROW(CVelumDialogLib::CheckLeaveStack(proceed, save), CVelumException);
    }
    EXPECT_TRUE(iPresenter.LastText().contains(u"CheckLeaveStack iDialogRes 7"_s));
  }
}

TEST_F(CVelumSaveTest, BackLeavesTheStackOpenWithNothingSaved) {
  const QByteArray before = iFolder.Read(u"a.Orvelle"_s);
  Change();
  AnswerSave(u"fBackBut"_s);
  bool stillOpen = false;
  CVelumDialogLib::CloseStackStep(stillOpen);
  EXPECT_TRUE(stillOpen);
  EXPECT_TRUE(gStack && gStack->Changed());
  EXPECT_EQ(iFolder.Read(u"a.Orvelle"_s), before);
}

TEST_F(CVelumSaveTest, TheQuestionCallsTheStackByItsName) {
  Change();
  const auto question = [] {
    QString text;
    WhenOpen([&text](QWidget& aBox) { text = aBox.findChild<QLabel*>(u"fQuestion"_s)->text(); });
    bool proceed = false;
    bool save = false;
    CVelumDialogLib::CheckLeaveStack(proceed, save);
    return text;
  };
  EXPECT_TRUE(question().contains(u"\u201ca.Orvelle\u201d"_s));
  gStack->SetFilename({});
  gStack->SetDescr(u"My books"_s);
  EXPECT_TRUE(question().contains(u"\u201cMy books\u201d"_s));
}
