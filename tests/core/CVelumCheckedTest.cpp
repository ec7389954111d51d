#include "core/CVelumChecked.h"

#include "support/Raised.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr qint32 EMax = std::numeric_limits<qint32>::max();
constexpr qint32 EMin = std::numeric_limits<qint32>::min();

TEST(CVelumChecked, Arithmetic) {
  EXPECT_EQ(CVelumChecked::Add(EMax, 0), EMax);
  EXPECT_EQ(CVelumChecked::Sub(EMin, 0), EMin);
  EXPECT_EQ(CVelumChecked::Mul(-3, 5), -15);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Add(EMax, 1); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Sub(EMin, 1); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Mul(EMin, -1); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Add<qint16>(32767, 1); }), EHostOverflow);
}

TEST(CVelumChecked, Narrow) {
  EXPECT_EQ(CVelumChecked::Narrow<qint16>(-32768), -32768);
  EXPECT_EQ(CVelumChecked::Narrow<quint32>(qint64{4294967295}), 4294967295U);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Narrow<qint16>(32768); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Narrow<quint32>(-1); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Narrow<qint32>(quint32{2147483648}); }), EHostOverflow);
}

TEST(CVelumChecked, Index) {
  EXPECT_EQ(CVelumChecked::Index(2, 3), 2);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Index(3, 3); }), EHostIndex);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Index(-1, 3); }), EHostIndex);
}

TEST(CVelumChecked, Deref) {
  int number = 4;
  EXPECT_EQ(CVelumChecked::Deref(&number), 4);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Deref(static_cast<int*>(nullptr)); }), EHostObjectNotSet);
  EXPECT_EQ(Raised([] { (void)CVelumChecked::Deref(Ref<CVelumObject>()); }), EHostObjectNotSet);
}

} // namespace
