#include "exchange/CVelumCsvCards.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "exchange/CVelumCsvLoss.h"
#include "exchange/CVelumStep.h"

#include <cstring>

CVelumCsvCards::CVelumCsvCards(const CVelumCsvRows& aRows, const TCsvColumns* aColumns,
                               const Ref<CVelumControlSet>& aBackground, bool aFirstNames)
    : iRows(aRows), iColumns(aColumns), iBackground(aBackground), iFirstNames(aFirstNames) {
  const CVelumControlSet& background = CVelumChecked::Deref(aBackground);
  for (qint32 i = 0; i < background.NumControls(); ++i)
    if (CVelumControl* control = background.ControlAt(i)) iControls.push_back(control);
  iChangedIn.resize(iControls.size());
  iFilledIn.resize(iControls.size());
}

QString CVelumCsvCards::PooledText(QStringView aText) {
  if (aText.isEmpty()) return u""_s;
  char16_t* chars = nullptr;
  QString text = iTexts.Take(aText.size(), chars);
  std::memcpy(chars, aText.utf16(), static_cast<size_t>(aText.size()) * sizeof(char16_t));
  return text;
}

TVelumValue CVelumCsvCards::GeneralValue(QStringView aText, const CVelumControl& aControl) {
  // Most cells are texts, and stay as they are.
  if (aControl.ConType() == EConText) return TVelumValue::OfStr(PooledText(aText));
  return CVelumValue::ExtTextToVal(aText.toString(), aControl.FieldInfo());
}

TVelumValue CVelumCsvCards::ValueOf(QStringView aItem, const CVelumControl& aControl,
                                    const TCsvColumn* aColumn) {
  const QStringView text = CVelumLib::TrimBlanks(aItem);
  qint32 whole = 0;
  double real = 0.0;
  bool boolean = false;
  // A field that was there before takes a text as it does from its user, whatever the column is.
  const bool known = aColumn && !text.isEmpty() && aColumn->iType == aControl.ConType();
  const qint32 type = known ? aColumn->iType : EConText;
  if (type == EConInteger && CVelumImports::CsvToInt(text, whole)) return TVelumValue::OfInt(whole);
  if (type == EConReal && CVelumImports::CsvToReal(text, aColumn->iDecimal, real))
    return TVelumValue::OfReal(real);
  if (type == EConBoolean && CVelumImports::CsvToBoolean(text, boolean))
    return TVelumValue::OfBoolean(boolean);
  return GeneralValue(text, aControl);
}

void CVelumCsvCards::CheckType(const CVelumCard& aCard, const CVelumControl& aControl,
                               const TVelumValue& aVal) const {
  const bool same = aVal.Type() == CVelumValue::ConToValType(aControl.ConType());
  if (!same) CVelumError::AssertObj(false, &aCard, u"SetControlVal"_s, u"type"_s);
}

// The card takes the name that its field shows; the value stays, as when a value of a card
// in a stack is set.
void CVelumCsvCards::TakeName(CVelumCard& aCard, const CVelumControl& aControl, const TVelumValue& aVal) {
  aCard.SetName(CVelumValue::ValToExtText(aVal, aControl.FieldInfo()));
}

void CVelumCsvCards::CheckText(qint32 aRow, int aColumn, QStringView aItem, const TVelumValue& aVal) {
  if (!aItem.isEmpty()) ++iFilledIn[static_cast<size_t>(aColumn)];
  if (CVelumCsvLoss::GivesBack(aItem, aVal)) return;
  ++iChanged;
  ++iChangedIn[static_cast<size_t>(aColumn)];
  if (iChangedCells.size() >= TCsvReport::EMaxCells) return;
  iChangedCells.push_back(
      {iRows.Line(aRow), aColumn, aItem.toString(),
       CVelumValue::ValToExtText(aVal, iControls[static_cast<size_t>(aColumn)]->FieldInfo()),
       iCards.Count()});
}

Ref<CVelumCard> CVelumCsvCards::CardOf(qint32 aRow, qint32 aNum) {
  auto card = MakeRef<CVelumCard>(QString::number(aNum), iBackground);
  const int items = iRows.NumItems(aRow);
  const int fields = std::min(items, static_cast<int>(iControls.size()));
  TVelumElem elem;
  card->NewValues().InitElem(elem);
  card->NewValues().BeginBulk(fields);
  for (int i = 0; i < fields; ++i) {
    const auto index = static_cast<size_t>(i);
    const CVelumControl& control = *iControls[index];
    elem.iIntKey = control.Id();
    elem.iVal = ValueOf(iRows.Item(aRow, i), control, iColumns ? &(*iColumns)[index] : nullptr);
    CheckType(*card, control, elem.iVal);
    if (control.Flag(EConCardName) || (iFirstNames && i == 0)) TakeName(*card, control, elem.iVal);
    CheckText(aRow, i, iRows.Item(aRow, i), elem.iVal);
    card->NewValues().AppendBulk(elem);
  }
  card->NewValues().EndBulk();
  if (items > fields) ++iSurplus;
  return card;
}

bool CVelumCsvCards::Make(qint32 aFirstRow, int aFrom, int aTo, CVelumImportWatch& aWatch) {
  iCards.Reserve(std::max(iRows.NumRows() - aFirstRow, 0));
  for (qint32 row = aFirstRow; row < iRows.NumRows(); ++row) {
    iCards.Append(CardOf(row, row - aFirstRow + 1));
    if (row % ERowsAStep != 0) continue;
    const qint64 done = aFrom + qint64{row} * (aTo - aFrom) / iRows.NumRows();
    if (!aWatch.Progress(static_cast<int>(done))) return false;
  }
  return true;
}
