#include "persist/CVelumNewFile.h"

#include "core/file/CVelumFileRights.h"

#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>

namespace {

constexpr unsigned EPrivate = 0600;

// Whether this program has the lock of the file that bears the name.
bool Holds(int aFd, const QString& aPath) {
  return CVelumOs::TryLock(aFd, aPath) && CVelumOs::IdOf(aPath).SameFile(CVelumOs::IdOf(aFd));
}

} // namespace

CVelumNewFile::CVelumNewFile(const QString& aTarget) : iTarget(aTarget), iPath(NameFor(aTarget)) {
  const QFileInfo there(iTarget);
  if (there.exists() && !there.isFile())
    CVelumError::RaiseHost(EHostPermissionDenied, iTarget + u" (a folder or a device)"_s);
  if (!CVelumOs::WaitFor([this] { return Create(); }))
    CVelumError::RaiseHost(EHostPermissionDenied, iTarget + u" (another program is saving it)"_s);
}

// A file of that name that nobody holds is what a crash has left, perhaps with other permissions.
bool CVelumNewFile::Create() {
  bool created = true;
  int fd = CVelumOs::Open(iPath, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, EPrivate);
  if (fd < 0 && errno == EEXIST) {
    created = false;
    fd = CVelumOs::Open(iPath, O_RDWR | O_NOFOLLOW);
    if (fd < 0 && errno == ENOENT) return false;
  }
  if (fd < 0) CVelumOs::Raise(errno, iPath);
  try {
    if (LockOrRemove(fd, created)) return true;
  } catch (...) {
    if (created) CVelumOs::RemoveQuietly(iPath);
    CVelumOs::Close(fd);
    throw;
  }
  CVelumOs::Close(fd);
  return false;
}

// Keeps aFd when it is a new file and locked.
bool CVelumNewFile::LockOrRemove(int aFd, bool aCreated) {
  const bool mine = Holds(aFd, iPath);
  if (mine && aCreated) iFd = aFd;
  if (mine && !aCreated) CVelumOs::Unlink(iPath);
  return iFd >= 0;
}

CVelumNewFile::~CVelumNewFile() {
  if (!iPlaced) CVelumOs::RemoveQuietly(iPath);
  CVelumOs::Close(iFd);
}

void CVelumNewFile::TakePlace(const QString& aLike) {
  CVelumFileRights::Copy(iFd, iPath, aLike.isEmpty() ? iTarget : aLike);
  CVelumOs::Sync(iFd, iPath);
  CVelumOs::Rename(iPath, iTarget);
  iPlaced = true;
  CVelumOs::SyncFolderOf(iTarget);
}

void CVelumNewFile::RemoveLeft(const QString& aTarget) {
  const QString name = NameFor(aTarget);
  if (!CVelumOs::IdOf(name).Exists()) return;
  const int fd = CVelumOs::Open(name, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
  if (fd < 0) return;
  try {
    if (CVelumOs::IsRegular(fd) && Holds(fd, name)) CVelumOs::Unlink(name);
  } catch (const CVelumException&) { // it stays
  }
  CVelumOs::Close(fd);
}
