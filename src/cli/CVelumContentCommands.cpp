// import-xml and import-text: bring content into a stack.
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "exchange/CVelumContentImport.h"
#include "exchange/CVelumTextImport.h"
#include "persist/CVelumStackFile.h"

namespace {

void Save(const TVelumArgs& aArgs, const TVelumOpenStack& aOpen) {
  const QString path = aArgs.Value(u"out"_s, aArgs.iOperands.at(1));
  CVelumStackFile(path).SaveStack(aOpen.iStack, aOpen.iView);
}

int RunXml(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(1));
  const CVelumCliStack::CProgress progress(aTerminal);
  static_cast<void>(CVelumImports::ImportXml(aArgs.iOperands.at(0), *open.iStack, progress.Step()));
  Save(aArgs, open);
  return EExitDone;
}

int RunText(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  if (!aArgs.Has(u"background"_s)) throw TVelumUsage{u"--background is missing."_s};
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.iOperands.at(1));
  const auto background = CVelumCliStack::BackgroundByName(*open.iStack, aArgs.Value(u"background"_s));
  const CVelumCliStack::CProgress progress(aTerminal);
  CVelumPlainStackHost host(open.iStack);
  if (!CVelumImports::ImportTextFile(aArgs.iOperands.at(0), background, host, progress.Step()))
    return EExitFailed;
  Save(aArgs, open);
  return EExitDone;
}

} // namespace

const TVelumCommand& CVelumCommands::ImportXml() {
  static const TVelumCommand command{
      u"import-xml"_s,
      {u"FILE"_s, u"STACK"_s},
      u"add the cards of a content file in XML to a stack"_s,
      u"FILE is what export-xml writes. The stack must have the backgrounds and fields that\n"
      "it names; the cards are added behind all others. Pictures are passed over."_s,
      {{u"out"_s, u"OUT"_s, u"save as OUT instead of into STACK"_s}},
      false,
      RunXml,
  };
  return command;
}

const TVelumCommand& CVelumCommands::ImportText() {
  static const TVelumCommand command{
      u"import-text"_s,
      {u"FILE"_s, u"STACK"_s},
      u"replace the cards of a background by the lines of a text"_s,
      u"Each card gets 50 lines, in the field \"Text\" of the background, and a number as its\n"
      "name. The text is in the Windows code page, or in UTF-8 if it begins with a byte order\n"
      "mark."_s,
      {{u"background"_s, u"NAME"_s, u"the background (needed)"_s},
       {u"out"_s, u"OUT"_s, u"save as OUT instead of into STACK"_s}},
      false,
      RunText,
  };
  return command;
}
