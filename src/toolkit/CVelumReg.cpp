#include "toolkit/CVelumReg.h"

#include "core/CVelumError.h"

#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <memory>

namespace {

const QString EOptions = u"Options"_s;

std::unique_ptr<QSettings> gUserStore;

std::unique_ptr<QSettings> NewStore(bool aMachine) {
  auto store = std::make_unique<QSettings>(QSettings::NativeFormat,
                                           aMachine ? QSettings::SystemScope : QSettings::UserScope,
                                           u"Brindleway"_s, u"Orvelles"_s);
  store->setFallbacksEnabled(false);
  return store;
}

// Renames aPath to the first free name with ".broken" and a number.
void SetAside(const QString& aPath) {
  int num = 1;
  while (QFile::exists(u"%1.broken%2"_s.arg(aPath).arg(num))) ++num;
  QFile::rename(aPath, u"%1.broken%2"_s.arg(aPath).arg(num));
}

QSettings& UserStore() {
  if (gUserStore) return *gUserStore;
  gUserStore = NewStore(false);
  if (gUserStore->status() == QSettings::FormatError) {
    const QString path = gUserStore->fileName();
    SetAside(path);
    gUserStore.reset();
    gUserStore = NewStore(false);
  }
  return *gUserStore;
}

QString Key(const QString& aSection, const QString& aName) {
  return u"1.x/"_s + aSection + u'/' + aName;
}

// A value typed by hand with a comma in it arrives as a list.
QString TextOf(const QVariant& aValue) {
  return aValue.typeId() == QMetaType::QStringList ? aValue.toStringList().join(u", "_s) : aValue.toString();
}

} // namespace

namespace CVelumReg {

void SetFolder(const QString& aFolder) {
  gUserStore.reset();
  const QString usual = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, aFolder.isEmpty() ? usual : aFolder);
}

QString FileName() {
  return UserStore().fileName();
}

void GetVal(const QString& aSection, const QString& aName, QString& aVal, bool& aFound, bool aMachine) {
  const QString key = Key(aSection, aName);
  aVal = TextOf(aMachine ? NewStore(true)->value(key) : UserStore().value(key));
  aFound = !aVal.isEmpty();
}

void PutVal(const QString& aSection, const QString& aName, const QString& aVal, bool aMachine) {
  PutVals(aSection, {{aName, aVal}}, aMachine);
}

void PutVals(const QString& aSection, const QList<QPair<QString, QString>>& aVals, bool aMachine) {
  if (aVals.isEmpty()) return;
  const std::unique_ptr<QSettings> machine = aMachine ? NewStore(true) : nullptr;
  QSettings& store = machine ? *machine : UserStore();
  for (const auto& [name, val] : aVals) store.setValue(Key(aSection, name), val);
  store.sync();
  const int res = store.status();
  // A store that failed keeps failing: the next call starts anew.
  if (res != QSettings::NoError && !machine) gUserStore.reset();
  CVelumError::Assert(res == QSettings::NoError,
                      u"PutVal res %1, key=%2"_s.arg(QString::number(res), aVals.first().first));
}

void GetBoolVal(const QString& aName, bool& aVal, bool aDefault) {
  QString text;
  bool found = false;
  GetVal(EOptions, aName, text, found, false);
  text = text.toUpper();
  aVal = text == u"TRUE"_s || (text != u"FALSE"_s && aDefault);
}

void PutBoolVal(const QString& aName, bool aVal) {
  PutVal(EOptions, aName, BoolText(aVal), false);
}

QString BoolText(bool aVal) {
  return aVal ? u"True"_s : u"False"_s;
}

} // namespace CVelumReg
