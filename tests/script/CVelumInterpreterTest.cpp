#include "ScriptStack.h"

#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "support/Assertions.h"

#include <ctime>
#include <random>

namespace {

class CVelumInterpreterTest : public ScriptStack {
protected:
  // The failure of aBody as message, parameters and procedure.
  QString Error(const QString& aBody) {
    EXPECT_EQ(RunFails(aBody), EMsgRunError);
    const TRunError& error = iInterpreter->GetError();
    return CVelumMsg::Name(error.iMsg).mid(4) + u'|' + error.iParam0 + u'|' + error.iParam1 + u'|' +
           CVelumError::GetErrorRecord().iProc.mid(18);
  }
  // How aBody ends and what it answers, with fused instructions or without.
  QList<QString> Outcome(const QString& aBody, bool aSingle) {
    iInterpreter->SetPumpAlways(aSingle);
    iInterpreter->SeedRandom(1);
    iHost->SetCurCard(Card(u"one"_s));
    QList<QString> outcome;
    const auto before = iPresenter.Told().size();
    try {
      Run(aBody);
    } catch (const CVelumException& e) {
      const TRunError& error = iInterpreter->GetError();
      outcome = {QString::number(e.Number()), error.iParam0, QString::number(error.iLine),
                 CVelumError::GetErrorRecord().iP1};
    }
    return outcome + iPresenter.Told().mid(before);
  }
  qint32 AssertText(const QString& aBody, const QString& aText) {
    const qint32 number = RunFails(aBody);
    EXPECT_TRUE(iPresenter.LastText().contains(aText)) << iPresenter.LastText().toStdString();
    return number;
  }
};

using Answers = QList<QString>;

// Does its work in one turn of events, and nothing in the others.
class CWork final : public CVelumEventPump {
public:
  explicit CWork(std::function<void()> aWork, int aTurn = 1) : iWork(std::move(aWork)), iTurn(aTurn) {
    CVelumSeams::SetEventPump(this);
  }
  ~CWork() override { CVelumSeams::SetEventPump(nullptr); }
  void Pump() override {
    if (--iTurn == 0) iWork();
  }

private:
  std::function<void()> iWork;
  int iTurn;
};

} // namespace

TEST_F(CVelumInterpreterTest, IsIdleAfterAHandler) {
  Run(u"x = 1"_s);
  EXPECT_FALSE(iInterpreter->Running());
  EXPECT_EQ(iInterpreter->Code(), u"**Null Context**"_s);
}

TEST_F(CVelumInterpreterTest, Calculates) {
  EXPECT_EQ(Run(u"Answer 7 / 2\nAnswer 5 / 2\nAnswer 2 + 3 * 4\nAnswer 2 - 5\nAnswer -5"_s),
            (Answers{u"4"_s, u"2"_s, u"14"_s, u"-3"_s, u"5"_s}));
  EXPECT_EQ(
      Run(u"Answer \"1\" + \"2\"\nAnswer \"7\" / \"2\"\nAnswer \"2\" * \"1.5\"\nAnswer \"1\" - \"3\""_s),
      (Answers{u"3"_s, u"3.5"_s, u"3"_s, u"-2"_s}));
  EXPECT_EQ(Run(u"Answer Field \"R\" * 2\nAnswer 1 + Field \"R\""_s), (Answers{u"5"_s, u"3.5"_s}));
  EXPECT_EQ(Run(u"Answer 0 - Field \"I\""_s), Answers{u"-7"_s});
}

TEST_F(CVelumInterpreterTest, RaisesHostErrorsOfArithmetic) {
  EXPECT_EQ(RunFails(u"Answer 1 / 0"_s), EHostDivisionByZero);
  EXPECT_EQ(RunFails(u"Answer \"1\" / \"0\""_s), EHostDivisionByZero);
  const QString big = u"x = 32767 * 32767\nx = x + x\n"_s;
  EXPECT_EQ(RunFails(big + u"x = x + x"_s), EHostOverflow);
  EXPECT_EQ(RunFails(big + u"Answer x * 2"_s), EHostOverflow);
  EXPECT_EQ(RunFails(big + u"x = 0 - x\nx = x - 32767 * 32767\nAnswer x"_s), EHostOverflow);
}

TEST_F(CVelumInterpreterTest, ReckonsWithDates) {
  EXPECT_EQ(
      Run(u"d = Field \"D\"\nAnswer d\nAnswer d + 30\nAnswer d - 31\nAnswer (d + 29) - d\nAnswer d + d"_s),
      (Answers{u"1/31/2020"_s, u"3/1/2020"_s, u"12/31/2019"_s, u"29"_s, u"87722"_s}));
  EXPECT_EQ(Error(u"Answer 1 + Field \"D\""_s), u"IncompatibleValTypes|Integer|Date|CheckOpTypes"_s);
  EXPECT_EQ(RunFails(u"d = Field \"D\"\nAnswer (d + 32767) + 1 - d"_s), EHostOverflow)
      << "days between fit 16 bits";
  EXPECT_EQ(Run(u"Answer The Date - The Date"_s), Answers{u"0"_s});
}

TEST_F(CVelumInterpreterTest, Compares) {
  EXPECT_EQ(Run(u"Answer 1 < 2\nAnswer 2 <= 2\nAnswer 3 <> 3\nAnswer 1 > 2\nAnswer 2 >= 2\nAnswer 1 Is 1"_s),
            (Answers{u"True"_s, u"True"_s, u"False"_s, u"False"_s, u"True"_s, u"True"_s}));
  EXPECT_EQ(Run(u"Answer \"a\" < \"b\"\nAnswer \"B\" < \"a\"\nAnswer \"a\" = \"A\""_s),
            (Answers{u"True"_s, u"True"_s, u"False"_s}));
  EXPECT_EQ(Run(u"Answer (1 = 1) < (1 = 2)"_s), Answers{u"True"_s}) << "true counts as -1";
  EXPECT_EQ(Error(u"Answer 1 = \"1\""_s), u"IncompatibleValTypes|Integer|String|CheckOpTypes"_s);
}

TEST_F(CVelumInterpreterTest, ReadsAnIntComparedWithAFloatAsZero) {
  EXPECT_EQ(
      Run(u"f = \"0\" + \"1\"\nAnswer 1 = f\nAnswer f = 1\nAnswer 5 < f\nAnswer 5 > f\nAnswer f >= 1"_s),
      (Answers{u"False"_s, u"True"_s, u"True"_s, u"False"_s, u"True"_s}));
}

TEST_F(CVelumInterpreterTest, CombinesBooleans) {
  EXPECT_EQ(Run(u"Answer (1 = 1) And (1 = 2)\nAnswer (1 = 1) Or (1 = 2)\nAnswer Not (1 = 1)\nAnswer Not 5"_s),
            (Answers{u"False"_s, u"True"_s, u"False"_s, u"True"_s}));
  EXPECT_EQ(Error(u"Answer 1 And 2"_s), u"IncompatibleValTypes|Integer|Integer|CheckOpTypes"_s);
}

TEST_F(CVelumInterpreterTest, JoinsTexts) {
  EXPECT_EQ(Run(u"Answer 1 & 2\nAnswer \"a\" & (1 = 1) & Return & Tab & \"b\""_s),
            (Answers{u"12"_s, u"aTrue\r\n\tb"_s}));
  EXPECT_EQ(Run(u"s = \"ab\"\ns = s & s\nt = s\ns = s & 1\nAnswer s\nAnswer t"_s),
            (Answers{u"abab1"_s, u"abab"_s}));
}

TEST_F(CVelumInterpreterTest, BoundsTheTextsThatAScriptBuilds) {
  EXPECT_EQ(RunFails(u"s = \"0123456789\"\nRepeat While 1 = 1\ns = s & s\nEnd Repeat"_s), EHostOutOfMemory);
  EXPECT_EQ(RunFails(u"s = \"0123456789\"\nRepeat While 1 = 1\nt = s & s\ns = t & t\nEnd Repeat"_s),
            EHostOutOfMemory);
}

TEST_F(CVelumInterpreterTest, ReadsANewVariableAsEmptyText) {
  EXPECT_EQ(Run(u"Answer x & 1"_s), Answers{u"1"_s});
  EXPECT_EQ(Error(u"Answer x + 1"_s), u"IncompatibleValTypes|String|Integer|CheckOpTypes"_s);
}

TEST_F(CVelumInterpreterTest, GivesVariablesTheTypeOfWhatIsStored) {
  EXPECT_EQ(Run(u"x = 1\nx = \"a\"\nAnswer x\nx = Field \"D\"\nAnswer x\nx = x = x\nAnswer x"_s),
            (Answers{u"a"_s, u"1/31/2020"_s, u"True"_s}));
}

TEST_F(CVelumInterpreterTest, HandsOverTheParameter) {
  iInterpreter->SetParamVal(u"given"_s);
  EXPECT_EQ(Run(u"Answer p"_s), Answers{u"given"_s});
}

TEST_F(CVelumInterpreterTest, Branches) {
  EXPECT_EQ(
      Run(u"If 1 = 2 Then\nAnswer 1\nElse\nAnswer 2\nEnd If\nIf 1 = 1 Then Answer 9\nAnswer 3\nEnd If"_s),
      (Answers{u"2"_s, u"3"_s}));
  EXPECT_EQ(Error(u"If 1 Then\nEnd If"_s), u"WrongValType|Integer||ExecJumpIfFalse"_s);
}

TEST_F(CVelumInterpreterTest, Repeats) {
  EXPECT_EQ(
      Run(u"i = 0\nRepeat While i < 3\ni = i + 1\nIf i = 2 Then\nExit Repeat\nEnd If\nAnswer i\nEnd Repeat"_s),
      Answers{u"1"_s});
  EXPECT_EQ(Run(u"Repeat For Each Card c\nAnswer c\nEnd Repeat"_s),
            (Answers{u"one"_s, u"two"_s, u"three"_s, u"x"_s}));
  EXPECT_EQ(Run(u"Repeat For Each Card c Of Background \"Page\"\nAnswer Field \"T\" Of Card c\nEnd Repeat"_s),
            (Answers{u"hello"_s, QString(), QString(), QString()}));
}

TEST_F(CVelumInterpreterTest, CountsCards) {
  EXPECT_EQ(Run(u"Answer Number Of Cards\nAnswer Number Of Cards Of Background \"Page\""_s),
            (Answers{u"4"_s, u"4"_s}));
  EXPECT_EQ(Error(u"Answer Number Of Cards Of Background \"None\""_s),
            u"BackgroundNotFound|None||ExecValToBackground"_s);
  EXPECT_EQ(Error(u"Answer Number Of Cards Of Background 1"_s),
            u"WrongValType|Integer||ExecValToBackground"_s);
}

TEST_F(CVelumInterpreterTest, ReadsUnsetFieldsAsZero) {
  EXPECT_EQ(
      Run(u"Go \"x\"\nAnswer Field \"I\"\nAnswer Field \"R\"\nAnswer Field \"B\"\nAnswer Field \"T\"\nAnswer Field \"D\""_s),
      (Answers{u"0"_s, u"0"_s, u"False"_s, QString(), u"1/1/1980"_s}));
}

TEST_F(CVelumInterpreterTest, PutsConvertedValues) {
  Run(u"Put \"12\" Into Field \"I\"\nPut 5 Into Field 1 Of Card 3\nPut 2 Into Field \"R\" Of Card \"two\""_s);
  EXPECT_EQ(Card(u"one"_s)->GetControlVal(Control(u"I"_s)->Id(), false).Int(), 12);
  EXPECT_EQ(Card(u"three"_s)->GetControlVal(Control(u"T"_s)->Id(), false).Str(), u"5"_s);
  EXPECT_EQ(Card(u"two"_s)->GetControlVal(Control(u"R"_s)->Id(), false).Real(), 2.0);
  AssertText(u"Put 5 Into Field \"D\""_s, u"Convert aTo.iType"_s);
}

TEST_F(CVelumInterpreterTest, FindsCardsAndFields) {
  EXPECT_EQ(Error(u"Go 0"_s), u"CardNotFound|0||ExecGoToCard"_s);
  EXPECT_EQ(Error(u"Go 5"_s), u"CardNotFound|5||ExecGoToCard"_s);
  EXPECT_EQ(Error(u"Go \"none\""_s), u"CardNotFound|none||ExecGoToCard"_s);
  EXPECT_EQ(Error(u"Go 1 = 1"_s), u"WrongValType|Boolean||ExecGoToCard"_s);
  EXPECT_EQ(Error(u"Answer Field 1 Of Card \"none\""_s), u"CardNotFound|none||ExecValToCard"_s);
  EXPECT_EQ(Error(u"Answer Field \"none\""_s), u"ControlNotFound|none||ExecValToControl"_s);
  EXPECT_EQ(Error(u"Answer Field 99"_s), u"ControlNotFound|99||ExecValToControl"_s);
  EXPECT_EQ(Error(u"Answer Field (1 = 1)"_s), u"WrongValType|Boolean||ExecStringToControl"_s);
  EXPECT_EQ(Error(u"Answer Field (\"1\" + \"0\")"_s), u"WrongValType|Real||ExecStringToControl"_s);
}

TEST_F(CVelumInterpreterTest, ReportsOwnerAndLineOfAnError) {
  EXPECT_EQ(RunFails(u"x = 1\n\n# note\nGo 0"_s), EMsgRunError);
  EXPECT_EQ(iInterpreter->GetError().iLine, 4);
  EXPECT_EQ(iInterpreter->GetError().iObj.Get(), iPage.Get());
}

TEST_F(CVelumInterpreterTest, Goes) {
  SetScript(*Card(u"two"_s), u"On openCard\nAnswer \"open\"\nEnd\n"_s);
  EXPECT_EQ(Run(u"Go \"two\"\nAnswer \"after\"\nAnswer Field \"T\""_s),
            (Answers{u"open"_s, u"after"_s, QString()}))
      << "the nested handler runs at the next instruction, and the context card is the new one";
  EXPECT_EQ(iHost->CurCard().Get(), Card(u"two"_s).Get());
  Run(u"Go Next Card"_s);
  EXPECT_EQ(iHost->CurCard().Get(), Card(u"three"_s).Get());
}

TEST_F(CVelumInterpreterTest, Sends) {
  SetScript(*Control(u"I"_s), u"On msg\nAnswer \"control\"\nEnd\n"_s);
  EXPECT_EQ(Run(u"Send \"msg\" To Field \"I\"\nAnswer \"after\""_s), (Answers{u"control"_s, u"after"_s}));
  EXPECT_EQ(Run(u"Send \"nobody\" To Field \"I\"\nAnswer \"after\""_s), Answers{u"after"_s});
  EXPECT_EQ(Error(u"Send 1 To Field \"I\""_s), u"WrongValType|Integer||ExecSend"_s);
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

TEST_F(CVelumInterpreterTest, AssertsOnAnExitOutsideALoop) {
  EXPECT_EQ(AssertText(u"Answer 1\nExit Repeat"_s, u"Execute instr"_s), EMsgAssertFailed);
}

TEST_F(CVelumInterpreterTest, DrawsRandomNumbers) {
  EXPECT_EQ(Run(u"x = (Random(1)\nAnswer x"_s), Answers{u"1"_s});
  AssertText(u"x = (Random(0)"_s, u"arg 0"_s);
  AssertText(u"x = Random"_s, u"numArg 0"_s);
  AssertText(u"x = (Random(1, 2)"_s, u"numArg 2"_s);
  Run(u"i = 0\nRepeat While i < 2000\ni = i + 1\nx = (Random(6)\nIf x < 1 Then\nAnswer \"low\"\nEnd If\n"
      u"If x > 6 Then\nAnswer \"high\"\nEnd If\nEnd Repeat"_s);
  EXPECT_TRUE(iPresenter.Told().last() == u"1"_s) << "nothing out of bounds was answered";
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

// What a fused instruction remembers of a field holds only until events have run.
TEST_F(CVelumInterpreterTest, SeesFieldsThatEventsChanged) {
  const CWork work(
      [this] {
        Control(u"I"_s)->SetName(u"was I"_s);
        Control(u"R"_s)->SetName(u"I"_s);
      },
      4);
  EXPECT_EQ(Run(u"x = 7\nRepeat While x = 7\nx = Field \"I\"\nEnd Repeat\nAnswer x"_s), Answers{u"2.5"_s});
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

// ---- Byte code that no compiler made

TEST_F(CVelumInterpreterTest, ChecksCodeAsItRuns) {
  EXPECT_EQ(CodeFails(QByteArray()), EMsgAssertFailed);
  EXPECT_EQ(CodeFails(QByteArray("\1\0", 2)), EMsgAssertFailed) << "generation";
  EXPECT_EQ(CodeFails(Handler({})), EHostIndex) << "runs off its end";
  EXPECT_EQ(CodeFails(Handler({46})), EMsgAssertFailed) << "pops an empty stack";
  EXPECT_EQ(CodeFails(Handler({13, 0, 128})), EHostOverflow) << "a negative number";
  EXPECT_EQ(CodeFails(Handler({13, 5})), EHostIndex);
  EXPECT_EQ(CodeFails(Handler({30, 255, 127})), EMsgAssertFailed) << "jumps out of the code";
  EXPECT_EQ(CodeFails(Handler({38, 255, 127, 13, 0, 0})), EHostIndex);
  EXPECT_EQ(CodeFails(Handler({1, 11, 5, 65})), EMsgAssertFailed) << "a text longer than the code";
  EXPECT_EQ(CodeFails(Handler({1, 12, 0})), EMsgAssertFailed) << "a literal of another type";
  EXPECT_EQ(CodeFails(Handler({13, 0, 0, 11})), EHostIndex) << "a variable without a frame";
  EXPECT_EQ(CodeFails(Handler({38, 2, 0, 46, 16})), EHostObjectNotSet);
  EXPECT_EQ(CodeFails(Handler({38, 1, 0, 10})), EHostObjectNotSet) << "an entry with nothing in it";
  EXPECT_EQ(CodeFails(Handler({5})), 0) << "stop";
}

TEST_F(CVelumInterpreterTest, NamesWhatIsWrongWithCode) {
  const auto assertion = [this](const QByteArray& aCode) { return Assertions::Of([&] { RunCode(aCode); }); };
  EXPECT_EQ(assertion(QByteArray("\1\0", 2)), "Execute|gen");
  EXPECT_EQ(assertion(QByteArray()), "CodeByte|CodeByte codeLen");
  EXPECT_EQ(assertion(Handler({30, 255, 127})), "CodeByte|CodeByte codeLen");
  EXPECT_EQ(assertion(Handler({46})), "Pop|Pop sp");
  EXPECT_EQ(assertion(Handler({38, 1, 0, 1, 11, 0, 11})), "ExecPushVarVal|int String");
  for (const int byte : {0, 48, 255}) EXPECT_EQ(assertion(Handler({byte})), "Execute|Execute instr") << byte;
  iHost->SetCurCard(nullptr);
  EXPECT_EQ(assertion(Handler({29})), "ExecPushCurCard|found");
}

TEST_F(CVelumInterpreterTest, HasTwentyOneEntries) {
  std::vector<int> pushes;
  for (int i = 0; i < 21; ++i) pushes.insert(pushes.end(), {13, 0, 0});
  QByteArray code(2, '\0');
  for (const int byte : pushes) code.append(static_cast<char>(byte));
  EXPECT_EQ(CodeFails(code + '\x05'), 0);
  EXPECT_EQ(CodeFails(code + QByteArray("\x0D\0\0\x05", 4)), EHostIndex);
  EXPECT_EQ(CodeFails(Handler({38, 3, 0, 13, 17, 0, 11, 5})), 0) << "slot 17 is entry 17";
  EXPECT_EQ(CodeFails(Handler({38, 3, 0, 13, 21, 0, 11, 5})), EHostIndex);
  EXPECT_EQ(CodeFails(Handler({13, 0, 0, 38, 3, 0, 13, 20, 0, 11, 5})), EHostIndex);
  iInterpreter->SetVarVal(20, MakeRef<CVelumVar>(EValInt));
  EXPECT_THROW(iInterpreter->SetVarVal(21, MakeRef<CVelumVar>(EValInt)), CVelumException);
  EXPECT_THROW(iInterpreter->SetVarVal(-1, MakeRef<CVelumVar>(EValInt)), CVelumException);
}

TEST_F(CVelumInterpreterTest, TakesCardsAndBackgroundsAsTheyAre) {
  EXPECT_EQ(
      Run(u"Repeat For Each Card c\nGo c\nEnd Repeat\nGo 1 / 1\nGo \"2\" + \"0\"\nAnswer Field \"T\" Of Card 1"_s),
      Answers{u"hello"_s});
  EXPECT_EQ(iHost->CurCard().Get(), Card(u"two"_s).Get()) << "a Float is a number, too";
  // "Page" 35 35 45: how many cards a background has that was given as one
  const auto before = iPresenter.Told().size();
  RunCode(Handler({38, 0, 0, 1, 11, 4, 'P', 'a', 'g', 'e', 35, 35, 45, 10, 39, 0, 0}));
  EXPECT_EQ(iPresenter.Told().mid(before), Answers{u"4"_s});
}

TEST_F(CVelumInterpreterTest, KeepsTheTypeOfAWalksVariable) {
  EXPECT_EQ(Assertions::Of([this] { Run(u"Repeat For Each Card c\nc = 1\nEnd Repeat"_s); }),
            "LetCardVal|type");
  EXPECT_EQ(Run(u"Repeat For Each Card c\nIf c = c Then\nExit Repeat\nEnd If\nEnd Repeat\nAnswer c"_s),
            Answers{u"one"_s});
  EXPECT_EQ(
      Run(u"Repeat For Each Card c\nRepeat For Each Card d\nn = n & \"i\"\nEnd Repeat\nEnd Repeat\nAnswer n"_s),
      Answers{QString(16, u'i')});
}

TEST_F(CVelumInterpreterTest, AssertsOnFieldsWithoutAValue) {
  EXPECT_EQ(Assertions::Of([this] { Run(u"Answer Field \"C\""_s); }), "Assert|ConToValType type");
  EXPECT_EQ(Assertions::Of([this] { Run(u"Answer Field \"P\""_s); }), "Assert|SetZero type");
}

TEST_F(CVelumInterpreterTest, NegatesByType) {
  iPresenter.Clear();
  const auto before = iPresenter.Told().size();
  RunCode(Handler({38, 0, 0, 13, 5, 0, 22, 10, 1, 11, 1, '2', 22, 10, 39, 0, 0}));
  EXPECT_EQ(iPresenter.Told().mid(before), (Answers{u"-5"_s, u"-2"_s}));
}

TEST_F(CVelumInterpreterTest, AsksOncePerScriptHoweverOftenACheckFails) {
  iPresenter.SetDefaultAnswer(true);
  const QString body = u"i = 0\nRepeat While i < 50\ni = i + 1\nx = (Random(0)\nEnd Repeat"_s;
  Run(body);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
  Run(body);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 2);
}

TEST_F(CVelumInterpreterTest, StaysSafeWhenChecksAreOverruled) {
  iPresenter.SetDefaultAnswer(true);
  iInterpreter->SetLimit(2000);
  std::mt19937 random(4711); // the same bytes on every run
  for (int turn = 0; turn < 3000; ++turn) {
    QByteArray code(2, '\0');
    code += QByteArray("\x26\x03\x00", 3);
    const int len = static_cast<int>(random() % 40);
    for (int i = 0; i < len; ++i) {
      const auto kind = random() % 4;
      code.append(static_cast<char>(kind == 0 ? random() : kind == 1 ? random() % 3 : random() % 48));
    }
    CodeFails(code);
    iPresenter.Clear();
    EXPECT_FALSE(iInterpreter->Running());
  }
  EXPECT_EQ(iStack->NumCards(), 4);
}

// Fused instructions do what the single ones do: the same answers and failures with events before each
// instruction, which switches them off.
TEST_F(CVelumInterpreterTest, FusesWithoutADifference) {
  const QString bodies[] = {
      u"i = 0\ns = 0\nRepeat While i < 50\ni = i + 1\ns = s + i * i\nIf s > 100 Then\ns = s - 100\nEnd If\n"
      u"End Repeat\nAnswer s"_s,
      u"s = \"\"\ni = 0\nRepeat While i < 20\ns = s & i & \",\"\ni = i + 1\nEnd Repeat\nAnswer s"_s,
      u"a = \"1\" + \"0\"\nb = 3\nAnswer a + b\nAnswer b < a\nc = a = b\nAnswer c\nb = b & a\nAnswer b"_s,
      u"x = 1\ny = x\nx = x + 1\nAnswer x & y"_s,
      u"x = y + 1"_s,
      u"x = 32767\nRepeat While x > 0\nx = x * 2\nEnd Repeat"_s,
      u"If 1 < \"a\" Then\nEnd If"_s,
      // Walks and fields.
      u"s = 0\nRepeat For Each Card c\ns = s + Field \"I\" Of Card c\nEnd Repeat\nAnswer s"_s,
      u"s = 0\nRepeat For Each Card c Of Background \"Page\"\ns = s + Field 2 Of Card c\nEnd Repeat\nAnswer s"_s,
      u"Repeat For Each Card c\nIf Field \"I\" Of Card c > 3 Then\nAnswer c\nEnd If\nAnswer Field \"D\" Of "
      u"Card c\n"
      u"Answer Field \"B\" Of Card c & Field \"R\" Of Card c\nEnd Repeat"_s,
      u"Repeat For Each Card c\nc = 1\nEnd Repeat"_s,
      u"Repeat For Each Card c\nGo c\nx = Field \"I\"\nAnswer x\nPut x + 1 Into Field \"I\"\nAnswer Field "
      u"\"I\"\n"
      u"Put x Into Field \"I\"\nEnd Repeat"_s,
      u"c = 1\nAnswer Field \"I\" Of Card c"_s,
      u"c = \"none\"\nAnswer Field \"I\" Of Card c"_s,
      u"Answer Field \"none\" & 1"_s,
      u"x = Field \"C\""_s,
      u"x = 1 + Field \"P\""_s,
      u"x = Field \"T\" & \"!\"\nAnswer x & Field \"T\"\nAnswer \"<\" & x"_s,
      // Numbers at random, on the stack and stored.
      u"x = 0\nx = Random(6)\nAnswer x\nAnswer (Random(6) + 1\nx = (Random(x)\nAnswer x"_s,
      u"x = Random(0)"_s,
      u"x = 1\nx = x + 2 * 3\nAnswer x\nx = x - 2 * 3\nAnswer x\ny = x + 2 * 3\nAnswer y\nx = x / 2 * 3\nAnswer x"_s,
      u"x = 1\nx = x + 32767 * 32767 * 2"_s,
      u"s = \"a\"\nt = s\ns = s & \"b\" & t\nAnswer s\nAnswer t\ns = s & s\nAnswer s"_s,
      u"Repeat For Each Card c\ns = s & c & Field \"I\" Of Card c & Return\nEnd Repeat\nAnswer s"_s,
  };
  for (const QString& body : bodies)
    EXPECT_EQ(Outcome(body, false), Outcome(body, true)) << body.toStdString();
}

// The slot of a name that an earlier handler of the source used can lie where values are pushed.
TEST_F(CVelumInterpreterTest, ReadsAVariableAmongTheValuesThatArePushed) {
  SetScript(*Control(u"T"_s),
            u"On first\nv = 1\nx = 2\nEnd\nOn second\nAnswer (1 + 2) & (5 = x)\nAnswer x & 5\n"
            u"x = 7 + x\nAnswer x\nx = x + 1 * 2\nAnswer x\nEnd\n"_s);
  QList<QString> told[2];
  for (const bool single : {false, true}) {
    iInterpreter->SetPumpAlways(single);
    const auto before = iPresenter.Told().size();
    try {
      iHost->Send(Card(u"one"_s), Control(u"T"_s), u"second"_s);
    } catch (const CVelumException& e) {
      told[single].append(QString::number(e.Number()) + iInterpreter->GetError().iParam0);
    }
    told[single] += iPresenter.Told().mid(before);
  }
  EXPECT_EQ(told[0], told[1]);
  EXPECT_TRUE(told[1].contains(u"3True"_s)) << "the variable is what was pushed last";
}

TEST_F(CVelumInterpreterTest, FusesOnANearlyFullStack) {
  QString vars;
  for (int i = 0; i < 20; ++i) {
    vars += u"v%1 = 0\n"_s.arg(i);
    const QString body = vars +
                         u"If 1 = 1 Then\nv0 = v0 + 1\nEnd If\nIf v0 < 2 Then\nAnswer 1 & v0\nEnd If\n"
                         u"v0 = v0 + Field \"I\"\nRepeat For Each Card v0\nEnd Repeat\nAnswer \"end\""_s;
    EXPECT_EQ(Outcome(body, false), Outcome(body, true)) << i;
  }
}
