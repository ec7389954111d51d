#include "exchange/CVelumImports.h"

#include "core/CVelumChecked.h"
#include "exchange/CVelumCsvCards.h"
#include "exchange/CVelumCsvKey.h"
#include "exchange/CVelumFieldNames.h"
#include "exchange/CVelumImportLimits.h"
#include "model/CVelumModelLib.h"

#include <QFileInfo>

namespace {

using namespace CVelumImports;

const QString EProc = u"CVelumImports.ImportCsv1"_s;

// Where the steps end in the progress of the whole.
constexpr int EReadEnd = 300;
constexpr int ETypesEnd = 500;
constexpr int ECardsEnd = 800;

// One run of the import.
class CImport {
public:
  CImport(const QString& aFilename, const TCsvOptions& aOptions, CVelumImportWatch& aWatch,
          TCsvReport* aReport)
      : iFilename(aFilename), iOptions(aOptions), iWatch(aWatch), iGiven(aReport), iRows(aOptions.iDelim) {}

  [[nodiscard]] ECsvOutcome IntoNew(TNewStack& aNew);
  [[nodiscard]] ECsvOutcome IntoBackground(const Ref<CVelumControlSet>& aBackground, CVelumStackHost& aHost);

private:
  [[nodiscard]] ECsvOutcome Read(bool aReplaces);
  [[nodiscard]] bool FindTypes();
  void MakeFields(CVelumStack& aStack, CVelumControlSet& aBackground) const;
  [[nodiscard]] bool FindsNames(const CVelumControlSet& aBackground) const;
  [[nodiscard]] ECsvOutcome PutCards(CVelumStack& aStack, const Ref<CVelumControlSet>& aBackground,
                                     CVelumStackHost* aHost);
  [[nodiscard]] const TCsvColumns* Columns() const { return iOptions.iDetectTypes ? &iColumns : nullptr; }
  [[nodiscard]] qint32 TypeOf(int aColumn) const;
  void ReportRows();
  void ReportCards(const CVelumCsvCards& aCards, const CVelumControlSet& aBackground);
  [[nodiscard]] ECsvOutcome Finished(ECsvOutcome aOutcome);

  QString iFilename;
  const TCsvOptions& iOptions;
  CVelumImportWatch& iWatch;
  TCsvReport* iGiven; // to be filled, if there is one
  TCsvReport iReport;
  CVelumCsvRows iRows;
  TCsvColumns iColumns;
  qint32 iSurplus = 0;
};

// aReplaces: the rows come in place of cards.
ECsvOutcome CImport::Read(bool aReplaces) {
  CVelumImportLimits::CheckIsFile(iFilename);
  CVelumFile file(iFilename, EFilSeqRead);
  file.SetCoding(iOptions.iCoding);
  file.OpenFile();
  const qint64 size = QFileInfo(iFilename).size();
  const bool done = iRows.Read(file, size, EReadEnd, iWatch, iOptions.iMaxRows);
  file.CloseFile();
  if (!done) return ECsvOutcome::Cancelled;
  if (QFileInfo(iFilename).size() != size)
    CVelumImportLimits::RaiseChanged(iFilename, iRows.NumRows() > 0 ? iRows.Line(iRows.NumRows() - 1) : 1);
  ReportRows();
  if (aReplaces && iRows.UnclosedLine() > 0 && !iOptions.iDrop) return ECsvOutcome::Faulty;
  if (iRows.UnclosedLine() > 0) iWatch.Unclosed(iRows.UnclosedLine());
  if (!iRows.IsEmpty()) return FindTypes() ? ECsvOutcome::Done : ECsvOutcome::Cancelled;
  iWatch.Message(EMsgEmptyFile, CVelumMsg::EUndefParam);
  return ECsvOutcome::Empty;
}

bool CImport::FindTypes() {
  if (!iOptions.iDetectTypes) return true;
  if (!DetectTypes(iRows, iOptions.iHeaderLine, EReadEnd, ETypesEnd, iWatch, iColumns)) return false;
  for (size_t i = 0; i < iOptions.iTypes.size(); ++i)
    if (const auto type = iOptions.iTypes[i]) iColumns[i].iType = *type;
  return true;
}

qint32 CImport::TypeOf(int aColumn) const {
  return iOptions.iDetectTypes ? iColumns[static_cast<size_t>(aColumn)].iType : EConText;
}

void CImport::MakeFields(CVelumStack& aStack, CVelumControlSet& aBackground) const {
  const int items = iRows.NumRows() > 0 ? iRows.NumItems(0) : 0;
  QStringList names;
  for (int i = 0; i < items; ++i)
    names.append(iOptions.iHeaderLine ? iRows.Item(0, i).toString() : u"Field "_s + QString::number(i + 1));
  names = NumberEqualNames(names);
  for (int i = 0; i < items; ++i) {
    auto control = MakeRef<CVelumControl>(aStack.IdGen().NextId(), names.at(i), TypeOf(i));
    control->SetLabel(names.at(i));
    aBackground.AddControl(control, ENoInt);
  }
}

// Whether the first field is to become the one that names the cards.
bool CImport::FindsNames(const CVelumControlSet& aBackground) const {
  const CVelumControl* first = aBackground.ControlAt(0);
  return iOptions.iTryCardName && first && !first->Flag(EConCardName) && TryCardName(iRows, 0);
}

// With a host its cards of the background go, as soon as nothing can be wrong with the new ones any more.
ECsvOutcome CImport::PutCards(CVelumStack& aStack, const Ref<CVelumControlSet>& aBackground,
                              CVelumStackHost* aHost) {
  const bool firstNames = FindsNames(*aBackground);
  {
    CVelumCsvCards cards(iRows, Columns(), aBackground, firstNames);
    if (!cards.Make(iOptions.iHeaderLine ? 1 : 0, ETypesEnd, ECardsEnd, iWatch))
      return ECsvOutcome::Cancelled;
    iSurplus = cards.NumSurplus();
    ReportCards(cards, *aBackground);
    iRows.Clear();
    if (aHost)
      cards.Cards().Replace(*aHost, aBackground);
    else
      cards.Cards().Add(aStack, nullptr);
  }
  if (firstNames) aBackground->ControlAt(0)->SetFlag(EConCardName, true);
  if (iOptions.iGuessKey) GuessKey(aStack, aBackground->Id());
  if (aBackground->Flag(ECseKeepCardsSorted))
    iReport.iNotes.append(CVelumCsvReports::SortedLine(*aBackground));
  // A field that is part of a key has to know it when its value is changed.
  aStack.SetControlDynFlags();
  return ECsvOutcome::Done;
}

void CImport::ReportRows() {
  iReport.iClassic = true;
  iReport.iRecords = qMax(iRows.NumRows() - (iOptions.iHeaderLine ? 1 : 0), 0);
  iReport.iLayout = iOptions.iCoding == ECodUtf8 ? u"UTF-8"_s : u"Windows 1252"_s;
  iReport.iLayout += u", "_s + CVelumCsvReports::DelimName(iOptions.iDelim);
  iReport.iLayout += iOptions.iHeaderLine ? u", with a header line"_s : u", without a header line"_s;
  if (iRows.UnclosedLine() > 0)
    iReport.iFaults.Note(ECsvFault::Unclosed, iRows.UnclosedLine(), iRows.UnclosedItem());
}

void CImport::ReportCards(const CVelumCsvCards& aCards, const CVelumControlSet& aBackground) {
  for (qint32 i = 0; i < aBackground.NumControls(); ++i) {
    const CVelumControl& field = CVelumChecked::Deref(aBackground.ControlAt(i));
    TCsvReportColumn column;
    column.iName = field.Name();
    column.iType = field.ConType();
    column.iChanged = aCards.NumChangedIn(i);
    column.iEmpty = aCards.NumEmptyIn(i);
    iReport.iColumns.append(column);
  }
  iReport.iChanged = aCards.NumChanged();
  iReport.iCells = aCards.ChangedCells();
}

ECsvOutcome CImport::Finished(ECsvOutcome aOutcome) {
  if (aOutcome == ECsvOutcome::Done && iSurplus > 0)
    iWatch.Message(EMsgSurplusItems, QString::number(iSurplus));
  if (iGiven) *iGiven = std::move(iReport);
  return aOutcome;
}

ECsvOutcome CImport::IntoNew(TNewStack& aNew) {
  if (const ECsvOutcome outcome = Read(false); outcome != ECsvOutcome::Done) return Finished(outcome);
  const auto stack = MakeRef<CVelumStack>(iFilename);
  stack->SetFlag(EStaBinary, true);
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  static_cast<void>(stack->GetFirstBackground(background, index));
  MakeFields(*stack, CVelumChecked::Deref(background));
  if (const ECsvOutcome outcome = PutCards(*stack, background, nullptr); outcome != ECsvOutcome::Done)
    return Finished(outcome);
  stack->AdjustVisChar();
  aNew = {stack, MakeRef<CVelumViewState>(stack->Name())};
  return Finished(ECsvOutcome::Done);
}

ECsvOutcome CImport::IntoBackground(const Ref<CVelumControlSet>& aBackground, CVelumStackHost& aHost) {
  const Ref<CVelumStack> stack = aHost.Stack();
  if (const ECsvOutcome outcome = Read(true); outcome != ECsvOutcome::Done) return Finished(outcome);
  // A field that no key can have says so while all is as it was.
  if (iOptions.iGuessKey && !CVelumChecked::Deref(aBackground).Flag(ECseKeepCardsSorted) &&
      aBackground->NumControls() > 0)
    static_cast<void>(CVelumLib::SortKeyLen(CVelumChecked::Deref(aBackground->ControlAt(0))));
  iReport.iBackground = aBackground->Name();
  iReport.iReplaced = aBackground->NumCards();
  return Finished(PutCards(CVelumChecked::Deref(stack), aBackground, &aHost));
}

template <class TRun> ECsvOutcome Guarded(const TRun& aRun) {
  try {
    return aRun();
  } catch (...) {
    CVelumError::CatchError(EProc);
    throw;
  }
}

} // namespace

ECsvOutcome CVelumImports::ImportCsv1(const QString& aFilename, const TCsvOptions& aOptions,
                                      CVelumImportWatch& aWatch, TNewStack& aNew, TCsvReport* aReport) {
  return Guarded([&] { return CImport(aFilename, aOptions, aWatch, aReport).IntoNew(aNew); });
}

ECsvOutcome CVelumImports::ImportCsv1(const QString& aFilename, const TCsvOptions& aOptions,
                                      CVelumImportWatch& aWatch, const Ref<CVelumControlSet>& aBackground,
                                      CVelumStackHost& aHost, TCsvReport* aReport) {
  return Guarded(
      [&] { return CImport(aFilename, aOptions, aWatch, aReport).IntoBackground(aBackground, aHost); });
}

Ref<CVelumCard> CVelumImports::FindNextCard(const CVelumStack& aStack, qint32 aBackgroundId) {
  Ref<CVelumCard> last;
  Ref<CVelumCard> next;
  if (!aStack.GetLastCardInBackground(aBackgroundId, last) || !aStack.OrderNext(*last, next)) return nullptr;
  return next;
}
