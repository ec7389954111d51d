// The life of a script: how it starts, nests, is stopped, fails and ends.
#include "InterpreterTest.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"

#include <ctime>

TEST_F(CVelumInterpreterTest, IsIdleAfterAHandler) {
  Run(u"x = 1"_s);
  EXPECT_FALSE(iInterpreter->Running());
  EXPECT_EQ(iInterpreter->Code(), u"**Null Context**"_s);
}

TEST_F(CVelumInterpreterTest, ReportsOwnerAndLineOfAnError) {
  EXPECT_EQ(RunFails(u"x = 1\n\n# note\nGo 0"_s), EMsgRunError);
  EXPECT_EQ(iInterpreter->GetError().iLine, 4);
  EXPECT_EQ(iInterpreter->GetError().iObj.Get(), iPage.Get());
}

// Of host errors and assertions, too.
TEST_F(CVelumInterpreterTest, KnowsThePlaceOfEveryFailure) {
  const auto place = [this](const QString& aBody) {
    iPage->SetScriptSource(CVelumLib::ToCrLf(u"On test p\n"_s + aBody + u"\nEnd\n"_s));
    RunFails(aBody);
    return CVelumRunError::Place(iInterpreter->GetError());
  };
  EXPECT_EQ(place(u"x = 1\n  x = x / 0"_s), u"Script of background 'Page', line 3: x = x / 0"_s);
  EXPECT_EQ(place(u"Go 0"_s), u"Script of background 'Page', line 2: Go 0"_s);
  EXPECT_EQ(place(u"Answer 1\nx = Random(0)"_s), u"Script of background 'Page', line 3: x = Random(0)"_s);
  EXPECT_TRUE(iPresenter.LastText().contains(u"Script of background 'Page', line 3: x = Random(0)"_s))
      << "the question says it as well";
  EXPECT_EQ(place(u"Exit Repeat"_s), u"Script of background 'Page', line 2: Exit Repeat"_s);
  EXPECT_EQ(place(u"Go \""_s + QString(240, u'x') + u"\""_s).size(), 238) << "a long line is cut";
  iPage->SetScriptSource(QString());
  RunFails(u"Go 0"_s);
  EXPECT_EQ(CVelumRunError::Place(iInterpreter->GetError()), u"Script of background 'Page', line 2"_s);
  EXPECT_EQ(Run(u"Answer 1"_s), Answers{u"1"_s});
  EXPECT_EQ(CVelumRunError::Place(iInterpreter->GetError()), QString()) << "nothing failed since";
}

TEST_F(CVelumInterpreterTest, NamesTheHandlerThatFailedInsideAnother) {
  SetScript(*Control(u"T"_s), u"On a\n\nx = 1 / 0\nEnd\n"_s);
  EXPECT_EQ(RunFails(u"Send \"a\" To Field \"T\""_s), EHostDivisionByZero);
  EXPECT_EQ(CVelumRunError::Place(iInterpreter->GetError()), u"Script of field 'T', line 3"_s);
}

// A handler begins without a line, whatever ran before it.
TEST_F(CVelumInterpreterTest, KnowsNoLineAheadOfTheFirstMark) {
  Run(u"Answer 1"_s);
  EXPECT_EQ(CodeFails(Handler({46})), EMsgAssertFailed);
  EXPECT_EQ(iInterpreter->GetError().iLine, ENoInt);
  EXPECT_EQ(CVelumRunError::Place(iInterpreter->GetError()), u"Script of background 'Page'"_s);
}

TEST_F(CVelumInterpreterTest, BlamesNoScriptForWhatFailsInAnEvent) {
  const CWork work(
      [] { EXPECT_THROW(CVelumError::AssertObj(false, nullptr, u"Event"_s, u"event"_s), CVelumException); });
  iInterpreter->SetPumpAlways(true);
  Run(u"x = 1"_s);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
  EXPECT_FALSE(iPresenter.LastText().contains(u"Script of"_s)) << iPresenter.LastText().toStdString();
}

TEST_F(CVelumInterpreterTest, LooksForHandlersFromTheControlUp) {
  const Ref<CVelumCard> one = Card(u"one"_s);
  const Ref<CVelumControl> field = Control(u"T"_s);
  CVelumScripted* const owners[] = {iStack.Get(), iPage.Get(), one.Get(), field.Get()};
  for (CVelumScripted* owner : owners) {
    SetScript(*owner, u"On Hello\nAnswer \"x\"\nEnd\n"_s);
    EXPECT_EQ(iHost->Send(one, field, u"hello"_s).Get(), owner);
  }
  EXPECT_EQ(iHost->Send(one, field, u"other"_s).Get(), nullptr);
}

TEST_F(CVelumInterpreterTest, RefusesTheTwelfthNestedHandler) {
  SetScript(*Control(u"T"_s), u"On again\nAnswer \"n\"\nSend \"again\" To Field 1\nEnd\n"_s);
  EXPECT_EQ(RunFails(u"Send \"again\" To Field 1"_s), EHostIndex);
  EXPECT_EQ(iPresenter.Told().count(u"n"_s), 11);
}

TEST_F(CVelumInterpreterTest, RefusesAFullStack) {
  QString body;
  for (int i = 0; i < 19; ++i) body += u"v%1 = %1\n"_s.arg(i);
  EXPECT_EQ(RunFails(body), EHostIndex); // with the parameter these are 20 slots
}

TEST_F(CVelumInterpreterTest, OnlyTheLastOfSeveralEventsRuns) {
  SetScript(*Control(u"T"_s),
            u"On a\nAnswer \"a\"\nEnd\nOn b\nAnswer \"b\"\nEnd\nOn c\nAnswer \"c\"\nEnd\n"_s);
  const CWork work([this] {
    for (const QString& msg : {u"a"_s, u"b"_s, u"c"_s})
      iInterpreter->LocateAndExecScript(Card(u"one"_s), Control(u"T"_s), msg);
  });
  iInterpreter->SetPumpAlways(true);
  EXPECT_EQ(Run(u"Answer \"end\""_s), (Answers{u"c"_s, u"end"_s}));
}

TEST_F(CVelumInterpreterTest, IsStoppedByABreak) {
  bool done = false;
  const CWork work([&] { iInterpreter->BreakAndThen([&] { done = !iInterpreter->Running(); }); }, 3);
  EXPECT_EQ(Run(u"Repeat While 1 = 1\nx = 1\nEnd Repeat"_s), Answers{u"Script breaked"_s});
  EXPECT_TRUE(done) << "the command comes after the script";
  EXPECT_FALSE(iInterpreter->Running());
  EXPECT_EQ(iInterpreter->Code(), u"**Null Context**"_s);
}

// An event that fails while a script runs resets the interpreter under the running loop.
TEST_F(CVelumInterpreterTest, EndsWhenItIsResetWhileItRuns) {
  bool done = false;
  const CWork work(
      [&] {
        iInterpreter->BreakAndThen([&] { done = true; });
        iInterpreter->Reset();
        EXPECT_FALSE(done) << "the command waits for the loop to end";
      },
      2);
  EXPECT_EQ(Run(u"Answer 1\nRepeat While 1 = 1\nx = 1\nEnd Repeat"_s), Answers{u"1"_s});
  EXPECT_TRUE(done);
  EXPECT_EQ(Run(u"Answer 2"_s), Answers{u"2"_s});
}

TEST_F(CVelumInterpreterTest, IgnoresAPendingHandlerWithoutCode) {
  const Ref<CVelumControl> field = Control(u"T"_s);
  SetScript(*field, u"On a\nAnswer 1\nEnd\n"_s);
  field->Script()->SetValAt(1, TVelumValue::OfStr(QString()));
  EXPECT_EQ(Run(u"Send \"a\" To Field \"T\"\nAnswer 2"_s), Answers{u"2"_s});
  field->Script()->SetValAt(1, TVelumValue::OfStr(u"no hexadecimal"_s));
  EXPECT_NE(RunFails(u"Send \"a\" To Field \"T\"\nAnswer 2"_s), 0);
}

TEST_F(CVelumInterpreterTest, SharesTheParameterWithNestedHandlers) {
  SetScript(*Control(u"T"_s), u"On a p\nAnswer \"inner \" & p\nEnd\n"_s);
  iInterpreter->SetParamVal(u"given"_s);
  EXPECT_EQ(Run(u"Send \"a\" To Field \"T\"\nAnswer p"_s), (Answers{u"inner given"_s, u"given"_s}));
}

TEST_F(CVelumInterpreterTest, GoesOnWhereItWasSuspended) {
  SetScript(*Control(u"T"_s), u"On a\nx = 5\nGo \"two\"\nEnd\n"_s);
  EXPECT_EQ(Run(u"x = 1\nSend \"a\" To Field \"T\"\nAnswer x\nAnswer Field \"T\""_s),
            (Answers{u"1"_s, u"hello"_s}))
      << "with its variables and its card";
  EXPECT_EQ(iHost->CurCard().Get(), Card(u"two"_s).Get());
}

TEST_F(CVelumInterpreterTest, SuspendsNoHandlerThatSixteenBitsCannotCount) {
  const QString sum = u"x = 1"_s + QString(u"+1"_s).repeated(4080);
  SetScript(*Control(u"T"_s), u"On a\nAnswer 1\nEnd\n"_s);
  const QString send = u"\nSend \"a\" To Field \"T\""_s;
  EXPECT_EQ(Run(sum + send), Answers{u"1"_s});
  EXPECT_EQ(RunFails(sum + u"+1+1+1+1+1+1+1"_s + send), EHostOverflow);
}

TEST_F(CVelumInterpreterTest, KeepsToALimit) {
  iInterpreter->SetLimit(1000);
  EXPECT_EQ(RunFails(u"Repeat While 1 = 1\nx = 1\nEnd Repeat"_s), EHostInterrupt);
  EXPECT_EQ(Run(u"Answer 1"_s), Answers{u"1"_s});
  // Three line marks, entering, storing the parameter (3), answering (2), leaving.
  for (const bool single : {false, true}) {
    iInterpreter->SetPumpAlways(single);
    iInterpreter->SetLimit(10);
    EXPECT_EQ(Run(u"Answer 1"_s), Answers{u"1"_s});
    iInterpreter->SetLimit(9);
    EXPECT_EQ(RunFails(u"Answer 1"_s), EHostInterrupt);
  }
}

// Events get their turn often enough to stop a script at once, whatever it does.
TEST_F(CVelumInterpreterTest, LetsEventsRunInLongWork) {
  class CGaps final : public CVelumEventPump {
  public:
    explicit CGaps(CVelumInterpreter& aInterpreter) : iInterpreter(aInterpreter) {
      CVelumSeams::SetEventPump(this);
    }
    ~CGaps() override { CVelumSeams::SetEventPump(nullptr); }
    void Pump() override {
      const std::clock_t now = std::clock();
      iLongest = qMax(iLongest, now - iLast);
      iLast = now;
      if (++iPumps == 60) iInterpreter.Break();
    }
    CVelumInterpreter& iInterpreter;
    std::clock_t iLast = std::clock(); // of this process alone: the machine may be busy
    std::clock_t iLongest = 0;
    int iPumps = 0;
  };
  const QString longText =
      u"t = \"          \"\ni = 0\nRepeat While i < 13\ni = i + 1\nt = t & t\nEnd Repeat\n"_s;
  const QString bodies[] = {
      u"Repeat While 1 = 1\nx = 1\nEnd Repeat"_s,
      longText + u"Repeat While 1 = 1\ns = t & \"x\"\nEnd Repeat"_s,
      longText + u"u = t & \"\"\nRepeat While u = t\nu = t & \"\"\nEnd Repeat"_s,
      longText + u"Repeat While 1 = 1\nx = t * t\nEnd Repeat"_s,
      u"Repeat While 1 = 1\nRepeat For Each Card c\nx = Field \"T\" Of Card c\nEnd Repeat\nEnd Repeat"_s};
  for (const QString& body : bodies) {
    CGaps gaps(*iInterpreter);
    Run(body);
    EXPECT_EQ(iPresenter.Told().last(), u"Script breaked"_s);
    EXPECT_LT(gaps.iLongest, CLOCKS_PER_SEC / 10) << body.toStdString();
  }
}

TEST_F(CVelumInterpreterTest, AsksOncePerScriptHoweverOftenACheckFails) {
  iPresenter.SetDefaultAnswer(true);
  const QString body = u"i = 0\nRepeat While i < 50\ni = i + 1\nx = (Random(0)\nEnd Repeat"_s;
  Run(body);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
  Run(body);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 2);
}
