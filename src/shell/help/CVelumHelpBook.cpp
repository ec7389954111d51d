#include "shell/help/CVelumHelpBook.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHelpEngine>
#include <QHelpFilterEngine>
#include <QStandardPaths>

namespace {

const QString EFile = u"orvelles.qch"_s;
const QString ESpace = u"orvelles"_s;
const QString EStartPage = u"Start"_s;
const QString EFolder = u"help-"_s;

// A folder for this version of the file; those of others are removed.
QString CacheFolder(const QString& aFile) {
  const QFileInfo file(aFile);
  const QString name = EFolder + QString::number(file.size()) + u'-' +
                       QString::number(file.lastModified().toMSecsSinceEpoch());
  const QDir cache(QStandardPaths::writableLocation(QStandardPaths::CacheLocation));
  for (const QString& other : cache.entryList({EFolder + u'*'}, QDir::Dirs))
    if (other != name) QDir(cache.filePath(other)).removeRecursively();
  return cache.filePath(name);
}

} // namespace

CVelumHelpBook::CVelumHelpBook() {
  const QString file = FileName();
  if (file.isEmpty() || Open(file, CacheFolder(file))) return;
  iTemporary = std::make_unique<QTemporaryDir>();
  if (!iTemporary->isValid() || !Open(file, iTemporary->path())) iEngine.reset();
}

CVelumHelpBook::~CVelumHelpBook() = default;

QString CVelumHelpBook::FileName() {
  const QDir program(QCoreApplication::applicationDirPath());
  for (const QString& folder : {u"."_s, u"../share/orvelles"_s, u"../help"_s}) {
    const QFileInfo file(program.filePath(folder + u'/' + EFile));
    if (file.isFile()) return file.canonicalFilePath();
  }
  return {};
}

bool CVelumHelpBook::Open(const QString& aFile, const QString& aFolder) {
  if (!QDir().mkpath(aFolder)) return false;
  iEngine = std::make_unique<QHelpEngine>(aFolder + u"/orvelles.qhc"_s);
  iEngine->setReadOnly(false);
  iEngine->setUsesFilterEngine(true);
  if (!iEngine->setupData()) return false;
  // The collection may name the file by a place where it lay before.
  if (iEngine->documentationFileName(ESpace) != aFile) {
    iEngine->unregisterDocumentation(ESpace);
    if (!iEngine->registerDocumentation(aFile)) return false;
  }
  return !Data(Url(EStartPage)).isEmpty();
}

QUrl CVelumHelpBook::Url(const QString& aPage) {
  return QUrl(u"qthelp://"_s + ESpace + u"/help/"_s + aPage + u".htm"_s);
}

QString CVelumHelpBook::Name(const QUrl& aPage) {
  return QFileInfo(aPage.path()).completeBaseName();
}

QByteArray CVelumHelpBook::Data(const QUrl& aPage) const {
  return iEngine && iEngine->findFile(aPage).isValid() ? iEngine->fileData(aPage) : QByteArray();
}

QUrl CVelumHelpBook::Find(const QString& aPage) const {
  // The name of a form's page begins those of its controls.
  for (QString name = aPage; !name.isEmpty(); name.chop(1))
    if (!Data(Url(name)).isEmpty()) return Url(name);
  return Url(EStartPage);
}
