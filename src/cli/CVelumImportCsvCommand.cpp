// import-csv: makes a stack of a CSV file, or fills a background from one.
#include "cli/CVelumCliCsv.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCliWatch.h"
#include "cli/CVelumCommands.h"
#include "exchange/CVelumCsvProposal.h"
#include "exchange/CVelumImports.h"
#include "persist/CVelumStackFile.h"

namespace {

// What the first lines suggest, unless the caller knows better.
TCsvOptions OptionsOf(const TVelumArgs& aArgs) {
  TCsvOptions options;
  if (aArgs.Has(u"delimiter"_s)) options.iDelim = CVelumCliCsv::Delimiter(aArgs.Value(u"delimiter"_s));
  if (aArgs.Has(u"coding"_s)) options.iCoding = CVelumCliCsv::Coding(aArgs.Value(u"coding"_s));
  const TCsvProposal proposal = CVelumImports::ProposeCsv(aArgs.iOperands.at(0));
  if (!aArgs.Has(u"delimiter"_s)) options.iDelim = proposal.iDelim;
  if (!aArgs.Has(u"coding"_s)) options.iCoding = proposal.BestCoding();
  options.iHeaderLine = !aArgs.Has(u"no-header"_s);
  options.iDetectTypes = !aArgs.Has(u"no-types"_s);
  options.iGuessKey = !aArgs.Has(u"no-key"_s);
  options.iTryCardName = !aArgs.Has(u"no-card-name"_s);
  return options;
}

ECsvOutcome FillBackground(const TVelumArgs& aArgs, const TCsvOptions& aOptions, CVelumImportWatch& aWatch,
                           TNewStack& aStack) {
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.Value(u"into"_s));
  const Ref<CVelumControlSet> background =
      CVelumCliStack::BackgroundByName(*open.iStack, aArgs.Value(u"background"_s));
  aStack = {open.iStack, open.iView};
  CVelumPlainStackHost host(open.iStack);
  return CVelumImports::ImportCsv1(aArgs.iOperands.at(0), aOptions, aWatch, background, host);
}

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  if (aArgs.Has(u"into"_s) != aArgs.Has(u"background"_s))
    throw TVelumUsage{u"--into and --background belong together."_s};
  const TCsvOptions options = OptionsOf(aArgs);
  TNewStack stack;
  {
    CVelumCliWatch watch(aTerminal);
    const ECsvOutcome outcome = aArgs.Has(u"into"_s)
                                    ? FillBackground(aArgs, options, watch, stack)
                                    : CVelumImports::ImportCsv1(aArgs.iOperands.at(0), options, watch, stack);
    if (outcome != ECsvOutcome::Done) return EExitFailed;
  }
  CVelumStackFile(aArgs.iOperands.at(1)).SaveStack(stack.iStack, stack.iView);
  return EExitDone;
}

} // namespace

const TVelumCommand& CVelumCommands::ImportCsv() {
  static const TVelumCommand command{
      u"import-csv"_s,
      {u"FILE"_s, u"OUT"_s},
      u"make a stack of a CSV file"_s,
      u"Makes a field of each of the first 20 columns and a card of each line, and saves\n"
      "the stack as OUT. Delimiter and coding are those that the first lines suggest,\n"
      "the first line holds the names of the columns, and types, card names and a sort\n"
      "key are found out, unless an option says otherwise."_s,
      {{u"delimiter"_s, u"C"_s, u"comma, semicolon, tab or any one character"_s},
       {u"coding"_s, u"NAME"_s, u"latin1 (the Windows code page) or utf8"_s},
       {u"no-header"_s, {}, u"the first line is data like the others"_s},
       {u"no-types"_s, {}, u"all columns are texts"_s},
       {u"no-key"_s, {}, u"do not keep the cards sorted"_s},
       {u"no-card-name"_s, {}, u"do not name the cards by the first column"_s},
       {u"into"_s, u"STACK"_s, u"replace the cards of a background of STACK"_s},
       {u"background"_s, u"NAME"_s, u"the background, with --into"_s}},
      false,
      Run,
  };
  return command;
}
