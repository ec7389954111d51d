#include "persist/CVelumBesideName.h"

#include "core/CVelumLib.h"
#include "core/file/CVelumOs.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr qsizetype EMaxName = 255;
// A journal that is set aside gets a longer name yet.
constexpr qsizetype ELongestSuffix = 15; // "-journal-unused"

qsizetype Bytes(const QString& aName) {
  return QFile::encodeName(aName).size();
}

} // namespace

QString CVelumBesideName::For(const QString& aPath, const QString& aSuffix) {
  QString folder;
  QString name;
  CVelumLib::SplitPath(aPath, folder, name);
  if (Bytes(name) + ELongestSuffix <= EMaxName) return aPath + aSuffix;
  const QByteArray sum = QCryptographicHash::hash(QFile::encodeName(name), QCryptographicHash::Md5).toHex();
  return aPath.chopped(name.size()) + u"long-name-"_s + QString::fromLatin1(sum) + aSuffix;
}

QString CVelumBesideName::Dated(const QString& aPath, const QString& aWhat, const QDateTime& aTime,
                                int aNum) {
  const QFileInfo info(aPath);
  const QString ending = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
  const QString count = aNum == 1 ? QString() : u' ' + QString::number(aNum);
  const QString rest = u" ("_s + aWhat + aTime.toString(u" yyyy-MM-dd hh.mm.ss"_s) + count + u')' + ending;
  return CVelumOs::FolderOf(aPath) + u'/' + Cut(info.completeBaseName(), rest) + rest;
}

QString CVelumBesideName::Cut(const QString& aBase, const QString& aRest) {
  QString base = aBase;
  while (!base.isEmpty() && Bytes(base + aRest) > EMaxName)
    base.chop(base.size() > 1 && base.back().isLowSurrogate() ? 2 : 1);
  return base;
}
