// info: what a stack is made of.
#include "cli/CVelumCommands.h"
#include "cli/CVelumStackFacts.h"
#include "cli/CVelumTerminal.h"

namespace {

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(0));
  const QJsonObject facts = CVelumStackFacts::Of(open);
  if (aArgs.iJson)
    aTerminal.Json(facts);
  else
    aTerminal.Line(CVelumStackFacts::AsText(facts));
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::Info() {
  static const TVelumCliCommand command{
      u"info"_s,
      {u"STACK"_s},
      u"print what a stack is made of"_s,
      u"Name, format, cards, backgrounds with their fields, sort keys, blobs and fonts."_s,
      {},
      true,
      Run,
  };
  return command;
}
