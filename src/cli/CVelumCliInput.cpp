#include "cli/CVelumCliInput.h"

#include "cli/CVelumCliFiles.h"
#include "cli/CVelumTerminal.h"
#include "core/file/CVelumOs.h"

#include <QFile>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qsizetype EBlock = 1 << 20;

bool IsPipe(const QString& aPath) {
  struct stat status = {};
  return ::stat(QFile::encodeName(aPath).constData(), &status) == 0 && S_ISFIFO(status.st_mode);
}

// A device without an end would fill the disk. A terminal ends when its user says so, and the null device at
// once.
void RefuseDevice(int aFd, const QString& aName) {
  struct stat status = {};
  struct stat null = {};
  if (::fstat(aFd, &status) != 0) CVelumOs::Raise(errno, aName);
  if (!S_ISCHR(status.st_mode) || ::isatty(aFd) != 0) return;
  if (::stat("/dev/null", &null) == 0 && status.st_rdev == null.st_rdev) return;
  throw TVelumRefusal{aName + u" is a device."_s};
}

} // namespace

CVelumCliInput::CVelumCliInput(const QString& aOperand, CVelumTerminal& aTerminal)
    : iPath(aOperand), iName(aOperand) {
  const bool standard = aOperand == u"-";
  if (!standard && !IsPipe(aOperand)) return;
  if (standard) iName = u"standard input"_s;
  const int fd = standard ? STDIN_FILENO : CVelumOs::Open(aOperand, O_RDONLY);
  if (fd < 0) CVelumOs::Raise(errno, aOperand);
  try {
    Copy(fd);
  } catch (...) {
    if (!standard) CVelumOs::Close(fd);
    throw;
  }
  if (!standard) CVelumOs::Close(fd);
  CVelumCliFiles::CheckSource(iPath, iName);
  // For good: a failure is told when this is gone.
  aTerminal.ShowAs(iPath, iName);
}

CVelumCliInput::~CVelumCliInput() = default;

void CVelumCliInput::Copy(int aFd) {
  RefuseDevice(aFd, iName);
  iFolder = CVelumCliFiles::TempFolder();
  iPath = iFolder->filePath(u"input"_s);
  QFile file(iPath);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
    CVelumError::RaiseHost(EHostDeviceIo, iPath + u": "_s + file.errorString());
  QByteArray block(EBlock, Qt::Uninitialized);
  qint64 total = 0;
  while (const qint64 len = CVelumOs::Read(aFd, iName, block.data(), block.size())) {
    total += len;
    if (total > EMaxBytes) throw TVelumRefusal{iName + u" has more than 2 GB; save it as a file first."_s};
    if (file.write(block.constData(), len) != len) CVelumError::RaiseHost(EHostDiskFull, iPath);
  }
}
