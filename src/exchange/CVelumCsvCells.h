// What the cells of a CSV file say: conversions, and counts that tell the type of a column.
#pragma once

#include <QStringView>
#include <QtGlobal>

// Counters of a column.
struct TColStats {
  qint32 iEmpty = 0;       // empty after trimming
  qint32 iWithLetter = 0;  // with a capital letter of ASCII
  qint32 iWithDigit = 0;   // with a digit
  qint32 iDots = 0;        // with a "." as the last separator
  qint32 iDotDigits = 0;   // sum of the characters behind that "."
  qint32 iCommas = 0;      // with a "," as the last separator
  qint32 iCommaDigits = 0; // sum of the characters behind that ","
  qint32 iTrues = 0;       // true words
  qint32 iFalses = 0;      // false words
  qint32 iDates = 0;
  qint32 iTimes = 0;
};

namespace CVelumImports {

// The following readings return whether aText, which has been trimmed, is a value of the kind; aValue is left
// alone if not.
// "TRUE", "T", "YES", "Y" and "FALSE", "F", "NO", "N" in any case.
[[nodiscard]] bool CsvToBoolean(QStringView aText, bool& aValue);
// Digits and signs are kept, all else is dropped, and the rest must be a whole number of 32 bits.
[[nodiscard]] bool CsvToInt(QStringView aText, qint32& aValue);
// The same with aDecimal, which separates the decimals.
[[nodiscard]] bool CsvToReal(QStringView aText, QChar aDecimal, double& aValue);
// Characters outside of "0" to "9".
[[nodiscard]] qint32 CountNonDigits(QStringView aText);
void ClearColStats(TColStats& aStats);
// Counts a cell. Dates and times are those of the user's locale.
void ScanCell(QStringView aText, TColStats& aStats);

} // namespace CVelumImports
