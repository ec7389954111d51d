#include "core/text/CVelumPattern.h"
#include "support/PrintQt.h"

#include "core/CVelumObject.h"

#include <gtest/gtest.h>

namespace {

TVelumFields Sample() {
  TVelumFields fields;
  fields.iDay = 5;
  fields.iMonth = 12;
  fields.iYear = 987;
  fields.iHour = 7;
  fields.iMinute = 8;
  fields.iSecond = 9;
  return fields;
}

QString Written(const QString& aFormat) {
  return CVelumPattern(aFormat).Write(Sample(), u"pm"_s);
}

qsizetype Matched(const QString& aFormat, const QString& aText, TVelumFields& aFields) {
  return CVelumPattern(aFormat).Match(aText, 0, aFields);
}

TEST(CVelumPattern, Writes) {
  EXPECT_EQ(Written(u"d.MM.yy"_s), u"5.12.0987"_s);
  EXPECT_EQ(Written(u"dd/M/yyyy"_s), u"05/12/0987"_s);
  EXPECT_EQ(Written(u"h:mm:ss AP"_s), u"7:08:09 pm"_s);
  EXPECT_EQ(Written(u"HH 'o''clock' m"_s), u"07 o'clock 8"_s);
}

TEST(CVelumPattern, ZonesGoWithWhatIsRoundThem) {
  EXPECT_EQ(Written(u"H:mm:ss (t)"_s), u"7:08:09"_s);
  EXPECT_EQ(Written(u"HH:mm:ss, tttt"_s), u"07:08:09"_s);
  EXPECT_EQ(Written(u"t HH:mm:ss"_s), u"07:08:09"_s);
  EXPECT_EQ(Written(u"APh:mm:ss [t]"_s), u"pm7:08:09"_s);
}

TEST(CVelumPattern, KnowsDatesAndTimes) {
  EXPECT_TRUE(CVelumPattern(u"d. M. yy."_s).IsDate());
  EXPECT_FALSE(CVelumPattern(u"d MMM yyyy"_s).IsDate());
  EXPECT_FALSE(CVelumPattern(u"d/M"_s).IsDate());
  EXPECT_FALSE(CVelumPattern(u"d/M/d/yy"_s).IsDate());
  EXPECT_FALSE(CVelumPattern(u"d/M/yy G"_s).IsDate());
  EXPECT_TRUE(CVelumPattern(u"'kl'. HH:mm:ss t"_s).IsTime());
  EXPECT_TRUE(CVelumPattern(u"AP h.mm.ss"_s).IsTime());
  EXPECT_FALSE(CVelumPattern(u"HH:mm"_s).IsTime());
  EXPECT_FALSE(CVelumPattern(QString()).IsTime());
}

TEST(CVelumPattern, Matches) {
  TVelumFields fields;
  EXPECT_EQ(Matched(u"dd.MM.yyyy"_s, u"1.2.34 rest"_s, fields), 6);
  EXPECT_EQ(fields.iDay, 1);
  EXPECT_EQ(fields.iMonth, 2);
  EXPECT_EQ(fields.iYear, 1934);
  EXPECT_EQ(Matched(u"yyyy. MM. dd."_s, u"2003.1 .2"_s, fields), 9);
  EXPECT_EQ(Matched(u"dd.MM.yyyy"_s, u"1.2"_s, fields), -1);
  EXPECT_EQ(Matched(u"dd.MM.yyyy"_s, u"1.2.345"_s, fields), -1);
  EXPECT_EQ(Matched(u"dd.MM.yyyy"_s, u""_s, fields), -1);
  EXPECT_EQ(Matched(u"HH:mm:ss"_s, u"7:8:09"_s, fields), -1);
  EXPECT_EQ(Matched(u"H:m:ss"_s, u"7:8:09"_s, fields), 6);
  EXPECT_EQ(Matched(u"'kl'. HH:mm:ss"_s, u"7:08:09"_s, fields), 7);
}

TEST(CVelumPattern, NormalHasOneKindOfBlanksAndDigits) {
  EXPECT_EQ(CVelumPattern::Normal(u" a b "_s), u"a b"_s);
  EXPECT_EQ(CVelumPattern::Normal(u"\u00A01\u202F2\u2009"_s), u"1 2"_s);
  EXPECT_EQ(CVelumPattern::Normal(u"٣\u200F/۴"_s), u"3/4"_s);
  EXPECT_EQ(CVelumPattern::Normal(u"\U0001E951é½"_s), u"1é½"_s);
}

} // namespace
