#include "core/text/CVelumLocale.h"
#include "support/PrintQt.h"

#include "core/CVelumObject.h"
#include "core/text/CVelumDays.h"

#include <gtest/gtest.h>
#include <optional>

namespace {

using namespace CVelumLocale;

class CVelumLocaleTest : public testing::Test {
protected:
  void TearDown() override { Init(u"en_US"_s); }
};

double Day(int aYear, int aMonth, int aDay) {
  return static_cast<double>(CVelumDays::DayOf(QDate(aYear, aMonth, aDay)));
}
double Time(int aHour, int aMinute, int aSecond = 0) {
  return CVelumDays::Join(0, aHour * 3600 + aMinute * 60 + aSecond);
}
std::optional<double> Moment(const QString& aText) {
  double moment = 0.0;
  return ToDateTime(aText, moment) ? std::optional(moment) : std::nullopt;
}
std::optional<double> Number(const QString& aText) {
  double number = 0.0;
  return ToReal(aText, number) ? std::optional(number) : std::nullopt;
}
std::optional<int> Short(const QString& aText) {
  qint16 number = 0;
  return ToShort(aText, number) ? std::optional<int>(number) : std::nullopt;
}
std::optional<int> Int(const QString& aText) {
  qint32 number = 0;
  return ToInt(aText, number) ? std::optional<int>(number) : std::nullopt;
}

TEST_F(CVelumLocaleTest, ShortDatesHaveFourDigitYears) {
  Init(u"en_US"_s);
  EXPECT_EQ(ShortDate(29221), u"1/1/1980"_s);
  EXPECT_EQ(ShortDate(Day(2007, 12, 31)), u"12/31/2007"_s);
  EXPECT_EQ(ShortDate(0), u"12/30/1899"_s);
  EXPECT_EQ(ShortDate(-1), u"12/29/1899"_s);
  EXPECT_EQ(ShortDate(Day(850, 2, 3)), u"2/3/0850"_s);
  Init(u"de_DE"_s);
  EXPECT_EQ(ShortDate(Day(2007, 1, 31)), u"31.01.2007"_s);
  Init(u"C"_s);
  EXPECT_EQ(ShortDate(Day(2007, 1, 31)), u"2007-01-31"_s);
  Init(u"bg_BG"_s);
  EXPECT_EQ(ShortDate(Day(2007, 1, 31)), u"31.01.2007 г."_s);
}

TEST_F(CVelumLocaleTest, LongTimesHaveNoZone) {
  Init(u"en_US"_s);
  EXPECT_EQ(LongTime(0), u"12:00:00 AM"_s);
  EXPECT_EQ(LongTime(Time(9, 5, 7)), u"9:05:07 AM"_s);
  EXPECT_EQ(LongTime(0.5), u"12:00:00 PM"_s);
  EXPECT_EQ(LongTime(Time(23, 59, 59)), u"11:59:59 PM"_s);
  // Days in front of the time do not show.
  EXPECT_EQ(LongTime(29221.75), u"6:00:00 PM"_s);
  Init(u"de_DE"_s);
  EXPECT_EQ(LongTime(Time(9, 5, 7)), u"09:05:07"_s);
  Init(u"C"_s);
  EXPECT_EQ(LongTime(Time(9, 5, 7)), u"09:05:07"_s);
  Init(u"fr_CA"_s);
  EXPECT_EQ(LongTime(Time(9, 5, 7)), u"09 h 05 min 07 s"_s);
  Init(u"be_BY"_s);
  EXPECT_EQ(LongTime(Time(9, 5, 7)), u"09:05:07"_s);
  // Would be the tenth of November.
  Init(u"da_DK"_s);
  EXPECT_EQ(LongTime(Time(10, 11, 12)), u"10:11:12"_s);
}

TEST_F(CVelumLocaleTest, ImpossibleMomentsAreRefused) {
  EXPECT_ANY_THROW((void)ShortDate(1e300));
  EXPECT_ANY_THROW((void)LongTime(-1e300));
}

TEST_F(CVelumLocaleTest, ReadsDatesInTheOrderOfTheLocale) {
  Init(u"en_US"_s);
  EXPECT_EQ(Moment(u"1/2/2003"_s), Day(2003, 1, 2));
  EXPECT_EQ(Moment(u"01/02/03"_s), Day(2003, 1, 2));
  EXPECT_EQ(Moment(u" 12/31/1999  "_s), Day(1999, 12, 31));
  EXPECT_EQ(Moment(u"2/29/2024"_s), Day(2024, 2, 29));
  EXPECT_EQ(Moment(u"2003-01-02"_s), Day(2003, 1, 2));
  EXPECT_EQ(Moment(u"12/30/1899"_s), 0.0);
  EXPECT_EQ(Moment(u"1/1/0100"_s), Day(100, 1, 1));
  Init(u"de_DE"_s);
  EXPECT_EQ(Moment(u"1.2.2003"_s), Day(2003, 2, 1));
  EXPECT_EQ(Moment(u"01.02.03"_s), Day(2003, 2, 1));
  EXPECT_EQ(Moment(u"2003-01-02"_s), Day(2003, 1, 2));
}

TEST_F(CVelumLocaleTest, TwoDigitYears) {
  Init(u"en_US"_s);
  EXPECT_EQ(Moment(u"1/1/00"_s), Day(2000, 1, 1));
  EXPECT_EQ(Moment(u"1/1/29"_s), Day(2029, 1, 1));
  EXPECT_EQ(Moment(u"1/1/30"_s), Day(1930, 1, 1));
  EXPECT_EQ(Moment(u"1/1/99"_s), Day(1999, 1, 1));
}

TEST_F(CVelumLocaleTest, RefusesAllOtherDates) {
  Init(u"en_US"_s);
  for (const char* text :
       {"",           " ",          "x",          "1",          "1/2",        "1/2/3",
        "1/2/203",    "1/2/20033",  "001/2/2003", "1/002/2003", "13/1/2003",  "2/29/2023",
        "2/30/2024",  "0/1/2003",   "1/0/2003",   "1/2/0099",   "31.12.2003", "1-2-2003",
        "2003-1-2",   "2003-13-01", "2003-1 -02", "2003- 1-02", "2003/01/02", "1/2/2003x",
        "1/2/2003 x", "x1/2/2003",  "Jan 2 2003", "-1/2/2003",  "20030102",   "1/2/2003 1/2/2003"})
    EXPECT_FALSE(Moment(QString::fromLatin1(text))) << text;
  Init(u"de_DE"_s);
  for (const char* text : {"1/2/2003", "12.31.2003", "1.2", "1.234", "1,5"})
    EXPECT_FALSE(Moment(QString::fromLatin1(text))) << text;
}

TEST_F(CVelumLocaleTest, ReadsTimes) {
  Init(u"en_US"_s);
  EXPECT_EQ(Moment(u"9:05"_s), Time(9, 5));
  EXPECT_EQ(Moment(u"09:05:07"_s), Time(9, 5, 7));
  EXPECT_EQ(Moment(u"23:59:59"_s), Time(23, 59, 59));
  EXPECT_EQ(Moment(u"0:00"_s), 0.0);
  EXPECT_EQ(Moment(u"9:05 PM"_s), Time(21, 5));
  EXPECT_EQ(Moment(u"9:05:07pm"_s), Time(21, 5, 7));
  EXPECT_EQ(Moment(u"12:00 am"_s), 0.0);
  EXPECT_EQ(Moment(u"12:00 PM"_s), 0.5);
  EXPECT_EQ(Moment(u"9:05\u202FAM"_s), Time(9, 5));
  Init(u"de_DE"_s);
  EXPECT_EQ(Moment(u"9:05"_s), Time(9, 5));
  EXPECT_EQ(Moment(u"21:05:07"_s), Time(21, 5, 7));
  Init(u"da_DK"_s);
  EXPECT_EQ(Moment(u"9.05"_s), Time(9, 5));
  EXPECT_EQ(Moment(u"9:05:07"_s), Time(9, 5, 7));
  Init(u"ko_KR"_s);
  EXPECT_EQ(Moment(u"오후 9:05"_s), Time(21, 5));
  Init(u"fr_CA"_s);
  EXPECT_EQ(Moment(u"9 h 05 min 07 s"_s), Time(9, 5, 7));
  EXPECT_EQ(Moment(u"9 h 05"_s), Time(9, 5));
}

TEST_F(CVelumLocaleTest, RefusesAllOtherTimes) {
  Init(u"en_US"_s);
  for (const char* text :
       {":", "9:", ":05", "9:5", "9:05:7", "24:00", "9:60", "9:05:60", "0:30 AM", "13:00 PM", "9 PM", "PM",
        "PM 9:05", "9:05 XM", "9:05:07:08", "9:05 AM PM", "9.05", "009:05"})
    EXPECT_FALSE(Moment(QString::fromLatin1(text))) << text;
}

TEST_F(CVelumLocaleTest, ReadsDateAndTime) {
  Init(u"en_US"_s);
  EXPECT_EQ(Moment(u"1/2/2003 18:00"_s), Day(2003, 1, 2) + 0.75);
  EXPECT_EQ(Moment(u"1/2/2003   6:00:00 PM"_s), Day(2003, 1, 2) + 0.75);
  EXPECT_EQ(Moment(u"2003-01-02 06:00"_s), Day(2003, 1, 2) + 0.25);
  EXPECT_FALSE(Moment(u"1/2/200318:00"_s));
  EXPECT_FALSE(Moment(u"18:00 1/2/2003"_s));
  EXPECT_FALSE(Moment(u"1/2/2003 25:00"_s));
  Init(u"hu_HU"_s);
  EXPECT_EQ(Moment(u"2003. 01. 02. 6:00"_s), Day(2003, 1, 2) + 0.25);
  Init(u"bg_BG"_s);
  EXPECT_EQ(Moment(u"2.01.03 г. 6:00"_s), Day(2003, 1, 2) + 0.25);
  EXPECT_EQ(Moment(u"2.01.03 6:00"_s), Day(2003, 1, 2) + 0.25);
}

TEST_F(CVelumLocaleTest, RealPicture) {
  Init(u"en_US"_s);
  EXPECT_EQ(Real(1234567.5, 8, false), u"1,234,567.5"_s);
  EXPECT_EQ(Real(1234567.5, 2, true), u"1,234,567.50"_s);
  EXPECT_EQ(Real(1234567.5, 0, true), u"1,234,568."_s);
  EXPECT_EQ(Real(5, 8, false), u"5."_s);
  EXPECT_EQ(Real(0, 8, false), u"0."_s);
  EXPECT_EQ(Real(0, 2, true), u"0.00"_s);
  EXPECT_EQ(Real(-999, 0, true), u"-999."_s);
  EXPECT_EQ(Real(-1000, 0, true), u"-1,000."_s);
  EXPECT_EQ(Real(0.000000004, 8, false), u"0."_s);
  EXPECT_EQ(Real(-0.000000004, 8, false), u"0."_s);
  EXPECT_EQ(Real(0.000000005, 8, false), u"0.00000001"_s);
  EXPECT_EQ(Real(0.1, 8, false), u"0.1"_s);
  EXPECT_EQ(Real(99999999999999.9, 0, true), u"100,000,000,000,000."_s);
  EXPECT_EQ(Real(999.996, 2, true), u"1,000.00"_s);
  EXPECT_EQ(Real(1.5, -3, true), u"2."_s);
  // By the decimal text, not by the bits behind it.
  EXPECT_EQ(Real(2.675, 2, true), u"2.68"_s);
  EXPECT_EQ(Real(-0.125, 2, true), u"-0.13"_s);
  Init(u"de_DE"_s);
  EXPECT_EQ(Real(1234567.5, 2, true), u"1.234.567,50"_s);
  EXPECT_EQ(Real(5, 0, true), u"5,"_s);
  // Groups also where text of four digits is not grouped, and by three everywhere.
  Init(u"es_ES"_s);
  EXPECT_EQ(Real(1234, 0, true), u"1.234,"_s);
  Init(u"en_IN"_s);
  EXPECT_EQ(Real(1234567, 0, true), u"1,234,567."_s);
}

TEST_F(CVelumLocaleTest, GeneralReal) {
  Init(u"de_DE"_s);
  EXPECT_EQ(General(1234567.25), u"1234567,25"_s);
  EXPECT_EQ(General(1.5e300), u"1,5E+300"_s);
  EXPECT_EQ(Number(u"1,5E+300"_s), 1.5e300);
}

TEST_F(CVelumLocaleTest, ReadsReals) {
  Init(u"en_US"_s);
  EXPECT_EQ(Number(u"1,234,567.5"_s), 1234567.5);
  EXPECT_EQ(Number(u"1,234,568."_s), 1234568.0);
  EXPECT_EQ(Number(u" -12.5 "_s), -12.5);
  EXPECT_EQ(Number(u"\u221212.5"_s), -12.5);
  EXPECT_EQ(Number(u"+.5"_s), 0.5);
  EXPECT_EQ(Number(u"1e3"_s), 1000.0);
  EXPECT_EQ(Number(u"2.5E-3"_s), 0.0025);
  EXPECT_EQ(Number(u"12,34,567"_s), 1234567.0);
  EXPECT_EQ(Number(u"1e-999"_s), 0.0);
  EXPECT_EQ(Number(u"٣"_s), 3.0);
  Init(u"de_DE"_s);
  EXPECT_EQ(Number(u"1.234.567,5"_s), 1234567.5);
  EXPECT_EQ(Number(u"1.234"_s), 1234.0);
  EXPECT_EQ(Number(u"0,1"_s), 0.1);
  Init(u"fr_FR"_s);
  EXPECT_EQ(Number(u"1 234,5"_s), 1234.5);
  EXPECT_EQ(Number(u"1\u00A0234,5"_s), 1234.5);
  EXPECT_EQ(Number(u"1\u202F234,5"_s), 1234.5);
  Init(u"de_CH"_s);
  EXPECT_EQ(Number(u"1'234.5"_s), 1234.5);
}

TEST_F(CVelumLocaleTest, RefusesWhatIsNotWhollyANumber) {
  Init(u"en_US"_s);
  for (const char* text :
       {"",     " ",      "-",        "+",      ".",      ",",     "-.",  "12abc", "abc", "1.2.3",
        "1,23", "1,2345", "1234,567", ",123",   "1,,234", "1 234", "--1", "1-",    "1e",  "1e+",
        "e5",   "1e999",  "0x10",     "1,234,", "$5",     "5%",    "inf", "nan"})
    EXPECT_FALSE(Number(QString::fromLatin1(text))) << text;
  Init(u"de_DE"_s);
  for (const char* text : {"1.5", "1.50", "1,234,567", "1,2.3"})
    EXPECT_FALSE(Number(QString::fromLatin1(text))) << text;
}

TEST_F(CVelumLocaleTest, ReadsWholeNumbers) {
  Init(u"en_US"_s);
  EXPECT_EQ(Short(u"32767"_s), 32767);
  EXPECT_EQ(Short(u"-32768"_s), -32768);
  EXPECT_EQ(Short(u"32768"_s), std::nullopt);
  EXPECT_EQ(Short(u"32,767"_s), 32767);
  EXPECT_EQ(Short(u"2.5"_s), 2);
  EXPECT_EQ(Short(u"3.5"_s), 4);
  EXPECT_EQ(Short(u"12abc"_s), std::nullopt);
  EXPECT_EQ(Int(u"2147483647"_s), 2147483647);
  EXPECT_EQ(Int(u"-2,147,483,648"_s), -2147483647 - 1);
  EXPECT_EQ(Int(u"2147483647.5"_s), std::nullopt);
  EXPECT_EQ(Int(u""_s), std::nullopt);
}

TEST_F(CVelumLocaleTest, NamesOfLocales) {
  Init(u"de_DE.UTF-8"_s);
  EXPECT_EQ(ShortDate(29221), u"01.01.1980"_s);
  // Of no locale: as in C.
  Init(u"nonsense"_s);
  EXPECT_EQ(ShortDate(29221), u"1980-01-01"_s);
  // The user's, whatever it is.
  Init();
  EXPECT_EQ(Moment(ShortDate(29221)), 29221);
  EXPECT_EQ(Moment(LongTime(0.75)), 0.75);
  EXPECT_EQ(Number(Real(-1234.5, 8, false)), -1234.5);
}

// What is shown in a field must be the same value when it is read again.
TEST_F(CVelumLocaleTest, EveryLocaleReadsWhatItWrites) {
  const QList<QLocale> all =
      QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
  ASSERT_GT(all.size(), 400);
  for (const QLocale& locale : all) {
    Init(locale.name());
    SCOPED_TRACE(locale.name().toStdString());
    for (const double day :
         {0.0, 29221.0, Day(2003, 1, 2), Day(2012, 11, 10), Day(1929, 12, 31), Day(100, 1, 1)})
      EXPECT_EQ(Moment(ShortDate(day)), day) << ShortDate(day).toStdString();
    for (int second = 0; second < 86400; second += 3577) {
      const double time = CVelumDays::Join(0, second);
      EXPECT_EQ(Moment(LongTime(time)), time) << LongTime(time).toStdString();
    }
    for (const double real : {0.0, 5.0, -1234.5, 1234567.0, 0.00000001, 99999999999999.0})
      EXPECT_EQ(Number(Real(real, 8, false)), real) << Real(real, 8, false).toStdString();
    EXPECT_EQ(Number(General(-1.5e-300)), -1.5e-300);
  }
}

TEST_F(CVelumLocaleTest, TurnsAwayWhatCannotBeAMoment) {
  Init(u"en_US"_s);
  for (const auto* text : {u"", u"12", u"1234.56", u"12345-1", u"1.234", u"note 1 of 2", u"-7", u"2003"})
    EXPECT_FALSE(MayBeDateTime(text)) << QString::fromUtf16(text).toStdString();
  for (const auto* text : {u"1/2/2003", u"1:30", u"2003-01-02 10:30", u"\u0661/\u0662/\u0663"})
    EXPECT_TRUE(MayBeDateTime(text)) << QString::fromUtf16(text).toStdString();
}

TEST_F(CVelumLocaleTest, TurnsAwayNoMomentOfAnyLocale) {
  for (const QLocale& locale :
       QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory)) {
    Init(locale.name());
    for (const QDateTime& moment :
         {QDateTime({2003, 1, 2}, {3, 4, 5}), QDateTime({1999, 12, 31}, {23, 59, 58})}) {
      const QString date = locale.toString(moment.date(), QLocale::ShortFormat);
      const QString time = locale.toString(moment.time(), QLocale::ShortFormat);
      // Names of months are not read.
      const bool named = std::any_of(date.begin(), date.end(), [](QChar c) { return c.isLetter(); });
      EXPECT_TRUE(named || MayBeDateTime(date)) << locale.name().toStdString() << ' ' << date.toStdString();
      // A short time with the day half in front is read only where the long one has it there too.
      if (time.front().isLetter()) continue;
      EXPECT_TRUE(MayBeDateTime(time)) << locale.name().toStdString() << ' ' << time.toStdString();
    }
  }
}

} // namespace
