#include "persist/CVelumNewFile.h"

#include "persist/CVelumBesideName.h"

#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>

CVelumNewFile::CVelumNewFile(const QString& aTarget)
    : iTarget(aTarget), iPath(CVelumBesideName::For(aTarget, u"-new"_s)) {
  try {
    Create();
  } catch (...) {
    CVelumOs::Close(iFd);
    throw;
  }
}

// A file of that name that nobody holds is what a crash has left.
void CVelumNewFile::Create() {
  const QFileInfo there(iTarget);
  if (there.exists() && !there.isFile())
    CVelumError::RaiseHost(EHostPermissionDenied, iTarget + u" (a folder or a device)"_s);
  iFd = CVelumOs::Open(iPath, O_RDWR | O_CREAT | O_NOFOLLOW);
  if (iFd < 0) CVelumOs::Raise(errno, iPath);
  bool mine = CVelumOs::TryLock(iFd, iPath) && CVelumOs::IdOf(iPath).SameFile(CVelumOs::IdOf(iFd));
  if (!mine) CVelumError::RaiseHost(EHostPermissionDenied, iTarget + u" (another program is saving it)"_s);
  CVelumOs::Truncate(iFd, iPath, 0);
}

CVelumNewFile::~CVelumNewFile() {
  if (!iPlaced) CVelumOs::RemoveQuietly(iPath);
  CVelumOs::Close(iFd);
}

void CVelumNewFile::TakePlace() {
  CVelumOs::CopyMode(iFd, iPath, iTarget);
  CVelumOs::Sync(iFd, iPath);
  CVelumOs::Rename(iPath, iTarget);
  iPlaced = true;
  CVelumOs::SyncFolderOf(iTarget);
}
