#include "core/file/CVelumOs.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
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

void Tell(const TVelumOsStep& aStep) {
  if (gFaults) gFaults->Done(aStep);
}

// aStep tells what is to be written.
template <class F> void WriteAll(TVelumOsStep aStep, F aCall) {
  qint64 len = aStep.iLen;
  int error = Fault(EOsCall::Write, aStep.iPath, len);
  if (error) aStep.iLen = std::clamp<qint64>(len, 0, std::max<qint64>(aStep.iLen - 1, 0));
  if (Loop(aStep.iPath, aStep.iLen, aCall) < aStep.iLen) Raise(EIO, aStep.iPath);
  Tell(aStep);
  if (error) Raise(error, aStep.iPath);
}

// Whether a lock was given. File systems without locks give every one.
bool Locked(int aFd, const QString& aPath, int aKind) {
  RaiseOnFault(EOsCall::Lock, aPath);
  if (Retry([&] { return ::flock(aFd, aKind | LOCK_NB); }) == 0) return true;
  if (errno == EWOULDBLOCK) return false;
  if (errno == ENOLCK || errno == EOPNOTSUPP || errno == ENOSYS) return true;
  Raise(errno, aPath);
}

// What a symbolic link says; empty when aPath is none.
QByteArray LinkTarget(const QByteArray& aPath) {
  QByteArray target(PATH_MAX, Qt::Uninitialized);
  const ssize_t len = ::readlink(aPath.constData(), target.data(), static_cast<size_t>(target.size()));
  return target.left(len < 0 ? 0 : len);
}

// Up to the last slash and with it; empty for a bare name.
QByteArray FolderPart(const QByteArray& aPath) {
  return aPath.left(aPath.lastIndexOf('/') + 1);
}

// Whether a path has a component that only the file system can resolve.
bool GoesUp(const QByteArray& aPath) {
  return aPath.startsWith("../") || aPath.contains("/../");
}

// With the folder resolved by the system; as it is when there is no such folder.
QByteArray InRealFolder(const QByteArray& aPath) {
  const QByteArray folder = FolderPart(aPath);
  char* real = ::realpath(folder.isEmpty() ? "." : folder.constData(), nullptr);
  if (!real) return aPath;
  QByteArray path = real;
  std::free(real); // as realpath asks for it
  if (!path.endsWith('/')) path += '/';
  return path + aPath.mid(folder.size());
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

void MayFail(EOsCall aCall, const QString& aPath) {
  RaiseOnFault(aCall, aPath);
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
  const int fd =
      Retry([&] { return ::open(name.constData(), aFlags | O_CLOEXEC, static_cast<mode_t>(aMode)); });
  if (fd >= 0) Tell({EOsCall::Open, aPath, fd});
  return fd;
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
  WriteAll({EOsCall::Write, aPath, aFd, {}, aPos, aFrom, aLen},
           [&](qint64 aDone, size_t aRest) { return ::pwrite(aFd, aFrom + aDone, aRest, aPos + aDone); });
}

void Write(int aFd, const QString& aPath, const char* aFrom, qint64 aLen) {
  WriteAll({EOsCall::Write, aPath, aFd, {}, -1, aFrom, aLen},
           [&](qint64 aDone, size_t aRest) { return ::write(aFd, aFrom + aDone, aRest); });
}

void Truncate(int aFd, const QString& aPath, qint64 aSize) {
  RaiseOnFault(EOsCall::Truncate, aPath);
  RaiseIf(Retry([&] { return ::ftruncate(aFd, aSize); }) != 0, aPath);
  Tell({EOsCall::Truncate, aPath, aFd, {}, -1, nullptr, aSize});
}

void Sync(int aFd, const QString& aPath) {
  RaiseOnFault(EOsCall::Sync, aPath);
  RaiseIf(Retry([&] { return ::fsync(aFd); }) != 0, aPath);
  Tell({EOsCall::Sync, aPath, aFd});
}

void SyncFolderOf(const QString& aPath) {
  const QString folder = FolderOf(aPath);
  RaiseOnFault(EOsCall::SyncFolder, folder);
  QByteArray name = QFile::encodeName(folder);
  int fd = Retry([&] { return ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
  RaiseIf(fd < 0, folder);
  int res = Retry([&] { return ::fsync(fd); });
  int error = errno;
  ::close(fd);
  // Some file systems cannot sync a folder and say so with EINVAL; there is nothing more to be done there.
  if (res != 0 && error != EINVAL) Raise(error, folder);
  Tell({EOsCall::SyncFolder, folder});
}

void Rename(const QString& aFrom, const QString& aTo) {
  RaiseOnFault(EOsCall::Rename, aTo);
  RaiseIf(::rename(QFile::encodeName(aFrom).constData(), QFile::encodeName(aTo).constData()) != 0, aTo);
  Tell({EOsCall::Rename, aTo, -1, aFrom});
}

bool Link(const QString& aFrom, const QString& aTo) {
  errno = Fault(EOsCall::Link, aTo);
  if (errno == 0 && ::link(QFile::encodeName(aFrom).constData(), QFile::encodeName(aTo).constData()) == 0) {
    Tell({EOsCall::Link, aTo, -1, aFrom});
    return true;
  }
  if (errno == EPERM || errno == EOPNOTSUPP || errno == EMLINK || errno == EACCES) return false;
  Raise(errno, aTo);
}

void Unlink(const QString& aPath) {
  RaiseOnFault(EOsCall::Unlink, aPath);
  RaiseIf(::unlink(QFile::encodeName(aPath).constData()) != 0 && errno != ENOENT, aPath);
  Tell({EOsCall::Unlink, aPath});
}

void RemoveQuietly(const QString& aPath) {
  try {
    Unlink(aPath);
  } catch (const CVelumException&) { // it stays
  }
}

bool TryLock(int aFd, const QString& aPath) {
  return Locked(aFd, aPath, LOCK_EX);
}

bool TryLockShared(int aFd, const QString& aPath) {
  return Locked(aFd, aPath, LOCK_SH);
}

void Unlock(int aFd) {
  ::flock(aFd, LOCK_UN);
}

bool WaitFor(const std::function<bool()>& aTry) {
  using namespace std::chrono_literals;
  const auto end = std::chrono::steady_clock::now() + 5s;
  while (!aTry()) {
    if (Fault(EOsCall::Wait, {}) != 0 || std::chrono::steady_clock::now() >= end) return false;
    if (!gFaults) std::this_thread::sleep_for(20ms);
  }
  return true;
}

bool IsDenied(int aErrno) {
  return HostNumber(aErrno) == EHostPermissionDenied;
}

bool MayWrite(const QString& aPath) {
  const QByteArray name = QFile::encodeName(aPath);
  return ::faccessat(AT_FDCWD, name.constData(), W_OK, AT_EACCESS) == 0 || !IsDenied(errno);
}

int WhyNoFile(const QString& aPath) {
  struct stat info {};
  if (::stat(QFile::encodeName(aPath).constData(), &info) != 0) return errno;
  return S_ISDIR(info.st_mode) ? EISDIR : 0;
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

// The text of a path is never shortened: only the system knows where ".." leads behind a link.
QString RealPath(const QString& aPath) {
  constexpr int EMaxLinks = 40; // as the system's own limit
  QByteArray path = QFile::encodeName(aPath);
  if (GoesUp(FolderPart(path))) path = InRealFolder(path);
  for (int i = 0; i < EMaxLinks; ++i) {
    const QByteArray target = LinkTarget(path);
    if (target.isEmpty()) break;
    path = InRealFolder(target.startsWith('/') ? target : FolderPart(path) + target);
  }
  return QFile::decodeName(path);
}

QString FolderOf(const QString& aPath) {
  const qsizetype slash = aPath.lastIndexOf(u'/');
  return slash < 0 ? u"."_s : slash == 0 ? u"/"_s : aPath.left(slash);
}

} // namespace CVelumOs
