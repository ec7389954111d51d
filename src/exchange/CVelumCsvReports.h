// What an import of a CSV file has found and done, for the user.
#pragma once

#include "exchange/CVelumCsvFaults.h"
#include "model/fields/CVelumControlSet.h"

#include <QJsonObject>
#include <QStringList>

struct TCsvReportColumn {
  QString iName;
  qint32 iType = 0; // of the field
  qint64 iEmpty = 0;
  qint64 iChanged = 0;   // cells whose text the value does not give back
  bool iOutside = false; // the card window has no place for the field
};

// A cell whose text has changed or that was left out.
struct TCsvReportCell {
  qint64 iLine = 0;
  int iColumn = 0;         // from 0
  QString iText;           // in the file
  QString iShown;          // now; empty when it was left out
  qint64 iRecord = ENoInt; // from 0; known to the classic way
};

struct TCsvReport {
  // As many as a preview of the classic way can hold.
  static constexpr size_t EMaxCells = 2000;

  bool iClassic = false;
  qint64 iRecords = 0;
  QString iLayout; // encoding, delimiter, header line
  QList<TCsvReportColumn> iColumns;
  QStringList iNotes;                 // what was noticed and decided, a line each
  CVelumCsvFaults iFaults;            // what was left out, or would be
  std::vector<TCsvReportCell> iCells; // the first EMaxCells of them
  qint64 iChanged = 0;                // cells that show another text than the file
  QString iBackground;                // into which the cards went; empty for a new stack
  qint64 iReplaced = 0;               // cards of it that went
  QString iSortedBy;                  // a field by which the cards are in order, but not kept so
};

namespace CVelumCsvReports {

// A few lines of text. Many columns are summed up.
[[nodiscard]] QStringList Lines(const TCsvReport& aReport);
[[nodiscard]] QJsonObject ToJson(const TCsvReport& aReport);
// That the cards of a background are not in the order of the file.
[[nodiscard]] QString SortedLine(const CVelumControlSet& aBackground);
// What stands in the way, a line a fault, with what an import all the same does about it.
[[nodiscard]] QStringList FaultLines(const CVelumCsvFaults& aFaults);
// "Text", "Integer" ... as windows call them.
[[nodiscard]] QString TypeName(qint32 aType);
// "comma", "tab" ...
[[nodiscard]] QString DelimName(QChar aDelim);
// Names, the first ones of many.
[[nodiscard]] QString NameList(const QStringList& aNames);
// "1 card", "2,000 cards".
[[nodiscard]] QString Number(qint64 aCount, const QString& aOne, const QString& aMany);

} // namespace CVelumCsvReports
