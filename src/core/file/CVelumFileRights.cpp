#include "core/file/CVelumFileRights.h"

#include "core/file/CVelumOs.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

const QByteArray EAccessList = "system.posix_acl_access";
constexpr mode_t EGroup = 070;
constexpr mode_t ESetGroup = 02000;

// The names of a file's extended attributes; none where the file system has no such thing.
QList<QByteArray> Names(const QByteArray& aPath) {
  const ssize_t len = ::listxattr(aPath.constData(), nullptr, 0);
  QByteArray names(std::max<ssize_t>(len, 0), '\0');
  const ssize_t got = ::listxattr(aPath.constData(), names.data(), static_cast<size_t>(names.size()));
  QList<QByteArray> res = names.left(std::max<ssize_t>(got, 0)).split('\0');
  res.removeAll(QByteArray());
  return res;
}

bool IsForbidden(int aErrno) {
  return aErrno == EPERM || aErrno == EACCES || aErrno == ENOTSUP || aErrno == EINVAL;
}

// False when this attribute may not be set here.
bool CopyOne(int aFd, const QString& aPath, const QByteArray& aLike, const QByteArray& aName) {
  const ssize_t len = ::getxattr(aLike.constData(), aName.constData(), nullptr, 0);
  QByteArray value(std::max<ssize_t>(len, 0), '\0');
  const ssize_t got =
      ::getxattr(aLike.constData(), aName.constData(), value.data(), static_cast<size_t>(value.size()));
  if (got < 0) return false;
  if (::fsetxattr(aFd, aName.constData(), value.constData(), static_cast<size_t>(got), 0) == 0) return true;
  if (!IsForbidden(errno)) CVelumOs::Raise(errno, aPath);
  return false;
}

// Whether the access list is that of aLike.
bool CopyAttributes(int aFd, const QString& aPath, const QByteArray& aLike) {
  const QList<QByteArray> names = Names(aLike);
  bool same = true;
  for (const QByteArray& name : names)
    same = (CopyOne(aFd, aPath, aLike, name) || name != EAccessList) && same;
  // A list that the folder gives to new files.
  if (!names.contains(EAccessList)) static_cast<void>(::fremovexattr(aFd, EAccessList.constData()));
  return same;
}

// Only root may give a file away; for others the group may work alone.
bool KeepGroup(int aFd, const struct stat& aLike) {
  return ::fchown(aFd, aLike.st_uid, aLike.st_gid) == 0 ||
         ::fchown(aFd, static_cast<uid_t>(-1), aLike.st_gid) == 0;
}

// The group has no more rights than all others.
mode_t Narrowed(mode_t aMode) {
  const mode_t others = (aMode & (EGroup >> 3)) << 3;
  return (aMode & ~(EGroup | ESetGroup)) | (aMode & others);
}

void CopyFrom(int aFd, const QString& aPath, const QByteArray& aLike, const struct stat& aStat) {
  const bool group = KeepGroup(aFd, aStat);
  const bool list = CopyAttributes(aFd, aPath, aLike);
  const mode_t mode = aStat.st_mode & 07777;
  if (::fchmod(aFd, group && list ? mode : Narrowed(mode)) != 0) CVelumOs::Raise(errno, aPath);
}

// A file without a name tells what a new one gets; where there is no such thing, the mask does.
void TakeUsual(int aFd, const QString& aPath) {
  const QByteArray folder = QFile::encodeName(CVelumOs::FolderOf(aPath));
  const int like = ::open(folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
  struct stat info;
  if (like >= 0 && ::fstat(like, &info) == 0) {
    CopyFrom(aFd, aPath, "/proc/self/fd/" + QByteArray::number(like), info);
  } else {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    if (::fchmod(aFd, 0666 & ~mask) != 0) CVelumOs::Raise(errno, aPath);
  }
  CVelumOs::Close(like);
}

} // namespace

void CVelumFileRights::Copy(int aFd, const QString& aPath, const QString& aLike) {
  CVelumOs::MayFail(EOsCall::Chmod, aPath);
  const QByteArray like = QFile::encodeName(aLike);
  struct stat info;
  if (::stat(like.constData(), &info) == 0)
    CopyFrom(aFd, aPath, like, info);
  else
    TakeUsual(aFd, aPath);
}
