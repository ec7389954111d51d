// import-xml and import-text: bring content into a stack.
#include "cli/CVelumCliFiles.h"
#include "cli/CVelumCliInput.h"
#include "cli/CVelumCliOutput.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumImportFacts.h"
#include "exchange/CVelumContentImport.h"
#include "exchange/CVelumTextImport.h"
#include "persist/CVelumStackFile.h"

namespace {

QString OutOf(const TVelumArgs& aArgs) {
  return aArgs.Value(u"out"_s, aArgs.Operand(1));
}

void Check(const TVelumArgs& aArgs) {
  const QString out = OutOf(aArgs);
  CVelumImportFacts::CheckOutput(out, aArgs);
  CVelumCliFiles::CheckSource(aArgs.Operand(0));
  if (aArgs.Has(u"out"_s)) CVelumCliFiles::CheckNewStack(out, aArgs.Operand(0));
}

// Saves, and prints what was made.
void Finish(const TVelumArgs& aArgs, const TVelumOpenStack& aOpen, const CVelumCliInput& aInput,
            const QJsonArray& aBackgrounds, CVelumTerminal& aTerminal) {
  CVelumCliOutput output(OutOf(aArgs), aTerminal);
  CVelumStackFile(output.Path()).SaveStack(aOpen.iStack, aOpen.iView);
  output.Finish();
  CVelumImportFacts::Print(CVelumImportFacts::Of(aInput.Name(), OutOf(aArgs), aBackgrounds), aArgs,
                           aTerminal);
}

// Calls aVisit with each background.
template <class TVisit> void ForBackgrounds(const CVelumStack& aStack, const TVisit& aVisit) {
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  for (bool more = aStack.GetFirstBackground(background, index); more;
       more = aStack.GetNextBackground(background, index))
    aVisit(*background);
}

int RunXml(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  Check(aArgs);
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.Operand(1));
  const CVelumCliInput input(aArgs.Operand(0), aTerminal);
  QHash<qint32, qint32> before;
  ForBackgrounds(*open.iStack, [&](const CVelumControlSet& aSet) { before[aSet.Id()] = aSet.NumCards(); });
  {
    const CVelumCliStack::CProgress progress(aTerminal);
    static_cast<void>(CVelumImports::ImportXml(input.Path(), *open.iStack, progress.Step()));
  }
  QJsonArray made;
  ForBackgrounds(*open.iStack, [&](CVelumControlSet& aSet) {
    const qint32 added = aSet.NumCards() - before.value(aSet.Id());
    QJsonObject facts = CVelumImportFacts::Of(aSet, added);
    facts.insert(u"added"_s, true); // to what was there
    if (added > 0) made.append(facts);
  });
  Finish(aArgs, open, input, made, aTerminal);
  return EExitDone;
}

int RunText(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  Check(aArgs);
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.Operand(1));
  const Ref<CVelumControlSet> background = CVelumCliStack::ChosenBackground(*open.iStack, aArgs);
  const CVelumCliInput input(aArgs.Operand(0), aTerminal);
  CVelumPlainStackHost host(open.iStack);
  {
    const CVelumCliStack::CProgress progress(aTerminal);
    if (!CVelumImports::ImportTextFile(input.Path(), background, host, progress.Step())) return EExitFailed;
  }
  Finish(aArgs, open, input, {CVelumImportFacts::Of(*background, background->NumCards())}, aTerminal);
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::ImportXml() {
  static const TVelumCliCommand command{
      u"import-xml"_s,
      {u"FILE"_s, u"STACK"_s},
      u"add the cards of a content file in XML to a stack"_s,
      u"FILE is what export-xml writes. The stack must have the backgrounds and fields that\n"
      "it names; the cards are added behind all others, and their numbers are printed. Of\n"
      "fields with one name the first takes the first text, and so on. Pictures are passed\n"
      "over. FILE may be - for standard input, or a pipe."_s,
      {{u"out"_s, u"OUT"_s, u"save as OUT (- is standard output) instead of into STACK"_s}},
      true,
      RunXml,
  };
  return command;
}

const TVelumCliCommand& CVelumCommands::ImportText() {
  static const TVelumCliCommand command{
      u"import-text"_s,
      {u"FILE"_s, u"STACK"_s},
      u"replace the cards of a background by the lines of a text"_s,
      u"Each card gets 50 lines, in the field \"Text\" of the background, and a number as its\n"
      "name. The text is in the Windows code page, or in UTF-8 if it begins with a byte order\n"
      "mark. FILE may be - for standard input, or a pipe."_s,
      {{u"background"_s, u"NAME"_s, u"the background; needed if it is one of several"_s},
       {u"out"_s, u"OUT"_s, u"save as OUT (- is standard output) instead of into STACK"_s}},
      true,
      RunText,
  };
  return command;
}
