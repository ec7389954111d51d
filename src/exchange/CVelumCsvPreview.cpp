#include "exchange/CVelumCsvPreview.h"

#include "core/CVelumValue.h"

namespace {

class CSilentWatch final : public CVelumImportWatch {
public:
  void Message(qint32, const QString&) override {}
};

QStringList ShownRow(CVelumCard& aCard, const CVelumControlSet& aSet) {
  QStringList row;
  for (qint32 i = 0; i < aSet.NumControls(); ++i) {
    const CVelumControl& field = *aSet.ControlAt(i);
    if (!aCard.ControlValDef(field.Id())) break;
    row.append(CVelumValue::ValToExtText(aCard.GetControlVal(field.Id(), false), field.FieldInfo()));
  }
  return row;
}

} // namespace

TCsvPreview CVelumImports::PreviewCsv(const QString& aFilename, const TCsvOptions& aOptions) {
  TCsvOptions options = aOptions;
  options.iGuessKey = false;
  options.iMaxRows = TCsvPreview::ETypeRows;
  CSilentWatch watch;
  TNewStack made;
  TCsvPreview preview;
  TCsvReport report;
  if (ImportCsv1(aFilename, options, watch, made, &report) != ECsvOutcome::Done) return preview;
  Ref<CVelumControlSet> set;
  qint32 index = 0;
  if (!made.iStack->GetFirstBackground(set, index)) return preview;
  for (qint32 i = 0; i < set->NumControls(); ++i) {
    preview.iTitles.append(set->ControlAt(i)->Name());
    preview.iTypes.append(set->ControlAt(i)->ConType());
  }
  for (const TCsvReportColumn& column : report.iColumns) preview.iChanged.append(column.iChanged);
  for (const TCsvReportCell& cell : report.iCells)
    if (cell.iRecord < TCsvPreview::EShownRows)
      preview.iChangedCells.insert({static_cast<int>(cell.iRecord), cell.iColumn});
  Ref<CVelumCard> card;
  for (qint32 at = 0; preview.iRows.size() < TCsvPreview::EShownRows && made.iStack->GetNextCard(card, at);)
    preview.iRows.append(ShownRow(*card, *set));
  preview.iWhole = made.iStack->NumCards() + (options.iHeaderLine ? 1 : 0) < TCsvPreview::ETypeRows;
  return preview;
}
