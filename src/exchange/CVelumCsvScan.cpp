#include "exchange/CVelumCsvScan.h"

#include "exchange/CVelumCsvText.h"

#include <algorithm>

namespace {

constexpr int ERecordsAStep = 8192;
constexpr size_t EBytesAStep = 1 << 20;
constexpr qint64 EException = 25; // one in so many names may be there twice

} // namespace

void CVelumCsvNameTest::Take(std::string_view aText) {
  iEmpty |= aText.empty();
  if (!iEmpty) iHashes.push_back(std::hash<std::string_view>()(aText));
}

bool CVelumCsvNameTest::Passed(qint64 aRecords) {
  if (iEmpty || static_cast<qint64>(iHashes.size()) != aRecords || aRecords == 0) return false;
  std::sort(iHashes.begin(), iHashes.end());
  qint64 doubled = 0;
  for (size_t i = 1; i < iHashes.size(); ++i)
    if (iHashes[i] == iHashes[i - 1]) ++doubled;
  return doubled <= aRecords / EException;
}

CVelumCsvScan::CVelumCsvScan(std::string_view aText, const TCsvLayout& aLayout, bool aHasZero, qint64 aMost)
    : iText(aText), iMost(aMost), iTable(aText, aLayout, aHasZero, CVelumCsvTable::EUnknown, &iFaults) {
  for (const std::string& name : iTable.Header()) iHeader.append(CVelumCsvText::Wide(name));
  if (iTable.NumColumns() > 0) iColumns.resize(static_cast<size_t>(iTable.NumColumns()));
  iHeaderLine = iTable.Line();
}

int CVelumCsvScan::Progress(int aAll) const {
  if (iDone) return aAll;
  return static_cast<int>(static_cast<double>(iTable.Pos()) / static_cast<double>(iText.size() + 1) * aAll);
}

bool CVelumCsvScan::Step() {
  const size_t start = iTable.Pos();
  for (int i = 0; i < ERecordsAStep && !iDone && iTable.Pos() - start < EBytesAStep; ++i) {
    if (iRecords == iMost || !iTable.Next())
      End();
    else
      TakeRecord();
  }
  return !iDone;
}

void CVelumCsvScan::TakeRecord() {
  const auto cells = static_cast<size_t>(iTable.NumCells());
  const bool fixed = iTable.NumColumns() != CVelumCsvTable::EUnknown;
  if (!fixed && cells > iColumns.size()) {
    iColumns.resize(cells);
    // All records before this one are too short.
    if (iRecords > 0) iFirstShort = iFirstLine;
  }
  if (iRecords == 0) iFirstLine = iTable.Line();
  if (iRecords == 0 && iHeader.isEmpty()) iHeaderLine = iFirstLine;
  if (cells < iColumns.size() && iFirstShort == 0) iFirstShort = iTable.Line();
  if (fixed)
    iShort += cells < iColumns.size() ? 1 : 0;
  else {
    iWidths.resize(std::max(iWidths.size(), cells + 1));
    ++iWidths[cells];
  }
  ++iRecords;
  for (size_t i = 0; i < cells; ++i) iColumns[i].Take(iTable.Cell(static_cast<int>(i)));
  iNameTest.Take(iTable.Cell(0));
}

void CVelumCsvScan::End() {
  iDone = true;
  iBlank = iTable.NumBlank();
  if (!iWidths.empty()) {
    iShort = iRecords - iWidths.back();
    // With one column a line with nothing on it is a record.
    if (iColumns.size() == 1) iRecords += std::exchange(iBlank, 0);
  }
  iFirstNames = iNameTest.Passed(iRecords);
}
