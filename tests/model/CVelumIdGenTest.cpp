#include "model/CVelumIdGen.h"

#include "model/ModelTest.h"

using namespace ModelTest;

namespace {

TEST(CVelumIdGen, CountsFromZero) {
  CVelumIdGen gen;
  EXPECT_TRUE(gen.Changed());
  gen.SetChanged(false);
  EXPECT_EQ(gen.PeekId(), 0);
  EXPECT_FALSE(gen.Changed());
  EXPECT_EQ(gen.NextId(), 0);
  EXPECT_TRUE(gen.Changed());
  EXPECT_EQ(gen.NextId(), 1);
  EXPECT_EQ(gen.PeekId(), 2);
}

TEST(CVelumIdGen, ReadsWhatItStores) {
  CVelumIdGen gen;
  static_cast<void>(gen.NextId());
  const QByteArray bytes = Bytes().Short(6).Short(0).Int(1);
  EXPECT_EQ(Stored(gen), bytes);
  EXPECT_EQ(gen.ExtLen(), bytes.size());
  CVelumIdGen read;
  Load(read, Bytes().Short(6).Short(0).Int(77));
  EXPECT_FALSE(read.Changed());
  EXPECT_EQ(read.NextId(), 77);
}

TEST(CVelumIdGen, NeverHandsOutTheUnsetId) {
  CVelumIdGen gen;
  Load(gen, Bytes().Short(6).Short(0).Int(ENoInt - 1));
  EXPECT_EQ(gen.NextId(), ENoInt - 1);
  EXPECT_EQ(Raised([&] { static_cast<void>(gen.NextId()); }), EHostOverflow);
  Load(gen, Bytes().Short(6).Short(0).Int(2147483647));
  EXPECT_EQ(Raised([&] { static_cast<void>(gen.NextId()); }), EHostOverflow);
}

} // namespace
