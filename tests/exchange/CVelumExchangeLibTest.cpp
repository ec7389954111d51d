#include "exchange/CVelumExchangeLib.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumMsg.h"
#include "exchange/CVelumPicture.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"
#include "support/TestPictures.h"

#include <QDateTime>
#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

class CVelumExchangeLibTest : public testing::Test {
protected:
  CVelumExchangeLibTest() {
    CVelumMsg::InitMessages();
    CVelumModel::Install();
    iStack = MakeRef<CVelumStack>(u"Test"_s);
    iStack->SetChanged(false);
    iNextId = Probe();
  }
  // The id that a new stack draws first.
  [[nodiscard]] qint32 Probe() { return MakeRef<CVelumStack>(u"Other"_s)->IdGen().NextId(); }
  [[nodiscard]] CVelumBlobStore& Store() { return *iStack->BlobStore(); }
  // Writes a picture to a file and imports that.
  Ref<CVelumBlob> Import(const QByteArray& aBytes,
                         CVelumLib::EPicSample aSample = CVelumLib::EPicSample::Yes) {
    iPath = iFolder.Write(u"picture.dat"_s, aBytes);
    Ref<CVelumBlob> blob;
    const bool done = CVelumLib::HandleImportPic(*iStack, iPath, blob, aSample);
    EXPECT_EQ(done, blob != nullptr);
    EXPECT_EQ(CVelumDialogLib::WaitCount(), 0);
    return blob;
  }
  // Nothing of the stack may have changed.
  void ExpectUntouched() {
    EXPECT_EQ(Store().NumBlobs(), 0);
    EXPECT_FALSE(iStack->Changed());
    EXPECT_EQ(iStack->IdGen().NextId(), iNextId) << "no id was drawn";
  }
  [[nodiscard]] Ref<CVelumBlob> Sample(const CVelumBlob& aBlob) {
    return Store().ReadBlob(aBlob.SampleId(), false);
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  Ref<CVelumStack> iStack;
  qint32 iNextId = 0;
  QString iPath;
};

TEST_F(CVelumExchangeLibTest, APictureIsKeptByteForByte) {
  const QByteArray bytes = TestPictures::Bmp(40, 30);
  iPath = iFolder.Write(u"picture.dat"_s, bytes);
  QFile file(iPath);
  ASSERT_TRUE(file.open(QIODevice::ReadWrite));
  ASSERT_TRUE(file.setFileTime(QDateTime(QDate(2003, 5, 6), QTime(12, 0, 0)), QFile::FileModificationTime));
  file.close();
  Ref<CVelumBlob> blob;
  ASSERT_TRUE(CVelumLib::HandleImportPic(*iStack, iPath, blob));
  EXPECT_EQ(blob->Bytes(), bytes);
  EXPECT_EQ(blob->Name(), u"picture.dat"_s);
  EXPECT_EQ(blob->Filename(), iPath);
  EXPECT_EQ(blob->MimeType(), u"image/x-windows-bmp"_s);
  EXPECT_EQ(blob->FileDate(), 37747); // 6 May 2003
  EXPECT_EQ(blob->FileTime(), 0.5);
  EXPECT_EQ(blob->Width(), 40);
  EXPECT_EQ(blob->Height(), 30);
  EXPECT_EQ(blob->SampleId(), ENoInt);
  EXPECT_EQ(blob->OriginalId(), ENoInt);
  EXPECT_EQ(blob->RefCount(), 0);
  EXPECT_EQ(Store().NumBlobs(), 1);
  EXPECT_EQ(Store().ReadBlob(blob->Id(), false), blob);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumExchangeLibTest, TwoHundredPixelsNeedNoSample) {
  EXPECT_EQ(Import(TestPictures::Bmp(200, 200))->SampleId(), ENoInt);
  EXPECT_EQ(Store().NumBlobs(), 1);
}

TEST_F(CVelumExchangeLibTest, OneMoreHasOne) {
  const Ref<CVelumBlob> picture = Import(TestPictures::Bmp(201, 10));
  ASSERT_NE(picture->SampleId(), ENoInt);
  EXPECT_EQ(Store().NumBlobs(), 2);
  const Ref<CVelumBlob> sample = Sample(*picture);
  EXPECT_EQ(sample->OriginalId(), picture->Id());
  EXPECT_EQ(sample->SampleId(), ENoInt);
  EXPECT_EQ(sample->MimeType(), u"picture/jpeg"_s);
  EXPECT_EQ(sample->Name(), picture->Name());
  EXPECT_EQ(sample->Filename(), picture->Filename());
  EXPECT_EQ(sample->FileDate(), picture->FileDate());
  EXPECT_EQ(sample->FileTime(), picture->FileTime());
  EXPECT_EQ(sample->Width(), ENoShort) << "only pictures have their size noted";
  EXPECT_EQ(picture->RefCount(), 1) << "the sample holds it";
  EXPECT_EQ(sample->RefCount(), 0);
  EXPECT_EQ(CVelumPicture::FormatOf(sample->Bytes()), EPicJpeg);
  const CVelumPicture decoded(sample->Bytes());
  EXPECT_EQ(QSize(decoded.Width(), decoded.Height()), QSize(200, 10));
}

TEST_F(CVelumExchangeLibTest, ProportionsOfSamples) {
  struct TCase {
    QSize iPicture;
    QSize iSample;
  };
  for (const TCase& each :
       {TCase{{400, 200}, {200, 100}}, TCase{{200, 400}, {100, 200}}, TCase{{300, 201}, {200, 134}},
        TCase{{10, 1000}, {2, 200}}, TCase{{1000, 1}, {200, 1}}, TCase{{201, 201}, {200, 200}}}) {
    const Ref<CVelumBlob> picture = Import(TestPictures::Bmp(each.iPicture.width(), each.iPicture.height()));
    const CVelumPicture sample(Sample(*picture)->Bytes());
    EXPECT_EQ(QSize(sample.Width(), sample.Height()), each.iSample)
        << each.iPicture.width() << "x" << each.iPicture.height();
  }
}

TEST_F(CVelumExchangeLibTest, AWallpaperNeedsNoSample) {
  const Ref<CVelumBlob> picture = Import(TestPictures::Bmp(300, 300), CVelumLib::EPicSample::No);
  EXPECT_EQ(picture->SampleId(), ENoInt);
  EXPECT_EQ(picture->Width(), 300);
  EXPECT_EQ(Store().NumBlobs(), 1);
  CVelumLib::MakeSample(*iStack, picture);
  EXPECT_EQ(CVelumLib::FieldBlobId(*picture), picture->SampleId());
}

TEST_F(CVelumExchangeLibTest, AFieldTakesTheSampleOrThePicture) {
  const Ref<CVelumBlob> small = Import(TestPictures::Bmp(20, 20));
  EXPECT_EQ(CVelumLib::FieldBlobId(*small), small->Id());
  const Ref<CVelumBlob> large = Import(TestPictures::Bmp(220, 20));
  EXPECT_EQ(CVelumLib::FieldBlobId(*large), large->SampleId());
}

TEST_F(CVelumExchangeLibTest, WithTheSampleThePictureGoesToo) {
  const Ref<CVelumBlob> picture = Import(TestPictures::Bmp(300, 300));
  Ref<CVelumBlob> sample = Sample(*picture);
  sample->IncRefCount();
  Store().DecRefCount(sample);
  EXPECT_EQ(Store().NumBlobs(), 0);
}

TEST_F(CVelumExchangeLibTest, WhatCannotBeIdentifiedLeavesTheStackAlone) {
  EXPECT_FALSE(Import("no picture at all"));
  EXPECT_EQ(iPresenter.LastMsg(), EMsgUnknownPicFormat);
  EXPECT_EQ(iPresenter.Shown().last().iClass, EMsgCritical);
  EXPECT_FALSE(Import({}));
  EXPECT_EQ(iPresenter.CountOf(EMsgUnknownPicFormat), 2);
  ExpectUntouched();
}

TEST_F(CVelumExchangeLibTest, ADamagedPictureLeavesTheStackAlone) {
  EXPECT_FALSE(Import(TestPictures::Gif().left(20)));
  EXPECT_EQ(iPresenter.LastMsg(), EMsgSystemError);
  EXPECT_TRUE(iPresenter.LastText().contains(u"damaged"_s)) << iPresenter.LastText().toStdString();
  ExpectUntouched();
}

TEST_F(CVelumExchangeLibTest, AFormatThatThePhoneLacksIsAQuestion) {
  const QByteArray other = "P6 1 1 255 abc";
  EXPECT_FALSE(Import(other)) << "no";
  EXPECT_EQ(iPresenter.LastMsg(), EMsgUnsupportedPicFormat);
  EXPECT_EQ(iPresenter.Shown().last().iClass, EMsgQuestion);
  EXPECT_EQ(iPresenter.Count(), 1);
  ExpectUntouched();
}

TEST_F(CVelumExchangeLibTest, YesKeepsItsBytesUndecoded) {
  iPresenter.Answer(true);
  const QByteArray other = "P6 1 1 255 abc";
  const Ref<CVelumBlob> blob = Import(other);
  ASSERT_TRUE(blob);
  EXPECT_EQ(blob->Bytes(), other);
  EXPECT_EQ(blob->MimeType(), u"unknown"_s);
  EXPECT_EQ(blob->Width(), ENoShort);
  EXPECT_EQ(blob->Height(), ENoShort);
  EXPECT_EQ(blob->SampleId(), ENoInt);
}

TEST_F(CVelumExchangeLibTest, WhatIsNoFileIsToldAndNotMade) {
  Ref<CVelumBlob> blob;
  EXPECT_FALSE(CVelumLib::HandleImportPic(*iStack, iFolder.Path(u"none.gif"_s), blob));
  EXPECT_EQ(iPresenter.LastMsg(), EMsgFileNotFound);
  EXPECT_FALSE(iFolder.Has(u"none.gif"_s));
  EXPECT_FALSE(CVelumLib::HandleImportPic(*iStack, iFolder.Path(), blob)) << "a folder";
  ASSERT_EQ(mkfifo(QFile::encodeName(iFolder.Path(u"pipe"_s)).constData(), 0600), 0);
  EXPECT_FALSE(CVelumLib::HandleImportPic(*iStack, iFolder.Path(u"pipe"_s), blob)) << "a pipe must not hang";
  ExpectUntouched();
}

TEST_F(CVelumExchangeLibTest, MoreThanAStackCanHoldIsRefused) {
  EXPECT_FALSE(Import(TestPictures::Bmp(2, 2) + QByteArray(10'000'000, 'x')));
  EXPECT_TRUE(iPresenter.LastText().contains(u"10000000"_s)) << iPresenter.LastText().toStdString();
  ExpectUntouched();
}

TEST_F(CVelumExchangeLibTest, SizesBeyondTheFieldCountAsUnknown) {
  const Ref<CVelumBlob> picture = Import(TestPictures::Bmp(40000, 1));
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->Width(), ENoShort);
  EXPECT_EQ(picture->Height(), 1);
  EXPECT_NE(picture->SampleId(), ENoInt);
}

TEST_F(CVelumExchangeLibTest, WhatWasNeverAFileHasNoPath) {
  Ref<CVelumBlob> blob;
  ASSERT_TRUE(CVelumLib::HandleImportPic(
      *iStack, CVelumLib::TPicSource{TestPictures::Gif(), u"Pasted"_s, {}, 40000, 0.25}, blob));
  EXPECT_EQ(blob->Filename(), QString());
  EXPECT_EQ(blob->Name(), u"Pasted"_s);
  EXPECT_EQ(blob->MimeType(), u"image/gif"_s);
  EXPECT_EQ(blob->FileTime(), 0.25);
}

TEST_F(CVelumExchangeLibTest, MakeSampleThrowsBeforeItChangesAnything) {
  auto blob = MakeRef<CVelumBlob>(iStack->IdGen().NextId());
  blob->SetBytes("nothing to be seen");
  Store().AddBlob(blob);
  EXPECT_THROW(CVelumLib::MakeSample(*iStack, blob), CVelumException);
  EXPECT_EQ(Store().NumBlobs(), 1);
  EXPECT_EQ(blob->Width(), ENoShort);
  EXPECT_EQ(blob->RefCount(), 0);
}

} // namespace
