#include "exchange/CVelumCsvSample.h"

#include "exchange/CVelumCsvText.h"

#include <QHash>
#include <algorithm>

namespace {

constexpr qint64 EFirstBytes = 1 << 20;
constexpr qint64 EMostBytes = 1 << 24;
constexpr char16_t EDelims[] = {u',', u';', u'\t', u'|'};

// How well a delimiter does.
struct TScore {
  double iEven = 0;  // part of the records that have the same number of cells, above 1
  qint64 iCells = 0; // that number

  [[nodiscard]] bool IsBelow(const TScore& aOther) const {
    return iEven < aOther.iEven || (iEven == aOther.iEven && iCells < aOther.iCells);
  }
};

TScore ScoreOf(std::string_view aText, QChar aDelim, qint64 aSkipLines) {
  CVelumCsvReader reader(aText, aDelim, aSkipLines);
  QHash<qint64, int> widths;
  int records = 0;
  while (records < TCsvSample::ERecords && reader.Next()) {
    if (reader.IsBlank()) continue;
    ++widths[reader.NumCells()];
    ++records;
  }
  TScore best;
  for (auto width = widths.cbegin(); width != widths.cend(); ++width) {
    if (width.key() < 2) continue;
    const TScore score{static_cast<double>(width.value()) / records, width.key()};
    if (best.IsBelow(score)) best = score;
  }
  return best;
}

bool IsEnough(const CVelumCsvSource& aSource) {
  if (!aSource.IsPart()) return true;
  const std::string_view text = aSource.Text();
  return std::count(text.begin(), text.end(), '\n') + std::count(text.begin(), text.end(), '\r') >
         4 * TCsvSample::ERecords;
}

} // namespace

QChar CVelumCsvSamples::ProposeDelim(std::string_view aText, qint64 aSkipLines) {
  aText = aText.substr(0, EMostBytes);
  QChar best = EDelims[0];
  TScore score;
  for (const char16_t delim : EDelims) {
    const TScore other = ScoreOf(aText, delim, aSkipLines);
    if (!score.IsBelow(other)) continue;
    best = delim;
    score = other;
  }
  return best;
}

TCsvSample CVelumCsvSamples::Take(std::string_view aText, const TCsvLayout& aLayout, bool aHasZero) {
  TCsvSample sample;
  CVelumCsvTable table(aText, aLayout, aHasZero);
  for (const std::string& name : table.Header()) sample.iHeader.append(CVelumCsvText::Wide(name));
  if (table.NumColumns() > 0) sample.iColumns.resize(static_cast<size_t>(table.NumColumns()));
  while (sample.iRecords.size() < TCsvSample::ERecords && table.Next()) {
    QStringList record;
    const auto cells = static_cast<size_t>(table.NumCells());
    sample.iColumns.resize(std::max(sample.iColumns.size(), cells));
    for (size_t i = 0; i < cells; ++i) {
      const std::string_view text = table.Cell(static_cast<int>(i));
      sample.iColumns[i].Take(text);
      record.append(CVelumCsvText::Wide(text));
    }
    sample.iRecords.append(record);
  }
  return sample;
}

std::shared_ptr<CVelumCsvSource> CVelumCsvSamples::Begin(const QString& aFilename,
                                                         std::optional<ECsvEncoding> aEncoding) {
  std::shared_ptr<CVelumCsvSource> source;
  for (qint64 most = EFirstBytes; most <= EMostBytes; most *= 4) {
    source = std::make_shared<CVelumCsvSource>(aFilename, aEncoding, most);
    while (source->Step()) {
    }
    if (IsEnough(*source)) break;
  }
  return source;
}
