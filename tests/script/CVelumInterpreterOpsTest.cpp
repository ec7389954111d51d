// What each statement does: variables, branches, loops, fields, cards, messages.
#include "InterpreterTest.h"

#include "core/CVelumMsg.h"
#include "support/Assertions.h"

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
