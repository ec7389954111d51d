#include "exchange/CVelumCsvColumns.h"

#include "core/CVelumConst.h"
#include "core/CVelumLib.h"
#include "exchange/CVelumStep.h"

namespace {

using TStats = std::array<TColStats, CVelumCsvRows::EMaxItems + 1>;

constexpr qint32 EGroup = 3; // digits behind a thousands separator

// A separator with exactly three characters behind it throughout parts thousands, any other decimals.
qint32 NumberType(const TColStats& aStats) {
  const auto isThousands = [](qint32 aCount, qint32 aDigits) { return qint64{aCount} * EGroup == aDigits; };
  if (aStats.iDots > 0) return isThousands(aStats.iDots, aStats.iDotDigits) ? EConInteger : EConReal;
  if (aStats.iCommas > 0 && !isThousands(aStats.iCommas, aStats.iCommaDigits)) return EConReal;
  return EConInteger;
}

qint32 TypeOf(const TColStats& aStats, qint32 aTotal) {
  if (aStats.iEmpty == aTotal) return EConText;
  if (aStats.iTrues + aStats.iFalses + aStats.iEmpty == aTotal) return EConBoolean;
  if (aStats.iDates + aStats.iEmpty == aTotal) return EConDate;
  if (aStats.iTimes + aStats.iEmpty == aTotal) return EConTime;
  if (aStats.iWithLetter < 1 && aStats.iWithDigit > 0) return NumberType(aStats);
  return EConText;
}

// The decimal also counts where the user makes a column real that was not taken for one.
TCsvColumn ColumnOf(const TColStats& aStats, qint32 aTotal) {
  return {TypeOf(aStats, aTotal), aStats.iDots == 0 && aStats.iCommas > 0 ? u',' : u'.'};
}

// Goes over the data rows as long as aWork, which gets the row, goes along. False if cancelled.
template <class TWork>
bool ForDataRows(const CVelumCsvRows& aRows, bool aHeaderLine, int aFrom, int aTo, CVelumImportWatch& aWatch,
                 const TWork& aWork) {
  for (qint32 row = aHeaderLine ? 1 : 0; row < aRows.NumRows(); ++row) {
    aWork(row);
    if (row % ERowsAStep != 0) continue;
    const qint64 done = aFrom + qint64{row} * (aTo - aFrom) / aRows.NumRows();
    if (!aWatch.Progress(static_cast<int>(done))) return false;
  }
  return true;
}

} // namespace

bool CVelumImports::FitsColumn(QStringView aItem, const TCsvColumn& aColumn) {
  const QStringView text = CVelumLib::TrimBlanks(aItem);
  qint32 whole = 0;
  double real = 0.0;
  if (text.isEmpty()) return true;
  if (aColumn.iType == EConInteger) return CsvToInt(text, whole);
  return aColumn.iType != EConReal || CsvToReal(text, aColumn.iDecimal, real);
}

bool CVelumImports::DetectTypes(const CVelumCsvRows& aRows, bool aHeaderLine, int aFrom, int aTo,
                                CVelumImportWatch& aWatch, TCsvColumns& aColumns) {
  aColumns = TCsvColumns();
  if (aRows.NumRows() == 0) return true;
  TStats stats;
  const int half = (aFrom + aTo) / 2;
  const bool scanned = ForDataRows(aRows, aHeaderLine, aFrom, half, aWatch, [&](qint32 aRow) {
    for (int i = 0; i < aRows.NumItems(aRow); ++i)
      ScanCell(aRows.Item(aRow, i), stats[static_cast<size_t>(i)]);
  });
  if (!scanned) return false;
  const qint32 total = aRows.NumRows() - (aHeaderLine ? 1 : 0);
  const int columns = aRows.NumItems(0);
  for (size_t i = 0; i < static_cast<size_t>(columns); ++i) aColumns[i] = ColumnOf(stats[i], total);
  // The counts only guess at numbers: each cell of such a column has to prove to be one.
  return ForDataRows(aRows, aHeaderLine, half, aTo, aWatch, [&](qint32 aRow) {
    for (int i = 0; i < std::min(aRows.NumItems(aRow), columns); ++i)
      if (TCsvColumn& column = aColumns[static_cast<size_t>(i)]; !FitsColumn(aRows.Item(aRow, i), column))
        column.iType = EConText;
  });
}
