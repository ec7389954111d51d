#include "core/CVelumLib.h"

#include "core/CVelumChecked.h"
#include "core/CVelumMsg.h"
#include "core/file/CVelumOs.h"
#include "core/text/CVelumDays.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringDecoder>
#include <array>
#include <cmath>

namespace {

using CVelumChecked::Add;
using CVelumChecked::Sub;

std::array<qint16, 11> gFileNumUsed{}; // index 0 is never taken

constexpr std::array<const char16_t*, 12> EMonths = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                                     u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
constexpr std::array<const char16_t*, 7> EDays = {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"};

// What the code page 1252 has at 128 to 159; codes that it leaves free stand for themselves.
constexpr std::array<char16_t, 32> ECodePage = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Code of a character in the code page, -1 when it has none.
int CodeOf(char16_t aChar) {
  if (aChar < 128 || (aChar >= 160 && aChar < 256)) return aChar;
  for (size_t i = 0; i < ECodePage.size(); ++i)
    if (ECodePage[i] == aChar) return 128 + static_cast<int>(i);
  return -1;
}

bool IsAscii(QStringView aText) {
  char16_t bits = 0;
  for (const QChar c : aText) bits |= c.unicode();
  return bits < 128;
}

int HexDigit(QChar aChar) {
  const char16_t c = aChar.unicode();
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

// The byte of one or two digits.
char HexByte(QStringView aDigits) {
  int byte = 0;
  for (const QChar c : aDigits) {
    const int digit = HexDigit(c);
    if (digit < 0) break;
    byte = byte * 16 + digit;
  }
  return static_cast<char>(byte);
}

QByteArray HexPairs(QStringView aHex, qsizetype aCount) {
  QByteArray bytes(aCount, Qt::Uninitialized);
  for (qsizetype i = 0; i < aCount; ++i)
    bytes[i] = HexByte(aHex.sliced(2 * i).first(qMin(qsizetype{2}, aHex.size() - 2 * i)));
  return bytes;
}

// The number in the aLen characters at aPos, which counts from 1.
int NumberAt(QStringView aText, qsizetype aPos, qsizetype aLen) {
  bool ok = false;
  const int number = aText.mid(aPos - 1, aLen).toInt(&ok);
  if (!ok) CVelumError::RaiseHost(EHostTypeMismatch, aText.toString());
  return number;
}

// 1 to 12; an unknown name that is let pass counts as January.
int MonthOf(QStringView aName) {
  for (size_t i = 0; i < EMonths.size(); ++i)
    if (aName == QStringView(EMonths[i])) return static_cast<int>(i) + 1;
  CVelumError::Assert(false, u"HeaderTime month"_s);
  return 1;
}

} // namespace

void CVelumLib::InitLib() {
  std::fill_n(gFileNumUsed.begin(), 10, qint16{0});
}

bool CVelumLib::StartsWith(QStringView aText, QStringView aPrefix) {
  return aText.startsWith(aPrefix);
}

QString CVelumLib::RightAlignNum(qint64 aNum, int aWidth) {
  const qsizetype width = qMax(aWidth, 0);
  const QString digits = QString::number(aNum);
  return digits.size() == width ? digits : QString(width - digits.size(), u' ') + digits.right(width);
}

void CVelumLib::ReplaceAll(QString& aText, const QString& aFind, const QString& aReplace) {
  if (!aFind.isEmpty()) aText.replace(aFind, aReplace);
}

void CVelumLib::SplitAt(const QString& aText, const QString& aSep, QString& aLeft, QString& aRight) {
  const qsizetype pos = aText.indexOf(aSep);
  const QString left = pos < 0 ? aText : aText.first(pos);
  aRight = pos < 0 ? QString() : aText.sliced(pos + aSep.size());
  aLeft = left;
}

void CVelumLib::InsertAt(const QString& aIns, qsizetype aPos, QString& aText) {
  if (aPos < 0) CVelumError::RaiseHost(EHostBadCall);
  aText.insert(qMin(aPos, aText.size()), aIns);
}

void CVelumLib::SplitList(const QString& aSep, const QString& aText, QList<QString>& aArray) {
  if (aText.isEmpty()) return;
  if (aSep.isEmpty()) {
    aArray.append(aText);
    return;
  }
  QStringView rest(aText);
  while (!rest.isEmpty()) {
    const qsizetype pos = rest.indexOf(aSep);
    aArray.append((pos < 0 ? rest : rest.first(pos)).toString());
    rest = pos < 0 ? QStringView() : rest.sliced(pos + aSep.size());
  }
}

void CVelumLib::SplitLines(const QString& aText, QList<QString>& aArray) {
  SplitList(u"\r\n"_s, aText, aArray);
}

void CVelumLib::SplitCommaList(const QString& aText, QList<QString>& aArray) {
  SplitList(u","_s, aText, aArray);
}

bool CVelumLib::IsBlank(QStringView aText) {
  return std::all_of(aText.begin(), aText.end(), [](QChar aChar) { return aChar == u' '; });
}

bool CVelumLib::IsNotBlank(QStringView aText) {
  return !IsBlank(aText);
}

QStringView CVelumLib::TrimBlanks(QStringView aText) {
  while (aText.startsWith(u' ')) aText = aText.sliced(1);
  while (aText.endsWith(u' ')) aText.chop(1);
  return aText;
}

QString CVelumLib::ToCrLf(const QString& aText) {
  QString text;
  text.reserve(aText.size());
  for (qsizetype i = 0; i < aText.size(); ++i) {
    const QChar c = aText[i];
    if (c == u'\r' && i + 1 < aText.size() && aText[i + 1] == u'\n') ++i;
    if (c == u'\r' || c == u'\n')
      text += u"\r\n"_s;
    else
      text += c;
  }
  return text;
}

QString CVelumLib::ToUpperByLetter(const QString& aText) {
  QString text = aText;
  QChar* const letters = text.data();
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (const char16_t c = letters[i].unicode(); c < 128) {
      if (c >= u'a' && c <= u'z') letters[i] = QChar(static_cast<char16_t>(c - u'a' + u'A'));
    } else if (letters[i].isHighSurrogate() && i + 1 < text.size() && letters[i + 1].isLowSurrogate()) {
      const char32_t upper = QChar::toUpper(QChar::surrogateToUcs4(letters[i], letters[i + 1]));
      letters[i++] = QChar(QChar::highSurrogate(upper));
      letters[i] = QChar(QChar::lowSurrogate(upper));
    } else {
      letters[i] = letters[i].toUpper();
    }
  }
  return text;
}

void CVelumLib::Inc(qint32& aNum) {
  aNum = Add<qint32>(aNum, 1);
}
void CVelumLib::Dec(qint32& aNum) {
  aNum = Sub<qint32>(aNum, 1);
}
void CVelumLib::Inc(qint16& aNum) {
  aNum = Add<qint16>(aNum, 1);
}
void CVelumLib::Dec(qint16& aNum) {
  aNum = Sub<qint16>(aNum, 1);
}

QString CVelumLib::StrToHex(const QString& aText) {
  return BytesToHex(ToCodePage(aText), false);
}

QString CVelumLib::HexToStr(const QString& aHex) {
  return FromCodePage(HexPairs(aHex, (aHex.size() + 1) / 2));
}

QByteArray CVelumLib::HexToBytes(QStringView aHex) {
  return HexPairs(aHex, aHex.size() / 2);
}

QString CVelumLib::BytesToHex(const QByteArray& aBytes, bool aWithBlanks) {
  return QString::fromLatin1((aWithBlanks ? aBytes.toHex(' ') : aBytes.toHex()).toUpper());
}

double CVelumLib::MmToTwips(double aMm) {
  return aMm * 56.7;
}
double CVelumLib::TwipsToPixels(double aTwips) {
  return aTwips / 15;
}
double CVelumLib::PixelsToTwips(double aPixels) {
  return aPixels * 15;
}

QString CVelumLib::ToUtf8(const QString& aText) {
  return QString::fromLatin1(aText.toUtf8());
}

QString CVelumLib::FromUtf8(const QString& aBytes) {
  // A mark of the byte order is a character like any other here.
  QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::ConvertInitialBom);
  return decoder(aBytes.toLatin1());
}

QString CVelumLib::FromCodePage(const QByteArray& aBytes) {
  QString text = QString::fromLatin1(aBytes);
  for (QChar& c : text) c = QChar(FromCodePage(c.unicode()));
  return text;
}

char16_t CVelumLib::FromCodePage(char16_t aCode) {
  return aCode >= 128 && aCode < 160 ? ECodePage[aCode - 128U] : aCode;
}

QByteArray CVelumLib::ToCodePage(const QString& aText, int* aLacking) {
  if (aLacking) *aLacking = 0;
  if (IsAscii(aText)) return aText.toLatin1();
  QByteArray bytes;
  bytes.reserve(aText.size());
  int lacking = 0;
  for (qsizetype i = 0; i < aText.size(); ++i) {
    const int code = CodeOf(aText[i].unicode());
    bytes += code < 0 ? '?' : static_cast<char>(code);
    if (code >= 0) continue;
    ++lacking;
    // A pair is one character.
    if (aText[i].isHighSurrogate() && i + 1 < aText.size() && aText[i + 1].isLowSurrogate()) ++i;
  }
  if (aLacking) *aLacking = lacking;
  return bytes;
}

bool CVelumLib::FileExists(const QString& aPath) {
  const QFileInfo info(aPath);
  return info.exists() && !info.isDir();
}

void CVelumLib::CheckFile(const QString& aPath, const QString& aProc) {
  const int error = CVelumOs::WhyNoFile(aPath);
  if (error == 0) return;
  CVelumError::Throw(CVelumOs::IsDenied(error) ? EMsgNoFileAccess : EMsgFileNotFound, aProc, aPath, {});
}

void CVelumLib::KillFile(const QString& aPath) {
  if (!aPath.isEmpty()) QFile::remove(aPath);
}

void CVelumLib::SplitPath(const QString& aPath, QString& aDir, QString& aName) {
  const qsizetype pos = aPath.lastIndexOf(u'/');
  QString dir = aPath.first(qMax(pos, qsizetype{0}));
  while (dir.size() > 1 && dir.endsWith(u'/')) dir.chop(1);
  if (pos >= 0 && dir.isEmpty()) dir = u"/"_s;
  aName = aPath.sliced(pos + 1);
  aDir = dir;
}

QString CVelumLib::GetDocDir() {
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  CVelumError::Assert(!documents.isEmpty(), u"GetDocDir retVal"_s);
  if (documents.isEmpty()) return {};
  const QString dir = documents + u"/Orvelles"_s;
  return QDir(dir).exists() ? dir : QString();
}

void CVelumLib::SetFileDate(const QString& aPath, double aDateTime) {
  QFile file(aPath);
  if (!file.exists() || !file.open(QIODevice::ReadWrite)) return;
  file.setFileTime(CVelumDays::ToDateTime(LocalToUtc(aDateTime), Qt::UTC), QFileDevice::FileModificationTime);
}

double CVelumLib::HeaderTime(const QString& aText) {
  QString weekday;
  QString rest;
  SplitAt(aText, u" "_s, weekday, rest);
  const int month = MonthOf(QStringView(rest).mid(3, 3));
  const double day = CVelumDays::Build(NumberAt(rest, 8, 4), month, NumberAt(rest, 1, 2));
  const int seconds = NumberAt(rest, 13, 2) * 3600 + NumberAt(rest, 16, 2) * 60 + NumberAt(rest, 19, 2);
  return UtcToLocal(day + CVelumDays::Join(0, seconds));
}

double CVelumLib::UtcToLocal(double aDateTime) {
  return CVelumDays::FromDateTime(CVelumDays::ToDateTime(aDateTime, Qt::UTC).toLocalTime());
}

double CVelumLib::LocalToUtc(double aDateTime) {
  const auto seconds = [](double aDays) { return std::llround(aDays * CVelumDays::ESecondsPerDay); };
  const auto days = [](qint64 aSeconds) { return CVelumDays::Join(0, aSeconds); };
  const qint64 local = seconds(aDateTime);
  // The offset at the local time taken as a universal one may lie on the other side of a change.
  const qint64 first = local - (seconds(UtcToLocal(aDateTime)) - local);
  const qint64 error = seconds(UtcToLocal(days(first))) - local;
  return days(first - error);
}

QString CVelumLib::HttpDate(double aDateTime) {
  const QDateTime utc = CVelumDays::ToDateTime(LocalToUtc(aDateTime), Qt::UTC);
  const QDate date = utc.date();
  const auto name = [](const char16_t* aName) { return QString::fromUtf16(aName); };
  return u"%1, %2 %3 %4 %5 GMT"_s.arg(name(EDays[static_cast<size_t>(date.dayOfWeek() % 7)]))
      .arg(date.day(), 2, 10, QChar(u'0'))
      .arg(name(EMonths[static_cast<size_t>(date.month() - 1)]))
      .arg(date.year(), 4, 10, QChar(u'0'))
      .arg(utc.time().toString(u"HH:mm:ss"));
}

qint16 CVelumLib::AllocFileNum() {
  size_t num = 1;
  while (num < gFileNumUsed.size() && gFileNumUsed[num] != 0) ++num;
  if (num == gFileNumUsed.size()) CVelumError::RaiseHost(EHostIndex);
  gFileNumUsed[num] = -1;
  return static_cast<qint16>(num);
}

void CVelumLib::ReleaseFileNum(qint16 aNum) {
  const auto num =
      static_cast<size_t>(CVelumChecked::Index<int>(aNum, static_cast<int>(gFileNumUsed.size())));
  CVelumError::Assert(gFileNumUsed[num] != 0, u"FreeFileNum used"_s);
  gFileNumUsed[num] = 0;
}
