#include "toolkit/CVelumReg.h"

#include "core/CVelumError.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <algorithm>
#include <memory>
#include <new>

namespace {

const QString EOptions = u"Options"_s;
// Far more than all settings take.
constexpr qint64 EMaxBytes = 1'000'000;

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

// Whether a value is one of the toolkit's own records, which it reads without a bound on how deep they stand
// in each other. The program writes none.
bool HoldsRecord(const QByteArray& aBytes) {
  static const QRegularExpression record(uR"((?m)^[^=\n]*=(.*,)?[\s"]*(@|\\x0*40)Variant\()"_s);
  return aBytes.contains("Variant(") && record.match(QString::fromUtf8(aBytes)).hasMatch();
}

// Whether the file may be one of settings: a small text. The toolkit checks only how its lines begin.
bool IsText(const QString& aPath) {
  QFile file(aPath);
  if (!file.open(QIODevice::ReadOnly)) return !QFileInfo(aPath).isDir();
  if (file.size() > EMaxBytes) return false;
  const QByteArray bytes = file.readAll();
  const auto isControl = [](char aCh) {
    return aCh >= 0 && aCh < ' ' && aCh != '\t' && aCh != '\r' && aCh != '\n';
  };
  return bytes.isValidUtf8() && std::none_of(bytes.begin(), bytes.end(), isControl) && !HoldsRecord(bytes);
}

// Whether the store can be read to its end. A value may claim to be of a kind that takes endless memory.
bool IsSound(const QSettings& aStore) {
  try {
    static_cast<void>(aStore.allKeys());
  } catch (const std::bad_alloc&) {
    return false;
  }
  return aStore.status() != QSettings::FormatError;
}

QSettings& UserStore() {
  if (gUserStore) return *gUserStore;
  gUserStore = NewStore(false);
  const QString path = gUserStore->fileName();
  if (IsText(path) && IsSound(*gUserStore)) return *gUserStore;
  gUserStore.reset();
  SetAside(path);
  gUserStore = NewStore(false);
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
