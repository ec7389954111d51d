#include "exchange/CVelumCsvLoss.h"

#include "core/text/CVelumDays.h"
#include "core/text/CVelumLocale.h"

#include <gtest/gtest.h>

namespace {

bool IsSame(QStringView aItem, const TVelumValue& aValue) {
  CVelumLocale::Init(u"en_US"_s);
  return CVelumCsvLoss::GivesBack(aItem, aValue);
}

TEST(CVelumCsvLossTest, KnowsWholeNumbersThatHaveChanged) {
  EXPECT_TRUE(IsSame(u"1234", TVelumValue::OfInt(1234)));
  EXPECT_TRUE(IsSame(u"+1,234,567", TVelumValue::OfInt(1234567)));
  EXPECT_TRUE(IsSame(u"12.00", TVelumValue::OfInt(12)));
  EXPECT_FALSE(IsSame(u"1,234", TVelumValue::OfInt(1234))) << "could be decimals";
  EXPECT_FALSE(IsSame(u"52.123", TVelumValue::OfInt(52123)));
  EXPECT_FALSE(IsSame(u"01234", TVelumValue::OfInt(1234)));
  EXPECT_FALSE(IsSame(u"16/07/2010", TVelumValue::OfInt(16072010)));
  EXPECT_FALSE(IsSame(u"12%", TVelumValue::OfInt(12)));
  EXPECT_FALSE(IsSame(u"", TVelumValue::OfInt(0)));
  EXPECT_FALSE(IsSame(u"\u0661", TVelumValue::OfInt(1)));
}

TEST(CVelumCsvLossTest, KnowsRealsThatHaveChanged) {
  EXPECT_TRUE(IsSame(u"1,234.50", TVelumValue::OfReal(1234.5)));
  EXPECT_TRUE(IsSame(u"1.234,50", TVelumValue::OfReal(1234.5)));
  EXPECT_TRUE(IsSame(u"1.25", TVelumValue::OfReal(1.25)));
  EXPECT_FALSE(IsSame(u"($3.50)", TVelumValue::OfReal(3.5)));
  EXPECT_FALSE(IsSame(u"1e7", TVelumValue::OfReal(17)));
  EXPECT_FALSE(IsSame(u"", TVelumValue::OfReal(0)));
}

TEST(CVelumCsvLossTest, KnowsMomentsThatHaveChanged) {
  const TVelumValue date = TVelumValue::OfDate(CVelumDays::Build(2010, 7, 16));
  EXPECT_TRUE(IsSame(u"2010-07-16", date));
  EXPECT_TRUE(IsSame(u"16/07/2010", date));
  EXPECT_TRUE(IsSame(u"7/16/2010", date));
  EXPECT_FALSE(IsSame(u"2010-07-16 10:30", date)) << "the time is lost";
  EXPECT_FALSE(IsSame(u"", date));
  EXPECT_TRUE(IsSame(u"9:30", TVelumValue::OfTime(CVelumDays::Join(0, 34200))));
  EXPECT_TRUE(IsSame(u"9:30:00 AM", TVelumValue::OfTime(CVelumDays::Join(0, 34200))));
}

TEST(CVelumCsvLossTest, KnowsTextsAndBooleansThatHaveChanged) {
  EXPECT_TRUE(IsSame(u"a", TVelumValue::OfStr(u"a"_s)));
  EXPECT_TRUE(IsSame(u"", TVelumValue::OfStr(u""_s)));
  EXPECT_FALSE(IsSame(u"a ", TVelumValue::OfStr(u"a"_s)));
  EXPECT_FALSE(IsSame(u"say \"\"x\"\"", TVelumValue::OfStr(u"say \"\"x\"\""_s)))
      << "quotes that stay doubled";
  EXPECT_TRUE(IsSame(u"T", TVelumValue::OfBoolean(true)));
  EXPECT_TRUE(IsSame(u"false", TVelumValue::OfBoolean(false)));
  EXPECT_FALSE(IsSame(u"no", TVelumValue::OfBoolean(false)));
  EXPECT_FALSE(IsSame(u"", TVelumValue::OfBoolean(false)));
}

} // namespace
