#include "persist/CVelumAccess.h"

#include "core/file/CVelumOs.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

QString& InstalledFolder() {
  static QString folder;
  return folder;
}

} // namespace

QString CVelumAccess::FolderOfProgram() {
  return QDir(QCoreApplication::applicationDirPath()).filePath(u"../share/orvelles"_s);
}

void CVelumAccess::SetInstalledFolder(const QString& aFolder) {
  InstalledFolder() = aFolder.isEmpty() ? QString() : QFileInfo(aFolder).canonicalFilePath();
}

QString CVelumAccess::WhyReadOnly(const QString& aPath) {
  if (aPath.isEmpty()) return {};
  const QString path = CVelumOs::RealPath(aPath);
  const QString folder = QFileInfo(path).absolutePath();
  if (!InstalledFolder().isEmpty() && folder == InstalledFolder())
    return u"The file %1 belongs to the program."_s.arg(aPath);
  if (!CVelumOs::MayWrite(path)) return u"The file %1 may only be read."_s.arg(aPath);
  if (!CVelumOs::MayWrite(folder)) return u"Nothing may be written to the folder %1."_s.arg(folder);
  return {};
}
