#include "persist/CVelumOtherVersion.h"

#include "core/CVelumSeams.h"
#include "persist/CVelumBesideName.h"
#include "persist/CVelumNewFile.h"

#include <QDateTime>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>

namespace {

// A name that no file has yet.
QString FreeName(const QString& aPath) {
  const QDateTime time = QFileInfo(aPath).lastModified();
  for (int num = 1;; ++num) {
    const QString name = CVelumBesideName::Dated(aPath, u"other version"_s, time, num);
    if (!CVelumOs::IdOf(name).Exists()) return name;
  }
}

void Copy(const QString& aFrom, const QString& aTo) {
  constexpr qint64 EPiece = 1 << 20;
  CVelumNewFile copy(aTo);
  struct TFd {
    int iFd;
    ~TFd() { CVelumOs::Close(iFd); }
  };
  TFd from{CVelumOs::Open(aFrom, O_RDONLY)};
  if (from.iFd < 0) CVelumOs::Raise(errno, aFrom);
  QByteArray piece(EPiece, Qt::Uninitialized);
  while (qint64 len = CVelumOs::Read(from.iFd, aFrom, piece.data(), EPiece))
    CVelumOs::Write(copy.Fd(), copy.Path(), piece.constData(), len);
  copy.TakePlace(aFrom);
}

} // namespace

QString CVelumOtherVersion::Keep(const QString& aPath) {
  QString name = FreeName(aPath);
  if (!CVelumOs::Link(aPath, name)) Copy(aPath, name);
  CVelumOs::SyncFolderOf(name);
  return name;
}

void CVelumOtherVersion::Tell(const QString& aFilename, const QString& aKept) {
  if (aKept.isEmpty()) return;
  CVelumSeams::Presenter().Tell(
      u"Another program had changed the file %1. Its version was kept as %2."_s.arg(aFilename, aKept));
}
