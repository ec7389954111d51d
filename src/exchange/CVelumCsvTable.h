// The records of a CSV file as they come in.
#pragma once

#include "exchange/CVelumCsvFaults.h"
#include "exchange/CVelumCsvReader.h"

// What the user says about a file.
struct TCsvLayout {
  QChar iDelim = u',';
  bool iHeaderLine = true; // the first record holds the names of the columns
  qint64 iSkipLines = 0;   // lines before the table

  bool operator==(const TCsvLayout&) const = default;
};

// Goes over the records of a file once. A line with nothing on it is no record, unless there is but one
// column. Characters of code 0, and cells that are too long, are left out. What is behind a quote that
// nothing closes is no record.
class CVelumCsvTable {
public:
  static constexpr int EMaxColumns = CVelumCsvReader::EMaxCells;
  static constexpr int EUnknown = -1;

  // aColumns: how many there are; EUnknown as long as nobody has counted them, if there is no header line.
  // aHasZero: whether there are characters of code 0. aFaults, if any, is told of what is wrong.
  CVelumCsvTable(std::string_view aText, const TCsvLayout& aLayout, bool aHasZero, int aColumns = EUnknown,
                 CVelumCsvFaults* aFaults = nullptr);

  // The names of the columns as they stand in the file; none without a header line.
  [[nodiscard]] const std::vector<std::string>& Header() const { return iHeader; }
  [[nodiscard]] int NumColumns() const { return iColumns; }
  // Goes to the next record; false at the end.
  [[nodiscard]] bool Next();
  // Its cells, not more than there are columns.
  [[nodiscard]] int NumCells() const { return iNumCells; }
  // Its text, until the next call.
  [[nodiscard]] std::string_view Cell(int aIndex);
  [[nodiscard]] bool IsQuoted(int aIndex) const;
  [[nodiscard]] qint64 Line() const { return iReader.Line(); }
  [[nodiscard]] qint64 LineOf(int aIndex) const;
  [[nodiscard]] qint64 NumBlank() const { return iBlank; }
  // Cells of the widest record, if nobody knew how many columns there are.
  [[nodiscard]] qint64 Widest() const { return iWidest; }
  [[nodiscard]] size_t Pos() const { return iReader.Pos(); }

private:
  [[nodiscard]] bool NextFull();
  void ReadHeader();
  void CheckRecord();
  void Fault(ECsvFault aKind, int aIndex);
  [[nodiscard]] std::string_view CleanText(int aIndex);
  [[nodiscard]] static bool IsTooLong(const TCsvCell& aCell);

  CVelumCsvReader iReader;
  bool iHasZero;
  bool iHeaderLine;
  int iColumns;
  CVelumCsvFaults* iFaults;
  std::vector<std::string> iHeader;
  qint64 iHeaderWidth = 0;
  int iNumCells = 0;
  qint64 iBlank = 0;
  qint64 iWidest = 0;
  std::string iBuffer;
};
