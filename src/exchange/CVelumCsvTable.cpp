#include "exchange/CVelumCsvTable.h"

#include "core/CVelumLimits.h"
#include "exchange/CVelumImportLimits.h"

#include <algorithm>

namespace {

// So many bytes are never looked at for what remains without the characters of code 0.
constexpr size_t EBeyondMeasure = 1 << 20;

} // namespace

CVelumCsvTable::CVelumCsvTable(std::string_view aText, const TCsvLayout& aLayout, bool aHasZero, int aColumns,
                               CVelumCsvFaults* aFaults)
    : iReader(aText, aLayout.iDelim, aLayout.iSkipLines), iHasZero(aHasZero),
      iHeaderLine(aLayout.iHeaderLine), iColumns(aColumns), iFaults(aFaults) {
  if (aLayout.iHeaderLine) ReadHeader();
}

// The next record that is closed, and no blank line.
bool CVelumCsvTable::NextFull() {
  while (iReader.Next()) {
    if (iReader.IsUnclosed()) {
      Fault(ECsvFault::Unclosed, static_cast<int>(iReader.Cells().size()) - 1);
      return false;
    }
    if (!iReader.IsBlank() || iColumns == 1) return true;
    ++iBlank;
  }
  return false;
}

void CVelumCsvTable::ReadHeader() {
  const int known = std::exchange(iColumns, EUnknown);
  if (!NextFull()) return;
  iColumns = known;
  iHeaderWidth = iReader.NumCells();
  if (iColumns == EUnknown) iColumns = static_cast<int>(iReader.Cells().size());
  iNumCells = iColumns;
  if (iHeaderWidth > EMaxColumns && iFaults)
    iFaults->Note(ECsvFault::ManyColumns, iReader.Line(), EMaxColumns + 1, {}, iHeaderWidth - EMaxColumns);
  CheckRecord();
  for (int i = 0; i < static_cast<int>(iReader.Cells().size()); ++i) iHeader.emplace_back(Cell(i));
}

bool CVelumCsvTable::Next() {
  if (iHeaderLine && iColumns == EUnknown) return false;
  if (!NextFull()) return false;
  const auto kept = static_cast<int>(iReader.Cells().size());
  iNumCells = iColumns == EUnknown ? kept : std::min(kept, iColumns);
  iWidest = std::max(iWidest, iReader.NumCells());
  if (!iFaults) return true;
  if (iColumns != EUnknown && iReader.NumCells() > std::max<qint64>(iColumns, iHeaderWidth))
    iFaults->Note(ECsvFault::Surplus, iReader.Line(), iColumns + 1, {}, iReader.NumCells() - iColumns);
  if (iColumns == EUnknown && iReader.NumCells() > EMaxColumns)
    iFaults->Note(ECsvFault::ManyColumns, iReader.Line(), EMaxColumns + 1, {},
                  iReader.NumCells() - EMaxColumns);
  CheckRecord();
  return true;
}

void CVelumCsvTable::Fault(ECsvFault aKind, int aIndex) {
  if (!iFaults) return;
  const TCsvCell& cell = iReader.Cells()[static_cast<size_t>(aIndex)];
  iFaults->Note(aKind, iReader.LineOf(cell), aIndex + 1, cell.iRaw);
}

void CVelumCsvTable::CheckRecord() {
  if (!iFaults) return;
  for (int i = 0; i < iNumCells; ++i) {
    const TCsvCell& cell = iReader.Cells()[static_cast<size_t>(i)];
    if (cell.iStrayQuote) Fault(ECsvFault::StrayQuote, i);
    if (iHasZero && cell.iRaw.find('\0') != std::string_view::npos) Fault(ECsvFault::ZeroChar, i);
    if (IsTooLong(cell)) Fault(ECsvFault::TooLong, i);
  }
}

// Counts without making the text, which may be as long as the file.
bool CVelumCsvTable::IsTooLong(const TCsvCell& aCell) {
  constexpr size_t most = EMaxStoredText;
  const std::string_view raw = aCell.iRaw;
  if (raw.size() <= most) return false;
  if (raw.size() > EBeyondMeasure) return true;
  // In UTF-16, where what takes four bytes takes two places, and all else one.
  size_t units = 0;
  for (size_t i = 0; i < raw.size() && units <= most; ++i) {
    const auto byte = static_cast<unsigned char>(raw[i]);
    if (byte != 0 && (byte & 0xC0) != 0x80) units += byte >= 0xF0 ? 2 : 1;
    if (aCell.iDoubled && byte == '"') ++i;
  }
  return units > most;
}

// The text of a cell without characters of code 0.
std::string_view CVelumCsvTable::CleanText(int aIndex) {
  const TCsvCell& cell = iReader.Cells()[static_cast<size_t>(aIndex)];
  const std::string_view text = cell.Text(iBuffer);
  if (!iHasZero || text.find('\0') == std::string_view::npos) return text;
  std::string clean;
  std::copy_if(text.begin(), text.end(), std::back_inserter(clean), [](char c) { return c != '\0'; });
  iBuffer = std::move(clean);
  return iBuffer;
}

std::string_view CVelumCsvTable::Cell(int aIndex) {
  const TCsvCell& cell = iReader.Cells()[static_cast<size_t>(aIndex)];
  const bool simple = !cell.iDoubled && !iHasZero && cell.iRaw.size() <= EMaxStoredText;
  if (simple) return cell.iRaw;
  return IsTooLong(cell) ? std::string_view() : CleanText(aIndex);
}

bool CVelumCsvTable::IsQuoted(int aIndex) const {
  return iReader.Cells()[static_cast<size_t>(aIndex)].iQuoted;
}

qint64 CVelumCsvTable::LineOf(int aIndex) const {
  return iReader.LineOf(iReader.Cells()[static_cast<size_t>(aIndex)]);
}
