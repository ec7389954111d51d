// The types of the columns of a CSV file.
#pragma once

#include "exchange/CVelumCsvCells.h"
#include "exchange/CVelumCsvRows.h"

#include <array>

// What is known of a column.
struct TCsvColumn {
  qint32 iType = 0;      // of a field: 0 text, 1 integer, 2 real, 3 date, 4 time, 5 boolean
  QChar iDecimal = u'.'; // "." or ","; counts for reals alone
};

// One more than a row can have items.
using TCsvColumns = std::array<TCsvColumn, CVelumCsvRows::EMaxItems + 1>;

namespace CVelumImports {

// Finds the types of as many columns as the first row has; the others are texts. The progress runs from aFrom
// to aTo. False if cancelled.
[[nodiscard]] bool DetectTypes(const CVelumCsvRows& aRows, bool aHeaderLine, int aFrom, int aTo,
                               CVelumImportWatch& aWatch, TCsvColumns& aColumns);
// Whether an item of the column can stand in a field as the value that the column's type makes of it.
[[nodiscard]] bool FitsColumn(QStringView aItem, const TCsvColumn& aColumn);

} // namespace CVelumImports
