// The first rows of a CSV file as they would come in.
#pragma once

#include "exchange/CVelumImports.h"

struct TCsvPreview {
  static constexpr qint32 EShownRows = 100;
  // The types are those of so many lines; more would take too long to wait for.
  static constexpr qint32 ETypeRows = 20000;

  QStringList iTitles;      // of the fields
  QList<qint32> iTypes;     // of the fields
  QList<QStringList> iRows; // at most EShownRows, as the fields show them; shorter where values are missing
  QList<qint64> iChanged;   // cells of the same lines that show another text than the file
  QSet<std::pair<int, int>> iChangedCells; // row and column of those that are among iRows
  bool iWhole = true;                      // the file has no more lines than the types are made of
};

namespace CVelumImports {

// Imports the beginning of a file for itself; messages are not shown. Failures are those of ImportCsv1.
[[nodiscard]] TCsvPreview PreviewCsv(const QString& aFilename, const TCsvOptions& aOptions);

} // namespace CVelumImports
