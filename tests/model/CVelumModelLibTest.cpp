#include "model/CVelumModelLib.h"

#include "model/ModelTest.h"

using namespace ModelTest;

namespace {

TEST(CVelumModelLib, SortKeyLenByType) {
  const auto len = [](qint32 aConType) { return CVelumLib::SortKeyLen(CVelumControl(1, u"c"_s, aConType)); };
  EXPECT_EQ(len(EConText), 30);
  EXPECT_EQ(len(EConInteger), 11);
  EXPECT_EQ(len(EConReal), 15);
  EXPECT_EQ(len(EConDate), 8);
  EXPECT_EQ(len(EConTime), 6);
  EXPECT_EQ(len(EConBoolean), 2);
  for (const qint32 type : {EConList, EConCommand, EConPicture}) {
    EXPECT_EQ(AssertText([&] { static_cast<void>(len(type)); }), u"SortKeyLen type"_s);
    EXPECT_EQ(RaisedOverruled([&] { static_cast<void>(len(type)); }), -1);
  }
}

TEST(CVelumModelLib, SortKeyLenOfTexts) {
  CVelumControl text(1, u"c"_s, EConText);
  text.SetVisChar(12);
  EXPECT_EQ(CVelumLib::SortKeyLen(text), 12);
  text.SetMaxChar(20);
  EXPECT_EQ(CVelumLib::SortKeyLen(text), 20);
  text.SetMaxChar(200);
  EXPECT_EQ(CVelumLib::SortKeyLen(text), 30);
}

TEST(CVelumModelLib, EvalFontWithoutAnyFont) {
  TSampleStack sample;
  const Ref<CVelumCard> card = sample.AddCard(sample.iFirst, u"a"_s);
  const Ref<CVelumFont> font = CVelumLib::EvalFont(*card, nullptr);
  EXPECT_EQ(font->FaceName(), u"Arial"_s);
  EXPECT_EQ(font->Size(), 220);
  EXPECT_EQ(font->ForeColor(), 0);
  EXPECT_EQ(font->Flags(), 0);
}

TEST(CVelumModelLib, EvalFontAddsUpTheLevels) {
  TSampleStack sample;
  const Ref<CVelumCard> card = sample.AddCard(sample.iFirst, u"a"_s);
  sample.iStack->SetFont(MakeRef<CVelumFont>(u"Courier New"_s, ENoShort, 1));
  card->SetFont(MakeRef<CVelumFont>(QString(), qint16{300}, ENoInt));
  Ref<CVelumFont> font = CVelumLib::EvalFont(*card, sample.iTown.Get());
  EXPECT_EQ(font->FaceName(), u"Courier New"_s);
  EXPECT_EQ(font->PointSize(), 15.0F);
  EXPECT_EQ(font->ForeColor(), 1);

  sample.iFirst->SetFont(MakeRef<CVelumFont>(u"Background"_s, qint16{100}, 2));
  font = CVelumLib::EvalFont(*card, sample.iTown.Get());
  EXPECT_EQ(font->FaceName(), u"Background"_s);
  EXPECT_EQ(font->Size(), 300);
  EXPECT_EQ(font->ForeColor(), 2);

  sample.iTown->SetFont(MakeRef<CVelumFont>(u"Control"_s, ENoShort, 3));
  font = CVelumLib::EvalFont(*card, sample.iTown.Get());
  EXPECT_EQ(font->FaceName(), u"Control"_s);
  EXPECT_EQ(font->Size(), 300);
  EXPECT_EQ(font->ForeColor(), 3);
  EXPECT_EQ(CVelumLib::EvalFont(*card, nullptr)->FaceName(), u"Background"_s);
  EXPECT_EQ(sample.iStack->Font()->Size(), ENoShort);
}

TEST(CVelumModelLib, EvalFontOfACardWithoutStack) {
  TSampleStack sample;
  CVelumCard card(u"loose"_s, sample.iFirst);
  card.SetFont(MakeRef<CVelumFont>(u"Own"_s, ENoShort, ENoInt));
  EXPECT_EQ(CVelumLib::EvalFont(card, nullptr)->FaceName(), u"Own"_s);
}

TEST(CVelumModelLib, EvalListFont) {
  EXPECT_EQ(CVelumLib::EvalListFont(nullptr)->FaceName(), u"Arial"_s);
  TSampleStack sample;
  sample.iStack->SetFont(MakeRef<CVelumFont>(u"Courier New"_s, qint16{100}, 1));
  EXPECT_EQ(CVelumLib::EvalListFont(sample.iStack.Get())->FaceName(), u"Arial"_s);
  sample.iStack->SetListFont(MakeRef<CVelumFont>(u"Lists"_s, ENoShort, ENoInt));
  const Ref<CVelumFont> font = CVelumLib::EvalListFont(sample.iStack.Get());
  EXPECT_EQ(font->FaceName(), u"Lists"_s);
  EXPECT_EQ(font->Size(), 220);
  EXPECT_EQ(font->ForeColor(), 0);
}

TEST(CVelumModelLib, ObjChanged) {
  EXPECT_FALSE(CVelumLib::ObjChanged(nullptr));
  CVelumFont font;
  EXPECT_TRUE(CVelumLib::ObjChanged(&font));
  font.SetChanged(false);
  EXPECT_FALSE(CVelumLib::ObjChanged(&font));
}

TEST(CVelumModelLib, LevelTexts) {
  EXPECT_EQ(CVelumLib::LevelToStr(0), u"Stack"_s);
  EXPECT_EQ(CVelumLib::LevelToStr(1), u"Background"_s);
  EXPECT_EQ(CVelumLib::LevelToStr(2), u"Card"_s);
  EXPECT_EQ(CVelumLib::LevelToStr(3), u"Control"_s);
  for (const int level : {-1, 4})
    EXPECT_EQ(AssertText([&] { static_cast<void>(CVelumLib::LevelToStr(level)); }), u"LevelToStr aLevel"_s);
}

TEST(CVelumModelLib, LineOfCard) {
  TSampleStack sample;
  const Ref<CVelumCard> card = sample.AddCard(sample.iFirst, u"Ann"_s);
  EXPECT_EQ(CVelumLib::LineOfCard(*card, true), u"Ann\t\t\t\t"_s);
  EXPECT_EQ(CVelumLib::LineOfCard(*card, false), u"\t\t\t"_s);
  card->SetControlVal(sample.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
  card->SetControlVal(sample.iSize->Id(), TVelumValue::OfInt(5));
  EXPECT_EQ(CVelumLib::LineOfCard(*card, true), u"Ann\tBern\t5\t\t"_s);
  EXPECT_EQ(CVelumLib::LineOfCard(*card, false), u"Bern\t5\t\t"_s);
  sample.iTown->SetFlag(EConInCardList, false);
  sample.iNote->SetFlag(EConInCardList, false);
  sample.iSince->SetFlag(EConInCardList, false);
  EXPECT_EQ(CVelumLib::LineOfCard(*card, true), u"Ann\t5"_s);
  EXPECT_EQ(CVelumLib::LineOfCard(*card, false), u"5"_s);
  sample.iNote->SetFlag(EConInCardList, true);
  sample.iNote->SetDefaultVal(u"none"_s);
  EXPECT_EQ(CVelumLib::LineOfCard(*card, true), u"Ann\t5\tnone"_s);
  CVelumCard loose(u"loose"_s, sample.iFirst);
  EXPECT_EQ(CVelumLib::LineOfCard(loose, true), u"loose"_s);
}

} // namespace
