#include "core/CVelumLib.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include "core/CVelumMsg.h"
#include "core/text/CVelumDays.h"
#include "support/Raised.h"

#include <QDir>
#include <QFileInfo>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <time.h>

namespace {

using namespace CVelumLib;

// An environment variable for the time of a test.
class CEnv {
public:
  CEnv(const char* aName, const QByteArray& aValue)
      : iName(aName), iWasSet(qEnvironmentVariableIsSet(aName)), iOld(qgetenv(aName)) {
    qputenv(aName, aValue);
    tzset();
  }
  ~CEnv() {
    iWasSet ? qputenv(iName, iOld) : qunsetenv(iName);
    tzset();
  }
  CEnv(const CEnv&) = delete;
  CEnv& operator=(const CEnv&) = delete;

private:
  const char* iName;
  bool iWasSet;
  QByteArray iOld;
};

double Moment(int aYear, int aMonth, int aDay, int aHour = 0, int aMinute = 0, int aSecond = 0) {
  return CVelumDays::Join(CVelumDays::DayOf(QDate(aYear, aMonth, aDay)),
                          aHour * 3600 + aMinute * 60 + aSecond);
}

qint64 Seconds(double aDays) {
  return std::llround(aDays * 86400);
}

TEST(CVelumLib, StartsWithIsExact) {
  EXPECT_TRUE(StartsWith(u"abc", u"ab"));
  EXPECT_TRUE(StartsWith(u"abc", u""));
  EXPECT_FALSE(StartsWith(u"abc", u"AB"));
  EXPECT_FALSE(StartsWith(u"a", u"ab"));
}

TEST(CVelumLib, RightAlignNum) {
  EXPECT_EQ(RightAlignNum(42, 5), u"   42"_s);
  EXPECT_EQ(RightAlignNum(-42, 5), u"  -42"_s);
  EXPECT_EQ(RightAlignNum(123456, 3), u"456"_s);
  EXPECT_EQ(RightAlignNum(7, 0), QString());
  EXPECT_EQ(RightAlignNum(7, -2), QString());
}

TEST(CVelumLib, ReplaceAllCountsCase) {
  QString text = u"aAaA"_s;
  ReplaceAll(text, u"a"_s, u"aa"_s);
  EXPECT_EQ(text, u"aaAaaA"_s);
  ReplaceAll(text, {}, u"x"_s);
  EXPECT_EQ(text, u"aaAaaA"_s);
}

TEST(CVelumLib, TrimsBlanksOnly) {
  EXPECT_EQ(CVelumLib::TrimBlanks(u"  a b "), u"a b");
  EXPECT_EQ(CVelumLib::TrimBlanks(u" \ta\n "), u"\ta\n");
  EXPECT_EQ(CVelumLib::TrimBlanks(u"a\u00A0"), u"a\u00A0");
  EXPECT_EQ(CVelumLib::TrimBlanks(u"   "), u"");
  EXPECT_EQ(CVelumLib::TrimBlanks({}), u"");
}

TEST(CVelumLib, CodesOfTheCodePageAreCharacters) {
  EXPECT_EQ(CVelumLib::FromCodePage(0x80), u'€');
  EXPECT_EQ(CVelumLib::FromCodePage(0x81), u'\x81');
  EXPECT_EQ(CVelumLib::FromCodePage(0x9F), u'Ÿ');
  EXPECT_EQ(CVelumLib::FromCodePage(u'a'), u'a');
  EXPECT_EQ(CVelumLib::FromCodePage(0xA0), 0xA0);
  EXPECT_EQ(CVelumLib::FromCodePage(0x20AC), 0x20AC);
}

TEST(CVelumLib, SplitAtTheFirst) {
  QString left;
  QString right;
  SplitAt(u"a: b: c"_s, u": "_s, left, right);
  EXPECT_EQ(left, u"a"_s);
  EXPECT_EQ(right, u"b: c"_s);
  SplitAt(u"abc"_s, u":"_s, left, right);
  EXPECT_EQ(left, u"abc"_s);
  EXPECT_EQ(right, QString());
}

TEST(CVelumLib, SplitAtIntoItself) {
  QString text = u"a,b,c"_s;
  QString other;
  SplitAt(text, u","_s, other, text);
  EXPECT_EQ(other, u"a"_s);
  EXPECT_EQ(text, u"b,c"_s);
  SplitAt(text, u","_s, text, other);
  EXPECT_EQ(text, u"b"_s);
  EXPECT_EQ(other, u"c"_s);
}

TEST(CVelumLib, InsertAt) {
  QString text = u"abc"_s;
  InsertAt(u"-"_s, 1, text);
  EXPECT_EQ(text, u"a-bc"_s);
  InsertAt(u"<"_s, 0, text);
  InsertAt(u">"_s, 99, text);
  EXPECT_EQ(text, u"<a-bc>"_s);
  EXPECT_EQ(Raised([&] { InsertAt(u"x"_s, -1, text); }), EHostBadCall);
}

TEST(CVelumLib, SplitListAppendsPieces) {
  QList<QString> list{u"before"_s};
  SplitCommaList(u"a,b,"_s, list);
  EXPECT_EQ(list, (QList<QString>{u"before"_s, u"a"_s, u"b"_s}));
  list.clear();
  SplitCommaList({}, list);
  EXPECT_TRUE(list.isEmpty());
  SplitCommaList(u",,a"_s, list);
  EXPECT_EQ(list, (QList<QString>{QString(), QString(), u"a"_s}));
  list.clear();
  SplitCommaList(u","_s, list);
  EXPECT_EQ(list, QList<QString>{QString()});
  list.clear();
  SplitLines(u"one\r\ntwo\nstill two\r\n\r\n"_s, list);
  EXPECT_EQ(list, (QList<QString>{u"one"_s, u"two\nstill two"_s, QString()}));
  list.clear();
  SplitList({}, u"abc"_s, list);
  EXPECT_EQ(list, QList<QString>{u"abc"_s});
}

TEST(CVelumLib, OnlyBlanksAreBlank) {
  EXPECT_TRUE(IsBlank(u""));
  EXPECT_TRUE(IsBlank(u"   "));
  EXPECT_FALSE(IsBlank(u"\t"));
  EXPECT_FALSE(IsBlank(u" \u00A0"));
  EXPECT_FALSE(IsNotBlank(u" "));
  EXPECT_TRUE(IsNotBlank(u" x"));
}

TEST(CVelumLib, LineEndsBecomeCrLf) {
  EXPECT_EQ(ToCrLf(u"a\nb\rc\r\nd\n\r"_s), u"a\r\nb\r\nc\r\nd\r\n\r\n"_s);
  EXPECT_EQ(ToCrLf(u"no end"_s), u"no end"_s);
}

TEST(CVelumLib, UpperCaseLetterByLetter) {
  EXPECT_EQ(ToUpperByLetter(u"straße äöü"_s), u"STRAßE ÄÖÜ"_s);
  EXPECT_EQ(ToUpperByLetter(u"\uFB01sh"_s), u"\uFB01SH"_s);
  EXPECT_EQ(ToUpperByLetter(u"\U00010428x"_s), u"\U00010400X"_s);
  EXPECT_EQ(ToUpperByLetter(QString(QChar(0xD801)) + u"x"_s), QString(QChar(0xD801)) + u"X"_s);
}

TEST(CVelumLib, IncAndDecOverflow) {
  qint32 number = 1;
  Inc(number);
  EXPECT_EQ(number, 2);
  Dec(number);
  EXPECT_EQ(number, 1);
  number = std::numeric_limits<qint32>::max();
  EXPECT_EQ(Raised([&] { Inc(number); }), EHostOverflow);
  number = std::numeric_limits<qint32>::min();
  EXPECT_EQ(Raised([&] { Dec(number); }), EHostOverflow);
  qint16 small = 32767;
  EXPECT_EQ(Raised([&] { Inc(small); }), EHostOverflow);
  small = -32768;
  EXPECT_EQ(Raised([&] { Dec(small); }), EHostOverflow);
  EXPECT_EQ(small, -32768);
  Inc(small);
  EXPECT_EQ(small, -32767);
}

TEST(CVelumLib, HexOfText) {
  EXPECT_EQ(StrToHex(u"Aä€\n"_s), u"41E4800A"_s);
  EXPECT_EQ(StrToHex(u"Ω"_s), u"3F"_s);
  EXPECT_EQ(HexToStr(u"41E480"_s), u"Aä€"_s);
  EXPECT_EQ(HexToStr(u"41e4"_s), u"Aä"_s);
  EXPECT_EQ(HexToStr(u"414"_s), u"A\u0004"_s);
  EXPECT_EQ(HexToStr({}), QString());
  EXPECT_EQ(HexToStr(u"4gzz"_s), QString(u"\u0004"_s) + QChar(0));
}

TEST(CVelumLib, HexOfBytes) {
  EXPECT_EQ(HexToBytes(u"00fF10"), QByteArray("\x00\xFF\x10", 3));
  EXPECT_EQ(HexToBytes(u"00ff1"), QByteArray("\x00\xFF", 2));
  EXPECT_EQ(HexToBytes(u"1"), QByteArray());
  EXPECT_EQ(BytesToHex(QByteArray("\x00\xFF\x10", 3), false), u"00FF10"_s);
  EXPECT_EQ(BytesToHex(QByteArray("\x00\xFF\x10", 3), true), u"00 FF 10"_s);
  EXPECT_EQ(BytesToHex({}, true), QString());
}

TEST(CVelumLib, Units) {
  EXPECT_DOUBLE_EQ(MmToTwips(10), 567);
  EXPECT_DOUBLE_EQ(TwipsToPixels(150), 10);
  EXPECT_DOUBLE_EQ(PixelsToTwips(10), 150);
}

TEST(CVelumLib, Utf8InCharacters) {
  EXPECT_EQ(ToUtf8(u"ä€"_s), u"\u00C3\u00A4\u00E2\u0082\u00AC"_s);
  for (const QString& text : {u"plain"_s, u"äΩ\U0001F600"_s, u"\uFEFFmark"_s, QString()})
    EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
}

TEST(CVelumLib, CodePage) {
  QByteArray all(256, '\0');
  for (int i = 0; i < 256; ++i) all[i] = static_cast<char>(i);
  const QString text = FromCodePage(all);
  EXPECT_EQ(text[0x80], u'€');
  EXPECT_EQ(text[0x81], QChar(0x81));
  EXPECT_EQ(text[0x9F], u'Ÿ');
  EXPECT_EQ(text[0xE4], u'ä');
  int lacking = -1;
  EXPECT_EQ(ToCodePage(text, &lacking), all);
  EXPECT_EQ(lacking, 0);
  EXPECT_EQ(ToCodePage(u"aΩ\U0001F600\u0080b"_s, &lacking), "a???b");
  EXPECT_EQ(lacking, 3);
}

TEST(CVelumLib, FilesAndFolders) {
  const TempFolder folder;
  const QString path = folder.Write(u"a b.txt"_s, "x");
  EXPECT_TRUE(FileExists(path));
  EXPECT_FALSE(FileExists(folder.Path()));
  EXPECT_FALSE(FileExists(folder.Path(u"none"_s)));
  EXPECT_FALSE(FileExists({}));
  CheckFile(path, u"p"_s);
  EXPECT_EQ(Raised([&] { CheckFile(folder.Path(u"none"_s), u"p"_s); }), EMsgFileNotFound);
  EXPECT_EQ(gLastError.iP0, folder.Path(u"none"_s));
  EXPECT_EQ(Raised([&] { CheckFile(path + u"/none"_s, u"p"_s); }), EMsgFileNotFound);
  EXPECT_EQ(Raised([&] { CheckFile(folder.Path(), u"p"_s); }), EMsgNoFileAccess);
  KillFile(path);
  EXPECT_FALSE(FileExists(path));
  KillFile(path);
  KillFile({});
  KillFile(folder.Path());
  EXPECT_TRUE(QDir(folder.Path()).exists());
}

TEST(CVelumLib, SplitPath) {
  const auto split = [](const QString& aPath) {
    QString dir;
    QString name;
    SplitPath(aPath, dir, name);
    return dir + u"|"_s + name;
  };
  EXPECT_EQ(split(u"/home/ada/my.Orvelle"_s), u"/home/ada|my.Orvelle"_s);
  EXPECT_EQ(split(u"my.Orvelle"_s), u"|my.Orvelle"_s);
  EXPECT_EQ(split(u"back\\slash"_s), u"|back\\slash"_s);
  EXPECT_EQ(split(u"a/back\\slash"_s), u"a|back\\slash"_s);
  EXPECT_EQ(split(u"/top"_s), u"/|top"_s);
  EXPECT_EQ(split(u"//top"_s), u"/|top"_s);
  EXPECT_EQ(split(u"a//b"_s), u"a|b"_s);
  EXPECT_EQ(split(u"a/b/"_s), u"a/b|"_s);
  EXPECT_EQ(split({}), u"|"_s);
  QString text = u"a/b"_s;
  QString name;
  SplitPath(text, text, name);
  EXPECT_EQ(text, u"a"_s);
  EXPECT_EQ(name, u"b"_s);
}

TEST(CVelumLib, GetDocDirDoesNotMakeTheFolder) {
  const TempFolder home;
  const CEnv env("HOME", home.Path().toUtf8());
  const CEnv config("XDG_CONFIG_HOME", home.Path(u"config"_s).toUtf8());
  EXPECT_EQ(GetDocDir(), QString());
  EXPECT_FALSE(QDir(home.Path(u"Documents/Orvelles"_s)).exists());
  ASSERT_TRUE(QDir().mkpath(home.Path(u"Documents/Orvelles"_s)));
  EXPECT_EQ(GetDocDir(), home.Path(u"Documents/Orvelles"_s));
}

TEST(CVelumLib, HeaderTimeIsLocal) {
  const QString text = u"Sun, 06 Nov 1994 08:49:37 GMT"_s;
  {
    const CEnv zone("TZ", "UTC");
    EXPECT_EQ(Seconds(HeaderTime(text)), Seconds(Moment(1994, 11, 6, 8, 49, 37)));
  }
  {
    const CEnv zone("TZ", "Europe/Berlin");
    EXPECT_EQ(Seconds(HeaderTime(text)), Seconds(Moment(1994, 11, 6, 9, 49, 37)));
    EXPECT_EQ(Seconds(HeaderTime(u"Fri, 01 Jul 1994 23:30:00 GMT"_s)), Seconds(Moment(1994, 7, 2, 1, 30)));
  }
  {
    const CEnv zone("TZ", "America/New_York");
    EXPECT_EQ(Seconds(HeaderTime(text)), Seconds(Moment(1994, 11, 6, 3, 49, 37)));
  }
}

TEST(CVelumLib, HeaderTimeRefusesOtherTexts) {
  ScriptedPresenter presenter;
  EXPECT_EQ(Raised([] { (void)HeaderTime(u"Sun, 06 nov 1994 08:49:37 GMT"_s); }), 1000);
  EXPECT_EQ(gLastError.iP1, u"HeaderTime month"_s);
  const CEnv zone("TZ", "UTC");
  presenter.Answer(true);
  EXPECT_EQ(Seconds(HeaderTime(u"Sun, 06 Xxx 1994 08:49:37 GMT"_s)), Seconds(Moment(1994, 1, 6, 8, 49, 37)));
  EXPECT_EQ(Raised([] { (void)HeaderTime(u"Sun, 06 Nov 1994"_s); }), EHostTypeMismatch);
  EXPECT_EQ(Raised([] { (void)HeaderTime(u"Sun, xx Nov 1994 08:49:37 GMT"_s); }), EHostTypeMismatch);
  presenter.SetDefaultAnswer(true);
  EXPECT_EQ(Raised([] { (void)HeaderTime({}); }), EHostTypeMismatch);
}

TEST(CVelumLib, HttpDate) {
  const CEnv zone("TZ", "America/New_York");
  EXPECT_EQ(HttpDate(Moment(1994, 11, 6, 3, 49, 37)), u"Sun, 06 Nov 1994 08:49:37 GMT"_s);
  EXPECT_EQ(HttpDate(Moment(2024, 6, 8, 22, 5, 9)), u"Sun, 09 Jun 2024 02:05:09 GMT"_s);
  // A moment that is a hair short of a second.
  EXPECT_EQ(HttpDate(Moment(2024, 6, 8, 22, 5, 9) - 1e-7), u"Sun, 09 Jun 2024 02:05:09 GMT"_s);
  for (int day = 1; day <= 7; ++day) {
    const double local = Moment(2023, day + 3, day, 12);
    EXPECT_EQ(Seconds(HeaderTime(HttpDate(local))), Seconds(local));
  }
}

// Every quarter of an hour of the days round the changes of two years, in zones with all sorts of changes.
TEST(CVelumLib, LocalToUtcReversesUtcToLocal) {
  for (const char* name : {"UTC", "Europe/Berlin", "America/New_York", "Australia/Lord_Howe",
                           "America/Santiago", "Asia/Kathmandu", "Pacific/Apia"}) {
    const CEnv zone("TZ", name);
    for (double utc = Moment(2011, 1, 1); utc < Moment(2013, 1, 1); utc += 1.0 / 96) {
      const double local = UtcToLocal(utc);
      // Of a time that comes twice, either moment will do.
      ASSERT_EQ(Seconds(UtcToLocal(LocalToUtc(local))), Seconds(local)) << name << ' ' << utc;
    }
  }
}

TEST(CVelumLib, LocalToUtcRoundAChange) {
  const CEnv zone("TZ", "Europe/Berlin");
  EXPECT_EQ(Seconds(UtcToLocal(Moment(2024, 3, 31, 0, 59, 59))), Seconds(Moment(2024, 3, 31, 1, 59, 59)));
  EXPECT_EQ(Seconds(UtcToLocal(Moment(2024, 3, 31, 1, 0, 0))), Seconds(Moment(2024, 3, 31, 3, 0, 0)));
  EXPECT_EQ(Seconds(LocalToUtc(Moment(2024, 3, 31, 1, 59, 59))), Seconds(Moment(2024, 3, 31, 0, 59, 59)));
  EXPECT_EQ(Seconds(LocalToUtc(Moment(2024, 3, 31, 3, 0, 0))), Seconds(Moment(2024, 3, 31, 1, 0, 0)));
  // Skipped by the clock.
  EXPECT_EQ(Seconds(LocalToUtc(Moment(2024, 3, 31, 2, 30))), Seconds(Moment(2024, 3, 31, 1, 30)));
  EXPECT_EQ(Seconds(LocalToUtc(Moment(2024, 10, 27, 1, 59, 59))), Seconds(Moment(2024, 10, 26, 23, 59, 59)));
  EXPECT_EQ(Seconds(LocalToUtc(Moment(2024, 10, 27, 3, 0, 0))), Seconds(Moment(2024, 10, 27, 2, 0, 0)));
}

TEST(CVelumLib, ImpossibleMomentsAreRefused) {
  EXPECT_EQ(Raised([] { (void)UtcToLocal(1e300); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)LocalToUtc(std::nan("")); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)HttpDate(-1e18); }), EHostOverflow);
}

TEST(CVelumLib, SetFileDate) {
  const TempFolder folder;
  const QString path = folder.Write(u"a"_s, "x");
  const CEnv zone("TZ", "Europe/Berlin");
  SetFileDate(path, Moment(2007, 7, 14, 13, 30, 1));
  EXPECT_EQ(QFileInfo(path).lastModified().toUTC(), QDateTime(QDate(2007, 7, 14), QTime(11, 30, 1), Qt::UTC));
  SetFileDate(folder.Path(u"none"_s), Moment(2007, 7, 14));
  EXPECT_FALSE(folder.Has(u"none"_s));
}

TEST(CVelumLib, TenTextFilesAtMost) {
  ScriptedPresenter presenter;
  InitLib();
  for (int num = 1; num <= 10; ++num) EXPECT_EQ(AllocFileNum(), num);
  EXPECT_EQ(Raised([] { (void)AllocFileNum(); }), EHostIndex);
  ReleaseFileNum(4);
  ReleaseFileNum(2);
  EXPECT_EQ(AllocFileNum(), 2);
  EXPECT_EQ(AllocFileNum(), 4);
  // The start clears 0 to 9 only.
  InitLib();
  for (int num = 1; num <= 9; ++num) EXPECT_EQ(AllocFileNum(), num);
  EXPECT_EQ(Raised([] { (void)AllocFileNum(); }), EHostIndex);
  for (qint16 num = 1; num <= 10; ++num) ReleaseFileNum(num);
  EXPECT_EQ(presenter.Count(), 0);
  EXPECT_EQ(Raised([] { ReleaseFileNum(3); }), 1000);
  EXPECT_EQ(gLastError.iP1, u"FreeFileNum used"_s);
  EXPECT_EQ(Raised([] { ReleaseFileNum(11); }), EHostIndex);
  EXPECT_EQ(Raised([] { ReleaseFileNum(-1); }), EHostIndex);
}

} // namespace
