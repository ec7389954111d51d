// Cuts the text of a CSV file into records, after RFC 4180.
#pragma once

#include <QChar>
#include <QtGlobal>
#include <string>
#include <string_view>
#include <vector>

// A piece of the text that the reader was given.
struct TCsvCell {
  std::string_view iRaw;    // without the quotes around it; doubled quotes inside stay double
  bool iQuoted = false;     // it stood in quotes
  bool iDoubled = false;    // it holds doubled quotes
  bool iStrayQuote = false; // a quote stands where none may; iRaw is then all that lies between delimiters

  [[nodiscard]] bool IsEmpty() const { return iRaw.empty(); }
  // The cell's text; aBuffer holds it where it is not a piece of the file as it stands.
  [[nodiscard]] std::string_view Text(std::string& aBuffer) const;
};

// Records end with CR, LF or CR LF. A cell in quotes may hold delimiters, line ends and doubled quotes, each
// of which is one; nothing is trimmed. The text, in UTF-8, must outlive the reader and its cells.
class CVelumCsvReader {
public:
  // Cells of a record that are kept; further ones are only counted.
  static constexpr int EMaxCells = 1000;

  // aDelim is neither a quote nor part of a line end. The first aSkip lines are passed over.
  CVelumCsvReader(std::string_view aText, QChar aDelim, qint64 aSkip = 0);

  // Goes to the next record; false at the end.
  [[nodiscard]] bool Next();
  [[nodiscard]] const std::vector<TCsvCell>& Cells() const { return iCells; }
  // Cells of the record, those that are not kept included.
  [[nodiscard]] qint64 NumCells() const { return iNumCells; }
  // Whether the record is a line with nothing on it.
  [[nodiscard]] bool IsBlank() const { return iNumCells == 1 && iCells[0].IsEmpty() && !iCells[0].iQuoted; }
  // Whether the last cell of the record begins with a quote that nothing closes: it goes to the end of the
  // text then.
  [[nodiscard]] bool IsUnclosed() const { return iUnclosed; }
  // The line, from 1, in which the record begins, and a cell of it.
  [[nodiscard]] qint64 Line() const { return iLine; }
  [[nodiscard]] qint64 LineOf(const TCsvCell& aCell) const;
  // Where the next record begins, for the progress.
  [[nodiscard]] size_t Pos() const { return static_cast<size_t>(iPos - iText.data()); }

private:
  enum EKind : quint8 { EPlain, EStop, EQuote };

  void ReadCell(TCsvCell& aCell);
  void ReadPlain(TCsvCell& aCell);
  [[nodiscard]] bool ReadQuoted(TCsvCell& aCell);
  [[nodiscard]] bool AtDelim(const char* aPos) const;
  [[nodiscard]] bool AtCellEnd(const char* aPos) const;
  void PassLineEnd();

  std::string_view iText;
  const char* iPos;
  const char* iEnd;
  std::string iDelim;
  EKind iKinds[256] = {};
  qint64 iLine = 1;
  qint64 iNextLine = 1;
  qint64 iNumCells = 0;
  const char* iRecord = nullptr;
  bool iUnclosed = false;
  std::vector<TCsvCell> iCells;
};
