// Fonts, colours and wallpaper of the card window, and how one layout follows another.
#include "runtime/RuntimeFixture.h"
#include "runtime/lists/CVelumListBox.h"
#include "toolkit/CVelumBaseCheckBox.h"
#include "toolkit/CVelumBasePictureBox.h"

#include <QAbstractItemView>
#include <QBuffer>

namespace {

class CVelumCardViewLooksTest : public RuntimeTest {
protected:
  // A picture of 20 by 10 pixels that nothing refers to.
  static Ref<CVelumBlob> AddGreenPicture() {
    const auto blob = MakeRef<CVelumBlob>(gStack->IdGen().NextId());
    QByteArray bytes;
    QPixmap picture(20, 10);
    picture.fill(Qt::green);
    QBuffer buffer(&bytes);
    picture.save(&buffer, "PNG");
    blob->SetBytes(bytes);
    gStack->BlobStore()->AddBlob(blob);
    return blob;
  }
};

TEST_F(CVelumCardViewLooksTest, FontsAndColoursComeFromTheirLevels) {
  gStack->SetFont(MakeRef<CVelumFont>(u"DejaVu Serif"_s, ENoShort, ENoInt));
  iSet->SetFont(MakeRef<CVelumFont>(QString(), qint16{240}, ENoInt));
  iSet->SetBackColor(0xC0FFFF);
  const auto field = AddField(iSet, u"A"_s, EConText);
  field->SetFont(MakeRef<CVelumFont>(QString(), qint16{400}, 0x0000FF));
  field->SetBackColor(0xFFC0C0);
  const auto box = AddField(iSet, u"B"_s, EConBoolean);
  const auto first = AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  second->SetBackColor(0x00FF00);
  Open();
  EXPECT_EQ(Base(field).Font().family(), u"DejaVu Serif"_s);
  EXPECT_EQ(Base(field).Font().pointSizeF(), 20.0);
  EXPECT_EQ(Base(field).Height(), 20 * 20 + 120);
  EXPECT_EQ(Base(field).ForeColor(), 0x0000FF);
  EXPECT_EQ(Base(field).BackColor(), 0xFFC0C0);
  EXPECT_EQ(Label(field).Font().pointSizeF(), 12.0) << "labels have no level of the field";
  EXPECT_EQ(Label(field).ForeColor(), 0);
  EXPECT_EQ(Label(field).BackColor(), 0xC0FFFF);
  EXPECT_EQ(Form().BackColor(), 0xC0FFFF);
  EXPECT_EQ(Base(box).BackColor(), 0xC0FFFF);
  View().GoToCard(second);
  EXPECT_EQ(Form().BackColor(), 0x00FF00);
  EXPECT_EQ(Label(field).BackColor(), 0x00FF00);
  EXPECT_EQ(Base(box).BackColor(), 0x00FF00);
  EXPECT_EQ(Base(field).BackColor(), 0xFFC0C0);
}

TEST_F(CVelumCardViewLooksTest, AListHasTheFontOfItsLevels) {
  iSet->SetFont(MakeRef<CVelumFont>(u"DejaVu Serif"_s, qint16{240}, ENoInt));
  const auto list = AddField(iSet, u"List"_s, EConList);
  list->SetFont(MakeRef<CVelumFont>(QString(), qint16{400}, ENoInt));
  AddCard(u"a"_s);
  Open();
  const Ref<CVelumListBoxBase> base = list->ListBox();
  const auto* box = dynamic_cast<CVelumListBox*>(base.Get());
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->Font()->PointSize(), 20);
  EXPECT_EQ(box->Font()->FaceName(), u"DejaVu Serif"_s);
  EXPECT_EQ(Base(list).Font().pointSizeF(), 20.0);
}

TEST_F(CVelumCardViewLooksTest, TheStacksColourIsTheCardsUnlessOneIsNearer) {
  gStack->SetBackColor(0x102030);
  const auto field = AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Form().BackColor(), 0x102030);
  EXPECT_EQ(Label(field).BackColor(), 0x102030);
  iSet->SetBackColor(0xC0FFFF);
  View().RefreshViews(true, false);
  EXPECT_EQ(Form().BackColor(), 0xC0FFFF);
}

TEST_F(CVelumCardViewLooksTest, WhatIsHiddenHoldsNothingAndListsLieOutside) {
  const auto list = AddField(iSet, u"List"_s, EConList);
  const auto text = AddField(iSet, u"Text"_s, EConText);
  text->SetVisLines(2);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(list->Id(), TVelumValue::OfStr(u"1\r\n2"_s));
  card->SetControlVal(text->Id(), TVelumValue::OfStr(u"long"_s));
  Open();
  CVelumBaseControl& listView = Base(list);
  CVelumBaseControl& box = Base(text);
  const QAbstractItemModel& lines = *qobject_cast<QAbstractItemView*>(listView.Widget())->model();
  ASSERT_EQ(lines.rowCount(), 2);
  ASSERT_EQ(box.Text(), u"long"_s);
  EXPECT_EQ(Pool(u"fGenListView9"_s).Left(), 10000) << "as all that this layout does not use";
  View().CardView()->Clear();
  EXPECT_EQ(QPointF(static_cast<qreal>(listView.Left()), static_cast<qreal>(listView.Top())),
            QPointF(10000, 10000));
  EXPECT_FALSE(listView.Visible());
  EXPECT_EQ(lines.rowCount(), 0);
  EXPECT_EQ(box.Text(), QString());
}

TEST_F(CVelumCardViewLooksTest, AnotherCardOfTheBackgroundCostsNoLayout) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  Open();
  Base(field).SetPlace(1, 2);
  View().GoToCard(second);
  EXPECT_EQ(Base(field).Left(), 1);
  View().RefreshViews(true, false);
  EXPECT_EQ(Base(field).Left(), 140);
}

TEST_F(CVelumCardViewLooksTest, ANewLayoutTakesTheControlsFromTheOldFields) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  const auto set = AddBackground(u"Other"_s);
  const auto other = AddField(set, u"B"_s, EConText);
  AddCard(u"a"_s);
  const auto card = AddCard(u"b"_s, set);
  Open();
  QObject* box = field->BaseControl();
  View().GoToCard(card);
  EXPECT_EQ(other->BaseControl(), box);
  EXPECT_EQ(field->BaseControl(), nullptr);
  EXPECT_EQ(field->BaseLabel(), nullptr);
  EXPECT_EQ(View().CardView()->VelumControl(&Base(other)), other.Get());
}

TEST_F(CVelumCardViewLooksTest, WithoutACardTheFormIsBlankAndTheSetCountsAsLaidOut) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  CVelumBaseControl& box = Base(field);
  View().CardView()->ResetCurSet();
  Form().SetCaption(u"before"_s);
  View().CardView()->AssignControlSet(nullptr, iSet);
  EXPECT_FALSE(box.Visible());
  EXPECT_EQ(View().CardView()->CurSet(), iSet);
  EXPECT_EQ(Form().Caption(), u"(No Card)"_s) << "what was laid out before is cleared";
  Form().SetCaption(u"left alone"_s);
  View().CardView()->AssignControlSet(nullptr, iSet);
  EXPECT_EQ(Form().Caption(), u"left alone"_s);
}

TEST_F(CVelumCardViewLooksTest, VelumControlAssertsForAControlThatIsNotBound) {
  AddField(iSet, u"A"_s, EConText);
  AddCard(u"a"_s);
  Open();
  CVelumBaseControl& other = Pool(u"fGenTextBox7"_s);
  EXPECT_FALSE(View().CardView()->IsVelumControl(&other));
  EXPECT_THROW(static_cast<void>(View().CardView()->VelumControl(&other)), CVelumException);
  EXPECT_TRUE(iPresenter.LastText().contains(u"VelumControl found fGenTextBox7"_s));
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(View().CardView()->VelumControl(&other), nullptr);
}

TEST_F(CVelumCardViewLooksTest, AResizedWindowIsLaidOutAnew) {
  const auto field = AddField(iSet, u"A"_s, EConText);
  field->SetVisChar(200);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(Base(field).Width(), 6000 - 140 - 20);
  Resize(300, 400);
  EXPECT_EQ(Base(field).Width(), 4500 - 140 - 20);
}

TEST_F(CVelumCardViewLooksTest, TheWallpaperIsReadOnceAndGivenUp) {
  const Ref<CVelumBlob> blob = AddGreenPicture();
  blob->IncRefCount(); // of the two backgrounds
  blob->IncRefCount();
  iSet->SetFlags(ECseDenseLayout | ECseShowWallPaper | ECseTileWallPaper);
  iSet->SetWallPaperId(blob->Id());
  const auto set = AddBackground(u"Other"_s);
  set->SetFlags(ECseShowWallPaper);
  set->SetWallPaperId(blob->Id());
  AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  const auto other = AddCard(u"c"_s, set);
  const qint32 before = blob->DynRefCount();
  Open();
  CVelumBaseControl& box = Pool(u"fWallPaperBox"_s);
  EXPECT_EQ(box.Tag(), QString::number(blob->Id()));
  EXPECT_EQ(blob->DynRefCount(), before + 1);
  View().GoToCard(second);
  EXPECT_EQ(blob->DynRefCount(), before + 1);
  EXPECT_EQ(Form().grab().toImage().pixelColor(390, 490), QColor(Qt::green)) << "tiled over the whole form";
  const qint64 decoded = static_cast<CVelumBasePictureBox&>(box).Picture().cacheKey();
  View().GoToCard(other);
  EXPECT_EQ(blob->DynRefCount(), before + 1);
  EXPECT_EQ(static_cast<CVelumBasePictureBox&>(box).Picture().cacheKey(), decoded) << "decoded once";
  const QImage middle = Form().grab().toImage();
  EXPECT_EQ(middle.pixelColor(200, 250), QColor(Qt::green));
  EXPECT_NE(middle.pixelColor(10, 10), QColor(Qt::green));
  set->SetWallPaperId(ENoInt);
  View().RefreshViews(true, false);
  EXPECT_EQ(box.Tag(), QString());
  EXPECT_EQ(blob->DynRefCount(), before);
}

TEST_F(CVelumCardViewLooksTest, AWindowThatIsClearedOrClosedGivesItsPicturesUp) {
  const Ref<CVelumBlob> paper = AddGreenPicture();
  const Ref<CVelumBlob> shown = AddGreenPicture();
  paper->IncRefCount();
  iSet->SetFlags(ECseDenseLayout | ECseShowWallPaper);
  iSet->SetWallPaperId(paper->Id());
  const auto field = AddField(iSet, u"Pict"_s, EConPicture);
  const auto card = AddCard(u"a"_s);
  card->SetControlVal(field->Id(), TVelumValue::OfBlobId(shown->Id()));
  const auto held = [&] { return QPoint(paper->DynRefCount(), shown->DynRefCount()); };
  const QPoint before = held();
  Open();
  EXPECT_EQ(held(), before + QPoint(1, 1));
  View().CardView()->Clear();
  EXPECT_EQ(held(), before);
  View().RefreshViews(true, false);
  EXPECT_EQ(held(), before + QPoint(1, 1));
  View().CloseCardView(true);
  EXPECT_EQ(held(), before);
}

} // namespace
