#include "ScriptStack.h"

#include "core/CVelumLib.h"
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

TEST_F(CVelumInterpreterTest, KeepsDatesToYearsOfFourDigits) {
  EXPECT_EQ(Run(u"d = Field \"D\" + (32767 * 88 + 31108)\nAnswer d"_s), Answers{u"12/31/9999"_s});
  EXPECT_EQ(RunFails(u"d = Field \"D\" + (32767 * 88 + 31108)\nd = d + 1"_s), EHostOverflow);
  EXPECT_EQ(Run(u"d = Field \"D\" - (32767 * 21 + 13188)\nAnswer d"_s), Answers{u"1/1/0100"_s});
  EXPECT_EQ(RunFails(u"d = Field \"D\" - (32767 * 21 + 13188)\nd = d - 1"_s), EHostOverflow);
}

TEST_F(CVelumInterpreterTest, RaisesOverflowOfFloats) {
  const QString big = u"x = \"1"_s + QString(250, u'0') + u"\"\n"_s;
  EXPECT_EQ(RunFails(big + u"Answer x * x"_s), EHostOverflow);
  EXPECT_EQ(RunFails(big + u"y = \"1\" / x\nx = x * \"1\"\nAnswer x / y"_s), EHostOverflow);
  EXPECT_EQ(RunFails(u"x = \"17e307\"\nAnswer x + x"_s), EHostOverflow);
  EXPECT_EQ(RunFails(u"x = \"17e307\" * \"1\"\nAnswer (0 - x) - x"_s), EHostOverflow);
}

TEST_F(CVelumInterpreterTest, ShowsSumsWithoutWhatTheyAreOff) {
  EXPECT_EQ(Run(u"x = \"0.1\" + \"0.2\"\nx = x + \"0.3\" * \"1\"\nx = x + \"4.35\" * \"1\"\nAnswer x"_s),
            Answers{u"4.95"_s});
  EXPECT_EQ(Run(u"x = \"0.1\" + \"0.2\"\ny = \"0.3\" + \"0\"\nAnswer x & \"\" = y & \"\"\nAnswer x = y"_s),
            (Answers{u"True"_s, u"False"_s}))
      << "the value keeps all";
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

// A text that a loop appends to keeps its memory, however many pieces come in one statement.
TEST_F(CVelumInterpreterTest, AppendsInPlace) {
  class CPlaces final : public CVelumScriptHost {
  public:
    explicit CPlaces(CVelumPlainHost& aHost) : iHost(aHost) {}
    Ref<CVelumStack> Stack() override { return iHost.Stack(); }
    Ref<CVelumCard> CurCard() override { return iHost.CurCard(); }
    void GoToCard(const Ref<CVelumCard>&) override {}
    void GoToNextCard() override {}
    void SetCardValue(const Ref<CVelumCard>&, CVelumControl&, const TVelumValue&) override {}
    void Answer(const QString& aText) override {
      iMoves += aText.constData() != iAt;
      iAt = aText.constData();
      iText = aText.left(40);
    }
    CVelumPlainHost& iHost;
    const QChar* iAt = nullptr;
    QString iText;
    int iMoves = 0;
  };
  const char16_t* const appends[] = {u"s = s & i & \",\" & Field \"T\" & Return",
                                     u"s = s & (i * 2) & Tab & p", u"s = s & Number Of Cards & (1 + 2) & i",
                                     u"s = s & i"};
  CPlaces places(*iHost);
  iInterpreter->SetHost(&places);
  for (const char16_t* append : appends) {
    places.iMoves = 0;
    Run(u"s = \"\"\ni = 0\nRepeat While i < 2000\ni = i + 1\n"_s + QString::fromUtf16(append) +
        u"\nAnswer s\nEnd Repeat"_s);
    EXPECT_LT(places.iMoves, 100) << QString::fromUtf16(append).toStdString();
  }
  EXPECT_EQ(places.iText.left(8), u"12345678"_s);
  iInterpreter->SetHost(iHost.get());
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
}

// What no conversion leads to is a fault of the script, not of the program.
TEST_F(CVelumInterpreterTest, RefusesValuesThatDoNotFitAField) {
  const auto refused = [this](const char16_t* aBody) { return Error(QString::fromUtf16(aBody)); };
  EXPECT_EQ(refused(u"Put \"1/31/2020\" Into Field \"D\""),
            u"IncompatibleValTypes|String|Date|ExecPutField"_s);
  EXPECT_EQ(refused(u"Put 5 Into Field \"D\""), u"IncompatibleValTypes|Integer|Date|ExecPutField"_s);
  EXPECT_EQ(refused(u"Put The Date Into Field \"Ti\""), u"IncompatibleValTypes|Date|Time|ExecPutField"_s);
  EXPECT_EQ(refused(u"Put 1 Into Field \"B\""), u"IncompatibleValTypes|Integer|Boolean|ExecPutField"_s);
  EXPECT_EQ(refused(u"Put 1 = 1 Into Field \"I\""), u"IncompatibleValTypes|Boolean|Integer|ExecPutField"_s);
  EXPECT_EQ(refused(u"x = 1\nPut The Date Into Field \"R\""),
            u"IncompatibleValTypes|Date|Real|ExecPutField"_s);
  EXPECT_EQ(iInterpreter->GetError().iLine, 2);
  EXPECT_EQ(RunFails(u"Put \"x\" Into Field \"I\""_s), EHostTypeMismatch);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 0);
  EXPECT_EQ(Run(u"Answer Field \"D\"\nAnswer Field \"B\"\nAnswer Field \"I\""_s),
            (Answers{u"1/31/2020"_s, u"True"_s, u"7"_s}))
      << "the fields keep what they had";
  EXPECT_EQ(Run(u"Put Field \"D\" + 1 Into Field \"D\"\nPut \"T\" Into Field \"B\"\nPut The Date Into Field "
                u"\"T\"\nAnswer Field \"D\"\nAnswer Field \"B\""_s),
            (Answers{u"2/1/2020"_s, u"True"_s}));
}

TEST_F(CVelumInterpreterTest, PutsNoTextThatADocumentCannotHold) {
  const QString tens =
      u"t = \"0123456789\"\ni = 0\nRepeat While i < 1500\ni = i + 1\ns = s & t\nEnd Repeat\n"_s;
  for (const bool single : {false, true}) {
    iInterpreter->SetPumpAlways(single);
    Run(tens + u"Put s Into Field \"T\""_s);
    EXPECT_EQ(Card(u"one"_s)->GetControlVal(Control(u"T"_s)->Id(), false).Str().size(), 15000);
    EXPECT_EQ(
        Error(tens + u"s = s & 1\nPut s Into Field \"T\""_s),
        u"ControlNotUsable|T|the text has 15001 characters, at most 15000 can be stored|ExecPutField"_s);
    EXPECT_EQ(iInterpreter->GetError().iLine, 8);
    EXPECT_EQ(Card(u"one"_s)->GetControlVal(Control(u"T"_s)->Id(), false).Str().size(), 15000);
  }
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

// A walk takes as many instructions fused as single, its last step included, which makes no jump.
TEST_F(CVelumInterpreterTest, CountsTheInstructionsOfAWalk) {
  const char16_t* const bodies[] = {
      u"Repeat For Each Card c\nn = 1\nEnd Repeat",
      u"Repeat For Each Card c Of Background \"Page\"\nEnd Repeat",
      u"Repeat For Each Card c\nPut 1 Into Field \"I\" Of Card c\nEnd Repeat",
      u"n = 0\nRepeat For Each Card c\nn = n + Field \"I\" Of Card c * 3 / 2\ns = s & c & n & Return\n"
      u"If Field \"T\" Of Card c = \"x\" Then\nEnd If\nEnd Repeat"};
  for (const char16_t* body : bodies) {
    qint64 taken[2] = {0, 0};
    for (const bool single : {false, true}) {
      iInterpreter->SetPumpAlways(single);
      for (bool enough = false; !enough;) {
        iInterpreter->SetLimit(++taken[single]);
        enough = Outcome(QString::fromUtf16(body), single).isEmpty();
      }
    }
    EXPECT_EQ(taken[0], taken[1]) << QString::fromUtf16(body).toStdString();
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

// Nor longer than a script: the next one may find other fields under the names.
TEST_F(CVelumInterpreterTest, SeesFieldsThatChangedBetweenScripts) {
  const QString body = u"x = Field \"I\"\nAnswer x"_s;
  EXPECT_EQ(Run(body), Answers{u"7"_s});
  Control(u"I"_s)->SetName(u"was I"_s);
  Control(u"R"_s)->SetName(u"I"_s);
  EXPECT_EQ(Run(body), Answers{u"2.5"_s});
}

// Nor over an answer, during which the user can do anything.
TEST_F(CVelumInterpreterTest, SeesFieldsThatChangedDuringAnAnswer) {
  class CRenames final : public CVelumPresenter {
  public:
    explicit CRenames(std::function<void()> aWork) : iWork(std::move(aWork)) {
      CVelumSeams::SetPresenter(this);
    }
    bool Message(qint32, EMsgClass, const QString&, const QString&) override { return false; }
    void Tell(const QString& aText) override {
      iTold.append(aText);
      if (iTold.size() == 1) iWork();
    }
    void HelpPage(const QString&) override {}
    std::function<void()> iWork;
    QList<QString> iTold;
  };
  CRenames renames([this] {
    Control(u"I"_s)->SetName(u"was I"_s);
    Control(u"R"_s)->SetName(u"I"_s);
  });
  Run(u"i = 0\nRepeat While i < 2\ni = i + 1\nx = Field \"I\"\nAnswer x\nEnd Repeat"_s);
  CVelumSeams::SetPresenter(&iPresenter);
  EXPECT_EQ(renames.iTold, (Answers{u"7"_s, u"2.5"_s}));
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

// Code out of a file may be of any length.
TEST_F(CVelumInterpreterTest, DecodesNoMoreThanACompilerMakes) {
  QByteArray code = Handler({38, 0, 0});
  for (int i = 0; i < 30000; ++i) code += QByteArray("\x0E\x07\x00", 3);
  code += QByteArray("\x0D\x05\x00\x0A\x0D\x01\x00\x0D\x01\x00\x14\x0A\x27\x00\x00", 15);
  const CVelumDecodedCode decoded(CVelumLib::BytesToHex(code, false));
  EXPECT_EQ(decoded.Bytes(), code);
  EXPECT_EQ(decoded.NumDecoded(), CVelumDecodedCode::EMostDecoded);
  const auto before = iPresenter.Told().size();
  RunCode(code);
  EXPECT_EQ(iPresenter.Told().mid(before), (Answers{u"5"_s, u"2"_s})) << "the rest runs from its bytes";
  EXPECT_EQ(iInterpreter->DecodedBytes(), 0) << "and is not kept";
}

TEST_F(CVelumInterpreterTest, KeepsFewHandlersDecoded) {
  for (int i = 0; i < 20; ++i) {
    Run(u"x = 1"_s + QString(u"+1"_s).repeated(2000 + i));
    EXPECT_LE(iInterpreter->DecodedBytes(), 65536);
    EXPECT_GT(iInterpreter->DecodedBytes(), 0);
  }
  const qsizetype kept = iInterpreter->DecodedBytes();
  Run(u"x = 1"_s + QString(u"+1"_s).repeated(2019));
  EXPECT_EQ(iInterpreter->DecodedBytes(), kept) << "what is known is not decoded again";
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
      // Texts that grow, and those that are read while they do.
      u"s = \"a\"\nt = s\ns = s & 1 & 2\nAnswer s & t\ns = s & s & 3\nAnswer s\ns = s & 4 & s\nAnswer s\n"
      u"s = s & (s & 5) & 6\nAnswer s\nt = s & 7 & 8\nAnswer t & s"_s,
      u"s = \"a\"\ns = s & \"b\" & Field \"none\""_s,
      u"s = \"a\"\ns = s & (1 + 2) & Not s & Number Of Cards & Tab & p\nAnswer s"_s,
      u"s = 1\ns = s & 2 & 3\nAnswer s\ns = s & 4 & 5\nAnswer s"_s,
      u"s = \"a\"\nRepeat While s & \"b\" & \"c\" <> \"aaabc\"\ns = s & \"a\"\nEnd Repeat\nAnswer s"_s,
      // Comparisons of texts, divisions, values put.
      u"Repeat For Each Card c\nIf Field \"T\" Of Card c = \"hello\" Then\nAnswer c\nEnd If\n"
      u"If \"h\" < Field \"T\" Of Card c Then\nAnswer 1\nEnd If\nIf Field \"T\" Of Card c <> c Then\nEnd If\nEnd Repeat"_s,
      u"x = \"b\"\nIf x >= \"a\" Then\nAnswer 1\nEnd If\nIf x <= \"B\" Then\nAnswer 2\nEnd If\nIf x > \"ba\" "
      u"Then\nAnswer 3\n"
      u"End If\nIf x Is \"b\" Then\nAnswer 4\nEnd If\nIf x <> \"c\" Then\nAnswer 5\nEnd If"_s,
      u"i = 0\nRepeat While i < 12\ni = i + 1\nx = i * 7 - 40\ny = i - 6\nAnswer x / 2\nAnswer x / 4 * 3\nx "
      u"= x / 3\nAnswer x\n"
      u"If y <> 0 Then\nAnswer x / y\nEnd If\nEnd Repeat"_s,
      u"x = 1\ny = 0\nx = 5 + x / y"_s,
      u"x = 0 - 32767 * 32767 * 2 - 32767 * 4 - 2\nAnswer x\nx = x / (0 - 1)"_s,
      u"Repeat For Each Card c\nPut 3 Into Field \"I\" Of Card c\nPut c & 1 Into Field \"T\" Of Card c\nPut "
      u"2 Into Field \"R\" Of "
      u"Card c\nAnswer Field \"T\" Of Card c & Field 2 Of Card c & Field \"R\" Of Card c\nEnd Repeat\nPut 7 "
      u"Into Field \"I\"\n"
      u"Put \"hello\" Into Field \"T\"\nPut 1 Into Field \"D\""_s,
      u"Put 1 Into Field \"none\""_s,
      u"Put \"x\" Into Field \"C\""_s,
  };
  for (const QString& body : bodies)
    EXPECT_EQ(Outcome(body, false), Outcome(body, true)) << body.toStdString();
}

// A name that an earlier handler of the source used has its slot from there. It is a variable like any other.
TEST_F(CVelumInterpreterTest, GivesRoomToTheNamesOfEarlierHandlers) {
  SetScript(*Control(u"T"_s),
            u"On first\nn = 1\nx = 2\nEnd\nOn second\nn = 1\nn = n + 1\nAnswer n\nAnswer (1 + 2) & (5 = n)\n"
            u"Answer x & 5\nx = 7 + n\nx = x + 1 * 2\nAnswer x\nEnd\n"
            u"On third\nn = 0\nRepeat For Each Card x Of Background \"Page\"\nn = n + 1\nEnd Repeat\n"
            u"Repeat For Each Card x\nn = n + 1\nEnd Repeat\nAnswer n\nAnswer x\nEnd\n"
            u"On walk\nRepeat For Each Card x Of Background \"Page\"\nAnswer x\nEnd Repeat\nEnd\n"_s);
  for (const bool single : {false, true}) {
    iInterpreter->SetPumpAlways(single);
    const auto before = iPresenter.Told().size();
    for (const QString& msg : {u"second"_s, u"third"_s, u"walk"_s})
      iHost->Send(Card(u"one"_s), Control(u"T"_s), msg);
    EXPECT_EQ(iPresenter.Told().mid(before), (Answers{u"2"_s, u"3False"_s, u"5"_s, u"11"_s, u"8"_s, u"x"_s,
                                                      u"one"_s, u"two"_s, u"three"_s, u"x"_s}));
  }
}

// The room that a handler takes is that of its largest slot, whatever stands in its first instruction.
TEST_F(CVelumInterpreterTest, TakesTheRoomOfTheLargestSlot) {
  const auto store = [](int aSlot) { return Handler({38, 0, 0, 13, 5, 0, 13, aSlot, 0, 12, 39, 0, 0}); };
  EXPECT_EQ(CodeFails(store(18)), 0);
  EXPECT_EQ(CodeFails(store(19)), EHostIndex) << "two values more are 22 entries";
  EXPECT_EQ(CodeFails(Handler({38, 0, 0, 13, 18, 0, 31, 16, 0, 46, 46, 46, 39, 0, 0})), EHostIndex)
      << "a walk counts its slot, and takes three entries more";
  EXPECT_EQ(CodeFails(Handler({38, 0, 0, 13, 17, 0, 31, 16, 0, 46, 46, 46, 39, 0, 0})), 0);
}

// A slot that code computes can lie where values are pushed.
TEST_F(CVelumInterpreterTest, ReadsAVariableAmongTheValuesThatArePushed) {
  // 1 + 2, then the variable of slot 0 + 0, which is that 3; then 5 = it.
  const QByteArray code = Handler({38, 0,  0, 13, 1,  0, 13, 2,  0, 20, 13, 0,  0, 13, 0,  0, 20, 11,
                                   10, 13, 5, 0,  13, 0, 0,  13, 0, 0,  20, 11, 7, 10, 39, 0, 0});
  QList<QString> told[2];
  for (const bool single : {false, true}) {
    iInterpreter->SetPumpAlways(single);
    const auto before = iPresenter.Told().size();
    RunCode(code);
    told[single] = iPresenter.Told().mid(before);
  }
  EXPECT_EQ(told[1], (Answers{u"3"_s, u"False"_s}));
  EXPECT_EQ(told[0], told[1]);
}

// The slot of a walk can be where its background lies, which is read first.
TEST_F(CVelumInterpreterTest, ReadsTheBackgroundOfAWalkBeforeItsSlotIsSet) {
  const QByteArray code = Handler({38,  0,   0,  13, 0,  0, 13, 1, 0, 20, 1,  11, 4, 'P', 'a',
                                   'g', 'e', 35, 36, 29, 0, 13, 1, 0, 11, 10, 5,  0, 0,   5});
  for (const bool single : {false, true}) {
    iInterpreter->SetPumpAlways(single);
    const auto before = iPresenter.Told().size();
    RunCode(code);
    EXPECT_EQ(iPresenter.Told().mid(before), Answers{u"one"_s});
  }
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
