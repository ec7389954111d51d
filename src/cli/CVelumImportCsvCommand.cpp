// import-csv: makes a stack of a CSV file, or fills a background from one.
#include "cli/CVelumCliCsv.h"
#include "cli/CVelumCliFiles.h"
#include "cli/CVelumCliInput.h"
#include "cli/CVelumCliOutput.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCliWatch.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumImportFacts.h"
#include "exchange/CVelumCsvProposal.h"
#include "exchange/CVelumImports.h"
#include "persist/CVelumStackFile.h"

#include <QFileInfo>

namespace {

// The name that the stack is saved under: with --into it may be missing, and is that stack's.
QString OutOf(const TVelumArgs& aArgs) {
  const QString into = aArgs.Value(u"into"_s);
  if (aArgs.iOperands.size() > 1) return aArgs.Operand(1);
  if (into.isEmpty()) throw TVelumUsage{u"OUT is missing."_s};
  return into;
}

void CheckUsage(const TVelumArgs& aArgs) {
  if (aArgs.Has(u"background"_s) && !aArgs.Has(u"into"_s))
    throw TVelumUsage{u"--background says where in the stack of --into, which is missing."_s};
  CVelumImportFacts::CheckOutput(OutOf(aArgs), aArgs);
}

// Nothing that is there goes unless it was asked for.
void CheckFiles(const TVelumArgs& aArgs) {
  const QString out = OutOf(aArgs);
  const QString into = aArgs.Value(u"into"_s);
  CVelumCliFiles::CheckSource(aArgs.Operand(0));
  const bool back = aArgs.Has(u"into"_s) && CVelumCliFiles::SameFile(out, into);
  if (back) return;
  CVelumCliFiles::CheckNewStack(out, aArgs.Operand(0));
  if (CVelumCliFiles::IsStack(out) && !aArgs.Has(u"overwrite"_s))
    throw TVelumRefusal{out + u" is there; --overwrite replaces it."_s};
}

// What the first lines suggest, unless the caller knows better.
TCsvOptions OptionsOf(const TVelumArgs& aArgs, const QString& aPath) {
  TCsvOptions options;
  if (aArgs.Has(u"delimiter"_s)) options.iDelim = CVelumCliCsv::Delimiter(aArgs.Value(u"delimiter"_s));
  if (aArgs.Has(u"coding"_s)) options.iCoding = CVelumCliCsv::Coding(aArgs.Value(u"coding"_s));
  const TCsvProposal proposal = CVelumImports::ProposeCsv(aPath);
  if (!aArgs.Has(u"delimiter"_s)) options.iDelim = proposal.iDelim;
  if (!aArgs.Has(u"coding"_s)) options.iCoding = proposal.BestCoding();
  options.iHeaderLine = !aArgs.Has(u"no-header"_s);
  options.iDetectTypes = !aArgs.Has(u"no-types"_s);
  options.iGuessKey = !aArgs.Has(u"no-key"_s);
  options.iTryCardName = !aArgs.Has(u"no-card-name"_s);
  return options;
}

// What an import has made, and where in it.
struct TMade {
  TNewStack iStack;
  Ref<CVelumControlSet> iBackground;
};

ECsvOutcome FillBackground(const TVelumArgs& aArgs, const QString& aPath, CVelumImportWatch& aWatch,
                           TMade& aMade) {
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.Value(u"into"_s));
  aMade = {{open.iStack, open.iView}, CVelumCliStack::ChosenBackground(*open.iStack, aArgs)};
  CVelumPlainStackHost host(open.iStack);
  return CVelumImports::ImportCsv1(aPath, OptionsOf(aArgs, aPath), aWatch, aMade.iBackground, host);
}

ECsvOutcome MakeStack(const TVelumArgs& aArgs, const CVelumCliInput& aInput, CVelumImportWatch& aWatch,
                      TMade& aMade) {
  const ECsvOutcome outcome =
      CVelumImports::ImportCsv1(aInput.Path(), OptionsOf(aArgs, aInput.Path()), aWatch, aMade.iStack);
  if (outcome != ECsvOutcome::Done) return outcome;
  // The names are else that of a file that is gone in a moment.
  if (aInput.IsStream()) {
    aMade.iStack.iStack->SetName(aInput.Name());
    aMade.iStack.iView = MakeRef<CVelumViewState>(aInput.Name());
  }
  qint32 index = 0;
  static_cast<void>(aMade.iStack.iStack->GetFirstBackground(aMade.iBackground, index));
  return outcome;
}

bool Import(const TVelumArgs& aArgs, const CVelumCliInput& aInput, CVelumTerminal& aTerminal, TMade& aMade) {
  CVelumCliWatch watch(aTerminal);
  const ECsvOutcome outcome = aArgs.Has(u"into"_s) ? FillBackground(aArgs, aInput.Path(), watch, aMade)
                                                   : MakeStack(aArgs, aInput, watch, aMade);
  return outcome == ECsvOutcome::Done;
}

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  CheckUsage(aArgs);
  CheckFiles(aArgs);
  const QString out = OutOf(aArgs);
  const CVelumCliInput input(aArgs.Operand(0), aTerminal);
  TMade made;
  if (!Import(aArgs, input, aTerminal, made)) return EExitFailed;
  const qint32 cards = made.iBackground->NumCards();
  const QJsonObject facts =
      CVelumImportFacts::Of(input.Name(), out, {CVelumImportFacts::WithFields(*made.iBackground, cards)});
  CVelumCliOutput output(out, aTerminal);
  CVelumStackFile(output.Path()).SaveStack(made.iStack.iStack, made.iStack.iView);
  output.Finish();
  CVelumImportFacts::Print(facts, aArgs, aTerminal);
  return EExitDone;
}

} // namespace

const TVelumCommand& CVelumCommands::ImportCsv() {
  static const TVelumCommand command{
      u"import-csv"_s,
      {u"FILE"_s, u"[OUT]"_s},
      u"make a stack of a CSV file"_s,
      u"Makes a field of each of the first 20 columns and a card of each line, and saves\n"
      "the stack as OUT. Delimiter and coding are those that the file suggests, the first\n"
      "line holds the names of the columns, of which equal ones get a number, and types,\n"
      "card names and a sort key are found out, unless an option says otherwise. What was\n"
      "made is printed. With --into OUT may be missing, and STACK is saved. FILE may be -\n"
      "for standard input, or a pipe; OUT may be - for standard output. An OUT that is\n"
      "there is only replaced when it is a stack, and with --overwrite."_s,
      {{u"delimiter"_s, u"C"_s, u"comma, semicolon, tab or any one character"_s},
       {u"coding"_s, u"NAME"_s, u"latin1 (the Windows code page) or utf8"_s},
       {u"no-header"_s, {}, u"the first line is data like the others"_s},
       {u"no-types"_s, {}, u"all columns are texts"_s},
       {u"no-key"_s, {}, u"do not keep the cards sorted"_s},
       {u"no-card-name"_s, {}, u"do not name the cards by the first column"_s},
       {u"into"_s, u"STACK"_s, u"replace the cards of a background of STACK"_s},
       {u"background"_s, u"NAME"_s, u"the background, with --into; needed if it is one of several"_s},
       {u"overwrite"_s, {}, u"replace a stack OUT"_s}},
      true,
      Run,
  };
  return command;
}
