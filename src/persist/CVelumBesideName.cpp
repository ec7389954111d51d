#include "persist/CVelumBesideName.h"

#include "core/CVelumLib.h"

#include <QCryptographicHash>
#include <QFile>

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

QString CVelumBesideName::Cut(const QString& aBase, const QString& aRest) {
  QString base = aBase;
  while (!base.isEmpty() && Bytes(base + aRest) > EMaxName)
    base.chop(base.size() > 1 && base.back().isLowSurrogate() ? 2 : 1);
  return base;
}
