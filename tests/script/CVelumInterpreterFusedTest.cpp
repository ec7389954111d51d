// Fused instructions and the slots of variables: what runs fast does what the single instructions do.
#include "InterpreterTest.h"

#include "core/CVelumMsg.h"

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
  // Without an answer, which makes the next field be looked up in any case.
  const auto copied = [this] {
    Run(u"x = Field \"I\"\nPut x Into Field \"T\""_s);
    return Card(u"one"_s)->GetControlVal(Control(u"T"_s)->Id(), false).Str();
  };
  EXPECT_EQ(copied(), u"7"_s);
  Control(u"I"_s)->SetName(u"was I"_s);
  Control(u"R"_s)->SetName(u"I"_s);
  EXPECT_EQ(copied(), u"2.5"_s);
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

// What a value hangs on may ask, and who answers may close the stack. Nothing of the script runs behind that.
TEST_F(CVelumInterpreterTest, EndsWhereAPutResetsIt) {
  class CResets final : public CVelumScriptHost {
  public:
    CResets(CVelumPlainHost& aHost, CVelumInterpreter& aInterpreter)
        : iHost(aHost), iInterpreter(aInterpreter) {
      iInterpreter.SetHost(this);
    }
    ~CResets() override { iInterpreter.SetHost(&iHost); }
    Ref<CVelumStack> Stack() override { return iHost.Stack(); }
    Ref<CVelumCard> CurCard() override { return iHost.CurCard(); }
    void GoToCard(const Ref<CVelumCard>&) override {}
    void GoToNextCard() override {}
    void SetCardValue(const Ref<CVelumCard>&, CVelumControl&, const TVelumValue&) override {
      ++iPuts;
      iInterpreter.Reset();
    }
    void Answer(const QString&) override { ADD_FAILURE() << "it goes on"; }
    CVelumPlainHost& iHost;
    CVelumInterpreter& iInterpreter;
    int iPuts = 0;
  };
  for (const bool single : {false, true}) {
    iInterpreter->SetPumpAlways(single);
    CResets host(*iHost, *iInterpreter);
    Run(u"Put 3 Into Field \"I\"\nPut Field \"T\" Into Field \"T\"\nAnswer 1"_s);
    EXPECT_EQ(host.iPuts, 1);
    EXPECT_FALSE(iInterpreter->Running());
  }
  EXPECT_EQ(Run(u"Answer 2"_s), Answers{u"2"_s});
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
