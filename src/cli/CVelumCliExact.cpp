#include "cli/CVelumCliExact.h"

#include "cli/CVelumCliCsv.h"
#include "exchange/CVelumCsvExact.h"

namespace {

// How far the work is when the columns are known.
constexpr int EKnown = 450;

TCsvReading ReadingOf(const TVelumArgs& aArgs) {
  TCsvReading reading;
  if (aArgs.Has(u"delimiter"_s)) reading.iDelim = CVelumCliCsv::Delimiter(aArgs.Value(u"delimiter"_s));
  reading.iHeaderLine = !aArgs.Has(u"no-header"_s);
  bool isNumber = true;
  if (aArgs.Has(u"skip-lines"_s)) reading.iSkipLines = aArgs.Value(u"skip-lines"_s).toLongLong(&isNumber);
  if (!isNumber || reading.iSkipLines < 0)
    throw TVelumUsage{u"'%1' is no number of lines."_s.arg(aArgs.Value(u"skip-lines"_s))};
  return reading;
}

qint32 FieldByName(const CVelumControlSet* aBackground, const QString& aName) {
  Ref<CVelumControl> field;
  if (!aBackground) throw TVelumUsage{u"--field says where in a stack, so that --into is missing."_s};
  if (!aBackground->GetControlByName(aName, field))
    throw TVelumUsage{u"There is no field '%1' in '%2'."_s.arg(aName, aBackground->Name())};
  return field->Id();
}

TCsvChoice ChoiceOf(const TVelumArgs& aArgs, const QStringList& aNames, const CVelumControlSet* aBackground) {
  TCsvChoice choice;
  choice.iDetectTypes = !aArgs.Has(u"no-types"_s);
  choice.iProposeKey = !aArgs.Has(u"no-key"_s);
  choice.iDrop = aArgs.Has(u"drop"_s);
  choice.iAdd = aArgs.Has(u"add"_s);
  choice.iTypes = CVelumCliCsv::Types(aArgs, aNames);
  if (aArgs.Has(u"no-card-name"_s)) choice.iNaming = ECsvNaming::Numbers;
  if (aArgs.Has(u"name"_s)) {
    choice.iNaming = ECsvNaming::Column;
    choice.iNameColumn = CVelumCliCsv::Column(aArgs.Value(u"name"_s), aNames);
  }
  for (const QString& text : aArgs.Values(u"field"_s)) {
    const auto [column, field] = CVelumCliCsv::Assignment(text, u"field"_s);
    choice.iFields.insert(CVelumCliCsv::Column(column, aNames), FieldByName(aBackground, field));
  }
  return choice;
}

QStringList NamesOf(const CVelumCsvExact& aRun) {
  QStringList names;
  for (const TCsvPlanColumn& column : aRun.Plan()) names.append(column.iName);
  return names;
}

// A run that knows its columns, with what the options say about them. Nothing if cancelled.
std::unique_ptr<CVelumCsvExact> RunOf(const QString& aPath, const TVelumArgs& aArgs,
                                      CVelumImportWatch& aWatch, const Ref<CVelumControlSet>& aBackground) {
  std::optional<ECsvEncoding> encoding;
  if (aArgs.Has(u"coding"_s)) encoding = CVelumCliCsv::Encoding(aArgs.Value(u"coding"_s));
  auto run = std::make_unique<CVelumCsvExact>(std::make_shared<CVelumCsvSource>(aPath, encoding),
                                              ReadingOf(aArgs), TCsvChoice());
  if (!run->Finish(EKnown, aWatch)) return nullptr;
  run->Choose(ChoiceOf(aArgs, NamesOf(*run), aBackground.Get()), aBackground);
  return run;
}

void KeepSorted(const CVelumCsvExact& aRun, const TVelumArgs& aArgs, CVelumStack& aStack,
                const Ref<CVelumControlSet>& aBackground, TCsvReport& aReport) {
  if (!aArgs.Has(u"keep-sorted"_s)) return;
  CVelumCsvExact::KeepSorted(aStack, aBackground, aRun.SortField());
  aReport.iSortedBy.clear();
}

} // namespace

ECsvOutcome CVelumCliExact::IntoNew(const QString& aPath, const TVelumArgs& aArgs, CVelumImportWatch& aWatch,
                                    TNewStack& aNew, TCsvReport& aReport) {
  const auto run = RunOf(aPath, aArgs, aWatch, {});
  if (!run) return ECsvOutcome::Cancelled;
  const ECsvOutcome outcome = run->IntoNew(aWatch, aNew);
  aReport = run->Report();
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  if (outcome == ECsvOutcome::Done && aNew.iStack->GetFirstBackground(background, index))
    KeepSorted(*run, aArgs, *aNew.iStack, background, aReport);
  return outcome;
}

ECsvOutcome CVelumCliExact::Into(const QString& aPath, const TVelumArgs& aArgs, CVelumImportWatch& aWatch,
                                 const Ref<CVelumControlSet>& aBackground, CVelumStackHost& aHost,
                                 TCsvReport& aReport) {
  const auto run = RunOf(aPath, aArgs, aWatch, aBackground);
  if (!run) return ECsvOutcome::Cancelled;
  const ECsvOutcome outcome = run->Into(aWatch, aHost);
  aReport = run->Report();
  if (outcome == ECsvOutcome::Done) KeepSorted(*run, aArgs, *aHost.Stack(), aBackground, aReport);
  return outcome;
}
