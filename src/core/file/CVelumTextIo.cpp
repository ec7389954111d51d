#include "core/file/CVelumTextIo.h"

#include "core/file/CVelumOs.h"

#include <QScopeGuard>

#include <cstring>
#include <fcntl.h>
#include <utility>

namespace {
constexpr qsizetype EBufSize = 65536;
// A longer line is no text: a device without an end, or some other kind of file.
constexpr qsizetype EMaxLine = 1 << 26;
// After so many bytes the disk is set to work while more are made.
constexpr qint64 EMaxAhead = 1 << 23;
} // namespace

bool CVelumTextReader::Fill() {
  if (iAtEnd) return false;
  iBuf.remove(0, std::exchange(iPos, 0));
  qsizetype used = iBuf.size();
  if (used > EMaxLine) CVelumError::RaiseHost(EHostOutOfMemory, u"%1, line %2"_s.arg(iPath).arg(iLines + 1));
  iBuf.resize(used + EBufSize);
  qint64 len = CVelumOs::Read(iFd, iPath, iBuf.data() + used, EBufSize);
  iBuf.resize(used + static_cast<qsizetype>(len));
  iAtEnd = len == 0;
  return !iAtEnd;
}

qsizetype CVelumTextReader::FindEnd(qsizetype aFrom) {
  const char* from = iBuf.constData() + aFrom;
  auto len = static_cast<size_t>(iBuf.size() - aFrom);
  // What ends lines here is near; what does not must only be sought up to there.
  const char* lf = nullptr;
  if (iFirstEnd || iLfEnds) lf = static_cast<const char*>(std::memchr(from, '\n', len));
  auto* cr = static_cast<const char*>(std::memchr(from, '\r', lf ? static_cast<size_t>(lf - from) : len));
  const char* end = cr ? cr : lf;
  if (!end) return -1;
  if (std::exchange(iFirstEnd, false)) iLfEnds = !cr;
  return end - iBuf.constData();
}

QByteArrayView CVelumTextReader::Take(qsizetype aEnd) {
  const qsizetype len = aEnd - iPos;
  // The LF of a CR LF may not have been read yet. Filling moves what is in the buffer.
  if (aEnd + 1 == iBuf.size() && iBuf.at(aEnd) == '\r') static_cast<void>(Fill());
  const QByteArrayView line(iBuf.constData() + iPos, len);
  iPos += len + 1;
  ++iLines;
  const bool cr = iBuf.at(iPos - 1) == '\r';
  if (cr && iPos < iBuf.size() && iBuf.at(iPos) == '\n') ++iPos;
  return line;
}

bool CVelumTextReader::ReadLine(QByteArrayView& aLine) {
  qsizetype searched = 0; // bytes behind iPos that are known to hold no line end
  for (;;) {
    qsizetype end = FindEnd(iPos + searched);
    if (end >= 0) {
      aLine = Take(end);
      return true;
    }
    searched = iBuf.size() - iPos;
    if (!Fill()) break;
  }
  if (searched == 0) return false;
  aLine = QByteArrayView(iBuf).sliced(iPos);
  iPos = iBuf.size();
  return true;
}

void CVelumTextWriter::WriteLine(QByteArrayView aLine) {
  iBuf += aLine;
  iBuf += "\r\n";
  if (iBuf.size() >= EBufSize) Flush();
}

void CVelumTextWriter::Flush() {
  if (iBuf.isEmpty()) return;
  const auto clear = qScopeGuard([this] { iBuf.resize(0); }); // which keeps the memory
  CVelumOs::Write(iFd, iPath, iBuf.constData(), iBuf.size());
  iAhead += iBuf.size();
  if (iAhead < EMaxAhead) return;
  iAhead = 0;
  // Only a hint: whoever makes the file safe asks for all of it, and is told of any failure then.
  static_cast<void>(::sync_file_range(iFd, 0, 0, SYNC_FILE_RANGE_WRITE));
}
