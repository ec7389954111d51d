#include "cli/CVelumCli.h"

#include "cli/CVelumCliFiles.h"
#include "cli/CVelumCliHelp.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "core/CVelumLog.h"
#include "core/CVelumMsg.h"
#include "core/text/CVelumLocale.h"
#include "exchange/CVelumExports.h"
#include "model/CVelumStack.h"

#include <QCommandLineParser>
#include <QLocale>

namespace {

// The command line taken apart.
struct TCall {
  const TVelumCliCommand* iCommand = nullptr;
  TVelumArgs iArgs;
  QString iLocale;
  bool iYes = false;
  bool iHelp = false;
  bool iVersion = false;
};

void AddOptions(const QList<TVelumOption>& aOptions, QCommandLineParser& aParser) {
  for (const TVelumOption& option : aOptions) {
    QStringList names{option.iName};
    if (!option.iShort.isEmpty()) names.append(option.iShort);
    aParser.addOption(QCommandLineOption(names, option.iHelp, option.iValueName));
  }
}

void ReadGlobals(const QCommandLineParser& aParser, TCall& aCall) {
  if (aParser.isSet(u"yes"_s) && aParser.isSet(u"no"_s))
    throw TVelumUsage{u"--yes and --no exclude each other."_s};
  aCall.iYes |= aParser.isSet(u"yes"_s);
  aCall.iArgs.iJson |= aParser.isSet(u"json"_s);
  aCall.iHelp |= aParser.isSet(u"help"_s);
  aCall.iVersion |= aParser.isSet(u"version"_s);
  if (aParser.isSet(u"locale"_s)) aCall.iLocale = aParser.value(u"locale"_s);
}

void Parse(QCommandLineParser& aParser, const QStringList& aArguments) {
  if (!aParser.parse(QStringList(u"orvelles-cli"_s) + aArguments)) throw TVelumUsage{aParser.errorText()};
}

const TVelumCliCommand* CommandOf(const QString& aName) {
  const TVelumCliCommand* command = CVelumCommands::Find(aName);
  if (!command) throw TVelumUsage{u"There is no command '%1'."_s.arg(aName)};
  return command;
}

// The part before the command's name, and that name; returns what follows it. "help COMMAND" is the same as
// "COMMAND --help".
QStringList ReadFront(const QStringList& aArguments, TCall& aCall) {
  QCommandLineParser parser;
  parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
  AddOptions(CVelumCliHelp::GlobalOptions(), parser);
  Parse(parser, aArguments);
  ReadGlobals(parser, aCall);
  QStringList rest = parser.positionalArguments();
  if (rest.isEmpty()) return rest;
  if (rest.front() == u"help") {
    aCall.iHelp = true;
    rest.removeFirst();
    if (rest.isEmpty()) return rest;
  }
  aCall.iCommand = CommandOf(rest.takeFirst());
  return rest;
}

void ReadCommandArgs(const QStringList& aRest, TCall& aCall) {
  QCommandLineParser parser;
  AddOptions(CVelumCliHelp::GlobalOptions(), parser);
  AddOptions(aCall.iCommand->iOptions, parser);
  Parse(parser, aRest);
  ReadGlobals(parser, aCall);
  for (const TVelumOption& option : aCall.iCommand->iOptions) {
    if (!parser.isSet(option.iName)) continue;
    aCall.iArgs.iOptions.insert(option.iName,
                                option.iValueName.isEmpty() ? QString() : parser.value(option.iName));
    if (!option.iValueName.isEmpty()) aCall.iArgs.iLists.insert(option.iName, parser.values(option.iName));
  }
  aCall.iArgs.iOperands = parser.positionalArguments();
}

void CheckOperands(const TCall& aCall) {
  const QStringList& wanted = aCall.iCommand->iOperands;
  const QStringList& given = aCall.iArgs.iOperands;
  if (given.size() < wanted.size() && !wanted.at(given.size()).startsWith(u'['))
    throw TVelumUsage{u"%1 is missing."_s.arg(wanted.at(given.size()))};
  if (given.size() > wanted.size())
    throw TVelumUsage{u"There is nothing to do with '%1'."_s.arg(given.at(wanted.size()))};
  if (aCall.iArgs.iJson && !aCall.iCommand->iWithJson)
    throw TVelumUsage{u"'%1' prints no facts, so --json has no meaning."_s.arg(aCall.iCommand->iName)};
}

// QLocale takes any text and falls back to C.
void CheckLocale(const QString& aName) {
  const bool isC = aName == u"C"_s || aName == u"POSIX"_s || aName.startsWith(u"C."_s);
  if (!aName.isEmpty() && !isC && QLocale(aName).language() == QLocale::C)
    throw TVelumUsage{u"There is no locale '%1'."_s.arg(aName)};
}

int RunCommand(const TCall& aCall, CVelumTerminal& aTerminal) {
  CheckOperands(aCall);
  CheckLocale(aCall.iLocale);
  CVelumLocale::Init(aCall.iLocale);
  CVelumMsg::InitMessages();
  CVelumModel::Install();
  CVelumExports::InitExports();
  aTerminal.SetAnswer(aCall.iYes);
  // A damaged file can fail the same check thousands of times.
  const CVelumError::CCommand command;
  qCDebug(gLogCli) << "command" << aCall.iCommand->iName;
  const int status = aCall.iCommand->iRun(aCall.iArgs, aTerminal);
  if (!aTerminal.Flush()) CVelumError::RaiseHost(EHostDiskFull, u"standard output"_s);
  return status;
}

int RunCall(const QStringList& aArguments, CVelumTerminal& aTerminal, TCall& aCall) {
  const QStringList rest = ReadFront(aArguments, aCall);
  if (aCall.iCommand) ReadCommandArgs(rest, aCall);
  if (aCall.iVersion) {
    aTerminal.Line(u"orvelles-cli " ORVELLES_VERSION ""_s);
    return EExitDone;
  }
  if (aCall.iHelp) {
    aTerminal.Line(aCall.iCommand ? CVelumCliHelp::OfCommand(*aCall.iCommand) : CVelumCliHelp::Overview());
    return EExitDone;
  }
  if (!aCall.iCommand) throw TVelumUsage{u"A command is missing."_s};
  return RunCommand(aCall, aTerminal);
}

} // namespace

bool CVelumCli::NeedsWidgets(const QStringList& aArguments) {
  try {
    TCall call;
    const QStringList rest = ReadFront(aArguments, call);
    if (call.iCommand) ReadCommandArgs(rest, call);
    return call.iCommand == &CVelumCommands::Render() && !call.iHelp && !call.iVersion;
  } catch (const TVelumUsage&) {
    return false; // Run tells
  }
}

int CVelumCli::Run(const QStringList& aArguments) {
  CVelumTerminal terminal;
  CVelumSeams::SetPresenter(&terminal);
  TCall call;
  int status = EExitFailed;
  try {
    status = RunCall(aArguments, terminal, call);
  } catch (const TVelumUsage& usage) {
    const QString name = call.iCommand ? call.iCommand->iName + u" "_s : QString();
    terminal.Complain(usage.iText + u"\nTry 'orvelles-cli %1--help'."_s.arg(name));
    status = EExitUsage;
  } catch (const TVelumRefusal& refusal) {
    terminal.Complain(refusal.iText);
  } catch (...) {
    CVelumError::CatchError(u"CVelumCli.Run"_s);
    CVelumMsg::ShowLastError();
  }
  gStack = nullptr;
  CVelumSeams::SetPresenter(nullptr);
  return terminal.Flush() ? status : EExitFailed;
}
