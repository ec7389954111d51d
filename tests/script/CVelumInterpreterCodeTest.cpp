// Byte code that no compiler made.
#include "InterpreterTest.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "support/Assertions.h"

#include <random>

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

// The room that a handler takes is that of its largest slot, whatever stands in its first instruction.
TEST_F(CVelumInterpreterTest, TakesTheRoomOfTheLargestSlot) {
  const auto store = [](int aSlot) { return Handler({38, 0, 0, 13, 5, 0, 13, aSlot, 0, 12, 39, 0, 0}); };
  EXPECT_EQ(CodeFails(store(18)), 0);
  EXPECT_EQ(CodeFails(store(19)), EHostIndex) << "two values more are 22 entries";
  EXPECT_EQ(CodeFails(Handler({38, 0, 0, 13, 18, 0, 31, 16, 0, 46, 46, 46, 39, 0, 0})), EHostIndex)
      << "a walk counts its slot, and takes three entries more";
  EXPECT_EQ(CodeFails(Handler({38, 0, 0, 13, 17, 0, 31, 16, 0, 46, 46, 46, 39, 0, 0})), 0);
}
