// The first records of a CSV file, and what they suggest.
#pragma once

#include "exchange/CVelumCsvScan.h"
#include "exchange/CVelumCsvSource.h"

struct TCsvSample {
  static constexpr qint64 ERecords = 100;

  QStringList iHeader;                   // names as they stand in the file; none without a header line
  std::vector<CVelumCsvColumn> iColumns; // by the records that are shown
  QList<QStringList> iRecords;           // at most ERecords; short ones have fewer cells
};

namespace CVelumCsvSamples {

// The delimiter that cuts the first records most evenly, into most cells: comma, semicolon, tab or bar; a
// comma in doubt.
[[nodiscard]] QChar ProposeDelim(std::string_view aText, qint64 aSkipLines);
[[nodiscard]] TCsvSample Take(std::string_view aText, const TCsvLayout& aLayout, bool aHasZero);
// The beginning of a file, long enough for a sample, or the whole file; raises as CVelumCsvSource does.
[[nodiscard]] std::shared_ptr<CVelumCsvSource> Begin(const QString& aFilename,
                                                     std::optional<ECsvEncoding> aEncoding = {});

} // namespace CVelumCsvSamples
