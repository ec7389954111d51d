// import-csv: makes a stack of a CSV file, or fills a background from one.
#include "cli/CVelumCliCsv.h"
#include "cli/CVelumCliExact.h"
#include "cli/CVelumCliFiles.h"
#include "cli/CVelumCliInput.h"
#include "cli/CVelumCliOutput.h"
#include "cli/CVelumCliStack.h"
#include "cli/CVelumCliWatch.h"
#include "cli/CVelumCommands.h"
#include "cli/CVelumImportFacts.h"
#include "cli/CVelumTerminal.h"
#include "exchange/CVelumCsvPreview.h"
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
  if (aArgs.Has(u"add"_s) && !aArgs.Has(u"into"_s))
    throw TVelumUsage{u"--add says how cards go into the stack of --into, which is missing."_s};
  if (aArgs.Has(u"classic"_s))
    for (const QString& option : {u"add"_s, u"field"_s, u"keep-sorted"_s, u"name"_s, u"skip-lines"_s})
      if (aArgs.Has(option)) throw TVelumUsage{u"--classic knows no --%1."_s.arg(option)};
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

// What the first lines suggest to the classic way, unless the caller knows better.
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
  options.iDrop = aArgs.Has(u"drop"_s);
  if (!aArgs.Has(u"type"_s)) return options;
  const QStringList names = CVelumImports::PreviewCsv(aPath, options).iTitles;
  const QHash<int, qint32> types = CVelumCliCsv::Types(aArgs, names);
  for (auto type = types.cbegin(); type != types.cend(); ++type)
    options.iTypes[static_cast<size_t>(type.key())] = type.value();
  return options;
}

// What an import has made, and where in it.
struct TMade {
  TNewStack iStack;
  Ref<CVelumControlSet> iBackground;
  TCsvReport iReport;
};

ECsvOutcome FillBackground(const TVelumArgs& aArgs, const QString& aPath, CVelumImportWatch& aWatch,
                           TMade& aMade) {
  const TVelumOpenStack open = CVelumCliStack::Open(aArgs.Value(u"into"_s));
  aMade.iStack = {open.iStack, open.iView};
  aMade.iBackground = CVelumCliStack::ChosenBackground(*open.iStack, aArgs);
  CVelumPlainStackHost host(open.iStack);
  if (!aArgs.Has(u"classic"_s))
    return CVelumCliExact::Into(aPath, aArgs, aWatch, aMade.iBackground, host, aMade.iReport);
  return CVelumImports::ImportCsv1(aPath, OptionsOf(aArgs, aPath), aWatch, aMade.iBackground, host,
                                   &aMade.iReport);
}

ECsvOutcome MakeStack(const TVelumArgs& aArgs, const CVelumCliInput& aInput, CVelumImportWatch& aWatch,
                      TMade& aMade) {
  const QString path = aInput.Path();
  const ECsvOutcome outcome =
      aArgs.Has(u"classic"_s)
          ? CVelumImports::ImportCsv1(path, OptionsOf(aArgs, path), aWatch, aMade.iStack, &aMade.iReport)
          : CVelumCliExact::IntoNew(path, aArgs, aWatch, aMade.iStack, aMade.iReport);
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

void ComplainOfFaults(const QString& aFile, const TMade& aMade, CVelumTerminal& aTerminal) {
  for (const QString& line : CVelumCsvReports::FaultLines(aMade.iReport.iFaults))
    aTerminal.Complain(CVelumCliStack::OneLine(aFile + u", "_s + line));
  aTerminal.Complain(u"nothing was imported; --drop imports all the same"_s);
}

bool Import(const TVelumArgs& aArgs, const CVelumCliInput& aInput, CVelumTerminal& aTerminal, TMade& aMade) {
  ECsvOutcome outcome{};
  {
    CVelumCliWatch watch(aTerminal);
    outcome = aArgs.Has(u"into"_s) ? FillBackground(aArgs, aInput.Path(), watch, aMade)
                                   : MakeStack(aArgs, aInput, watch, aMade);
  }
  if (outcome == ECsvOutcome::Faulty) ComplainOfFaults(aInput.Name(), aMade, aTerminal);
  return outcome == ECsvOutcome::Done;
}

// What the import has made, found and decided: in text a few lines, of which the first names the stack.
void Print(const QString& aFile, const QString& aOut, const TMade& aMade, const TVelumArgs& aArgs,
           CVelumTerminal& aTerminal) {
  if (aArgs.iJson) {
    const auto cards = static_cast<qint32>(aMade.iReport.iRecords);
    QJsonObject facts =
        CVelumImportFacts::Of(aFile, aOut, {CVelumImportFacts::WithFields(*aMade.iBackground, cards)});
    facts.insert(u"report"_s, CVelumCsvReports::ToJson(aMade.iReport));
    return aTerminal.Json(facts);
  }
  QString front = aOut + u": "_s;
  for (const QString& line : CVelumCsvReports::Lines(aMade.iReport)) {
    const QString text = std::exchange(front, u"  "_s) + CVelumCliStack::OneLine(line);
    if (CVelumCliOutput::IsStandard(aOut))
      aTerminal.Complain(text);
    else
      aTerminal.Line(text);
  }
}

int Run(const TVelumArgs& aArgs, CVelumTerminal& aTerminal) {
  CheckUsage(aArgs);
  CheckFiles(aArgs);
  const QString out = OutOf(aArgs);
  const CVelumCliInput input(aArgs.Operand(0), aTerminal);
  TMade made;
  if (!Import(aArgs, input, aTerminal, made)) return EExitFailed;
  CVelumCliOutput output(out, aTerminal);
  CVelumStackFile(output.Path()).SaveStack(made.iStack.iStack, made.iStack.iView);
  output.Finish();
  Print(input.Name(), out, made, aArgs, aTerminal);
  return EExitDone;
}

} // namespace

const TVelumCliCommand& CVelumCommands::ImportCsv() {
  static const TVelumCliCommand command{
      u"import-csv"_s,
      {u"FILE"_s, u"[OUT]"_s},
      u"make a stack of a CSV file"_s,
      u"Makes a field of each column and a card of each record, in their order, and saves\n"
      "the stack as OUT. Nothing is changed silently: a column has a type only if all its\n"
      "cells come back from their values, and what cannot come in whole stops the import,\n"
      "with its line and column, unless --drop is given. What was found and decided is\n"
      "printed. With --classic the first 20 columns come in by the older rules, which read\n"
      "numbers and dates more freely and keep the cards sorted where they are. With --into\n"
      "OUT may be missing, and STACK is saved. FILE may be - for standard input, or a pipe;\n"
      "OUT may be - for standard output. An OUT that is there is only replaced when it is a\n"
      "stack, and with --overwrite. A COLUMN is its name or its number."_s,
      {{u"classic"_s, {}, u"read by the older rules"_s},
       {u"delimiter"_s, u"C"_s, u"comma, semicolon, tab, bar or any one character"_s},
       {u"coding"_s, u"NAME"_s, u"latin1 (the Windows code page), utf8 or utf16"_s},
       {u"no-header"_s, {}, u"the first line is data like the others"_s},
       {u"skip-lines"_s, u"N"_s, u"leave out the first N lines of the file"_s},
       {u"no-types"_s, {}, u"all columns are texts"_s},
       {u"type"_s, u"COLUMN=TYPE"_s, u"text, integer, real, date, time or boolean; for several columns"_s},
       {u"no-key"_s, {}, u"look for no order of the cards"_s},
       {u"keep-sorted"_s, {}, u"keep the cards sorted by the field by which they are in order"_s},
       {u"no-card-name"_s, {}, u"name the cards by numbers"_s},
       {u"name"_s, u"COLUMN"_s, u"name the cards by a column; the first, if suitable, if not given"_s},
       {u"into"_s, u"STACK"_s, u"replace the cards of a background of STACK"_s},
       {u"background"_s, u"NAME"_s, u"the background, with --into; needed if it is one of several"_s},
       {u"add"_s, {}, u"with --into: add to the cards"_s},
       {u"field"_s, u"COLUMN=FIELD"_s, u"with --into: the field of a column of another name"_s},
       {u"drop"_s, {}, u"leave out what cannot come in whole"_s},
       {u"overwrite"_s, {}, u"replace a stack OUT"_s}},
      true,
      Run,
  };
  return command;
}
