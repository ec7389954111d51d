// convert: loads a stack and saves it under another name.
#include "cli/CVelumCliFiles.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "persist/CVelumStackFile.h"

namespace {

int Run(const TVelumArgs& aArgs, CVelumTerminal&) {
  const QString format = aArgs.Value(u"format"_s);
  if (aArgs.Has(u"format"_s) && format != u"binary"_s && format != u"xml"_s)
    throw TVelumUsage{u"There is no format '%1': binary or xml."_s.arg(format)};
  CVelumCliFiles::CheckFolder(aArgs.Operand(1));
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(0));
  if (!format.isEmpty()) open.iStack->SetFlag(EStaBinary, format == u"binary"_s);
  CVelumStackFile(aArgs.iOperands.at(1)).SaveStack(open.iStack, open.iView);
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::Convert() {
  static const TVelumCliCommand command{
      u"convert"_s,
      {u"IN"_s, u"OUT"_s},
      u"load a stack and save it as another file"_s,
      u"An OUT that exists is replaced once the new file is complete."_s,
      {{u"format"_s, u"NAME"_s, u"binary or xml; without it as the stack was"_s}},
      false,
      Run,
  };
  return command;
}
