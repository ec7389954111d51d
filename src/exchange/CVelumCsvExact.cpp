#include "exchange/CVelumCsvExact.h"

#include "core/CVelumChecked.h"
#include "exchange/CVelumCsvKey.h"
#include "exchange/CVelumCsvSample.h"

namespace {

const QString EProc = u"CVelumImports.ImportCsv1"_s;

// Where the steps end in the progress of the whole.
constexpr int EKnownEnd = 450;
constexpr int ECardsEnd = 850;

template <class TRun> ECsvOutcome Guarded(const TRun& aRun) {
  try {
    return aRun();
  } catch (...) {
    CVelumError::CatchError(EProc);
    throw;
  }
}

} // namespace

CVelumCsvExact::CVelumCsvExact(std::shared_ptr<CVelumCsvSource> aSource, const TCsvReading& aReading,
                               TCsvChoice aChoice, Ref<CVelumControlSet> aBackground)
    : iSource(std::move(aSource)), iReading(aReading), iChoice(std::move(aChoice)),
      iBackground(std::move(aBackground)) {}

bool CVelumCsvExact::Step() {
  if (iState == EState::Source) {
    if (!iSource->Step()) BeginScan();
  } else if (iState == EState::Scan) {
    if (!iScan->Step()) BeginCheck();
  } else if (iState == EState::Check) {
    if (!iCheck->Step()) EndCheck();
  }
  return iState != EState::Known;
}

int CVelumCsvExact::Progress(int aAll) const {
  const int half = aAll / 2;
  const int most = aAll * 9 / 10;
  if (iState == EState::Source) return iSource->Progress(half);
  if (iState == EState::Scan) return half + iScan->Progress(most - half);
  if (iState == EState::Check) return most + iCheck->Progress(aAll - most);
  return aAll;
}

bool CVelumCsvExact::Finish(int aTo, CVelumImportWatch& aWatch) {
  while (Step())
    if (!aWatch.Progress(Progress(aTo))) return false;
  return true;
}

void CVelumCsvExact::BeginScan() {
  iLayout.iHeaderLine = iReading.iHeaderLine;
  iLayout.iSkipLines = iReading.iSkipLines;
  iLayout.iDelim =
      iReading.iDelim.value_or(CVelumCsvSamples::ProposeDelim(iSource->Text(), iReading.iSkipLines));
  iScan = std::make_unique<CVelumCsvScan>(iSource->Text(), iLayout, iSource->HasZero());
  iState = EState::Scan;
}

void CVelumCsvExact::BeginCheck() {
  iPlan = CVelumCsvPlans::Make(*iScan, iChoice, iBackground.Get());
  iCheck = std::make_unique<CVelumCsvCheck>(iSource->Text(), iLayout, iSource->HasZero(), iPlan);
  iState = EState::Check;
}

void CVelumCsvExact::EndCheck() {
  iFaults = {};
  const TCsvBadBytes& bad = iSource->BadBytes();
  if (bad.iReplaced) iFaults.Note(ECsvFault::BadBytes, bad.iLine, 0, {}, bad.iCount);
  iFaults.Add(iScan->Faults());
  if (iBackground) iFaults.Add(CVelumCsvPlans::Fieldless(*iScan, iPlan));
  iFaults.Add(iCheck->Faults());
  iState = EState::Known;
}

void CVelumCsvExact::Choose(TCsvChoice aChoice, Ref<CVelumControlSet> aBackground) {
  iChoice = std::move(aChoice);
  iBackground = std::move(aBackground);
  if (iState == EState::Check || iState == EState::Known) BeginCheck();
}

void CVelumCsvExact::Decide(TCsvChoice aChoice) {
  iChoice = std::move(aChoice);
}

// Nothing: all is well.
std::optional<ECsvOutcome> CVelumCsvExact::Prepare(CVelumImportWatch& aWatch) {
  if (!Finish(EKnownEnd, aWatch)) return ECsvOutcome::Cancelled;
  BeginReport();
  if (!iFaults.IsEmpty() && !iChoice.iDrop) return ECsvOutcome::Faulty;
  if (!IsEmpty()) return {};
  aWatch.Message(EMsgEmptyFile, CVelumMsg::EUndefParam);
  return ECsvOutcome::Empty;
}

void CVelumCsvExact::MakeFields(CVelumStack& aStack, CVelumControlSet& aBackground) {
  for (TCsvPlanColumn& column : iPlan) {
    auto control = MakeRef<CVelumControl>(aStack.IdGen().NextId(), column.iName, column.iForm.iType);
    control->SetLabel(column.iName);
    column.iField = control->Id();
    aBackground.AddControl(control, ENoInt);
  }
  const std::optional<int> naming = CVelumCsvPlans::NameColumn(*iScan, iChoice);
  if (naming) aBackground.ControlAt(*naming)->SetFlag(EConCardName, true);
}

bool CVelumCsvExact::MakeCards(const Ref<CVelumControlSet>& aBackground, qint32 aFirstNumber,
                               CVelumImportWatch& aWatch, CVelumNewCards& aCards) {
  CVelumCsvMaker maker({iSource->Text(), iLayout, iSource->HasZero(), &iPlan,
                        CVelumCsvPlans::NameColumn(*iScan, iChoice), iScan->NumRecords(), aFirstNumber},
                       aBackground);
  if (!maker.Make(EKnownEnd, ECardsEnd, aWatch, aCards)) return false;
  ProposeKey(maker, *aBackground);
  return true;
}

// The leftmost field in whose order the cards are.
void CVelumCsvExact::ProposeKey(const CVelumCsvMaker& aMaker, const CVelumControlSet& aBackground) {
  iSortField = ENoInt;
  if (!iChoice.iProposeKey || iChoice.iAdd || aBackground.Flag(ECseKeepCardsSorted)) return;
  for (size_t i = 0; i < iPlan.size() && iSortField == ENoInt; ++i)
    if (iPlan[i].iField != ENoInt && aMaker.IsAscending(static_cast<int>(i))) iSortField = iPlan[i].iField;
  if (const CVelumControl* field = aBackground.FindControl(iSortField)) iReport.iSortedBy = field->Name();
}

ECsvOutcome CVelumCsvExact::IntoNew(CVelumImportWatch& aWatch, TNewStack& aNew) {
  return Guarded([&] {
    if (const auto outcome = Prepare(aWatch)) return *outcome;
    const auto stack = MakeRef<CVelumStack>(iSource->Filename());
    stack->SetFlag(EStaBinary, true);
    Ref<CVelumControlSet> background;
    qint32 index = 0;
    static_cast<void>(stack->GetFirstBackground(background, index));
    MakeFields(*stack, CVelumChecked::Deref(background));
    CVelumNewCards cards;
    if (!MakeCards(background, 1, aWatch, cards)) return ECsvOutcome::Cancelled;
    cards.Add(*stack, nullptr);
    stack->SetControlDynFlags();
    stack->AdjustVisChar();
    NoteOutside(*background);
    NoteNames(*background);
    aNew = {stack, MakeRef<CVelumViewState>(stack->Name())};
    return ECsvOutcome::Done;
  });
}

ECsvOutcome CVelumCsvExact::Into(CVelumImportWatch& aWatch, CVelumStackHost& aHost) {
  return Guarded([&] {
    if (const auto outcome = Prepare(aWatch)) return *outcome;
    const Ref<CVelumStack> stack = aHost.Stack();
    CVelumControlSet& background = CVelumChecked::Deref(iBackground);
    const qint32 old = background.NumCards();
    CVelumNewCards cards;
    if (!MakeCards(iBackground, iChoice.iAdd ? old + 1 : 1, aWatch, cards)) return ECsvOutcome::Cancelled;
    if (iChoice.iAdd)
      cards.Add(CVelumChecked::Deref(stack), CVelumImports::FindNextCard(*stack, background.Id()));
    else
      cards.Replace(aHost, iBackground);
    iReport.iBackground = background.Name();
    iReport.iReplaced = iChoice.iAdd ? 0 : old;
    NoteNames(background);
    return ECsvOutcome::Done;
  });
}

void CVelumCsvExact::KeepSorted(CVelumStack& aStack, const Ref<CVelumControlSet>& aBackground,
                                qint32 aField) {
  CVelumControlSet& background = CVelumChecked::Deref(aBackground);
  const CVelumControl* field = background.FindControl(aField);
  if (!field || background.Flag(ECseKeepCardsSorted)) return;
  const Ref<CVelumSortKey> key = CVelumImports::MakeKey(aStack, background.Id(), *field, nullptr);
  aStack.AddSortKey(key);
  background.SetFlag(ECseKeepCardsSorted, true);
  aStack.NewIndexForSortKey(key);
  aStack.SetControlDynFlags();
}
