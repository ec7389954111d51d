#include "core/text/CVelumDays.h"

#include "core/CVelumError.h"
#include "support/Raised.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

TEST(CVelumDays, CountFrom30December1899) {
  EXPECT_EQ(CVelumDays::DateOf(0), QDate(1899, 12, 30));
  EXPECT_EQ(CVelumDays::DateOf(29221), QDate(1980, 1, 1));
  EXPECT_EQ(CVelumDays::DayOf(QDate(1980, 1, 1)), 29221);
  EXPECT_EQ(CVelumDays::DayOf(QDate(1899, 12, 29)), -1);
}

TEST(CVelumDays, SplitRoundsToSeconds) {
  EXPECT_EQ(CVelumDays::Split(1.5).iDay, 1);
  EXPECT_EQ(CVelumDays::Split(1.5).iSecond, 43200);
  EXPECT_EQ(CVelumDays::Split(2.0 - 1e-9).iDay, 2);
  EXPECT_EQ(CVelumDays::Split(2.0 - 1e-9).iSecond, 0);
  EXPECT_EQ(CVelumDays::Split(-0.25).iDay, -1);
  EXPECT_EQ(CVelumDays::Split(-0.25).iSecond, 64800);
  for (int second = 0; second < 86400; second += 7)
    ASSERT_EQ(CVelumDays::Split(CVelumDays::Join(45000, second)).iSecond, second);
}

TEST(CVelumDays, SplitRefusesWhatIsNoMoment) {
  EXPECT_EQ(Raised([] { (void)CVelumDays::Split(std::nan("")); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)CVelumDays::Split(HUGE_VAL); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)CVelumDays::Split(-1e8); }), EHostOverflow);
}

TEST(CVelumDays, BuildRunsOver) {
  const auto build = [](qint64 aYear, qint64 aMonth, qint64 aDay) {
    return CVelumDays::DateOf(static_cast<qint64>(CVelumDays::Build(aYear, aMonth, aDay)));
  };
  EXPECT_EQ(build(2007, 12, 31), QDate(2007, 12, 31));
  EXPECT_EQ(build(2007, 13, 1), QDate(2008, 1, 1));
  EXPECT_EQ(build(2007, 0, 1), QDate(2006, 12, 1));
  EXPECT_EQ(build(2007, -11, 1), QDate(2006, 1, 1));
  EXPECT_EQ(build(2007, 2, 30), QDate(2007, 3, 2));
  EXPECT_EQ(build(2007, 3, 0), QDate(2007, 2, 28));
  EXPECT_EQ(build(0, 1, 1), QDate(2000, 1, 1));
  EXPECT_EQ(build(29, 1, 1), QDate(2029, 1, 1));
  EXPECT_EQ(build(30, 1, 1), QDate(1930, 1, 1));
  EXPECT_EQ(build(99, 1, 1), QDate(1999, 1, 1));
  EXPECT_EQ(build(100, 1, 1), QDate(100, 1, 1));
  EXPECT_EQ(build(9999, 13, 0), QDate(9999, 12, 31));
}

TEST(CVelumDays, BuildRefusesOtherYears) {
  for (const qint64 year : {-1LL, 10000LL, 214748LL, 1LL << 40})
    EXPECT_EQ(Raised([=] { (void)CVelumDays::Build(year, 1, 1); }), EHostBadCall) << year;
  EXPECT_EQ(Raised([] { (void)CVelumDays::Build(100, 1, 0); }), EHostBadCall);
  EXPECT_EQ(Raised([] { (void)CVelumDays::Build(9999, 12, 32); }), EHostBadCall);
}

} // namespace
