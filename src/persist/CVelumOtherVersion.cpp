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
  QFileInfo info(aPath);
  QString time = info.lastModified().toString(u"yyyy-MM-dd hh.mm.ss"_s);
  QString ending = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
  for (int num = 1;; ++num) {
    QString count = num == 1 ? QString() : u' ' + QString::number(num);
    QString rest = u" (other version "_s + time + count + u')' + ending;
    QString name = info.absolutePath() + u'/' + CVelumBesideName::Cut(info.completeBaseName(), rest) + rest;
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
  TFd to{CVelumOs::Open(copy.Path(), O_WRONLY)};
  if (to.iFd < 0) CVelumOs::Raise(errno, copy.Path());
  QByteArray piece(EPiece, Qt::Uninitialized);
  while (qint64 len = CVelumOs::Read(from.iFd, aFrom, piece.data(), EPiece))
    CVelumOs::Write(to.iFd, copy.Path(), piece.constData(), len);
  CVelumOs::CopyMode(to.iFd, copy.Path(), aFrom);
  copy.TakePlace();
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
