// Options, help, exit statuses and messages, whatever the command.
#include "CliRun.h"

#include "core/CVelumObject.h"
#include "support/DropRights.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"
#include "support/TestTree.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

const QStringList ECommands{u"info"_s,        u"check"_s,          u"convert"_s,    u"search"_s,
                            u"cards"_s,       u"compile"_s,        u"run"_s,        u"render"_s,
                            u"wiki"_s,        u"import-picture"_s, u"import-csv"_s, u"import-xml"_s,
                            u"import-text"_s, u"export-csv"_s,     u"export-xml"_s};

QByteArray ReadText(const QString& aPath) {
  QFile file(TestTree::Source() + aPath);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << aPath.toStdString();
  return file.readAll();
}

TEST(CVelumCli, AFolderThatIsMissingIsNamed) {
  const TempFolder folder;
  const QString stack = CliRun::Data(u"one_card.Orvelle"_s);
  const QString out = folder.Path(u"none/x"_s);
  const QList<QStringList> calls{{u"convert"_s, stack, out},
                                 {u"run"_s, stack, u"Click"_s, u"--save"_s, out},
                                 {u"render"_s, stack, out},
                                 {u"export-xml"_s, stack, out}};
  for (const QStringList& call : calls) {
    const TCliResult result = CliRun::Run(call);
    EXPECT_EQ(result.iStatus, 1) << call.first().toStdString();
    EXPECT_TRUE(result.iErr.contains("there is no folder " + folder.Path(u"none"_s).toUtf8()))
        << result.iErr.toStdString();
  }
}

// The commands that read a stack, with what else they need.
QList<QStringList> CallsOn(const QString& aStack, const QString& aOut) {
  return {{u"info"_s, aStack},
          {u"check"_s, aStack},
          {u"convert"_s, aStack, aOut},
          {u"search"_s, aStack, u"x"_s},
          {u"cards"_s, aStack}};
}

void ExpectFailure(const QString& aStack, const QByteArray& aMessage) {
  const TempFolder folder;
  for (const QStringList& call : CallsOn(aStack, folder.Path(u"out.Orvelle"_s))) {
    const TCliResult result = CliRun::Run(call);
    EXPECT_EQ(result.iStatus, 1) << call.join(u' ').toStdString();
    EXPECT_EQ(result.iOut, QByteArray()) << call.join(u' ').toStdString();
    EXPECT_TRUE(result.iErr.contains("orvelles-cli: " + aMessage)) << result.iErr.toStdString();
    EXPECT_FALSE(folder.Has(u"out.Orvelle"_s));
  }
}

TEST(CVelumCli, HelpListsEveryCommandAndOption) {
  const TCliResult result = CliRun::Run({u"--help"_s});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_EQ(result.iErr, QByteArray());
  for (const QString& command : ECommands) EXPECT_TRUE(result.iOut.contains("\n  " + command.toUtf8() + ' '));
  for (const char* option : {"--locale", "--yes", "--no", "--json", "--help", "--version"})
    EXPECT_TRUE(result.iOut.contains(option)) << option;
}

TEST(CVelumCli, EachCommandHasHelpAManualAndCompletion) {
  const QByteArray manual = ReadText(u"/docs/man/orvelles-cli.1"_s);
  const QByteArray completion = ReadText(u"/docs/completion/orvelles-cli"_s);
  EXPECT_TRUE(completion.contains("commands=\"" + ECommands.join(u' ').toUtf8() + '"'));
  for (const QString& command : ECommands) {
    const TCliResult help = CliRun::Run({command, u"--help"_s});
    EXPECT_EQ(help.iStatus, 0);
    EXPECT_TRUE(help.iOut.startsWith("Usage: orvelles-cli [OPTION]... " + command.toUtf8() + ' '));
    EXPECT_TRUE(manual.contains(".BI " + command.toUtf8() + ' ') ||
                manual.contains("\\fB" + command.toUtf8() + "\\fR"));
  }
}

TEST(CVelumCli, NoLineOfHelpIsWiderThanATerminal) {
  QList<QStringList> calls{{u"--help"_s}};
  for (const QString& command : ECommands) calls.append({command, u"--help"_s});
  for (const QStringList& call : calls) {
    for (const QByteArray& line : CliRun::Run(call).iOut.split('\n'))
      EXPECT_LE(line.size(), 90) << line.data();
  }
}

// What the shell proposes for a line that ends in a word that was begun.
QByteArrayList Completions(const QStringList& aWords) {
  const QString script = TestTree::Source() + u"/docs/completion/orvelles-cli"_s;
  const TCliResult result = CliRun::RunProgram(
      u"env"_s, QStringList{u"LC_ALL=C"_s, u"bash"_s, u"-c"_s,
                            u"source \"$0\"; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _orvelles_cli; "
                            "printf '%s\\n' \"${COMPREPLY[@]}\""_s,
                            script} +
                    aWords);
  EXPECT_EQ(result.iErr, QByteArray());
  return result.iOut.trimmed().split('\n');
}

TEST(CVelumCli, TheShellCompletesCommandsOptionsAndValues) {
  const QString program = u"orvelles-cli"_s;
  EXPECT_EQ(Completions({program, u"c"_s}), (QByteArrayList{"check", "convert", "cards", "compile"}));
  EXPECT_EQ(Completions({program, u"cards"_s, u"--ba"_s}), QByteArrayList{"--background"});
  EXPECT_EQ(Completions({program, u"convert"_s, u"--format"_s, u"b"_s}), QByteArrayList{"binary"});
  EXPECT_EQ(Completions({program, u"info"_s, u"--js"_s}), QByteArrayList{"--json"});
  EXPECT_EQ(Completions({program, u"help"_s, u"conv"_s}), QByteArrayList{"convert"});
}

TEST(CVelumCli, VersionNamesTheProgram) {
  for (const QString& option : {u"--version"_s, u"-V"_s}) {
    const TCliResult result = CliRun::Run({option});
    EXPECT_EQ(result.iStatus, 0);
    EXPECT_TRUE(result.iOut.startsWith("orvelles-cli 0."));
  }
}

TEST(CVelumCli, HelpHasMoreThanOneName) {
  const QByteArray overview = CliRun::Run({u"--help"_s}).iOut;
  const QByteArray info = CliRun::Run({u"info"_s, u"--help"_s}).iOut;
  ASSERT_TRUE(info.startsWith("Usage: "));
  EXPECT_EQ(CliRun::Run({u"-h"_s}).iOut, overview);
  EXPECT_EQ(CliRun::Run({u"help"_s}).iOut, overview);
  EXPECT_EQ(CliRun::Run({u"info"_s, u"-h"_s}).iOut, info);
  EXPECT_EQ(CliRun::Run({u"help"_s, u"info"_s}).iOut, info);
  EXPECT_EQ(CliRun::Run({u"help"_s, u"nothing"_s}).iStatus, 2);
}

// A machine without a desktop, whose toolkit would have something to say.
TEST(CVelumCli, TheToolkitStaysSilent) {
  const TempFolder folder;
  const QString sample = CliRun::Sample();
  const QList<QStringList> calls{{u"render"_s, u"--help"_s},
                                 {u"search"_s, sample, u"render"_s},
                                 {u"render"_s, sample, folder.Path(u"a.png"_s)}};
  for (const QStringList& call : calls) {
    const TCliResult result =
        CliRun::RunProgram(u"env"_s, QStringList{u"-u"_s, u"XDG_RUNTIME_DIR"_s, CliRun::Program()} + call);
    EXPECT_EQ(result.iStatus, 0) << call.join(u' ').toStdString();
    EXPECT_EQ(result.iErr, QByteArray()) << call.join(u' ').toStdString();
  }
}

// Not even one that draws: its help has to come where nothing can be drawn.
TEST(CVelumCli, HelpNeedsNoWidgets) {
  const TCliResult help =
      CliRun::RunProgram(u"env"_s, {u"QT_DEBUG_PLUGINS=1"_s, CliRun::Program(), u"render"_s, u"--help"_s});
  EXPECT_EQ(help.iStatus, 0);
  EXPECT_FALSE(help.iErr.contains("platforms")) << help.iErr.toStdString();
}

TEST(CVelumCli, WrongUsageGivesStatus2) {
  const QString stack = CliRun::Data(u"one_card.Orvelle"_s);
  const QList<QStringList> calls{{},
                                 {u"frobnicate"_s},
                                 {u"--frobnicate"_s},
                                 {u"info"_s},
                                 {u"info"_s, stack, u"more"_s},
                                 {u"search"_s, stack},
                                 {u"info"_s, stack, u"--background"_s, u"x"_s},
                                 {u"cards"_s, stack, u"--background"_s},
                                 {u"info"_s, u"--yes"_s, u"--no"_s, stack},
                                 {u"--locale"_s, u"xx_QQ"_s, u"info"_s, stack},
                                 {u"convert"_s, stack, u"/nonexistent/x"_s, u"--json"_s},
                                 {u"convert"_s, stack, u"/nonexistent/x"_s, u"--format"_s, u"pdf"_s}};
  for (const QStringList& call : calls) {
    const TCliResult result = CliRun::Run(call);
    EXPECT_EQ(result.iStatus, 2) << call.join(u' ').toStdString();
    EXPECT_EQ(result.iOut, QByteArray());
    EXPECT_TRUE(result.iErr.startsWith("orvelles-cli: "));
    EXPECT_TRUE(result.iErr.contains("--help'"));
  }
}

TEST(CVelumCli, GlobalOptionsStandBeforeOrBehindTheCommand) {
  const QString stack = CliRun::Data(u"one_card.Orvelle"_s);
  const TCliResult before = CliRun::Run({u"--json"_s, u"info"_s, stack});
  const TCliResult behind = CliRun::Run({u"info"_s, stack, u"--json"_s});
  EXPECT_EQ(before.iStatus, 0);
  EXPECT_EQ(before.iOut, behind.iOut);
  EXPECT_FALSE(QJsonDocument::fromJson(before.iOut).isNull());
}

TEST(CVelumCli, AMissingFileIsNotFoundAndNotMade) {
  const TempFolder folder;
  ExpectFailure(folder.Path(u"none.Orvelle"_s), "EMsgFileNotFound: ");
  EXPECT_FALSE(folder.Has(u"none.Orvelle"_s));
}

TEST(CVelumCli, AFolderIsNoStack) {
  const TempFolder folder;
  const TCliResult result = CliRun::Run({u"info"_s, folder.Path()});
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_TRUE(result.iErr.startsWith("orvelles-cli: EMsg")) << result.iErr.toStdString();
}

TEST(CVelumCli, EmptyFilesAndPicturesAreNoStacks) {
  const TempFolder folder;
  ExpectFailure(folder.Write(u"empty.Orvelle"_s, {}), "EMsgNotAOrvelle: ");
  ExpectFailure(folder.Write(u"a.png"_s, QByteArray::fromHex("89504e470d0a1a0a0000000d49484452")),
                "EMsgNotAOrvelle: ");
  ExpectFailure(folder.Write(u"zeros.Orvelle"_s, QByteArray(5000, '\0')), "EMsgNotAOrvelle: ");
}

TEST(CVelumCli, CutStacksAreToldAndDoNoHarm) {
  QFile file(CliRun::Data(u"one_card.Orvelle"_s));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray whole = file.readAll();
  const TempFolder folder;
  for (qsizetype length = 0; length < whole.size(); length += 23) {
    const TCliResult result = CliRun::Run({u"check"_s, folder.Write(u"cut.Orvelle"_s, whole.left(length))});
    EXPECT_EQ(result.iStatus, 1) << length;
    // A cut that only shortens the last table reads as zeros, which the check finds.
    EXPECT_TRUE(result.iErr.contains("orvelles-cli: EMsg") || result.iOut.startsWith("file: it is "))
        << length;
  }
}

TEST(CVelumCli, AFileThatMayNotBeReadIsNoMissingFile) {
  if (!CliRun::CanDropRights()) GTEST_SKIP() << "left out: the rights of root cannot be given up here";
  const TempFolder folder;
  DropRights::SetMode(folder.Path(), 0755);
  const QString path =
      folder.Write(u"secret.Orvelle"_s, ReadText(u"/tests/data/stacks/good/one_card.Orvelle"_s));
  DropRights::SetMode(path, 0);
  for (const bool hidden : {false, true}) {
    if (hidden) DropRights::SetMode(folder.Path(), 0700);
    const TCliResult result = CliRun::RunWithoutRights({u"info"_s, path});
    if (hidden && geteuid() != 0) continue;
    EXPECT_EQ(result.iStatus, 1);
    EXPECT_TRUE(result.iErr.startsWith("orvelles-cli: EMsgNoFileAccess: ")) << result.iErr.toStdString();
    EXPECT_TRUE(result.iErr.contains(path.toUtf8()));
  }
}

// On a medium that cannot be written, or in somebody else's folder.
TEST(CVelumCli, AStackThatMayOnlyBeReadIsRead) {
  if (!CliRun::CanDropRights()) GTEST_SKIP() << "left out: the rights of root cannot be given up here";
  const TempFolder folder;
  const TempFolder own;
  DropRights::SetMode(own.Path(), 0777);
  for (const QString& name : {u"all_controls.Orvelle"_s, u"a.xml"_s}) {
    const QString path = folder.Path(name);
    ASSERT_EQ(CliRun::Run({u"convert"_s, CliRun::Data(u"all_controls.Orvelle"_s), path}).iStatus, 0);
    DropRights::SetMode(path, 0444);
    DropRights::SetMode(folder.Path(), 0555);
    const QByteArray before = folder.Read(name);
    for (const QStringList& call : {QStringList{u"info"_s, path},
                                    {u"check"_s, path},
                                    {u"search"_s, path, u"a"_s},
                                    {u"cards"_s, path},
                                    {u"convert"_s, path, own.Path(name)},
                                    {u"convert"_s, path, own.Path(u"x.xml"_s)},
                                    {u"export-xml"_s, path, own.Path(u"content.xml"_s)},
                                    {u"run"_s, path, u"openStack"_s}}) {
      const TCliResult read = CliRun::RunWithoutRights(call);
      const TCliResult owner = CliRun::Run(call);
      EXPECT_EQ(read.iStatus, owner.iStatus) << call.join(u' ').toStdString();
      EXPECT_EQ(read.iErr, owner.iErr) << call.join(u' ').toStdString();
    }
    EXPECT_EQ(CliRun::Run({u"info"_s, u"--json"_s, own.Path(name)}).iStatus, 0);
    // What would change it says why not.
    const TCliResult save = CliRun::RunWithoutRights({u"convert"_s, CliRun::Sample(), path});
    EXPECT_EQ(save.iStatus, 1);
    EXPECT_TRUE(save.iErr.contains("EMsgCouldNotSave: ")) << save.iErr.toStdString();
    EXPECT_TRUE(save.iErr.contains("may only be read")) << save.iErr.toStdString();
    EXPECT_EQ(folder.Read(name), before);
    DropRights::SetMode(folder.Path(), 0755);
  }
}

TEST(CVelumCli, QuestionsAreAnsweredAsSaid) {
  QByteArray bytes = ReadText(u"/tests/data/stacks/good/one_card.Orvelle"_s);
  bytes[15] = char(30002 & 0xFF); // the length of the stack's name
  bytes[16] = char(30002 >> 8);
  const TempFolder folder;
  const QString path = folder.Write(u"long.Orvelle"_s, bytes);
  for (const QStringList& no : {QStringList{u"info"_s, path}, QStringList{u"info"_s, u"--no"_s, path}}) {
    const TCliResult result = CliRun::Run(no);
    EXPECT_EQ(result.iStatus, 1);
    EXPECT_TRUE(result.iErr.startsWith("orvelles-cli: EMsgAssertFailedOk: Assert failed"))
        << result.iErr.data();
    EXPECT_TRUE(result.iErr.contains("< len 30002"));
    EXPECT_TRUE(result.iErr.contains("nevertheless? [no]\norvelles-cli: EMsgAssertFailed: "));
  }
  const TCliResult yes = CliRun::Run({u"info"_s, u"--yes"_s, path});
  EXPECT_TRUE(yes.iErr.contains("nevertheless? [yes]\n"));
  EXPECT_FALSE(yes.iErr.contains("EMsgAssertFailed: "));
  EXPECT_NE(yes.iStatus, -1);
}

TEST(CVelumCli, AsksTheSameQuestionOnce) {
  const QString stack = TestTree::Data() + u"/stacks/damaged/tag_-1.Orvelle"_s;
  const TCliResult result = CliRun::Run({u"info"_s, u"--yes"_s, stack});
  EXPECT_EQ(result.iErr.count("EMsgAssertFailedOk: "), 1) << result.iErr.toStdString();
}

TEST(CVelumCli, LocaleDecidesHowValuesAreShown) {
  const QString stack = CliRun::Data(u"all_controls.Orvelle"_s);
  EXPECT_TRUE(CliRun::Run({u"cards"_s, stack}).iOut.contains("-1,234,567.5"));
  EXPECT_TRUE(CliRun::Run({u"--locale"_s, u"de_DE"_s, u"cards"_s, stack}).iOut.contains("-1.234.567,5"));
}

TEST(CVelumCli, AFullDiskUnderTheOutputIsAFailure) {
  if (!QFile::exists(u"/dev/full"_s)) GTEST_SKIP() << "left out: there is no /dev/full";
  const TCliResult result = CliRun::RunInto(u"/dev/full"_s, {u"info"_s, CliRun::Data(u"one_card.Orvelle"_s)});
  EXPECT_EQ(result.iStatus, 1);
  EXPECT_TRUE(result.iErr.startsWith("orvelles-cli: EMsgSystemError: ")) << result.iErr.toStdString();
}

} // namespace
