// What the first lines of a CSV file suggest about it.
#pragma once

#include "core/file/CVelumFile.h"

#include <QStringList>

struct TCsvProposal {
  QStringList iLines;          // at most ten, each tab as the text "<tab>"; what no row can hold is cut off
  QChar iDelim = u',';         // by the first line: the one that occurs most; a comma in doubt
  qint32 iCoding = ECodLatin1; // UTF-8 if a byte order mark opens the file
  bool iLooksUtf8 = false; // without a mark: the file holds other than ASCII, and all of it is valid UTF-8

  // The coding that is to be taken unless the user says otherwise.
  [[nodiscard]] qint32 BestCoding() const { return iLooksUtf8 ? qint32{ECodUtf8} : iCoding; }
};

namespace CVelumImports {

// Failures are those of CVelumFile. Without aWholeFile only its beginning is read, and iLooksUtf8 stays
// false.
[[nodiscard]] TCsvProposal ProposeCsv(const QString& aFilename, bool aWholeFile = true);

} // namespace CVelumImports
