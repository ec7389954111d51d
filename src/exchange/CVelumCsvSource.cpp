#include "exchange/CVelumCsvSource.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "exchange/CVelumImportLimits.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace {

constexpr qsizetype EPartBytes = 1 << 22; // of a step
const QByteArray EReplacement("\xEF\xBF\xBD");

// Length of the character at the start of aBytes, 0 if they do not begin with one of UTF-8.
qsizetype Utf8Len(QByteArrayView aBytes) {
  const auto lead = static_cast<uchar>(aBytes[0]);
  const qsizetype len = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (len == 0 || len > aBytes.size() || !aBytes.first(len).isValidUtf8()) return 0;
  return len;
}

bool IsContinuation(char aByte) {
  return (static_cast<uchar>(aByte) & 0xC0) == 0x80;
}

qint64 CountLines(QByteArrayView aBytes) {
  qint64 lines = 0;
  for (qsizetype i = 0; i < aBytes.size(); ++i)
    if (aBytes[i] == '\n' || (aBytes[i] == '\r' && (i + 1 == aBytes.size() || aBytes[i + 1] != '\n')))
      ++lines;
  return lines;
}

// Codes that the Windows code page leaves free.
bool IsFree(char aByte) {
  const auto code = static_cast<uchar>(aByte);
  return code == 0x81 || code == 0x8D || code == 0x8F || code == 0x90 || code == 0x9D;
}

// Where the bytes cease to be UTF-8, and whether there are characters beyond ASCII all the same.
struct TFirstBad {
  qsizetype iPos = -1;
  bool iLetters = false;
};

TFirstBad FindBad(QByteArrayView aBytes) {
  TFirstBad found;
  for (qsizetype i = 0; i < aBytes.size();) {
    const qsizetype len = Utf8Len(aBytes.sliced(i));
    if (len == 0 && found.iPos < 0) found.iPos = i;
    found.iLetters |= len > 1;
    if (found.iLetters && found.iPos >= 0) break;
    i += std::max<qsizetype>(len, 1);
  }
  return found;
}

bool IsWide(ECsvEncoding aEncoding) {
  return aEncoding == ECsvEncoding::Utf16Le || aEncoding == ECsvEncoding::Utf16Be;
}

const QString EProc = u"CVelumCsvSource.Open"_s;

[[noreturn]] void RaiseNotOpened(int aErrno, const QString& aFilename) {
  if (aErrno == ENOENT || aErrno == ENOTDIR) CVelumError::Throw(EMsgFileNotFound, EProc, aFilename, {});
  if (aErrno == EACCES) CVelumError::Throw(EMsgNoFileAccess, EProc, aFilename, {});
  CVelumOs::Raise(aErrno, aFilename);
}

} // namespace

CVelumCsvSource::CVelumCsvSource(const QString& aFilename, std::optional<ECsvEncoding> aChosen, qint64 aMost)
    : iFilename(aFilename), iChosen(aChosen), iMost(aMost) {
  CVelumImportLimits::CheckIsFile(aFilename);
  iFd = CVelumOs::Open(aFilename, O_RDONLY);
  if (iFd < 0) RaiseNotOpened(errno, aFilename);
  try {
    iId = CVelumOs::IdOf(iFd);
    if (CVelumOs::IsFolder(iFd)) CVelumError::Throw(EMsgNoFileAccess, EProc, aFilename, {});
    // One more than there are, as the end shows only then.
    iBytes.reserve((iMost == EWhole ? iId.iSize : std::min(iMost, iId.iSize)) + 1);
  } catch (...) {
    CVelumOs::Close(iFd);
    throw;
  }
}

CVelumCsvSource::~CVelumCsvSource() {
  if (iFd >= 0) CVelumOs::Close(iFd);
}

bool CVelumCsvSource::Step() {
  if (iState == EState::Reading)
    ReadPart();
  else if (iState == EState::Checking)
    CheckPart();
  else if (iState == EState::Converting)
    ConvertPart();
  return iState != EState::Done;
}

int CVelumCsvSource::Progress(int aAll) const {
  const qint64 size = std::max<qint64>(iMost == EWhole ? iId.iSize : std::min(iMost, iId.iSize), 1);
  const qint64 done = iState == EState::Reading    ? iBytes.size()
                      : iState == EState::Checking ? size + iAt
                      : iState == EState::Done     ? 3 * size
                                                   : 2 * size + iAt;
  return static_cast<int>(std::min<qint64>(done * aAll / (3 * size), aAll));
}

std::string_view CVelumCsvSource::Text() const {
  const QByteArrayView text = iConverted.isNull() ? QByteArrayView(iBytes).sliced(iMark) : iConverted;
  return {text.data(), static_cast<size_t>(text.size())};
}

void CVelumCsvSource::ReadPart() {
  const qsizetype start = iBytes.size();
  const qint64 known = std::max<qint64>(iId.iSize - start, 0) + 1;
  const qint64 allowed = iMost == EWhole ? known : std::min(known, iMost - start);
  const qint64 left = std::min<qint64>(EPartBytes, allowed);
  iBytes.resize(start + left);
  const qint64 got = left > 0 ? CVelumOs::Read(iFd, iFilename, iBytes.data() + start, left) : 0;
  iBytes.resize(start + got);
  if (got == 0) EndReading();
}

void CVelumCsvSource::EndReading() {
  const TVelumFileId now = CVelumOs::IdOf(iFd);
  iPart = iMost != EWhole && iBytes.size() < now.iSize;
  // Files of the system have no size, but can be read.
  const bool sized = iId.iSize > 0;
  if (!iPart && sized && (!(now == iId) || iBytes.size() != iId.iSize)) RaiseChanged();
  CVelumOs::Close(iFd);
  iFd = -1;
  TakeMark();
  if (iPart) CutAtCharacter();
  iState = EState::Checking;
  iAt = iMark;
}

void CVelumCsvSource::RaiseChanged() const {
  CVelumImportLimits::RaiseChanged(iFilename, CountLines(iBytes) + 1);
}

// What is left of a character at the end of a part does not count.
void CVelumCsvSource::CutAtCharacter() {
  qsizetype end = iBytes.size();
  while (end > 0 && iBytes.size() - end < 3 && IsContinuation(iBytes.at(end - 1))) --end;
  const bool cut = end > 0 && static_cast<uchar>(iBytes.at(end - 1)) >= 0xC2 &&
                   Utf8Len(QByteArrayView(iBytes).sliced(end - 1)) == 0;
  const bool wide = IsWide(iEncoding);
  if (wide)
    iBytes.truncate(iBytes.size() - (iBytes.size() - iMark) % 2);
  else if (cut)
    iBytes.truncate(end - 1);
}

void CVelumCsvSource::TakeMark() {
  const QByteArrayView bytes(iBytes);
  std::optional<ECsvEncoding> marked;
  if (bytes.startsWith("\xEF\xBB\xBF"))
    marked = ECsvEncoding::Utf8;
  else if (bytes.startsWith("\xFF\xFE"))
    marked = ECsvEncoding::Utf16Le;
  else if (bytes.startsWith("\xFE\xFF"))
    marked = ECsvEncoding::Utf16Be;
  iEncoding = iChosen.value_or(marked.value_or(ECsvEncoding::Utf8));
  // Who chooses UTF-16 does not know which byte comes first, but the mark does.
  if (IsWide(iEncoding) && marked && IsWide(*marked)) iEncoding = *marked;
  iByMark = marked && !iChosen;
  if (marked == iEncoding) iMark = marked == ECsvEncoding::Utf8 ? 3 : 2;
}

// Where a part ends that begins at iAt; not inside of a character.
qsizetype CVelumCsvSource::PartEnd() const {
  if (iBytes.size() - iAt <= EPartBytes) return iBytes.size();
  qsizetype end = iAt + EPartBytes;
  while (end > iAt + EPartBytes - 3 && IsContinuation(iBytes.at(end))) --end;
  return end;
}

void CVelumCsvSource::CheckPart() {
  const qsizetype end = PartEnd();
  const QByteArrayView part = QByteArrayView(iBytes).sliced(iAt, end - iAt);
  const bool wide = IsWide(iEncoding);
  iHasZero |= !wide && !part.isEmpty() && std::memchr(part.data(), 0, static_cast<size_t>(part.size()));
  iValid = iValid && (wide || iEncoding == ECsvEncoding::Windows1252 || part.isValidUtf8());
  iAt = end;
  if (iAt == iBytes.size()) EndChecking();
}

void CVelumCsvSource::EndChecking() {
  iState = EState::Done;
  if (iEncoding == ECsvEncoding::Utf8 && iValid) return;
  iState = EState::Converting;
  iAt = iMark;
  iConverted = QByteArray("");
  iConverted.reserve(iBytes.size());
  if (iEncoding != ECsvEncoding::Utf8 || iChosen || iByMark) return;
  iEncoding = ECsvEncoding::Windows1252;
  const TFirstBad bad = FindBad(iBytes);
  iBad.iMixed = bad.iLetters;
  if (bad.iLetters) iBad.iLine = CountLines(QByteArrayView(iBytes).first(bad.iPos)) + 1;
}

void CVelumCsvSource::NoteBad(qint64 aCount, qint64 aLine) {
  if (!iBad.Any()) iBad.iLine = aLine;
  iBad.iReplaced |= iEncoding != ECsvEncoding::Windows1252;
  if (!iBad.iMixed) iBad.iCount += aCount;
}

void CVelumCsvSource::ConvertUtf8(QByteArrayView aPart) {
  if (aPart.isValidUtf8()) {
    iConverted.append(aPart);
    return;
  }
  for (qsizetype i = 0; i < aPart.size();) {
    const qsizetype len = Utf8Len(aPart.sliced(i));
    if (len == 0) NoteBad(1, iBad.Any() ? 0 : CountLines(iConverted) + 1);
    iConverted.append(len == 0 ? QByteArrayView(EReplacement) : aPart.sliced(i, len));
    i += std::max<qsizetype>(len, 1);
  }
}

void CVelumCsvSource::ConvertUtf16(QByteArrayView aPart) {
  QString text(aPart.size() / 2, Qt::Uninitialized);
  const bool high = iEncoding == ECsvEncoding::Utf16Be;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const auto one = static_cast<uchar>(aPart[2 * i + (high ? 0 : 1)]);
    const auto two = static_cast<uchar>(aPart[2 * i + (high ? 1 : 0)]);
    text[i] = QChar(static_cast<ushort>(one << 8 | two));
  }
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text[i].isNull()) iHasZero = true;
    if (!text[i].isSurrogate()) continue;
    const bool pair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
    if (pair) {
      ++i;
      continue;
    }
    NoteBad(1, iBad.Any() ? 0 : CountLines(iConverted) + CountLines(text.first(i).toUtf8()) + 1);
    text[i] = QChar::ReplacementCharacter;
  }
  iConverted.append(text.toUtf8());
  if (aPart.size() % 2 == 0) return;
  NoteBad(1, iBad.Any() ? 0 : CountLines(iConverted) + 1);
  iConverted.append(EReplacement);
}

void CVelumCsvSource::ConvertCodePage(const QByteArray& aPart) {
  if (!iChosen)
    if (const qint64 bad = std::count_if(aPart.begin(), aPart.end(), IsFree); bad > 0) {
      const auto first = std::find_if(aPart.begin(), aPart.end(), IsFree) - aPart.begin();
      NoteBad(bad,
              iBad.Any() ? 0 : CountLines(iConverted) + CountLines(QByteArrayView(aPart).first(first)) + 1);
    }
  iConverted.append(CVelumLib::FromCodePage(aPart).toUtf8());
}

void CVelumCsvSource::ConvertPart() {
  const bool wide = IsWide(iEncoding);
  qsizetype end = wide ? std::min(iBytes.size(), iAt + EPartBytes) : PartEnd();
  // A pair is not parted.
  const qsizetype high = end - (iEncoding == ECsvEncoding::Utf16Le ? 1 : 2);
  if (wide && end < iBytes.size() && end > iAt + 2 && (static_cast<uchar>(iBytes.at(high)) & 0xFC) == 0xD8)
    end -= 2;
  const QByteArray part = QByteArray::fromRawData(iBytes.constData() + iAt, end - iAt);
  if (wide)
    ConvertUtf16(part);
  else if (iEncoding == ECsvEncoding::Utf8)
    ConvertUtf8(part);
  else
    ConvertCodePage(part);
  iAt = end;
  if (iAt < iBytes.size()) return;
  iBytes = QByteArray();
  iState = EState::Done;
}
