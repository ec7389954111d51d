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

// What goes wrong with a source, behind its path.
QByteArray CompileError(const QByteArray& aSource, const QStringList& aOptions = {}) {
  const TempFolder folder;
  const QString path = folder.Write(u"a.txt"_s, aSource);
  const TCliResult result = CliRun::Run(QStringList{u"compile"_s} + aOptions + QStringList{path});
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_EQ(result.iOut, QByteArray());
  const QByteArray head = "orvelles-cli: " + path.toUtf8();
  const qsizetype at = result.iErr.lastIndexOf(head);
  EXPECT_GE(at, 0) << result.iErr.toStdString();
  return result.iErr.mid(at + head.size());
}

TEST(CVelumCompileCommand, TellsTheLineOfEveryFailure) {
  const QByteArray bug =
      "EMsgAssertFailed: An internal program error occured, probably because of a 'bug'.\n";
  EXPECT_EQ(CompileError("On a\n\tAnswer 1\nEnd\n"), ":2: " + bug);
  EXPECT_EQ(CompileError("On a\nEnd\nAnswer 1\n"), ":3: " + bug);
  const QByteArray host = "EMsgSystemError: The Host Runtime System reported the error: ";
  EXPECT_EQ(CompileError("On a\nAnswer 40000\nEnd\n"), ":2: " + host + "Overflow\n");
  EXPECT_EQ(CompileError("On a\nAnswer \"" + QByteArray(256, 'x') + "\"\nEnd\n"),
            ":2: " + host + "Bad call\n");
}

TEST(CVelumCompileCommand, CountsTheLinesOfTheFile) {
  const QByteArray source = "On a\nEnd\n" + QByteArray("\n").repeated(99);
  const TempFolder folder;
  EXPECT_EQ(CliRun::Run({u"compile"_s, folder.Write(u"a.txt"_s, source)}).iStatus, 0) << "101 lines";
  EXPECT_EQ(CompileError(source + "\n"),
            ":102: EMsgSystemError: The Host Runtime System reported the error: Index out of range\n");
  const QByteArray end = "EMsgSourceEnd: The end of the source lines was reached early.\n";
  EXPECT_EQ(CompileError("On a\nAnswer 1"), ":2: " + end);
  EXPECT_EQ(CompileError("On a\nAnswer 1\n"), ":2: " + end);
  EXPECT_EQ(CompileError("On a\nAnswer 1\r\n\r\n"), ":3: " + end);
}

TEST(CVelumCompileCommand, NotesWhatIsHardlyMeant) {
  const TempFolder folder;
  const QString path =
      folder.Write(u"a.txt"_s, "On a\n  x = 5 * 0.19\n  y = -1\n  Answer \"\xe6\x97\xa5\"\nEnd\n");
  const TCliResult result = CliRun::Run({u"compile"_s, u"--coding"_s, u"utf8"_s, path});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_TRUE(result.iOut.startsWith("a 0000")) << result.iOut.toStdString();
  const QByteArray head = "orvelles-cli: " + path.toUtf8();
  EXPECT_EQ(result.iErr,
            head + ":2:12: note: The rest of the line is not read: .19\n" + head +
                ":3:7: note: The sign has no effect: write 0 - ... instead.\n" + head +
                ":4:10: note: The text holds letters that scripts do not know; they become '?'.\n");
  EXPECT_EQ(CliRun::Run({u"compile"_s, folder.Write(u"b.txt"_s, "On a\nAnswer 1\nEnd\n")}).iErr,
            QByteArray());
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
                                    "orvelles-cli: Script of stack 'Run', line 2: Go 0\n"));
  const TCliResult bug = CliRun::Run({u"run"_s, RunCase("070_exit_outside.Orvelle"), u"test"_s});
  EXPECT_EQ(bug.iStatus, 1);
  EXPECT_EQ(bug.iErr.count("Script of stack 'Run', line 3: Exit Repeat"), 2) << bug.iErr.toStdString();
  EXPECT_TRUE(bug.iErr.endsWith("Script of stack 'Run', line 3: Exit Repeat\n"));
  const TCliResult host = CliRun::Run({u"run"_s, RunCase("076_stack_full.Orvelle"), u"test"_s});
  EXPECT_TRUE(host.iErr.contains("Index out of range\norvelles-cli: Script of stack 'Run', line "))
      << host.iErr.toStdString();
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
