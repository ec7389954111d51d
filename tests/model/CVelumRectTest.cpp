#include "model/CVelumRect.h"

#include "model/ModelTest.h"

#include <limits>

using namespace ModelTest;

namespace {

TEST(CVelumRect, HoldsFourNumbers) {
  CVelumRect rect(1, 2, 3, 4);
  EXPECT_EQ(rect.ObjDescr(), u"CVelumRect"_s);
  EXPECT_EQ(rect.X(), 1);
  EXPECT_EQ(rect.Y(), 2);
  EXPECT_EQ(rect.Width(), 3);
  EXPECT_EQ(rect.Height(), 4);
  EXPECT_TRUE(rect.Changed());
}

TEST(CVelumRect, SettersMarkChanged) {
  CVelumRect rect;
  void (CVelumRect::*const setters[])(float) = {&CVelumRect::SetX, &CVelumRect::SetY, &CVelumRect::SetWidth,
                                                &CVelumRect::SetHeight};
  for (const auto set : setters) {
    rect.SetChanged(false);
    (rect.*set)(5);
    EXPECT_TRUE(rect.Changed());
  }
  EXPECT_EQ(rect.X() + rect.Y() + rect.Width() + rect.Height(), 20);
}

TEST(CVelumRect, NullOnlyWithFourZeros) {
  EXPECT_TRUE(CVelumRect().IsNull());
  EXPECT_TRUE(CVelumRect(0, 0, 0, 0).IsNull());
  EXPECT_FALSE(CVelumRect(0, 0, 0, 10).IsNull());
  EXPECT_FALSE(CVelumRect(1, 0, 0, 0).IsNull());
}

TEST(CVelumRect, ReadsWhatItStores) {
  CVelumRect rect(1.5F, -2, 3, 4);
  const QByteArray bytes = Bytes().Short(8).Short(1).Single(1.5F).Single(-2).Single(3).Single(4);
  EXPECT_EQ(Stored(rect), bytes);
  EXPECT_EQ(rect.ExtLen(), bytes.size());
  CVelumRect read;
  Load(read, bytes);
  EXPECT_FALSE(read.Changed());
  EXPECT_EQ(read.X(), 1.5F);
  EXPECT_EQ(read.Y(), -2);
  EXPECT_EQ(read.Width(), 3);
  EXPECT_EQ(read.Height(), 4);
  EXPECT_EQ(Raised([&] { Load(read, Bytes().Short(8).Short(0)); }), 1001);
  EXPECT_EQ(Raised([&] { Load(read, Bytes().Short(8).Short(2)); }), 1002);
}

TEST(CVelumRect, WhatIsNoNumberReadsAsZero) {
  CVelumRect read;
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  Load(read, Bytes().Short(8).Short(1).Single(nan).Single(inf).Single(-inf).Single(4));
  EXPECT_EQ(read.X(), 0);
  EXPECT_EQ(read.Y(), 0);
  EXPECT_EQ(read.Width(), 0);
  EXPECT_EQ(read.Height(), 4);
}

} // namespace
