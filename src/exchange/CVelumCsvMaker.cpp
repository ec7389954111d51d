#include "exchange/CVelumCsvMaker.h"

#include "core/CVelumChecked.h"
#include "core/CVelumFieldTypes.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumCollation.h"
#include "exchange/CVelumCsvText.h"
#include "exchange/CVelumStep.h"

#include <algorithm>
#include <functional>

namespace {

constexpr size_t EMaxCached = 64; // bytes of a text that others may repeat

bool IsText(qint32 aType) {
  return CVelumFieldTypes::Of(aType).iValType == EValStr;
}

// Negative, 0 or positive, as sort keys compare them. Both are of one type.
int CompareValues(const TVelumValue& aA, const TVelumValue& aB) {
  const auto sign = [](auto aOne, auto aOther) { return aOne < aOther ? -1 : aOne > aOther ? 1 : 0; };
  switch (aA.Type()) {
  case EValInt:
    return sign(aA.Int(), aB.Int());
  case EValReal:
    return sign(aA.Real(), aB.Real());
  case EValDate:
    return sign(aA.Date(), aB.Date());
  case EValTime:
    return sign(aA.Time(), aB.Time());
  case EValStr:
    return CVelumCollation::CompareKeys(aA.Str(), aB.Str());
  default:
    return 0;
  }
}

} // namespace

CVelumCsvMaker::CVelumCsvMaker(TInput aInput, const Ref<CVelumControlSet>& aBackground)
    : iInput(aInput), iBackground(aBackground), iColumns(iInput.iPlan->size()) {
  CVelumControlSet& background = CVelumChecked::Deref(iBackground);
  for (size_t i = 0; i < iColumns.size(); ++i) {
    TColumn& column = iColumns[i];
    column.iPlan = &(*iInput.iPlan)[i];
    column.iField = background.FindControl(column.iPlan->iField);
    if (column.iField && IsText(column.iPlan->iForm.iType)) column.iCache.resize(ECached);
    // What names the cards of a background goes on doing so.
    if (column.iField && column.iField->Flag(EConCardName)) iNaming = i;
  }
  Ref<CVelumControl> naming;
  if (!background.GetControlByFlag(EConCardName, naming) && iInput.iNameColumn)
    iNaming = static_cast<size_t>(*iInput.iNameColumn);
}

QString CVelumCsvMaker::NewText(std::string_view aText) {
  const auto isAscii = [](char c) { return (c & 0x80) == 0; };
  char16_t* chars = nullptr;
  if (std::all_of(aText.begin(), aText.end(), isAscii)) {
    QString text = iTexts.Take(static_cast<qsizetype>(aText.size()), chars);
    std::copy(aText.begin(), aText.end(), chars);
    return text;
  }
  const QString wide = CVelumCsvText::Wide(aText);
  QString text = iTexts.Take(wide.size(), chars);
  std::copy(wide.utf16(), wide.utf16() + wide.size(), chars);
  return text;
}

// aText is a piece of the file, or of a buffer; only the first lives long enough to be compared later.
QString CVelumCsvMaker::TextOf(TColumn& aColumn, std::string_view aText) {
  if (aText.empty()) return u""_s;
  const bool inFile = aText.data() >= iInput.iText.data() &&
                      aText.data() + aText.size() <= iInput.iText.data() + iInput.iText.size();
  if (!inFile || aText.size() > EMaxCached) return NewText(aText);
  TCached& cached = aColumn.iCache[std::hash<std::string_view>()(aText) % ECached];
  if (cached.iBytes != aText) cached = {aText, NewText(aText)};
  return cached.iText;
}

// False: the cell gives no value.
bool CVelumCsvMaker::ValueOf(TColumn& aColumn, std::string_view aText, TVelumValue& aValue) {
  if (IsText(aColumn.iPlan->iForm.iType)) {
    aValue = TVelumValue::OfStr(TextOf(aColumn, aText));
    return true;
  }
  return CVelumCsvForms::Read(aText, aColumn.iPlan->iForm, aValue) != ECsvFit::Refused;
}

void CVelumCsvMaker::CheckOrder(TColumn& aColumn, const TVelumValue& aValue) {
  if (aColumn.iLast.Type() != EValUndef) {
    const int order = CompareValues(aColumn.iLast, aValue);
    aColumn.iOrdered = order <= 0;
    aColumn.iRising |= order < 0;
  }
  aColumn.iLast = aValue;
}

bool CVelumCsvMaker::IsAscending(int aColumn) const {
  const TColumn& column = iColumns[static_cast<size_t>(aColumn)];
  return column.iOrdered && column.iRising && column.iPlan->iForm.iType != EConBoolean;
}

// The text of the naming column where there is no field that holds it.
QString CVelumCsvMaker::NameOf(CVelumCsvTable& aTable, qint64 aNumber) {
  if (iNaming && static_cast<int>(*iNaming) < aTable.NumCells())
    if (const std::string_view text = aTable.Cell(static_cast<int>(*iNaming)); !text.empty())
      return CVelumCsvText::Wide(text);
  return QString::number(aNumber);
}

Ref<CVelumCard> CVelumCsvMaker::CardOf(CVelumCsvTable& aTable, qint64 aNumber) {
  const auto cells = static_cast<size_t>(aTable.NumCells());
  QString name;
  size_t used = 0;
  for (size_t i = 0; i < iColumns.size(); ++i) {
    TColumn& column = iColumns[i];
    const int index = static_cast<int>(i);
    const std::string_view text = i < cells ? aTable.Cell(index) : std::string_view();
    const bool valued = !text.empty() || (column.iPlan->iQuotedEmpty && i < cells && aTable.IsQuoted(index));
    if (used == iElems.size()) iElems.emplace_back();
    TVelumElem& elem = iElems[used];
    if (!valued || !column.iField || !ValueOf(column, text, elem.iVal)) {
      column.iOrdered = false;
      continue;
    }
    elem.iIntKey = column.iField->Id();
    if (column.iOrdered) CheckOrder(column, elem.iVal);
    if (i == iNaming) name = CVelumValue::ValToExtText(elem.iVal, column.iField->FieldInfo());
    ++used;
  }
  const bool fieldless = iNaming && !iColumns[*iNaming].iField;
  if (name.isEmpty()) name = fieldless ? NameOf(aTable, aNumber) : QString::number(aNumber);
  auto card = MakeRef<CVelumCard>(name, iBackground);
  card->NewValues().BeginBulk(static_cast<qint32>(used));
  for (size_t i = 0; i < used; ++i) card->NewValues().AppendBulk(iElems[i]);
  card->NewValues().EndBulk();
  return card;
}

bool CVelumCsvMaker::Make(int aFrom, int aTo, CVelumImportWatch& aWatch, CVelumNewCards& aCards) {
  CVelumCsvTable table(iInput.iText, iInput.iLayout, iInput.iHasZero, static_cast<int>(iColumns.size()));
  aCards.Reserve(iInput.iRecords);
  const double all = static_cast<double>(iInput.iText.size()) + 1;
  for (qint64 record = 0; table.Next(); ++record) {
    aCards.Append(CardOf(table, record + iInput.iFirstNumber));
    if (record % ERowsAStep != 0) continue;
    const double done = static_cast<double>(table.Pos()) / all * (aTo - aFrom);
    if (!aWatch.Progress(aFrom + static_cast<int>(done))) return false;
  }
  return true;
}
