#include "exchange/CVelumCsvRows.h"

#include "core/CVelumLimits.h"
#include "exchange/CVelumImportLimits.h"
#include "exchange/CVelumStep.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr QChar EEolMarker(1);
constexpr QChar EQuote(u'"');
constexpr qsizetype EFirstBlock = 1 << 14; // in characters
constexpr qsizetype EMaxBlock = 1 << 20;
// Rows after which the size of the file says how many there will be.
constexpr qint32 ESampleRows = 1000;

QString Place(const CVelumFile& aFile, qint32 aLineNum) {
  return u"%1, line %2"_s.arg(aFile.Filename()).arg(aLineNum);
}

// Where the first item stands that a row has no room for, and how it begins.
QString SurplusPlace(const QString& aText, qsizetype aStart, qsizetype aLen, qint32 aLineNum) {
  constexpr qsizetype shown = 40; // characters
  const QString more = aLen > shown ? u"…"_s : QString();
  return u"Line %1, item %2: '%3%4'"_s.arg(QString::number(aLineNum),
                                           QString::number(CVelumCsvRows::EMaxItems + 1),
                                           aText.mid(aStart, qMin(aLen, shown)), more);
}

} // namespace

int CVelumCsvRows::NumItems(qint32 aRow) const {
  const auto row = static_cast<size_t>(aRow);
  const size_t end = row + 1 < iRows.size() ? iRows[row + 1].iFirstCell : iCells.size();
  return static_cast<int>(end - iRows[row].iFirstCell);
}

QStringView CVelumCsvRows::Item(qint32 aRow, int aIndex) const {
  const TRow& row = iRows[static_cast<size_t>(aRow)];
  const TCell& cell = iCells[row.iFirstCell + static_cast<size_t>(aIndex)];
  return {row.iText + cell.iStart, static_cast<qsizetype>(cell.iLen)};
}

void CVelumCsvRows::Clear() {
  *this = CVelumCsvRows(iDelim);
}

// False at the end of the file. The line ends in front of the first end marker in it from aFrom on.
bool CVelumCsvRows::ReadLine(QString& aLine, qsizetype aFrom) {
  if (!iFile->ReadLine(aLine)) return false;
  ++iLineNum;
  iCharsRead += aLine.size() + 1;
  if (aLine.size() > EMaxScanLine)
    CVelumError::RaiseHost(EHostOverflow, u"%1: the line has %2 characters, at most %3 can be read"_s
                                              .arg(Place(*iFile, iLineNum))
                                              .arg(aLine.size())
                                              .arg(EMaxScanLine));
  if (const qsizetype marker = aLine.indexOf(EEolMarker, aFrom); marker >= 0) aLine.truncate(marker);
  return true;
}

void CVelumCsvRows::SkipBlanks() {
  while (iPos < iText.size() && iText.at(iPos) == u' ') ++iPos;
}

CVelumCsvRows::ESym CVelumCsvRows::NextItem(TCell& aCell) {
  SkipBlanks();
  if (iPos == iText.size()) return ESym::Eol;
  if (iText.at(iPos) == EQuote) return QuotedItem(aCell);
  const qsizetype found = iText.indexOf(iDelim, iPos);
  const qsizetype end = found < 0 ? iText.size() : found;
  aCell = {static_cast<quint32>(iPos), static_cast<quint32>(end - iPos)};
  iPos = found < 0 ? end : end + 1;
  return ESym::Item;
}

// The cell goes on in the next line. Its first character belongs to the cell unseen, so that neither a quote
// there closes it nor an end marker ends the line.
bool CVelumCsvRows::ContinueRow() {
  QString line;
  if (!ReadLine(line, 1)) return false;
  iText += u"\r\n"_s;
  iPos = iText.size() + (line.isEmpty() ? 0 : 1);
  iText += line;
  return true;
}

CVelumCsvRows::ESym CVelumCsvRows::QuotedItem(TCell& aCell) {
  const qsizetype start = ++iPos;
  for (;;) {
    const qsizetype quote = iText.indexOf(EQuote, iPos);
    if (quote < 0) {
      if (!ContinueRow()) return ESym::Eof;
    } else if (quote + 1 < iText.size() && iText.at(quote + 1) == EQuote) {
      iPos = quote + 2;
    } else {
      aCell = {static_cast<quint32>(start), static_cast<quint32>(quote - start)};
      iPos = quote + 1;
      break;
    }
  }
  if (iPos < iText.size() && iText.at(iPos) == iDelim) {
    ++iPos;
    SkipBlanks();
  }
  return ESym::Item;
}

// Cuts the line in iText, and those on which it goes on. False when the file ends within a quoted cell: the
// row does not count then.
bool CVelumCsvRows::ReadRow(CVelumImportWatch& aWatch) {
  iRowLine = iLineNum;
  iPos = 0;
  iItems.clear();
  for (;;) {
    const qint32 line = iLineNum;
    TCell cell{};
    const ESym sym = NextItem(cell);
    if (sym == ESym::Eol) return true;
    if (sym == ESym::Eof) {
      iUnclosedLine = line;
      iUnclosedItem = static_cast<int>(iItems.size()) + 1;
      return false;
    }
    if (iItems.size() == EMaxItems) {
      aWatch.Message(EMsgTooManyItems, SurplusPlace(iText, cell.iStart, cell.iLen, line));
      return true;
    }
    iItems.push_back(cell);
  }
}

// What could not be read back from a stack file is refused before it gets into one.
void CVelumCsvRows::CheckItems() const {
  for (size_t i = 0; i < iItems.size(); ++i)
    if (iItems[i].iLen > EMaxStoredText)
      CVelumImportLimits::RaiseTooLong(u"%1, item %2: it "_s.arg(Place(*iFile, iRowLine)).arg(i + 1));
}

const char16_t* CVelumCsvRows::StoreText() {
  const qsizetype len = iText.size();
  if (len > iFreeLen || !iFree) {
    iBlockLen = std::max(std::clamp(2 * iBlockLen, EFirstBlock, EMaxBlock), len);
    iBlocks.push_back(std::make_unique_for_overwrite<char16_t[]>(static_cast<size_t>(iBlockLen)));
    iFree = iBlocks.back().get();
    iFreeLen = iBlockLen;
  }
  char16_t* const text = iFree;
  std::memcpy(text, iText.utf16(), static_cast<size_t>(len) * sizeof(char16_t));
  iFree += len;
  iFreeLen -= len;
  return text;
}

void CVelumCsvRows::StoreRow() {
  CheckItems();
  iRows.push_back({StoreText(), iCells.size()});
  iLines.push_back(iRowLine);
  iCells.insert(iCells.end(), iItems.begin(), iItems.end());
}

// Room for all rows, guessed from the first ones, so that the tables need not move as they grow.
void CVelumCsvRows::Reserve(qint64 aBytes) {
  constexpr double slack = 1.05;
  const double factor =
      slack * static_cast<double>(aBytes) / static_cast<double>(std::max<qint64>(iCharsRead, 1));
  iRows.reserve(static_cast<size_t>(factor * static_cast<double>(iRows.size())));
  iLines.reserve(iRows.capacity());
  iCells.reserve(static_cast<size_t>(factor * static_cast<double>(iCells.size())));
}

bool CVelumCsvRows::Read(CVelumFile& aFile, qint64 aBytes, int aProgress, CVelumImportWatch& aWatch,
                         qint32 aMaxRows) {
  iFile = &aFile;
  while (NumRows() < aMaxRows && ReadLine(iText, 0) && ReadRow(aWatch)) {
    StoreRow();
    if (NumRows() == ESampleRows && aMaxRows == EAllRows) Reserve(aBytes);
    if (NumRows() % ERowsAStep != 0) continue;
    const qint64 done = std::min(iCharsRead, aBytes) * aProgress / std::max<qint64>(aBytes, 1);
    if (!aWatch.Progress(static_cast<int>(done))) return false;
  }
  iText.clear();
  return true;
}
