#include "exchange/CVelumCsvReader.h"

#include <QString>
#include <cstring>

namespace {

constexpr char EQuoteChar = '"';

bool IsLineEnd(char aChar) {
  return aChar == '\r' || aChar == '\n';
}

// Line ends from aFrom to aTo, CR LF being one.
qint64 CountLineEnds(const char* aFrom, const char* aTo) {
  qint64 count = 0;
  for (const char* at = aFrom; at < aTo; ++at)
    if (*at == '\n' || (*at == '\r' && (at + 1 == aTo || at[1] != '\n'))) ++count;
  return count;
}

} // namespace

std::string_view TCsvCell::Text(std::string& aBuffer) const {
  if (!iDoubled) return iRaw;
  aBuffer.clear();
  for (size_t i = 0; i < iRaw.size(); ++i) {
    aBuffer += iRaw[i];
    if (iRaw[i] == EQuoteChar) ++i;
  }
  return aBuffer;
}

CVelumCsvReader::CVelumCsvReader(std::string_view aText, QChar aDelim, qint64 aSkip)
    : iText(aText), iPos(aText.data()), iEnd(aText.data() + aText.size()),
      iDelim(QString(aDelim).toUtf8().toStdString()) {
  iKinds[static_cast<unsigned char>(iDelim[0])] = EStop;
  iKinds[static_cast<unsigned char>('\r')] = EStop;
  iKinds[static_cast<unsigned char>('\n')] = EStop;
  iKinds[static_cast<unsigned char>(EQuoteChar)] = EQuote;
  for (; aSkip > 0 && iPos < iEnd; --aSkip) {
    while (iPos < iEnd && !IsLineEnd(*iPos)) ++iPos;
    PassLineEnd();
  }
  iRecord = iPos;
}

bool CVelumCsvReader::AtDelim(const char* aPos) const {
  const size_t len = iDelim.size();
  return static_cast<size_t>(iEnd - aPos) >= len && std::memcmp(aPos, iDelim.data(), len) == 0;
}

bool CVelumCsvReader::AtCellEnd(const char* aPos) const {
  return aPos == iEnd || IsLineEnd(*aPos) || AtDelim(aPos);
}

void CVelumCsvReader::PassLineEnd() {
  if (iPos == iEnd) return;
  const bool cr = *iPos++ == '\r';
  if (cr && iPos < iEnd && *iPos == '\n') ++iPos;
  ++iNextLine;
}

// From iPos up to the next delimiter or line end.
void CVelumCsvReader::ReadPlain(TCsvCell& aCell) {
  const char* const start = iPos;
  bool quote = false;
  const bool oneByte = iDelim.size() == 1;
  for (;; ++iPos) {
    while (iPos < iEnd && iKinds[static_cast<unsigned char>(*iPos)] == EPlain) ++iPos;
    if (iPos == iEnd) break;
    if (*iPos == EQuoteChar)
      quote = true;
    else if (oneByte || AtCellEnd(iPos))
      break;
  }
  aCell = {{start, static_cast<size_t>(iPos - start)}, false, false, quote};
}

// iPos stands at the opening quote. False when nothing closes it.
bool CVelumCsvReader::ReadQuoted(TCsvCell& aCell) {
  const char* const open = iPos++;
  bool doubled = false;
  for (;;) {
    iPos = static_cast<const char*>(std::memchr(iPos, EQuoteChar, static_cast<size_t>(iEnd - iPos)));
    if (!iPos) iPos = iEnd;
    if (iPos + 1 >= iEnd || iPos[1] != EQuoteChar) break;
    doubled = true;
    iPos += 2;
  }
  const char* const close = iPos;
  iNextLine += CountLineEnds(open, close);
  aCell = {{open + 1, static_cast<size_t>(close - open - 1)}, true, doubled, false};
  if (close == iEnd) return false;
  ++iPos;
  if (AtCellEnd(iPos)) return true;
  // What follows belongs to the cell, whose quotes then mean nothing.
  ReadPlain(aCell);
  aCell = {{open, static_cast<size_t>(iPos - open)}, false, false, true};
  return true;
}

void CVelumCsvReader::ReadCell(TCsvCell& aCell) {
  if (iPos < iEnd && *iPos == EQuoteChar)
    iUnclosed = !ReadQuoted(aCell);
  else
    ReadPlain(aCell);
}

bool CVelumCsvReader::Next() {
  if (iPos == iEnd) return false;
  iLine = iNextLine;
  iRecord = iPos;
  iCells.clear();
  iNumCells = 0;
  iUnclosed = false;
  for (;;) {
    TCsvCell cell;
    ReadCell(cell);
    if (++iNumCells <= EMaxCells) iCells.push_back(cell);
    if (iPos == iEnd || !AtDelim(iPos)) break;
    iPos += iDelim.size();
  }
  PassLineEnd();
  return true;
}

qint64 CVelumCsvReader::LineOf(const TCsvCell& aCell) const {
  return iLine + CountLineEnds(iRecord, aCell.iRaw.data());
}
