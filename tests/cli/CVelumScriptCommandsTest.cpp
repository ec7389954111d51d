// compile and run.
#include "CliRun.h"

#include "support/PrintQt.h"
#include "support/TempFolder.h"
#include "support/TestTree.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

QString RunCase(const char* aName) {
  return TestTree::Data() + u"/runs/"_s + QString::fromLatin1(aName);
}

TEST(CVelumCompileCommand, PrintsALinePerHandler) {
  const TempFolder folder;
  const QString path = folder.Write(u"a.txt"_s, "On a\nEnd\nOn b\nAnswer \"\xe4\"\nEnd\n");
  const TCliResult result = CliRun::Run({u"compile"_s, path});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  EXPECT_EQ(result.iOut, QByteArray("a 00000E00002600000E0100270000\n"
                                    "b 00000E02002600000E0300010B01E40A0E0400270000\n"));
}

TEST(CVelumCompileCommand, ReadsUtf8WhenTold) {
  const TempFolder folder;
  const QString path = folder.Write(u"a.txt"_s, "On a\nAnswer \"\xc3\xa4\"\nEnd\n");
  const TCliResult result = CliRun::Run({u"compile"_s, u"--coding"_s, u"utf8"_s, path});
  EXPECT_TRUE(result.iOut.contains("010B01E4")) << result.iOut.toStdString();
  EXPECT_EQ(CliRun::Run({u"compile"_s, u"--coding"_s, u"other"_s, path}).iStatus, 2);
}

TEST(CVelumCompileCommand, TellsThePlaceOfAnError) {
  const TempFolder folder;
  const QString path = folder.Write(u"a.txt"_s, "On a\n  Answer )\nEnd\n");
  const TCliResult result = CliRun::Run({u"compile"_s, path});
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_EQ(result.iOut, QByteArray());
  EXPECT_EQ(result.iErr, "orvelles-cli: " + path.toUtf8() +
                             ":2:11: EMsgBadExpression: There is an error in the expression due to the "
                             "unexpected ')'.\n");
  EXPECT_EQ(CliRun::Run({u"compile"_s, folder.Path(u"none"_s)}).iStatus, 1);
}

TEST(CVelumRunCommand, PrintsTheAnswers) {
  const TCliResult result =
      CliRun::Run({u"run"_s, RunCase("001_arithmetic.Orvelle"), u"test"_s, u"--card"_s, u"one"_s});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  EXPECT_EQ(result.iOut, QByteArray("4\n2\n2\n0\n14\n-3\n42\n"));
}

TEST(CVelumRunCommand, SavesWhatTheScriptsDid) {
  const TempFolder folder;
  const QString out = folder.Path(u"out.Orvelle"_s);
  EXPECT_EQ(CliRun::Run({u"run"_s, RunCase("032_put_text.Orvelle"), u"test"_s, u"--card"_s, u"one"_s,
                         u"--save"_s, out})
                .iStatus,
            0);
  EXPECT_TRUE(CliRun::Run({u"search"_s, out, u"new"_s}).iOut.startsWith("one\t"));
}

TEST(CVelumRunCommand, TellsFailuresWithTheirPlace) {
  const TCliResult result = CliRun::Run({u"run"_s, RunCase("053_go_zero.Orvelle"), u"test"_s});
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_EQ(result.iErr, QByteArray("orvelles-cli: EMsgCardNotFound: The card '0' cannot be found.\n"
                                    "orvelles-cli: Script of stack 'Run', line 2\n"));
  const QString stack = RunCase("000_answer.Orvelle");
  EXPECT_TRUE(CliRun::Run({u"run"_s, stack, u"nothing"_s}).iErr.contains("There is no handler 'nothing'."));
  EXPECT_TRUE(
      CliRun::Run({u"run"_s, stack, u"test"_s, u"--card"_s, u"no"_s}).iErr.contains("EMsgCardNotFound"));
  EXPECT_TRUE(
      CliRun::Run({u"run"_s, stack, u"test"_s, u"--field"_s, u"no"_s}).iErr.contains("EMsgControlNotFound"));
}

TEST(CVelumRunCommand, StopsAtALimit) {
  const QString stack = RunCase("001_arithmetic.Orvelle");
  const TCliResult result = CliRun::Run({u"run"_s, stack, u"test"_s, u"--limit"_s, u"3"_s});
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_TRUE(result.iErr.contains("limit of instructions")) << result.iErr.toStdString();
  EXPECT_EQ(CliRun::Run({u"run"_s, stack, u"test"_s, u"--limit"_s, u"0"_s}).iStatus, 2);
}

} // namespace
