// What keeps a CSV file from coming in whole.
#pragma once

#include <QString>
#include <vector>

enum class ECsvFault : quint8 {
  BadBytes,    // the encoding does not have them
  Unclosed,    // a quote that is never closed
  StrayQuote,  // a quote inside of a cell
  ZeroChar,    // characters of code 0
  TooLong,     // a cell that no stack can hold
  ManyColumns, // more columns than are read
  Surplus,     // more cells than columns
  NoField,     // a column without a field in the background
  NotOfType,   // a cell that the type of its field does not take
};

struct TCsvFault {
  ECsvFault iKind{};
  qint64 iCount = 0;
  // Where it is for the first time: line and column, from 1 (a column of 0: the whole line), and what
  // stands there, cut off when it is long.
  qint64 iLine = 0;
  qint64 iColumn = 0;
  QString iText;
};

// Kinds of faults, each with its number and its first place, in the order in which they were met.
class CVelumCsvFaults {
public:
  void Note(ECsvFault aKind, qint64 aLine, qint64 aColumn, std::string_view aText = {}, qint64 aCount = 1);
  void Add(const CVelumCsvFaults& aOther);
  [[nodiscard]] bool IsEmpty() const { return iFaults.empty(); }
  [[nodiscard]] const std::vector<TCsvFault>& All() const { return iFaults; }
  // 0 when there is none.
  [[nodiscard]] qint64 Count(ECsvFault aKind) const;

private:
  std::vector<TCsvFault> iFaults;
};

namespace CVelumCsvFaultTexts {

// Place and kind: "line 12, column 3: ...".
[[nodiscard]] QString Place(const TCsvFault& aFault);
[[nodiscard]] QString What(const TCsvFault& aFault);
// What an import all the same does about it, before (would) and after.
[[nodiscard]] QString Consequence(const TCsvFault& aFault);

} // namespace CVelumCsvFaultTexts
