#include "cli/CVelumCliHelp.h"

#include "cli/CVelumCommands.h"

namespace {

QString Row(const QString& aLeft, const QString& aRight) {
  constexpr int EColumn = 20;
  return u"\n  "_s + aLeft.leftJustified(EColumn) + u" "_s + aRight;
}

QString OptionRows(const QList<TVelumOption>& aOptions) {
  QString text;
  for (const TVelumOption& option : aOptions) {
    const QString value = option.iValueName.isEmpty() ? QString() : u" "_s + option.iValueName;
    const QString also = option.iShort.isEmpty() ? QString() : u"-%1, "_s.arg(option.iShort);
    text += Row(also + u"--"_s + option.iName + value, option.iHelp);
  }
  return text;
}

} // namespace

const QList<TVelumOption>& CVelumCliHelp::GlobalOptions() {
  static const QList<TVelumOption> options{
      {u"locale"_s, u"NAME"_s, u"locale of dates, numbers and order, such as de_DE"_s},
      {u"yes"_s, {}, u"answer every question with yes"_s},
      {u"no"_s, {}, u"answer every question with no (this is the default)"_s},
      {u"json"_s, {}, u"print facts as JSON"_s},
      {u"help"_s, {}, u"print help; after a command, help on that command"_s, u"h"_s},
      {u"version"_s, {}, u"print the version"_s, u"V"_s},
  };
  return options;
}

QString CVelumCliHelp::Overview() {
  QString text = u"Usage: orvelles-cli [OPTION]... COMMAND [ARGUMENT]...\n"
                 u"Works on Orvelles stacks without windows.\n\nCommands:"_s;
  for (const TVelumCliCommand* command : CVelumCommands::All())
    text += Row(command->iName, command->iSummary);
  text += Row(u"help COMMAND"_s, u"print the help of a command"_s);
  text += u"\n\nOptions:"_s + OptionRows(GlobalOptions());
  text += u"\n\nResults go to standard output, messages to standard error. The exit status is 0 when\n"
          u"all went well, 1 when something failed, and 2 for wrong usage."_s;
  return text;
}

QString CVelumCliHelp::OfCommand(const TVelumCliCommand& aCommand) {
  QString text = u"Usage: orvelles-cli [OPTION]... %1 %2\n%3."_s.arg(
      aCommand.iName, aCommand.iOperands.join(u' '), aCommand.iSummary);
  if (!aCommand.iDetails.isEmpty()) text += u"\n\n"_s + aCommand.iDetails;
  if (!aCommand.iOptions.isEmpty()) text += u"\n\nOptions of this command:"_s + OptionRows(aCommand.iOptions);
  text += u"\n\nOptions of all commands:"_s + OptionRows(GlobalOptions());
  return text;
}
