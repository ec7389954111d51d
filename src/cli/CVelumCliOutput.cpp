#include "cli/CVelumCliOutput.h"

#include "cli/CVelumCliFiles.h"
#include "cli/CVelumTerminal.h"
#include "core/file/CVelumOs.h"

#include <QFile>
#include <QStringList>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr qint64 EBlock = 1 << 20;

// Calls aVisit with the bytes of a file, a block after the other.
template <class TVisit> void ForBlocks(const QString& aPath, const TVisit& aVisit) {
  QFile file(aPath);
  if (!file.open(QIODevice::ReadOnly)) CVelumError::RaiseHost(EHostFileNotFound, aPath);
  for (QByteArray block = file.read(EBlock); !block.isEmpty(); block = file.read(EBlock)) aVisit(block);
}

void WriteToPipe(const QString& aFrom, const QString& aPipe) {
  const int fd = CVelumOs::Open(aPipe, O_WRONLY);
  if (fd < 0) CVelumOs::Raise(errno, aPipe);
  try {
    ForBlocks(aFrom, [&](const QByteArray& aBlock) {
      CVelumOs::Write(fd, aPipe, aBlock.constData(), aBlock.size());
    });
  } catch (...) {
    CVelumOs::Close(fd);
    throw;
  }
  CVelumOs::Close(fd);
}

} // namespace

bool CVelumCliOutput::IsStandard(const QString& aOperand) {
  return QStringList{u"-"_s, u"/dev/stdout"_s, u"/dev/fd/1"_s, u"/proc/self/fd/1"_s}.contains(aOperand);
}

bool CVelumCliOutput::IsStream(const QString& aOperand) {
  struct stat status = {};
  return IsStandard(aOperand) ||
         (::stat(QFile::encodeName(aOperand).constData(), &status) == 0 && S_ISFIFO(status.st_mode));
}

CVelumCliOutput::CVelumCliOutput(const QString& aOperand, CVelumTerminal& aTerminal)
    : iTerminal(aTerminal), iOperand(aOperand), iPath(aOperand) {
  if (!IsStream(aOperand)) return;
  iFolder = CVelumCliFiles::TempFolder();
  iPath = iFolder->filePath(u"output"_s);
}

CVelumCliOutput::~CVelumCliOutput() = default;

void CVelumCliOutput::Finish() {
  if (!iFolder) return;
  if (!IsStandard(iOperand)) return WriteToPipe(iPath, iOperand);
  ForBlocks(iPath, [this](const QByteArray& aBlock) { iTerminal.Bytes(aBlock); });
}
