// Scripts on the events of real windows.
#include "runtime/script/CVelumViewScriptHost.h"

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
  // A test that ends early must not leave its events to the next one.
  ~CVelumViewScriptHostTest() override { CVelumSeams::SetEventPump(nullptr); }
  void SetScript(CVelumScripted& aOwner, const QString& aSource) {
    CVelumCompiler compiler;
    const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
    compiler.Compile(CVelumLib::ToCrLf(aSource), *handlers);
    aOwner.SetScript(handlers);
    aOwner.SetScriptSource(CVelumLib::ToCrLf(aSource));
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
  // Does aWork in the first turn of events in which a script runs and aWhen holds.
  void WhenRunning(
      const std::function<void()>& aWork, const std::function<bool()>& aWhen = [] { return true; }) {
    iTimer.disconnect();
    iTimer.callOnTimeout(&Form(), [this, aWork, aWhen] {
      if (!gInterpreter->Running() || !aWhen()) return;
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
  EXPECT_TRUE(
      iPresenter.LastText().endsWith(u"Division by zero\r\n\r\nScript of field 'Do', line 2: x = 1 / 0"_s))
      << iPresenter.LastText().toStdString();
  EXPECT_FALSE(gInterpreter->Running());
}

TEST_F(CVelumViewScriptHostTest, AFailedCheckOfAScriptIsShownWithItsPlace) {
  const QString place = u"Script of field 'Do', line 3: Exit Repeat"_s;
  OpenWithButton(u"On select\nx = 1\nExit Repeat\nEnd\n"_s);
  Click();
  ASSERT_EQ(iPresenter.Shown().size(), 2);
  EXPECT_EQ(iPresenter.Shown().first().iMsg, EMsgAssertFailedOk);
  EXPECT_TRUE(iPresenter.Shown().first().iText.contains(place))
      << iPresenter.Shown().first().iText.toStdString();
  EXPECT_EQ(iPresenter.LastMsg(), EMsgAssertFailed);
  EXPECT_TRUE(iPresenter.LastText().endsWith(u"\r\n\r\n"_s + place)) << iPresenter.LastText().toStdString();
}

TEST_F(CVelumViewScriptHostTest, ATextThatIsNoDateLeavesADateFieldAlone) {
  const Ref<CVelumControl> date = AddField(iSet, u"When"_s, EConDate);
  OpenWithButton(u"On select\nPut \"tomorrow\" Into Field \"When\"\nEnd\n"_s);
  iCardA->SetControlVal(date->Id(), TVelumValue::OfDate(43861));
  Click();
  ASSERT_EQ(iPresenter.Shown().size(), 1) << "nothing is asked";
  EXPECT_EQ(iPresenter.LastMsg(), EMsgIncompatibleValTypes);
  EXPECT_TRUE(iPresenter.LastText().contains(u"line 2: Put \"tomorrow\" Into Field \"When\""_s));
  EXPECT_EQ(iCardA->GetControlVal(date->Id(), false).Date(), 43861);
}

// The bar and the card's own progress show that a script runs, and go however it ends.
TEST_F(CVelumViewScriptHostTest, TheProgressGoesOnEveryWayOut) {
  CVelumToolkitPump pump;
  CVelumSeams::SetEventPump(&pump);
  OpenWithButton(QString());
  const QString loop = u"On select\nRepeat While Field \"N\" = 0\nx = 1\nEnd Repeat\n%1\nEnd\n"_s;
  const auto leave = [this] { iCardA->SetControlVal(iNumber->Id(), TVelumValue::OfInt(1)); };
  const std::pair<const char16_t*, std::function<void()>> ways[] = {
      {u"", leave},
      {u"Go \"nowhere\"", leave},
      {u"x = 1 / 0", leave},
      {u"Exit Repeat", leave},
      {u"", [] { gInterpreter->Break(); }},
      {u"", [] { gInterpreter->Reset(); }},
  };
  for (const auto& [last, act] : ways) {
    iCardA->SetControlVal(iNumber->Id(), TVelumValue::OfInt(0));
    SetScript(*iButton, loop.arg(QString::fromUtf16(last)));
    iPresenter.Clear();
    WhenRunning(act, [this] { return !iPresenter.Progress().isEmpty(); });
    Click();
    EXPECT_FALSE(gInterpreter->Running());
    ASSERT_GE(iPresenter.Progress().size(), 2);
    EXPECT_LT(iPresenter.Progress().first(), 100);
    EXPECT_EQ(iPresenter.Progress().last(), 100) << QString::fromUtf16(last).toStdString();
    EXPECT_EQ(Pool(u"fProgress"_s).Width(), Pool(u"fProgressBox"_s).Width());
  }
  CVelumSeams::SetEventPump(nullptr);
}

TEST_F(CVelumViewScriptHostTest, AnAnswerCanStopItsScript) {
  class CStops final : public CVelumPresenter {
  public:
    CStops() { CVelumSeams::SetPresenter(this); }
    bool Message(qint32, EMsgClass, const QString&, const QString&) override { return false; }
    void Tell(const QString& aText) override { iTold.append(aText); }
    bool Answer(const QString& aText) override {
      iTold.append(aText);
      return iTold.size() == 3;
    }
    void HelpPage(const QString&) override {}
    QList<QString> iTold;
  };
  OpenWithButton(u"On select\nRepeat While 1 = 1\nAnswer 1\nEnd Repeat\nEnd\n"_s);
  CStops stops;
  Click();
  CVelumSeams::SetPresenter(&iPresenter);
  EXPECT_EQ(stops.iTold, (QList<QString>{u"1"_s, u"1"_s, u"1"_s, u"Script breaked"_s}));
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
