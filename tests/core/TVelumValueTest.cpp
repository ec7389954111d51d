#include "core/TVelumValue.h"
#include "support/PrintQt.h"

#include "support/FakeStored.h"
#include <gtest/gtest.h>
#include <utility>

namespace {

class CThing final : public FakeStored {
public:
  explicit CThing(int& aAlive) : iAlive(aAlive) { ++iAlive; }
  ~CThing() override { --iAlive; }
  [[nodiscard]] QString ObjDescr() const override { return u"CThing"_s; }

private:
  int& iAlive;
};

// All slots but that of the tag are at their zero.
void ExpectOnly(const TVelumValue& aVal, int aTag) {
  EXPECT_EQ(aVal.Type(), aTag);
  if (aTag != EValStr) {
    EXPECT_EQ(aVal.Str(), QString());
  }
  if (aTag != EValInt && aTag != EValBlobId) {
    EXPECT_EQ(aVal.Int(), 0);
  }
  if (aTag != EValReal) {
    EXPECT_EQ(aVal.Real(), 0.0);
  }
  if (aTag != EValDate) {
    EXPECT_EQ(aVal.Date(), 0.0);
  }
  if (aTag != EValTime) {
    EXPECT_EQ(aVal.Time(), 0.0);
  }
  if (aTag != EValBoolean) {
    EXPECT_FALSE(aVal.Boolean());
  }
  if (aTag != EValIntPair) {
    EXPECT_EQ(aVal.Int0(), 0);
    EXPECT_EQ(aVal.Int1(), 0);
  }
  if (!aVal.IsObjType()) {
    EXPECT_EQ(aVal.Obj(), nullptr);
  }
}

TEST(TVelumValue, IsSmall) {
  EXPECT_LE(sizeof(TVelumValue), 32U);
}

TEST(TVelumValue, OnlyTheSlotOfTheTagMeansAnything) {
  ExpectOnly(TVelumValue(), EValUndef);
  ExpectOnly(TVelumValue::OfStr(u"a text"_s), EValStr);
  ExpectOnly(TVelumValue::OfInt(-7), EValInt);
  ExpectOnly(TVelumValue::OfReal(1.5), EValReal);
  ExpectOnly(TVelumValue::OfDate(29221), EValDate);
  ExpectOnly(TVelumValue::OfTime(0.25), EValTime);
  ExpectOnly(TVelumValue::OfBoolean(true), EValBoolean);
  ExpectOnly(TVelumValue::OfBlobId(3), EValBlobId);
  ExpectOnly(TVelumValue::OfPair(1, 2), EValIntPair);
}

TEST(TVelumValue, GivesBackWhatWasPutIn) {
  EXPECT_EQ(TVelumValue::OfStr(u"a text"_s).Str(), u"a text"_s);
  EXPECT_EQ(TVelumValue::OfInt(-7).Int(), -7);
  EXPECT_EQ(TVelumValue::OfReal(1.5).Real(), 1.5);
  EXPECT_EQ(TVelumValue::OfDate(29221).Date(), 29221);
  EXPECT_EQ(TVelumValue::OfTime(0.25).Time(), 0.25);
  EXPECT_TRUE(TVelumValue::OfBoolean(true).Boolean());
  EXPECT_FALSE(TVelumValue::OfBoolean(false).Boolean());
  EXPECT_EQ(TVelumValue::OfBlobId(3).Int(), 3);
  EXPECT_EQ(TVelumValue::OfPair(1, 2).Int0(), 1);
  EXPECT_EQ(TVelumValue::OfPair(1, 2).Int1(), 2);
}

TEST(TVelumValue, ZeroOfEachTypeAndOfUnknownTags) {
  for (const int tag : {0, 11, 12, 13, 14, 15, 16, 17, 50, 100, 105, 77, -1}) {
    const TVelumValue val = TVelumValue::OfType(tag);
    EXPECT_EQ(val.Type(), tag);
    EXPECT_EQ(val.Str(), QString());
    EXPECT_EQ(val.Int(), 0);
    EXPECT_EQ(val.Real(), 0.0);
    EXPECT_FALSE(val.Boolean());
    EXPECT_EQ(val.Obj(), nullptr);
    EXPECT_EQ(val.Int1(), 0);
    TVelumValue copy(val);
    const TVelumValue moved(std::move(copy));
    EXPECT_EQ(moved.Type(), tag);
  }
}

TEST(TVelumValue, TagsKeepTheirLowerSixteenBits) {
  const TVelumValue val = TVelumValue::OfType(65536 + EValStr);
  EXPECT_EQ(val.Type(), EValStr);
  EXPECT_EQ(val.Str(), QString());
}

TEST(TVelumValue, CountsItsObject) {
  int alive = 0;
  {
    TVelumValue val = TVelumValue::OfObj(EValCard, MakeRef<CThing>(alive));
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(val.Obj()->Refs(), 1);
    TVelumValue copy = val;
    EXPECT_EQ(val.Obj()->Refs(), 2);
    const TVelumValue moved = std::move(copy);
    EXPECT_EQ(val.Obj()->Refs(), 2);
    val = moved;
    EXPECT_EQ(val.Obj()->Refs(), 2);
    val = TVelumValue::OfInt(1);
    EXPECT_EQ(moved.Obj()->Refs(), 1);
    EXPECT_EQ(alive, 1);
  }
  EXPECT_EQ(alive, 0);
}

TEST(TVelumValue, AssignmentAcrossTypes) {
  const TVelumValue samples[] = {TVelumValue(), TVelumValue::OfStr(u"a text"_s), TVelumValue::OfReal(2.5),
                                 TVelumValue::OfPair(3, 4)};
  for (const TVelumValue& from : samples) {
    for (const TVelumValue& to : samples) {
      TVelumValue val = to;
      val = from;
      EXPECT_EQ(val.Type(), from.Type());
      EXPECT_EQ(val.Str(), from.Str());
      EXPECT_EQ(val.Real(), from.Real());
      EXPECT_EQ(val.Int0(), from.Int0());
      EXPECT_EQ(val.Int1(), from.Int1());
      const TVelumValue& self = val;
      val = self;
      EXPECT_EQ(val.Str(), from.Str());
      TVelumValue moved = to;
      moved = std::move(val);
      EXPECT_EQ(moved.Type(), from.Type());
      EXPECT_EQ(moved.Str(), from.Str());
    }
  }
}

} // namespace
