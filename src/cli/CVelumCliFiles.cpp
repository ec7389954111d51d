#include "cli/CVelumCliFiles.h"

#include "cli/CVelumCliOutput.h"
#include "core/file/CVelumOs.h"

#include <QFile>
#include <QFileInfo>

namespace {

// Enough for the head of either format.
constexpr qint64 EHeadLen = 512;

// The name of the program is followed by a number of 32 bits, which is small.
bool IsBinary(const QByteArray& aHead) {
  constexpr qsizetype EMagicLen = 7;
  return aHead.startsWith("Orvelle") && aHead.mid(EMagicLen + 1, 3) == QByteArray(3, '\0');
}

bool IsXml(const QByteArray& aHead) {
  return aHead.startsWith("<?xml") && aHead.contains("<VelumStack");
}

} // namespace

bool CVelumCliFiles::IsStack(const QString& aPath) {
  QFile file(aPath);
  if (!QFileInfo(aPath).isFile() || !file.open(QIODevice::ReadOnly)) return false;
  const QByteArray head = file.read(EHeadLen);
  return IsBinary(head) || IsXml(head);
}

bool CVelumCliFiles::SameFile(const QString& aA, const QString& aB) {
  const TVelumFileId a = CVelumOs::IdOf(CVelumOs::RealPath(aA));
  return a.Exists() && a.SameFile(CVelumOs::IdOf(CVelumOs::RealPath(aB)));
}

std::unique_ptr<QTemporaryDir> CVelumCliFiles::TempFolder() {
  auto folder = std::make_unique<QTemporaryDir>();
  if (!folder->isValid())
    throw TVelumRefusal{u"there is no place for temporary files: "_s + folder->errorString()};
  return folder;
}

void CVelumCliFiles::CheckSource(const QString& aPath, const QString& aName) {
  if (!IsStack(aPath)) return;
  throw TVelumRefusal{(aName.isEmpty() ? aPath : aName) + u" is a stack, which cannot be imported."_s};
}

void CVelumCliFiles::CheckFolder(const QString& aOut) {
  if (CVelumCliOutput::IsStream(aOut)) return;
  const QFileInfo out(CVelumOs::RealPath(aOut));
  if (out.isDir()) throw TVelumRefusal{aOut + u" is a folder."_s};
  const QString folder = out.absolutePath();
  if (!QFileInfo(folder).isDir())
    throw TVelumRefusal{u"%1 cannot be written: there is no folder %2."_s.arg(aOut, folder)};
}

void CVelumCliFiles::CheckNewStack(const QString& aOut, const QString& aSource) {
  CheckFolder(aOut);
  if (SameFile(aOut, aSource)) throw TVelumRefusal{aOut + u" is the file that is read; it would be lost."_s};
  if (!CVelumCliOutput::IsStream(aOut) && QFileInfo::exists(aOut) && !IsStack(aOut))
    throw TVelumRefusal{aOut + u" is there and is no stack; it stays as it is."_s};
}
