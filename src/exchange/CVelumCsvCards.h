// Makes cards of the rows of a CSV file.
#pragma once

#include "core/CVelumTextPool.h"
#include "exchange/CVelumCsvColumns.h"
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
  // Adds the cards to the stack of the background, in front of aNextCard (nothing: at the end): all, or none
  // when that fails.
  void Add(CVelumStack& aStack, const Ref<CVelumCard>& aNextCard) const;
  // Rows that had more items than the background has fields.
  [[nodiscard]] qint32 NumSurplus() const { return iSurplus; }

private:
  [[nodiscard]] Ref<CVelumCard> CardOf(qint32 aRow, qint32 aNum);
  [[nodiscard]] TVelumValue ValueOf(QStringView aItem, const CVelumControl& aControl,
                                    const TCsvColumn* aColumn);
  [[nodiscard]] TVelumValue GeneralValue(QStringView aText, const CVelumControl& aControl);
  [[nodiscard]] QString PooledText(QStringView aText);
  void CheckType(const CVelumCard& aCard, const CVelumControl& aControl, const TVelumValue& aVal) const;
  void TakeBack(CVelumStack& aStack) const;
  static void TakeName(CVelumCard& aCard, const CVelumControl& aControl, TVelumValue& aVal);

  const CVelumCsvRows& iRows;
  const TCsvColumns* iColumns;
  Ref<CVelumControlSet> iBackground;
  bool iFirstNames;
  std::vector<CVelumControl*> iControls;
  std::vector<Ref<CVelumCard>> iCards;
  qint32 iSurplus = 0;
  CVelumTextPool iTexts;
};
