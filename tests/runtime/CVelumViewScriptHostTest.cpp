// Scripts on the events of real windows.
#include "runtime/CVelumViewScriptHost.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "runtime/RuntimeFixture.h"
#include "script/CVelumCompiler.h"
#include "toolkit/CVelumToolkitPump.h"

#include <QLineEdit>
#include <QTest>
#include <QTimer>

namespace {

class CVelumViewScriptHostTest : public RuntimeTest {
protected:
  void SetScript(CVelumScripted& aOwner, const QString& aSource) {
    CVelumCompiler compiler;
    const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
    compiler.Compile(CVelumLib::ToCrLf(aSource), *handlers);
    aOwner.SetScript(handlers);
  }
  // The stack "a", "b" with a number and a button that has aSource as its script.
  void OpenWithButton(const QString& aSource) {
    iSet->SetFlags(ECseDenseLayout | ECseShowCardName);
    iNumber = AddField(iSet, u"N"_s, EConInteger);
    iButton = AddField(iSet, u"Do"_s, EConCommand, EConAsButton);
    SetScript(*iButton, aSource);
    iCardA = AddCard(u"a"_s);
    iCardB = AddCard(u"b"_s);
    Open();
  }
  // Does aWork in the first turn of events in which a script runs.
  void WhenRunning(const std::function<void()>& aWork) {
    iTimer.callOnTimeout(&Form(), [this, aWork] {
      if (!gInterpreter->Running()) return;
      iTimer.stop();
      aWork();
    });
    iTimer.start(0);
  }
  void Click() { QTest::mouseClick(Base(iButton).Widget(), Qt::LeftButton); }

  CVelumViewScriptHost iHost;
  QTimer iTimer;
  Ref<CVelumControl> iNumber;
  Ref<CVelumControl> iButton;
  Ref<CVelumCard> iCardA;
  Ref<CVelumCard> iCardB;
};

TEST_F(CVelumViewScriptHostTest, AButtonCounts) {
  OpenWithButton(u"On select\nPut Field \"N\" + 1 Into Field \"N\"\nEnd\n"_s);
  for (int i = 0; i < 3; ++i) Click();
  EXPECT_EQ(TextOf(iCardA, iNumber), u"3"_s);
  auto* box = qobject_cast<QLineEdit*>(Base(iNumber).Widget());
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->text(), u"3"_s) << "the window shows it";
}

TEST_F(CVelumViewScriptHostTest, AFieldReactsWhenItIsLeft) {
  OpenWithButton(u"On select\nEnd\n"_s);
  SetScript(
      *iNumber,
      u"On closeField\nAnswer \"changed to \" & Field \"N\"\nEnd\nOn exitField\nAnswer \"left\"\nEnd\n"_s);
  Type(iNumber, u"42"_s);
  View().LeaveCurCard();
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"changed to 42"_s});
}

TEST_F(CVelumViewScriptHostTest, AScriptGoesToCards) {
  OpenWithButton(u"On select\nGo \"b\"\nPut 7 Into Field \"N\"\nGo Next Card\nEnd\n"_s);
  SetScript(*iCardB, u"On openCard\nAnswer \"b is open\"\nEnd\n"_s);
  Click();
  EXPECT_EQ(View().CurCard(), iCardB.Get());
  EXPECT_EQ(TextOf(iCardB, iNumber), u"7"_s);
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"b is open"_s});
}

TEST_F(CVelumViewScriptHostTest, AnErrorNamesOwnerAndLine) {
  OpenWithButton(u"On select\nx = 1\nGo \"nowhere\"\nEnd\n"_s);
  Click();
  EXPECT_EQ(iPresenter.LastMsg(), EMsgCardNotFound);
  EXPECT_TRUE(iPresenter.LastText().contains(u"nowhere"_s));
  EXPECT_TRUE(iPresenter.LastText().contains(u"field 'Do', line 3"_s)) << iPresenter.LastText().toStdString();
  EXPECT_FALSE(gInterpreter->Running());
}

TEST_F(CVelumViewScriptHostTest, AHostErrorOfAScriptIsShown) {
  OpenWithButton(u"On select\nx = 1 / 0\nEnd\n"_s);
  Click();
  EXPECT_EQ(iPresenter.LastMsg(), EMsgSystemError);
  EXPECT_FALSE(gInterpreter->Running());
}

TEST_F(CVelumViewScriptHostTest, AClickOnTheProgressStopsAnEndlessLoop) {
  CVelumToolkitPump pump;
  CVelumSeams::SetEventPump(&pump);
  OpenWithButton(u"On select\nRepeat While 1 = 1\nx = 1\nEnd Repeat\nEnd\n"_s);
  WhenRunning([this] { QTest::mouseClick(Pool(u"fProgressBox"_s).Widget(), Qt::LeftButton); });
  Click();
  CVelumSeams::SetEventPump(nullptr);
  EXPECT_FALSE(gInterpreter->Running());
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Script breaked"_s});
}

TEST_F(CVelumViewScriptHostTest, AnEventDuringAScriptRunsAsANestedHandler) {
  CVelumToolkitPump pump;
  CVelumSeams::SetEventPump(&pump);
  OpenWithButton(
      u"On select\nPut Field \"N\" + 1 Into Field \"N\"\nRepeat While Field \"N\" < 2\nx = 1\nEnd Repeat\nEnd\n"_s);
  WhenRunning([this] { Click(); });
  Click();
  CVelumSeams::SetEventPump(nullptr);
  EXPECT_EQ(TextOf(iCardA, iNumber), u"2"_s);
  EXPECT_FALSE(gInterpreter->Running());
}

TEST_F(CVelumViewScriptHostTest, AScriptSurvivesTheDeletionOfItsCard) {
  OpenWithButton(u"On select\nSend \"gone\" To Field \"N\"\nAnswer Field \"N\"\nEnd\n"_s);
  CVelumToolkitPump pump;
  CVelumSeams::SetEventPump(&pump);
  gInterpreter->SetPumpAlways(true);
  WhenRunning([this] { View().DeleteCard(iCardA, nullptr); });
  Click();
  gInterpreter->SetPumpAlways(false);
  CVelumSeams::SetEventPump(nullptr);
  EXPECT_FALSE(gInterpreter->Running());
  EXPECT_EQ(View().CurCard(), iCardB.Get());
}

} // namespace
