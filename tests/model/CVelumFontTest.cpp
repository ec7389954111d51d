#include "model/CVelumFont.h"

#include "model/ModelTest.h"

using namespace ModelTest;

namespace {

TEST(CVelumFont, ConstructSetsThreeAndLeavesFlags) {
  const CVelumFont font(u"Courier New"_s, 300, 0x0000FF);
  EXPECT_EQ(font.FaceName(), u"Courier New"_s);
  EXPECT_EQ(font.Size(), 300);
  EXPECT_EQ(font.ForeColor(), 0x0000FF);
  EXPECT_EQ(font.Flags(), 0);
  EXPECT_TRUE(font.Changed());
  EXPECT_EQ(font.ObjDescr(), u"CVelumFont Courier New"_s);
}

TEST(CVelumFont, NewFontHasEverythingUnset) {
  const CVelumFont font;
  EXPECT_EQ(font.FaceName(), QString());
  EXPECT_EQ(font.Size(), ENoShort);
  EXPECT_EQ(font.ForeColor(), ENoInt);
  EXPECT_EQ(font.Flags(), 0);
}

TEST(CVelumFont, AddFontReplacesWhatTheOtherSets) {
  CVelumFont font(u"Arial"_s, 220, 1);
  font.SetChanged(false);
  font.AddFont(nullptr);
  const CVelumFont nothing;
  font.AddFont(&nothing);
  EXPECT_FALSE(font.Changed());
  EXPECT_EQ(font.FaceName(), u"Arial"_s);

  const CVelumFont face(u"Courier New"_s, ENoShort, ENoInt);
  font.AddFont(&face);
  EXPECT_TRUE(font.Changed());
  EXPECT_EQ(font.FaceName(), u"Courier New"_s);
  EXPECT_EQ(font.Size(), 220);
  EXPECT_EQ(font.ForeColor(), 1);

  font.SetChanged(false);
  const CVelumFont size(QString(), 300, ENoInt);
  font.AddFont(&size);
  EXPECT_TRUE(font.Changed());
  EXPECT_EQ(font.Size(), 300);

  font.SetChanged(false);
  const CVelumFont color(QString(), ENoShort, 0);
  font.AddFont(&color);
  EXPECT_TRUE(font.Changed());
  EXPECT_EQ(font.ForeColor(), 0);
}

TEST(CVelumFont, FlagsAreReplacedAsAWholeAndNeverSwitchedOff) {
  CVelumFont font(u"Arial"_s, 220, 0);
  font.SetFlags(EFntBold);
  const CVelumFont plain(u"Other"_s, ENoShort, ENoInt);
  font.AddFont(&plain);
  EXPECT_EQ(font.Flags(), EFntBold);
  CVelumFont italic;
  italic.SetFlags(EFntItalic);
  font.AddFont(&italic);
  EXPECT_EQ(font.Flags(), EFntItalic);
}

TEST(CVelumFont, SetDefaultsFillsOnlyWhatIsUnset) {
  CVelumFont font;
  font.SetFlags(EFntUnderline);
  font.SetDefaults();
  EXPECT_EQ(font.FaceName(), u"Arial"_s);
  EXPECT_EQ(font.Size(), 220);
  EXPECT_EQ(font.ForeColor(), 0);
  EXPECT_EQ(font.Flags(), EFntUnderline);

  CVelumFont set(u"Courier New"_s, 300, 7);
  set.SetDefaults();
  EXPECT_EQ(set.FaceName(), u"Courier New"_s);
  EXPECT_EQ(set.Size(), 300);
  EXPECT_EQ(set.ForeColor(), 7);
}

TEST(CVelumFont, PointSizes) {
  EXPECT_EQ(CVelumFont().PointSize(), 31999.0F);
  EXPECT_EQ(CVelumFont().PointSizeStr(), QString());
  EXPECT_EQ(CVelumFont().HostPointSize(false), 31999.0F);
  EXPECT_EQ(CVelumFont().HostPointSize(true), 31999.0F);
  const CVelumFont usual(u"Arial"_s, 220, 0);
  EXPECT_EQ(usual.PointSize(), 11.0F);
  EXPECT_EQ(usual.PointSizeStr(), u"11"_s);
  EXPECT_EQ(usual.HostPointSize(false), 8.0F);
  EXPECT_EQ(usual.HostPointSize(true), 11.0F);
  EXPECT_EQ(CVelumFont(u"Arial"_s, 210, 0).HostPointSize(false), 10.5F) << "only the usual size differs";
  const CVelumFont larger(u"Arial"_s, 240, 0);
  EXPECT_EQ(larger.HostPointSize(false), 12.0F);
  EXPECT_EQ(larger.HostPointSize(true), 12.0F);
  EXPECT_EQ(CVelumFont(u"Arial"_s, 221, 0).PointSizeStr(), u"11.05"_s);
  EXPECT_EQ(CVelumFont(u"Arial"_s, 210, 0).PointSizeStr(), u"10.5"_s);
}

TEST(CVelumFont, FaceNameWithFlagsNamesThemInOrder) {
  CVelumFont font(u"Arial"_s, 220, 0);
  EXPECT_EQ(font.FaceNameWithFlags(), u"Arial"_s);
  font.SetFlags(EFntBold | EFntUnderline);
  EXPECT_EQ(font.FaceNameWithFlags(), u"Arial Bold Underline"_s);
  font.SetFlags(EFntBold | EFntItalic | EFntUnderline);
  EXPECT_EQ(font.FaceNameWithFlags(), u"Arial Bold Italic Underline"_s);
}

TEST(CVelumFont, SettersMarkChanged) {
  CVelumFont font;
  font.SetChanged(false);
  font.SetForeColor(3);
  EXPECT_TRUE(font.Changed());
  font.SetChanged(false);
  font.SetFlags(EFntBold);
  EXPECT_TRUE(font.Changed());
}

TEST(CVelumFont, ReadsWhatItStores) {
  CVelumFont font(u"Ab"_s, 300, 0x112233);
  font.SetFlags(5);
  const QByteArray bytes = Bytes().Short(12).Short(0).Str(u"Ab"_s).Short(300).Int(0x112233).Int(5);
  EXPECT_EQ(Stored(font), bytes);
  EXPECT_EQ(font.ExtLen(), bytes.size());
  CVelumFont read;
  Load(read, bytes);
  EXPECT_FALSE(read.Changed());
  EXPECT_EQ(read.FaceName(), u"Ab"_s);
  EXPECT_EQ(read.Size(), 300);
  EXPECT_EQ(read.ForeColor(), 0x112233);
  EXPECT_EQ(read.Flags(), 5);
  EXPECT_EQ(Raised([&] { Load(read, Bytes().Short(12).Short(1)); }), 1002);
  EXPECT_EQ(Raised([&] { Load(read, Bytes().Short(8).Short(0)); }), 1006);
}

} // namespace
