#include "core/CVelumTextIo.h"

#include "core/CVelumOs.h"

#include <cstring>
#include <utility>

namespace {
constexpr qsizetype EBufSize = 65536;
// A longer line is no text: a device without an end, or some other kind of file.
constexpr qsizetype EMaxLine = 1 << 26;
} // namespace

bool CVelumTextReader::Fill() {
  if (iAtEnd) return false;
  iBuf.remove(0, std::exchange(iPos, 0));
  qsizetype used = iBuf.size();
  if (used > EMaxLine) CVelumError::RaiseHost(EHostOutOfMemory, iPath);
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

void CVelumTextReader::Take(qsizetype aEnd, QByteArray& aLine) {
  aLine = iBuf.mid(iPos, aEnd - iPos);
  bool cr = iBuf.at(aEnd) == '\r';
  iPos = aEnd + 1;
  // The LF of a CR LF may not have been read yet.
  if (cr && (iPos < iBuf.size() || Fill()) && iBuf.at(iPos) == '\n') ++iPos;
}

bool CVelumTextReader::ReadLine(QByteArray& aLine) {
  qsizetype searched = 0; // bytes behind iPos that are known to hold no line end
  for (;;) {
    qsizetype end = FindEnd(iPos + searched);
    if (end >= 0) {
      Take(end, aLine);
      return true;
    }
    searched = iBuf.size() - iPos;
    if (!Fill()) break;
  }
  if (searched == 0) return false;
  aLine = iBuf.mid(iPos);
  iPos = iBuf.size();
  return true;
}

void CVelumTextWriter::WriteLine(const QByteArray& aLine) {
  iBuf += aLine;
  iBuf += "\r\n";
  if (iBuf.size() >= EBufSize) Flush();
}

void CVelumTextWriter::Flush() {
  QByteArray bytes = std::exchange(iBuf, {});
  if (!bytes.isEmpty()) CVelumOs::Write(iFd, iPath, bytes.constData(), bytes.size());
}
