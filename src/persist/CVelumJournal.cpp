#include "persist/CVelumJournal.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

namespace {

const QByteArray EMagic = "OrvJrn01";
constexpr qint64 ESumLen = 16;
constexpr qint64 EHeadFields = 32;
constexpr qint64 EHeadLen = EHeadFields + ESumLen;
constexpr qint64 ERecFields = 16;
constexpr qint64 EMaxRecord = 1 << 20; // bytes kept in one record
constexpr unsigned EPrivate = 0600;

void Put(QByteArray& aTo, qint64 aNum) {
  char raw[8];
  qToLittleEndian<qint64>(aNum, raw);
  aTo.append(raw, 8);
}

qint64 Get(const QByteArray& aFrom, qint64 aAt) {
  return qFromLittleEndian<qint64>(aFrom.constData() + aAt);
}

QByteArray Sum(const QByteArray& aA, const QByteArray& aB = {}) {
  QCryptographicHash hash(QCryptographicHash::Md5);
  hash.addData(aA);
  hash.addData(aB);
  return hash.result();
}

// An open descriptor that closes itself.
class CFd {
public:
  CFd(const QString& aPath, int aFlags) : iFd(CVelumOs::Open(aPath, aFlags)) {}
  ~CFd() { CVelumOs::Close(iFd); }
  CFd(const CFd&) = delete;
  CFd& operator=(const CFd&) = delete;
  operator int() const { return iFd; }

private:
  int iFd;
};

QByteArray ReadPiece(int aFd, const QString& aPath, qint64 aPos, qint64 aLen) {
  QByteArray bytes(aLen, Qt::Uninitialized);
  bytes.resize(CVelumOs::ReadAt(aFd, aPath, bytes.data(), aLen, aPos));
  return bytes;
}

// A journal that is read.
class CReader {
public:
  CReader(int aFd, const QString& aPath) : iFd(aFd), iPath(aPath) {}

  // False when the head was never finished.
  bool ReadHead() {
    QByteArray head = ReadPiece(iFd, iPath, 0, EHeadLen);
    QByteArray fields = head.left(EHeadFields);
    if (head.size() < EHeadLen || !fields.startsWith(EMagic) || Sum(fields) != head.mid(EHeadFields))
      return false;
    iLen = Get(head, 8);
    iId.iDevice = static_cast<quint64>(Get(head, 16));
    iId.iNode = static_cast<quint64>(Get(head, 24));
    iPos = EHeadLen;
    return iLen >= 0;
  }
  // The next record that can be relied on.
  bool ReadRecord(qint64& aPos, QByteArray& aBytes) {
    QByteArray head = ReadPiece(iFd, iPath, iPos, ERecFields + ESumLen);
    if (head.size() < ERecFields + ESumLen) return false;
    aPos = Get(head, 0);
    qint64 len = Get(head, 8);
    if (aPos < 0 || len <= 0 || len > EMaxRecord) return false;
    iPos += head.size();
    aBytes = ReadPiece(iFd, iPath, iPos, len);
    iPos += len;
    return aBytes.size() == len && Sum(head.left(ERecFields), aBytes) == head.mid(ERecFields);
  }
  // The length and identity of the document.
  [[nodiscard]] qint64 Len() const { return iLen; }
  [[nodiscard]] const TVelumFileId& Id() const { return iId; }

private:
  int iFd;
  QString iPath;
  qint64 iPos = 0;
  qint64 iLen = 0;
  TVelumFileId iId;
};

// Writes all old bytes to their places. Doing it again changes nothing.
void PutBack(CReader& aJournal, int aDoc, const QString& aPath) {
  qint64 pos = 0;
  QByteArray bytes;
  while (aJournal.ReadRecord(pos, bytes))
    CVelumOs::WriteAt(aDoc, aPath, bytes.constData(), bytes.size(), pos);
  CVelumOs::Truncate(aDoc, aPath, aJournal.Len());
  CVelumOs::Sync(aDoc, aPath);
}

void SetAside(const QString& aJournal) {
  CVelumOs::Rename(aJournal, aJournal + u"-unused"_s);
  CVelumOs::SyncFolderOf(aJournal);
}

void Remove(const QString& aJournal) {
  CVelumOs::Unlink(aJournal);
  CVelumOs::SyncFolderOf(aJournal);
}

[[noreturn]] void RaiseBusy(const QString& aPath) {
  CVelumError::RaiseHost(EHostPermissionDenied, aPath + u" (another program is saving it)"_s);
}

} // namespace

CVelumJournal::CVelumJournal(const QString& aPath) : iPath(aPath), iJournalPath(NameFor(aPath)) {
  iDoc = CVelumOs::Open(iPath, O_RDWR);
  if (iDoc < 0) CVelumOs::Raise(errno, iPath);
  try {
    CreateLocked();
    WriteHead();
  } catch (...) {
    if (iFd >= 0) CVelumOs::RemoveQuietly(iJournalPath);
    CVelumOs::Close(iFd);
    CVelumOs::Close(iDoc);
    throw;
  }
}

CVelumJournal::~CVelumJournal() {
  CVelumOs::Close(iFd);
  CVelumOs::Close(iDoc);
}

// Between making and locking it, somebody who opens the document may have taken the empty journal away.
void CVelumJournal::CreateLocked() {
  constexpr int ETries = 3;
  for (int i = 0; i < ETries; ++i) {
    int fd = CVelumOs::Open(iJournalPath, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, EPrivate);
    if (fd < 0 && errno == EEXIST) RaiseBusy(iPath);
    if (fd < 0) CVelumOs::Raise(errno, iJournalPath);
    if (CVelumOs::TryLock(fd, iJournalPath) && CVelumOs::IdOf(iJournalPath).SameFile(CVelumOs::IdOf(fd))) {
      iFd = fd;
      return;
    }
    CVelumOs::Close(fd);
  }
  RaiseBusy(iPath);
}

void CVelumJournal::WriteHead() {
  TVelumFileId id = CVelumOs::IdOf(iDoc);
  iLen = id.iSize;
  QByteArray head = EMagic;
  Put(head, iLen);
  Put(head, static_cast<qint64>(id.iDevice));
  Put(head, static_cast<qint64>(id.iNode));
  head += Sum(head);
  CVelumOs::CopyMode(iFd, iJournalPath, iPath);
  CVelumOs::Write(iFd, iJournalPath, head.constData(), head.size());
  iDirty = true;
}

void CVelumJournal::AddRecord(qint64 aPos, qint64 aLen) {
  QByteArray bytes = ReadPiece(iDoc, iPath, aPos, aLen);
  if (bytes.size() < aLen) CVelumOs::Raise(EIO, iPath);
  QByteArray head;
  Put(head, aPos);
  Put(head, aLen);
  head += Sum(head, bytes);
  head += bytes;
  CVelumOs::Write(iFd, iJournalPath, head.constData(), head.size());
  iDirty = true;
}

void CVelumJournal::Cover(qint64 aPos, qint64 aLen) {
  qint64 start = std::max<qint64>(aPos, 0);
  qint64 end = std::min(aPos + aLen, iLen);
  if (start >= end) return;
  // Everything kept that touches [start, end) melts with it into one.
  auto at = iCovered.upper_bound(start);
  if (at != iCovered.begin() && std::prev(at)->second >= start) --at;
  qint64 from = start;
  qint64 mergedStart = start;
  while (at != iCovered.end() && at->first <= end) {
    for (; from < at->first; from += EMaxRecord) AddRecord(from, std::min(EMaxRecord, at->first - from));
    from = std::max(start, at->second);
    mergedStart = std::min(mergedStart, at->first);
    at = iCovered.erase(at);
  }
  qint64 mergedEnd = std::max(from, end);
  for (; from < end; from += EMaxRecord) AddRecord(from, std::min(EMaxRecord, end - from));
  iCovered[mergedStart] = mergedEnd;
}

void CVelumJournal::Sync() {
  if (iDirty) CVelumOs::Sync(iFd, iJournalPath);
  iDirty = false;
  if (!iInFolder) CVelumOs::SyncFolderOf(iJournalPath);
  iInFolder = true;
}

void CVelumJournal::BeforeWrite(qint64 aPos, qint64 aLen) {
  Cover(aPos, aLen);
  Sync();
}

void CVelumJournal::Finish() {
  CVelumOs::Unlink(iJournalPath);
  iFinished = true;
  CVelumOs::SyncFolderOf(iJournalPath);
}

void CVelumJournal::RollBack() {
  CReader journal(iFd, iJournalPath);
  if (journal.ReadHead()) PutBack(journal, iDoc, iPath);
  Remove(iJournalPath);
  iFinished = true;
}

bool CVelumJournal::Recover(const QString& aPath, const std::function<bool()>& aIsWhole) {
  QString name = NameFor(aPath);
  CFd fd(name, O_RDWR | O_NOFOLLOW);
  if (fd < 0 && errno == ENOENT) return false;
  if (fd < 0) CVelumOs::Raise(errno, name);
  if (!CVelumOs::TryLock(fd, name)) RaiseBusy(aPath);
  // Who had the lock before may have finished, and its journal be gone.
  if (!CVelumOs::IdOf(name).SameFile(CVelumOs::IdOf(fd))) return false;
  CReader journal(fd, name);
  if (!journal.ReadHead()) {
    Remove(name);
    return false;
  }
  TVelumFileId id = CVelumOs::IdOf(aPath);
  if (!id.Exists() || (!id.SameFile(journal.Id()) && aIsWhole())) {
    SetAside(name);
    return false;
  }
  CFd doc(aPath, O_RDWR);
  if (doc < 0) CVelumOs::Raise(errno, aPath);
  PutBack(journal, doc, aPath);
  Remove(name);
  return true;
}
