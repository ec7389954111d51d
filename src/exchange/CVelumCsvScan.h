// The first way through the records of a CSV file: what they are, and what is wrong with them.
#pragma once

#include "exchange/CVelumCsvColumn.h"
#include "exchange/CVelumCsvTable.h"

#include <QStringList>
#include <memory>

// Whether the cells of a column can be names of cards: none is empty, and at most one in 25 is there twice.
class CVelumCsvNameTest {
public:
  void Take(std::string_view aText);
  [[nodiscard]] bool Passed(qint64 aRecords);

private:
  std::vector<quint64> iHashes;
  bool iEmpty = false;
};

// Works in steps. The text must outlive it.
class CVelumCsvScan {
public:
  static constexpr qint64 EAll = -1;

  // aMost: so many records, no more.
  CVelumCsvScan(std::string_view aText, const TCsvLayout& aLayout, bool aHasZero, qint64 aMost = EAll);

  // Does a part of the work; false when all is done.
  [[nodiscard]] bool Step();
  // How much is done, of aAll.
  [[nodiscard]] int Progress(int aAll) const;

  // The rest counts when all is done.
  [[nodiscard]] int NumColumns() const { return static_cast<int>(iColumns.size()); }
  [[nodiscard]] const CVelumCsvColumn& Column(int aIndex) const {
    return iColumns[static_cast<size_t>(aIndex)];
  }
  // Names as they stand in the file; none without a header line.
  [[nodiscard]] const QStringList& Header() const { return iHeader; }
  [[nodiscard]] qint64 NumRecords() const { return iRecords; }
  // Cells of a column without a text, those that are missing included.
  [[nodiscard]] qint64 NumEmpty(int aColumn) const { return iRecords - Column(aColumn).NumFilled(); }
  // Records with fewer cells than there are columns, and the line of the first.
  [[nodiscard]] qint64 NumShort() const { return iShort; }
  [[nodiscard]] qint64 FirstShort() const { return iFirstShort; }
  // The line of the first record, that of the header included.
  [[nodiscard]] qint64 FirstLine() const { return iHeaderLine; }
  // Lines with nothing on them that count as no records.
  [[nodiscard]] qint64 NumBlank() const { return iBlank; }
  [[nodiscard]] const CVelumCsvFaults& Faults() const { return iFaults; }
  // Whether the first column can name the cards.
  [[nodiscard]] bool FirstNames() const { return iFirstNames; }

private:
  void TakeRecord();
  void End();

  std::string_view iText;
  qint64 iMost;
  CVelumCsvFaults iFaults;
  CVelumCsvTable iTable;
  bool iDone = false;
  QStringList iHeader;
  std::vector<CVelumCsvColumn> iColumns;
  std::vector<qint64> iWidths; // without a header line: records by their number of cells, up to so many
  CVelumCsvNameTest iNameTest;
  bool iFirstNames = false;
  qint64 iRecords = 0;
  qint64 iShort = 0;
  qint64 iFirstShort = 0;
  qint64 iFirstLine = 0;
  qint64 iHeaderLine = 0;
  qint64 iBlank = 0;
};
