// Makes cards of the rows of a CSV file.
#pragma once

#include "core/text/CVelumTextPool.h"
#include "exchange/CVelumCsvColumns.h"
#include "exchange/CVelumCsvReports.h"
#include "exchange/CVelumNewCards.h"
#include "model/CVelumStack.h"

// Everything that can be wrong with a row comes out here, before a stack is touched.
class CVelumCsvCards {
public:
  // aColumns null: types were not detected, and each field makes of a text what it always does, as does a
  // field of another type than its column. aFirstNames: the first field names the cards, although it may not
  // have the flag yet.
  CVelumCsvCards(const CVelumCsvRows& aRows, const TCsvColumns* aColumns,
                 const Ref<CVelumControlSet>& aBackground, bool aFirstNames);

  // Makes a card of each row from aFirstRow on. The progress runs from aFrom to aTo. A value that does not
  // have the type of its field is an assertion. False if cancelled.
  [[nodiscard]] bool Make(qint32 aFirstRow, int aFrom, int aTo, CVelumImportWatch& aWatch);
  [[nodiscard]] const CVelumNewCards& Cards() const { return iCards; }
  // Cells that show another text than the file, and the first of them.
  [[nodiscard]] qint64 NumChanged() const { return iChanged; }
  [[nodiscard]] qint64 NumChangedIn(qint32 aField) const { return iChangedIn[static_cast<size_t>(aField)]; }
  [[nodiscard]] qint64 NumEmptyIn(qint32 aField) const {
    return iCards.Count() - iFilledIn[static_cast<size_t>(aField)];
  }
  [[nodiscard]] const std::vector<TCsvReportCell>& ChangedCells() const { return iChangedCells; }
  // Rows that had more items than the background has fields.
  [[nodiscard]] qint32 NumSurplus() const { return iSurplus; }

private:
  [[nodiscard]] Ref<CVelumCard> CardOf(qint32 aRow, qint32 aNum);
  [[nodiscard]] TVelumValue ValueOf(QStringView aItem, const CVelumControl& aControl,
                                    const TCsvColumn* aColumn);
  [[nodiscard]] TVelumValue GeneralValue(QStringView aText, const CVelumControl& aControl);
  [[nodiscard]] QString PooledText(QStringView aText);
  void CheckType(const CVelumCard& aCard, const CVelumControl& aControl, const TVelumValue& aVal) const;
  void CheckText(qint32 aRow, int aColumn, QStringView aItem, const TVelumValue& aVal);
  static void TakeName(CVelumCard& aCard, const CVelumControl& aControl, const TVelumValue& aVal);

  const CVelumCsvRows& iRows;
  const TCsvColumns* iColumns;
  Ref<CVelumControlSet> iBackground;
  bool iFirstNames;
  std::vector<CVelumControl*> iControls;
  CVelumNewCards iCards;
  qint32 iSurplus = 0;
  qint64 iChanged = 0;
  std::vector<qint64> iChangedIn; // by field
  std::vector<qint64> iFilledIn;  // cells with a text, by field
  std::vector<TCsvReportCell> iChangedCells;
  CVelumTextPool iTexts;
};
