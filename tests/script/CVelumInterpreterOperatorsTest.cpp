// Arithmetic, comparisons and texts that scripts build.
#include "InterpreterTest.h"

#include "core/CVelumMsg.h"

TEST_F(CVelumInterpreterTest, CalculatesWithIntegersRealsAndTexts) {
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

TEST_F(CVelumInterpreterTest, NegatesByType) {
  iPresenter.Clear();
  const auto before = iPresenter.Told().size();
  RunCode(Handler({38, 0, 0, 13, 5, 0, 22, 10, 1, 11, 1, '2', 22, 10, 39, 0, 0}));
  EXPECT_EQ(iPresenter.Told().mid(before), (Answers{u"-5"_s, u"-2"_s}));
}
