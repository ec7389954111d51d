#include "core/CVelumOs.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace CVelumOs {
namespace {

CVelumFaults* gFaults = nullptr;

// The errno that a test wants, or 0. aLen is what a write may do first.
int Fault(EOsCall aCall, const QString& aPath, qint64& aLen) {
  return gFaults ? gFaults->Before(aCall, aPath, aLen) : 0;
}

int Fault(EOsCall aCall, const QString& aPath) {
  qint64 len = 0;
  return Fault(aCall, aPath, len);
}

void RaiseOnFault(EOsCall aCall, const QString& aPath) {
  if (int error = Fault(aCall, aPath)) Raise(error, aPath);
}

void RaiseIf(bool aFailed, const QString& aPath) {
  if (aFailed) Raise(errno, aPath);
}

qint32 HostNumber(int aErrno) {
  switch (aErrno) {
  case ENOENT:
  case ENOTDIR:
    return EHostFileNotFound;
  case EACCES:
  case EPERM:
  case EROFS:
  case EISDIR:
    return EHostPermissionDenied;
  case ENOSPC:
  case EDQUOT:
  case EFBIG:
    return EHostDiskFull;
  case ENOMEM:
    return EHostOutOfMemory;
  default:
    return EHostDeviceIo;
  }
}

// Repeats a call that a signal has interrupted.
template <class F> auto Retry(F aCall) {
  decltype(aCall()) res;
  do res = aCall();
  while (res < 0 && errno == EINTR);
  return res;
}

// Moves aLen bytes in as many calls as the system wants; returns how many it moved before it had no more.
template <class F> qint64 Loop(const QString& aPath, qint64 aLen, F aCall) {
  qint64 done = 0;
  while (done < aLen) {
    ssize_t res = Retry([&] { return aCall(done, static_cast<size_t>(aLen - done)); });
    RaiseIf(res < 0, aPath);
    if (res == 0) break;
    done += res;
  }
  return done;
}

template <class F> void WriteAll(const QString& aPath, qint64 aLen, F aCall) {
  qint64 len = aLen;
  int error = Fault(EOsCall::Write, aPath, len);
  qint64 todo = error ? std::min(len, aLen - 1) : aLen;
  if (Loop(aPath, std::max<qint64>(todo, 0), aCall) < todo) Raise(EIO, aPath);
  if (error) Raise(error, aPath);
}

TVelumFileId ToId(const struct stat& aStat) {
  TVelumFileId id;
  id.iDevice = aStat.st_dev;
  id.iNode = aStat.st_ino;
  id.iSize = aStat.st_size;
  id.iTime = static_cast<qint64>(aStat.st_mtim.tv_sec) * 1000000000 + aStat.st_mtim.tv_nsec;
  return id;
}

} // namespace

void SetFaults(CVelumFaults* aFaults) {
  gFaults = aFaults;
}

void Raise(int aErrno, const QString& aPath) {
  CVelumError::RaiseHost(HostNumber(aErrno),
                         aPath + u" ("_s + QString::fromLocal8Bit(std::strerror(aErrno)) + u')');
}

int Open(const QString& aPath, int aFlags, unsigned aMode) {
  if (int error = Fault(EOsCall::Open, aPath)) {
    errno = error;
    return -1;
  }
  QByteArray name = QFile::encodeName(aPath);
  return Retry([&] { return ::open(name.constData(), aFlags | O_CLOEXEC, static_cast<mode_t>(aMode)); });
}

void Close(int aFd) {
  if (aFd >= 0) ::close(aFd);
}

qint64 ReadAt(int aFd, const QString& aPath, char* aTo, qint64 aLen, qint64 aPos) {
  RaiseOnFault(EOsCall::Read, aPath);
  return Loop(aPath, aLen,
              [&](qint64 aDone, size_t aRest) { return ::pread(aFd, aTo + aDone, aRest, aPos + aDone); });
}

qint64 Read(int aFd, const QString& aPath, char* aTo, qint64 aLen) {
  RaiseOnFault(EOsCall::Read, aPath);
  ssize_t res = Retry([&] { return ::read(aFd, aTo, static_cast<size_t>(aLen)); });
  RaiseIf(res < 0, aPath);
  return res;
}

void WriteAt(int aFd, const QString& aPath, const char* aFrom, qint64 aLen, qint64 aPos) {
  WriteAll(aPath, aLen,
           [&](qint64 aDone, size_t aRest) { return ::pwrite(aFd, aFrom + aDone, aRest, aPos + aDone); });
}

void Write(int aFd, const QString& aPath, const char* aFrom, qint64 aLen) {
  WriteAll(aPath, aLen, [&](qint64 aDone, size_t aRest) { return ::write(aFd, aFrom + aDone, aRest); });
}

void Truncate(int aFd, const QString& aPath, qint64 aSize) {
  RaiseOnFault(EOsCall::Truncate, aPath);
  RaiseIf(Retry([&] { return ::ftruncate(aFd, aSize); }) != 0, aPath);
}

void Sync(int aFd, const QString& aPath) {
  RaiseOnFault(EOsCall::Sync, aPath);
  RaiseIf(Retry([&] { return ::fsync(aFd); }) != 0, aPath);
}

void SyncFolderOf(const QString& aPath) {
  QString folder = QFileInfo(aPath).absolutePath();
  RaiseOnFault(EOsCall::SyncFolder, folder);
  QByteArray name = QFile::encodeName(folder);
  int fd = Retry([&] { return ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
  RaiseIf(fd < 0, folder);
  int res = Retry([&] { return ::fsync(fd); });
  int error = errno;
  ::close(fd);
  // Some file systems cannot sync a folder and say so with EINVAL; there is nothing more to be done there.
  if (res != 0 && error != EINVAL) Raise(error, folder);
}

void Rename(const QString& aFrom, const QString& aTo) {
  RaiseOnFault(EOsCall::Rename, aTo);
  RaiseIf(::rename(QFile::encodeName(aFrom).constData(), QFile::encodeName(aTo).constData()) != 0, aTo);
}

bool Link(const QString& aFrom, const QString& aTo) {
  errno = Fault(EOsCall::Link, aTo);
  if (errno == 0 && ::link(QFile::encodeName(aFrom).constData(), QFile::encodeName(aTo).constData()) == 0)
    return true;
  if (errno == EPERM || errno == EOPNOTSUPP || errno == EMLINK || errno == EACCES) return false;
  Raise(errno, aTo);
}

void Unlink(const QString& aPath) {
  RaiseOnFault(EOsCall::Unlink, aPath);
  RaiseIf(::unlink(QFile::encodeName(aPath).constData()) != 0 && errno != ENOENT, aPath);
}

void RemoveQuietly(const QString& aPath) {
  try {
    Unlink(aPath);
  } catch (const CVelumException&) { // it stays
  }
}

bool TryLock(int aFd, const QString& aPath) {
  RaiseOnFault(EOsCall::Lock, aPath);
  if (Retry([&] { return ::flock(aFd, LOCK_EX | LOCK_NB); }) == 0) return true;
  if (errno == EWOULDBLOCK) return false;
  if (errno == ENOLCK || errno == EOPNOTSUPP || errno == ENOSYS) return true;
  Raise(errno, aPath);
}

void LockShared(int aFd) {
  static_cast<void>(Retry([&] { return ::flock(aFd, LOCK_SH | LOCK_NB); }));
}

void CopyMode(int aFd, const QString& aPath, const QString& aLike) {
  struct stat like;
  if (::stat(QFile::encodeName(aLike).constData(), &like) != 0) return;
  RaiseOnFault(EOsCall::Chmod, aPath);
  // Only root may give a file away; for others the group may work alone.
  if (::fchown(aFd, like.st_uid, like.st_gid) != 0 &&
      ::fchown(aFd, static_cast<uid_t>(-1), like.st_gid) != 0) {
    errno = 0;
  }
  RaiseIf(::fchmod(aFd, like.st_mode & 07777) != 0, aPath);
}

bool IsRegular(int aFd) {
  struct stat info;
  return ::fstat(aFd, &info) == 0 && S_ISREG(info.st_mode);
}

bool IsFolder(int aFd) {
  struct stat info;
  return ::fstat(aFd, &info) == 0 && S_ISDIR(info.st_mode);
}

TVelumFileId IdOf(const QString& aPath) {
  struct stat info;
  return ::stat(QFile::encodeName(aPath).constData(), &info) == 0 ? ToId(info) : TVelumFileId();
}

TVelumFileId IdOf(int aFd) {
  struct stat info;
  return ::fstat(aFd, &info) == 0 ? ToId(info) : TVelumFileId();
}

QString RealPath(const QString& aPath) {
  constexpr int EMaxLinks = 40; // as the system's own limit
  QString path = aPath;
  for (int i = 0; i < EMaxLinks; ++i) {
    QFileInfo info(path);
    if (!info.isSymLink()) return path;
    path = info.symLinkTarget();
  }
  return path;
}

} // namespace CVelumOs
