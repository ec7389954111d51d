// The rows of a CSV file, held as slices of its text.
#pragma once

#include "core/file/CVelumFile.h"
#include "exchange/CVelumImportWatch.h"

#include <memory>
#include <optional>
#include <vector>

// A row is a line of the file, or several where a quoted cell holds line ends; these become CR LF. Cells are
// cut as CVelumScanner::GetCsvSym does: blanks in front are skipped, a doubled quote stays doubled, text
// behind a closing quote is a cell of its own, a delimiter at the end makes no further cell, and a character
// of code 1 ends its line.
class CVelumCsvRows {
public:
  static constexpr int EMaxItems = 20;

  // aDelim is neither a blank nor a quote.
  explicit CVelumCsvRows(QChar aDelim) : iDelim(aDelim) {}

  // Reads from an open text file up to its end, or up to aMaxRows rows. aBytes is the size of the file, for
  // the progress, which runs up to aProgress. An item over EMaxItems is told to aWatch, once a row, and
  // dropped with the rest of its line. Host errors name the file and the line: 6 for a line or an item that
  // is too long, 7 for a line beyond all measure. False if cancelled.
  [[nodiscard]] bool Read(CVelumFile& aFile, qint64 aBytes, int aProgress, CVelumImportWatch& aWatch,
                          qint32 aMaxRows = EAllRows);
  static constexpr qint32 EAllRows = 0x7fffffff;

  // Whether the file held no line at all.
  [[nodiscard]] bool IsEmpty() const { return iLineNum == 0; }
  [[nodiscard]] qint32 NumRows() const { return static_cast<qint32>(iRows.size()); }
  [[nodiscard]] int NumItems(qint32 aRow) const;
  // aIndex lies below NumItems(aRow); the text lives as long as this object.
  [[nodiscard]] QStringView Item(qint32 aRow, int aIndex) const;
  // The line, from 1, and the item of its row, from 1, of a quoted cell that nothing closes; it and what
  // follows is left out then. A line of 0: there is none.
  [[nodiscard]] qint32 UnclosedLine() const { return iUnclosedLine; }
  [[nodiscard]] int UnclosedItem() const { return iUnclosedItem; }
  // The line, from 1, in which a row begins.
  [[nodiscard]] qint32 Line(qint32 aRow) const { return iLines[static_cast<size_t>(aRow)]; }
  // Gives all memory back.
  void Clear();

private:
  struct TCell {
    quint32 iStart; // in the text of its row
    quint32 iLen;
  };
  struct TRow {
    const char16_t* iText;
    size_t iFirstCell;
  };
  enum class ESym { Item, Eol, Eof };

  [[nodiscard]] bool ReadLine(QString& aLine, qsizetype aFrom);
  [[nodiscard]] bool ReadRow(CVelumImportWatch& aWatch);
  [[nodiscard]] ESym NextItem(TCell& aCell);
  [[nodiscard]] ESym QuotedItem(TCell& aCell);
  [[nodiscard]] bool ContinueRow();
  void SkipBlanks();
  void CheckItems() const;
  void StoreRow();
  [[nodiscard]] const char16_t* StoreText();
  void Reserve(qint64 aBytes);

  QChar iDelim;
  CVelumFile* iFile = nullptr; // while reading
  qint32 iLineNum = 0;
  qint32 iRowLine = 0; // line in which the present row begins
  qint32 iUnclosedLine = 0;
  int iUnclosedItem = 0;
  qint64 iCharsRead = 0;
  // The row that is being cut.
  QString iText;
  qsizetype iPos = 0;
  std::vector<TCell> iItems;

  std::vector<TRow> iRows;
  std::vector<qint32> iLines; // in which the rows begin
  std::vector<TCell> iCells;
  std::vector<std::unique_ptr<char16_t[]>> iBlocks;
  char16_t* iFree = nullptr; // room left in the last block
  qsizetype iFreeLen = 0;
  qsizetype iBlockLen = 0;
};
