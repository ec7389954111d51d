#include "runtime/CVelumPictureLib.h"

#include "core/CVelumMsg.h"
#include "exchange/CVelumExchangeLib.h"
#include "exchange/CVelumPicture.h"
#include "persist/CVelumStackFile.h"
#include "runtime/RuntimeFixture.h"
#include "support/TempFolder.h"
#include "support/TestPictures.h"
#include "toolkit/CVelumBasePictureBox.h"

#include <QClipboard>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QMimeData>
#include <QTest>
#include <QUrl>

namespace {

// A background with a picture field, two cards, and a box of 1130 by 640 twips for it.
class CVelumPictureLibTest : public RuntimeTest {
protected:
  CVelumPictureLibTest() {
    iField = AddField(iSet, u"Photo"_s, EConPicture);
    iFirst = AddCard(u"first"_s);
    iSecond = AddCard(u"second"_s);
  }
  [[nodiscard]] CVelumBlobStore& Store() { return *gStack->BlobStore(); }
  [[nodiscard]] CVelumBasePictureBox& Box() { return static_cast<CVelumBasePictureBox&>(Base(iField)); }
  [[nodiscard]] QLabel& BoxLabel() { return static_cast<QLabel&>(*Box().Widget()); }
  // A picture in the stack, as an import leaves it.
  Ref<CVelumBlob> AddPicture(const QByteArray& aBytes) {
    Ref<CVelumBlob> blob;
    EXPECT_TRUE(CVelumLib::HandleImportPic(*gStack, CVelumLib::TPicSource{aBytes, u"p"_s, {}, 0, 0}, blob));
    return blob;
  }
  // The value of the field on a card.
  static void SetPicture(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aField, qint32 aId) {
    aCard->SetControlVal(aField->Id(), TVelumValue::OfBlobId(aId));
  }
  [[nodiscard]] qint32 ValueOf(const Ref<CVelumCard>& aCard) const {
    const TVelumValue val = aCard->GetControlVal(iField->Id(), false);
    return val.Type() == EValBlobId ? val.Int() : ENoInt;
  }
  void Click() { QTest::mouseClick(Box().Widget(), Qt::LeftButton); }

  Ref<CVelumControl> iField;
  Ref<CVelumCard> iFirst;
  Ref<CVelumCard> iSecond;
  TempFolder iFolder;
};

TEST_F(CVelumPictureLibTest, ACardShowsItsPictureAndHoldsIt) {
  const Ref<CVelumBlob> blob = AddPicture(TestPictures::Bmp(20, 10, 0x00FF00));
  SetPicture(iFirst, iField, blob->Id());
  Open();
  EXPECT_EQ(Box().Tag(), QString::number(blob->Id()));
  EXPECT_EQ(Box().Picture().size(), QSize(20, 10));
  EXPECT_EQ(Box().Picture().toImage().pixel(5, 5), qRgb(0, 255, 0));
  EXPECT_TRUE(Box().Enabled());
  EXPECT_EQ(blob->DynRefCount(), 2) << "the cache and the box";
  View().GoToCard(iSecond);
  EXPECT_EQ(Box().Tag(), QString());
  EXPECT_TRUE(Box().Picture().isNull());
  EXPECT_EQ(blob->DynRefCount(), 1);
}

TEST_F(CVelumPictureLibTest, ANewPictureReleasesTheOneBefore) {
  const Ref<CVelumBlob> one = AddPicture(TestPictures::Bmp(20, 10));
  const Ref<CVelumBlob> two = AddPicture(TestPictures::Bmp(30, 10));
  one->IncRefCount();
  two->IncRefCount();
  Open();
  CVelumLib::ShowPictureBlob(Store(), Box(), one->Id());
  EXPECT_EQ(one->DynRefCount(), 2);
  CVelumLib::ShowPictureBlob(Store(), Box(), two->Id());
  EXPECT_EQ(one->DynRefCount(), 1);
  EXPECT_EQ(two->DynRefCount(), 2);
  CVelumLib::ShowPictureBlob(Store(), Box(), two->Id());
  EXPECT_EQ(two->DynRefCount(), 2) << "shown again";
  CVelumLib::ShowPictureBlob(Store(), Box(), ENoInt);
  EXPECT_EQ(two->DynRefCount(), 1);
  EXPECT_EQ(Box().Tag(), QString());
  EXPECT_TRUE(Box().Picture().isNull());
}

TEST_F(CVelumPictureLibTest, APictureWithoutReferenceLivesAsLongAsItIsShown) {
  const Ref<CVelumBlob> picture = AddPicture(TestPictures::Bmp(300, 300));
  const qint32 sample = picture->SampleId();
  SetPicture(iFirst, iField, sample);
  Open();
  SetPicture(iFirst, iField, ENoInt);
  EXPECT_TRUE(Store().HasBlob(sample));
  View().GoToCard(iSecond);
  EXPECT_EQ(Store().NumBlobs(), 0) << "with the sample its picture goes";
}

TEST_F(CVelumPictureLibTest, TwoClicksBringBackTheViewOfBefore) {
  const Ref<CVelumBlob> blob = AddPicture(TestPictures::Bmp(200, 50));
  SetPicture(iFirst, iField, blob->Id());
  Open();
  const QSize room = Box().InnerSize();
  ASSERT_LT(room.width(), 200);
  Click();
  EXPECT_EQ(Box().Picture().deviceIndependentSize().toSize(), QSize(room.width(), room.width() / 4))
      << "the longer side fills the box";
  EXPECT_EQ(static_cast<CVelumBasePictureBox&>(Pool(u"fTempPicBox"_s)).Picture().size(), QSize(200, 50));
  EXPECT_EQ(Box().Tag(), QString::number(blob->Id()));
  Click();
  EXPECT_EQ(Box().Picture().size(), QSize(200, 50));
  EXPECT_EQ(blob->DynRefCount(), 2);
}

TEST_F(CVelumPictureLibTest, AHighPictureIsLimitedByItsHeight) {
  const Ref<CVelumBlob> blob = AddPicture(TestPictures::Bmp(50, 200));
  SetPicture(iFirst, iField, blob->Id());
  Open();
  Click();
  const QSize fitted = Box().Picture().deviceIndependentSize().toSize();
  EXPECT_EQ(fitted.height(), Box().InnerSize().height());
  EXPECT_NEAR(fitted.width(), fitted.height() / 4.0, 1);
}

TEST_F(CVelumPictureLibTest, ASmallPictureGrows) {
  const Ref<CVelumBlob> blob = AddPicture(TestPictures::Bmp(4, 4));
  SetPicture(iFirst, iField, blob->Id());
  Open();
  Click();
  EXPECT_EQ(Box().Picture().deviceIndependentSize().toSize(),
            QSize(Box().InnerSize().height(), Box().InnerSize().height()));
}

TEST_F(CVelumPictureLibTest, AClickOnAnEmptyBoxDoesNothing) {
  Open();
  Click();
  EXPECT_TRUE(Box().Picture().isNull());
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumPictureLibTest, OnlyALeftClickInsideTheBoxCounts) {
  const Ref<CVelumBlob> blob = AddPicture(TestPictures::Bmp(200, 50));
  SetPicture(iFirst, iField, blob->Id());
  Open();
  QTest::mouseClick(Box().Widget(), Qt::RightButton);
  EXPECT_EQ(Box().Picture().size(), QSize(200, 50));
  QTest::mousePress(Box().Widget(), Qt::LeftButton);
  QTest::mouseRelease(Box().Widget(), Qt::LeftButton, {}, QPoint(-20, -20));
  EXPECT_EQ(Box().Picture().size(), QSize(200, 50));
}

TEST_F(CVelumPictureLibTest, KeysDoWhatTheMouseDoes) {
  const Ref<CVelumBlob> blob = AddPicture(TestPictures::Bmp(200, 50));
  SetPicture(iFirst, iField, blob->Id());
  Open();
  Box().SetFocus();
  EXPECT_EQ(View().CardView()->FocusControl(), iField);
  QTest::keyClick(Box().Widget(), Qt::Key_Space);
  EXPECT_NE(Box().Picture().size(), QSize(200, 50));
  QTest::keyClick(Box().Widget(), Qt::Key_Return);
  EXPECT_TRUE(iFrame.iCalls.contains(u"ShowPicture"_s));
}

TEST_F(CVelumPictureLibTest, ADoubleClickShowsThePicture) {
  const Ref<CVelumBlob> blob = AddPicture(TestPictures::Bmp(200, 50));
  SetPicture(iFirst, iField, blob->Id());
  Open();
  QTest::mouseDClick(Box().Widget(), Qt::LeftButton);
  EXPECT_TRUE(iFrame.iCalls.contains(u"ShowPicture"_s));
  EXPECT_TRUE(Box().HasFocus()) << "the command works on the field that has it";
}

TEST_F(CVelumPictureLibTest, ADroppedFileIsImported) {
  Open();
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(iFolder.Write(u"drop.bmp"_s, TestPictures::Bmp(300, 100)))});
  QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(Box().Widget(), &enter);
  ASSERT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(5, 5), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(Box().Widget(), &drop);
  EXPECT_TRUE(drop.isAccepted());
  EXPECT_EQ(drop.dropAction(), Qt::CopyAction) << "the file stays where it is";
  const Ref<CVelumBlob> shown = Store().ReadBlob(ValueOf(iFirst), false);
  EXPECT_EQ(shown->MimeType(), u"picture/jpeg"_s) << "the field refers to the sample";
  EXPECT_EQ(shown->RefCount(), 1);
  EXPECT_EQ(Store().ReadBlob(shown->OriginalId(), false)->Name(), u"drop.bmp"_s);
  EXPECT_EQ(Box().Picture().size(), QSize(200, 67));
  EXPECT_TRUE(iFirst->Changed());
  EXPECT_TRUE(Box().HasFocus());
}

TEST_F(CVelumPictureLibTest, WhatHoldsNoPictureIsNotTaken) {
  Open();
  QMimeData data;
  data.setText(u"a text"_s);
  QDragEnterEvent drag(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  drag.ignore();
  QCoreApplication::sendEvent(Box().Widget(), &drag);
  EXPECT_FALSE(drag.isAccepted());
}

TEST_F(CVelumPictureLibTest, APictureIsPasted) {
  Open();
  Box().SetFocus();
  QImage image(8, 6, QImage::Format_RGB32);
  image.fill(Qt::red);
  QGuiApplication::clipboard()->setImage(image);
  QTest::keySequence(Box().Widget(), QKeySequence::Paste);
  ASSERT_NE(ValueOf(iFirst), ENoInt);
  const Ref<CVelumBlob> blob = Store().ReadBlob(ValueOf(iFirst), false);
  EXPECT_EQ(blob->MimeType(), u"image/png"_s);
  EXPECT_EQ(blob->Name(), u"Clipboard"_s);
  EXPECT_EQ(blob->Filename(), QString());
  EXPECT_EQ(Box().Picture().toImage().pixel(3, 3), qRgb(255, 0, 0));
  auto* file = new QMimeData;
  file->setUrls({QUrl::fromLocalFile(iFolder.Write(u"paste.bmp"_s, TestPictures::Bmp(9, 9)))});
  QGuiApplication::clipboard()->setMimeData(file);
  QTest::keySequence(Box().Widget(), QKeySequence::Paste);
  EXPECT_EQ(Store().ReadBlob(ValueOf(iFirst), false)->Name(), u"paste.bmp"_s);
  EXPECT_EQ(Store().NumBlobs(), 1) << "the first one had no other reference";
}

TEST_F(CVelumPictureLibTest, BytesOfAPictureArePastedAsTheyAre) {
  Open();
  QMimeData data;
  data.setData(u"image/gif"_s, TestPictures::Gif());
  EXPECT_TRUE(CVelumLib::ImportPicture(*iField, data));
  EXPECT_EQ(Store().ReadBlob(ValueOf(iFirst), false)->Bytes(), TestPictures::Gif());
}

TEST_F(CVelumPictureLibTest, AFailedImportKeepsTheOldPicture) {
  const Ref<CVelumBlob> blob = AddPicture(TestPictures::Bmp(20, 10));
  SetPicture(iFirst, iField, blob->Id());
  Open();
  EXPECT_FALSE(CVelumLib::ImportPicture(*iField, iFolder.Write(u"text.gif"_s, "no picture at all")));
  EXPECT_EQ(iPresenter.LastMsg(), EMsgUnknownPicFormat);
  EXPECT_FALSE(CVelumLib::ImportPicture(*iField, iFolder.Write(u"cut.gif"_s, TestPictures::Gif().left(20))));
  EXPECT_EQ(iPresenter.LastMsg(), EMsgSystemError);
  EXPECT_EQ(ValueOf(iFirst), blob->Id());
  EXPECT_EQ(Box().Tag(), QString::number(blob->Id()));
  EXPECT_EQ(Store().NumBlobs(), 1);
}

TEST_F(CVelumPictureLibTest, AReadOnlyFieldKeepsItsPicture) {
  iField->SetFlag(EConReadOnly, true);
  Open();
  EXPECT_FALSE(CVelumLib::ImportPicture(*iField, iFolder.Write(u"a.bmp"_s, TestPictures::Bmp(9, 9))));
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"Read-only!"_s});
  EXPECT_EQ(Store().NumBlobs(), 0);
}

TEST_F(CVelumPictureLibTest, OnlyAPictureFieldOfTheCardTakesOne) {
  const auto text = AddField(iSet, u"Text"_s, EConText);
  const auto other = AddField(AddBackground(u"Other"_s), u"Far"_s, EConPicture);
  Open();
  const QString path = iFolder.Write(u"a.bmp"_s, TestPictures::Bmp(9, 9));
  EXPECT_FALSE(CVelumLib::ImportPicture(*text, path));
  EXPECT_FALSE(CVelumLib::ImportPicture(*other, path));
  EXPECT_EQ(Store().NumBlobs(), 0);
}

TEST_F(CVelumPictureLibTest, WhatCannotBeReadSaysSoInItsPlace) {
  const auto blob = MakeRef<CVelumBlob>(gStack->IdGen().NextId());
  blob->SetBytes("these are the bytes of something else");
  Store().AddBlob(blob);
  SetPicture(iFirst, iField, blob->Id());
  Open();
  EXPECT_EQ(BoxLabel().text(), u"This picture cannot be read."_s);
  EXPECT_EQ(BoxLabel().toolTip(), u"This is no picture that can be shown."_s);
  EXPECT_EQ(Box().Tag(), QString());
  EXPECT_EQ(blob->DynRefCount(), 1);
  Click();
  EXPECT_EQ(iPresenter.Count(), 0);
  View().GoToCard(iSecond);
  EXPECT_EQ(BoxLabel().text(), QString());
  EXPECT_EQ(BoxLabel().toolTip(), QString());
  SetPicture(iSecond, iField, 4711);
  View().RefreshViews(true, false);
  EXPECT_EQ(BoxLabel().text(), u"This picture cannot be read."_s) << "a blob that is not there";
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumPictureLibTest, AStackWithADamagedPictureWorks) {
  const Ref<CVelumBlob> bad = AddPicture(TestPictures::Bmp(20, 10));
  const Ref<CVelumBlob> good = AddPicture(TestPictures::Bmp(30, 10));
  SetPicture(iFirst, iField, bad->Id());
  SetPicture(iSecond, iField, good->Id());
  gStack->SetFlag(EStaBinary, true);
  const QString path = iFolder.Path(u"a.Orvelle"_s);
  CVelumStackFile(path).SaveStack(gStack, MakeRef<CVelumViewState>(u"v"_s));
  const qint32 at = Store().Index().ValRef(Store().Index().FindIntKey(bad->Id())).Int();
  const qint32 pos = Store().PosTab().ValRef(at).Int0();
  Store().CloseFile();
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(pos));
  file.write("damaged!");
  file.close();

  iPresenter.SetDefaultAnswer(true);
  ASSERT_TRUE(CVelumLib::HandleLoadStack(path));
  iFirst = gStack->GetCardById(iFirst->Id());
  iSecond = gStack->GetCardById(iSecond->Id());
  iField = iFirst->ControlById(iField->Id());
  EXPECT_EQ(View().CurCard(), iFirst);
  EXPECT_EQ(BoxLabel().text(), u"This picture cannot be read."_s);
  View().GoToCard(iSecond);
  EXPECT_EQ(Box().Picture().size(), QSize(30, 10));
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
  View().GoToCard(iFirst);
  EXPECT_EQ(BoxLabel().text(), u"This picture cannot be read."_s);
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1) << "told once";

  const qint32 badId = ValueOf(iFirst);
  iSecond->SetName(u"renamed"_s);
  CVelumStackFile(path).SaveStack(gStack, View().State());
  EXPECT_TRUE(Store().HasBlob(badId));
  EXPECT_TRUE(Store().Damaged().contains(badId)) << "moved as it is";
  const qint32 place = Store().Index().ValRef(Store().Index().FindIntKey(badId)).Int();
  EXPECT_EQ(Store().File()->PeekAt(Store().PosTab().ValRef(place).Int0(), 8), "damaged!");
  EXPECT_TRUE(CVelumLib::ImportPicture(*iField, iFolder.Write(u"new.bmp"_s, TestPictures::Bmp(9, 9))));
  EXPECT_EQ(Box().Picture().size(), QSize(9, 9)) << "the field takes another picture";
  EXPECT_EQ(iPresenter.Count(), 1);
}

TEST_F(CVelumPictureLibTest, AWallpaperThatCannotBeReadIsToldOnce) {
  const auto blob = MakeRef<CVelumBlob>(gStack->IdGen().NextId());
  blob->SetBytes("no picture");
  blob->IncRefCount();
  Store().AddBlob(blob);
  iSet->SetFlags(ECseShowWallPaper);
  iSet->SetWallPaperId(blob->Id());
  Open();
  View().GoToCard(iSecond);
  View().RefreshViews(true, false);
  QCoreApplication::processEvents();
  EXPECT_EQ(iPresenter.Told(), QList<QString>{u"The wallpaper cannot be read."_s});
  EXPECT_EQ(Pool(u"fWallPaperBox"_s).Tag(), QString());
}

} // namespace
