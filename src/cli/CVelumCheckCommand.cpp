// check: reads everything of a stack and lists every problem.
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumTerminal.h"
#include "persist/CVelumStackCheck.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(0));
  const QStringList problems = CVelumStackCheck(*open.iStack).Run();
  if (aArgs.iJson) {
    aTerminal.Json({{u"sound"_s, problems.isEmpty()},
                    {u"orderCorrections"_s, open.iStack->OrderCorrections()},
                    {u"problems"_s, QJsonArray::fromStringList(problems)}});
  } else {
    for (const QString& problem : problems) aTerminal.Line(CVelumCliStack::OneLine(problem));
  }
  return problems.isEmpty() ? EExitDone : EExitFailed;
}

} // namespace

const TVelumCliCommand& CVelumCommands::Check() {
  static const TVelumCliCommand command{
      u"check"_s,
      {u"STACK"_s},
      u"read everything of a stack and list every problem"_s,
      u"Verifies ids, indexes, references between fields, sort keys, and the place, content and\n"
      u"reference count of every blob. Prints a line per problem and nothing for a sound stack;\n"
      u"the exit status is 1 when there are problems. A stack that cannot be loaded gives the\n"
      u"message that opening it gives. Cards that only stand in the order of another locale are\n"
      u"told as EMsgOrderCorrections and are no problem."_s,
      {},
      true,
      Run,
  };
  return command;
}
