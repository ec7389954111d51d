// The list that shows the first records of a CSV file as they would come in.
#pragma once

#include "exchange/CVelumCsvForm.h"

#include <QStringList>
#include <QTableWidget>
#include <functional>

namespace CVelumCsvPreviewBox {

// What becomes of a cell; nothing is marked for one that stays the same.
using TFitOf = std::function<ECsvFit(int aRow, int aColumn)>;

// Shows aRows under aTitles; cells that would change, or be left out, are marked and say so in their tip. The
// chosen column stays.
void Fill(QTableWidget& aBox, const QStringList& aTitles, const QList<QStringList>& aRows,
          const TFitOf& aFitOf = {});
// The name of a field and its type, and how many cells would change, in the title of its column.
[[nodiscard]] QString Title(const QString& aName, qint32 aType, qint64 aChanged);
// A line for each number but 0.
[[nodiscard]] QString Counts(qint64 aChanged, qint64 aLeftOut);
// The names of the types of columns, as windows call them; the place is the number of the type.
[[nodiscard]] QStringList TypeNames();

} // namespace CVelumCsvPreviewBox
