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
  CImport(const QString& aFilename, const TCsvOptions& aOptions, CVelumImportWatch& aWatch)
      : iFilename(aFilename), iOptions(aOptions), iWatch(aWatch), iRows(aOptions.iDelim) {}

  [[nodiscard]] ECsvOutcome IntoNew(TNewStack& aNew);
  [[nodiscard]] ECsvOutcome IntoBackground(const Ref<CVelumControlSet>& aBackground, CVelumStackHost& aHost);

private:
  [[nodiscard]] ECsvOutcome Read();
  [[nodiscard]] bool FindTypes();
  void MakeFields(CVelumStack& aStack, CVelumControlSet& aBackground) const;
  [[nodiscard]] bool FindsNames(const CVelumControlSet& aBackground) const;
  [[nodiscard]] ECsvOutcome PutCards(CVelumStack& aStack, const Ref<CVelumControlSet>& aBackground,
                                     CVelumStackHost* aHost);
  [[nodiscard]] const TCsvColumns* Columns() const { return iOptions.iDetectTypes ? &iColumns : nullptr; }
  [[nodiscard]] qint32 TypeOf(int aColumn) const;

  QString iFilename;
  const TCsvOptions& iOptions;
  CVelumImportWatch& iWatch;
  CVelumCsvRows iRows;
  TCsvColumns iColumns;
  qint32 iSurplus = 0;
};

ECsvOutcome CImport::Read() {
  CVelumImportLimits::CheckIsFile(iFilename);
  CVelumFile file(iFilename, EFilSeqRead);
  file.SetCoding(iOptions.iCoding);
  file.OpenFile();
  const qint64 size = QFileInfo(iFilename).size();
  const bool done = iRows.Read(file, size, EReadEnd, iWatch, iOptions.iMaxRows);
  file.CloseFile();
  if (!done) return ECsvOutcome::Cancelled;
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
    iRows.Clear();
    const Ref<CVelumCard> next = aHost ? FindNextCard(aStack, aBackground->Id()) : nullptr;
    if (aHost) aHost->DeleteBackground(aBackground, true);
    cards.Add(aStack, next);
  }
  if (firstNames) aBackground->ControlAt(0)->SetFlag(EConCardName, true);
  if (iOptions.iGuessKey) GuessKey(aStack, aBackground->Id());
  // A field that is part of a key has to know it when its value is changed.
  aStack.SetControlDynFlags();
  return ECsvOutcome::Done;
}

ECsvOutcome CImport::IntoNew(TNewStack& aNew) {
  if (const ECsvOutcome outcome = Read(); outcome != ECsvOutcome::Done) return outcome;
  const auto stack = MakeRef<CVelumStack>(iFilename);
  stack->SetFlag(EStaBinary, true);
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  static_cast<void>(stack->GetFirstBackground(background, index));
  MakeFields(*stack, CVelumChecked::Deref(background));
  if (const ECsvOutcome outcome = PutCards(*stack, background, nullptr); outcome != ECsvOutcome::Done)
    return outcome;
  stack->AdjustVisChar();
  aNew = {stack, MakeRef<CVelumViewState>(stack->Name())};
  if (iSurplus > 0) iWatch.Message(EMsgSurplusItems, QString::number(iSurplus));
  return ECsvOutcome::Done;
}

ECsvOutcome CImport::IntoBackground(const Ref<CVelumControlSet>& aBackground, CVelumStackHost& aHost) {
  const Ref<CVelumStack> stack = aHost.Stack();
  if (const ECsvOutcome outcome = Read(); outcome != ECsvOutcome::Done) return outcome;
  // A field that no key can have says so while all is as it was.
  if (iOptions.iGuessKey && !CVelumChecked::Deref(aBackground).Flag(ECseKeepCardsSorted) &&
      aBackground->NumControls() > 0)
    static_cast<void>(CVelumLib::SortKeyLen(CVelumChecked::Deref(aBackground->ControlAt(0))));
  const ECsvOutcome outcome = PutCards(CVelumChecked::Deref(stack), aBackground, &aHost);
  if (outcome == ECsvOutcome::Done && iSurplus > 0)
    iWatch.Message(EMsgSurplusItems, QString::number(iSurplus));
  return outcome;
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
                                      CVelumImportWatch& aWatch, TNewStack& aNew) {
  return Guarded([&] { return CImport(aFilename, aOptions, aWatch).IntoNew(aNew); });
}

ECsvOutcome CVelumImports::ImportCsv1(const QString& aFilename, const TCsvOptions& aOptions,
                                      CVelumImportWatch& aWatch, const Ref<CVelumControlSet>& aBackground,
                                      CVelumStackHost& aHost) {
  return Guarded([&] { return CImport(aFilename, aOptions, aWatch).IntoBackground(aBackground, aHost); });
}

Ref<CVelumCard> CVelumImports::FindNextCard(const CVelumStack& aStack, qint32 aBackgroundId) {
  Ref<CVelumCard> last;
  Ref<CVelumCard> next;
  if (!aStack.GetLastCardInBackground(aBackgroundId, last) || !aStack.OrderNext(*last, next)) return nullptr;
  return next;
}
