#include "exchange/CVelumPicture.h"

#include "support/PrintQt.h"
#include "support/TestPictures.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <gtest/gtest.h>

namespace {

QByteArray Encoded(const QImage& aImage, const char* aFormat) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  EXPECT_TRUE(buffer.open(QIODevice::WriteOnly));
  EXPECT_TRUE(aImage.save(&buffer, aFormat));
  return bytes;
}

// Red above, blue below, and green in the left upper quarter.
QImage Quarters(int aWidth, int aHeight, QImage::Format aFormat = QImage::Format_RGB32) {
  QImage image(aWidth, aHeight, QImage::Format_ARGB32);
  for (int y = 0; y < aHeight; ++y)
    for (int x = 0; x < aWidth; ++x)
      image.setPixel(x, y,
                     y >= aHeight / 2  ? qRgb(0, 0, 255)
                     : x >= aWidth / 2 ? qRgb(255, 0, 0)
                                       : qRgb(0, 255, 0));
  return image.convertToFormat(aFormat);
}

// Why bytes are refused; empty when they are not.
QString Refusal(const QByteArray& aBytes) {
  try {
    const CVelumPicture picture(aBytes);
    return {};
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostBadPicture);
    return e.Descr();
  }
}

TEST(CVelumPicture, AGammaMakesNoDifferenceBetweenAPaletteAndTrueColours) {
  QImage image(2, 2, QImage::Format_RGB888);
  image.fill(QColor(156, 80, 20));
  // Behind the head: a gamma of 1.
  const QByteArray gamma = QByteArray::fromHex("0000000467414d41000186a031e8965f");
  for (const auto format : {QImage::Format_RGB888, QImage::Format_Indexed8, QImage::Format_RGB32}) {
    const CVelumPicture picture(Encoded(image.convertToFormat(format), "PNG").insert(33, gamma));
    EXPECT_EQ(picture.ToImage().pixel(1, 1), qRgb(156, 80, 20)) << format;
  }
}

TEST(CVelumPicture, TellsFormatsByContent) {
  EXPECT_EQ(CVelumPicture::FormatOf(TestPictures::Bmp(2, 2)), EPicBmp);
  EXPECT_EQ(CVelumPicture::FormatOf(Encoded(Quarters(4, 4), "JPG")), EPicJpeg);
  EXPECT_EQ(CVelumPicture::FormatOf(Encoded(Quarters(4, 4), "PNG")), EPicPng);
  EXPECT_EQ(CVelumPicture::FormatOf(TestPictures::Gif()), EPicGif);
  const int other = CVelumPicture::FormatOf("P6 1 1 255 abc");
  EXPECT_TRUE(other != EPicUnknown && !CVelumPicture::IsDecoded(other)) << "the library knows more";
  EXPECT_EQ(CVelumPicture::FormatOf("no picture at all"), EPicUnknown);
  EXPECT_EQ(CVelumPicture::FormatOf({}), EPicUnknown);
}

TEST(CVelumPicture, MimeTypes) {
  EXPECT_EQ(CVelumPicture::MimeTypeOf(0), u"image/x-windows-bmp"_s);
  EXPECT_EQ(CVelumPicture::MimeTypeOf(2), u"image/jpeg"_s);
  EXPECT_EQ(CVelumPicture::MimeTypeOf(13), u"image/png"_s);
  EXPECT_EQ(CVelumPicture::MimeTypeOf(25), u"image/gif"_s);
  for (const int other : {-1, 1, 14, 18, 34}) {
    EXPECT_EQ(CVelumPicture::MimeTypeOf(other), u"unknown"_s);
    EXPECT_FALSE(CVelumPicture::IsDecoded(other));
  }
}

TEST(CVelumPicture, DecodesExactly) {
  const CVelumPicture bmp(TestPictures::Bmp(3, 2, 0x123456));
  EXPECT_EQ(QSize(bmp.Width(), bmp.Height()), QSize(3, 2));
  EXPECT_EQ(bmp.ToImage().pixel(2, 1), qRgb(0x12, 0x34, 0x56));
  for (const auto format : {QImage::Format_RGB32, QImage::Format_Indexed8, QImage::Format_Mono,
                            QImage::Format_Grayscale8, QImage::Format_RGB888}) {
    const QImage image = Quarters(7, 5, format);
    const QImage decoded = CVelumPicture(Encoded(image, "PNG")).ToImage();
    EXPECT_EQ(decoded.convertToFormat(QImage::Format_RGB32), image.convertToFormat(QImage::Format_RGB32))
        << format;
  }
  const CVelumPicture gif(TestPictures::Gif());
  EXPECT_EQ(gif.ToImage().pixel(0, 0), qRgb(0, 0, 0));
}

TEST(CVelumPicture, KeepsTransparency) {
  QImage image = Quarters(6, 6).convertToFormat(QImage::Format_ARGB32);
  image.setPixel(1, 1, qRgba(10, 20, 30, 0));
  image.setPixel(2, 1, qRgba(10, 20, 30, 128));
  const QImage back = CVelumPicture(Encoded(image, "PNG")).ToImage();
  EXPECT_EQ(back, image);
  const QImage indexed = image.convertToFormat(QImage::Format_Indexed8);
  EXPECT_EQ(qAlpha(CVelumPicture(Encoded(indexed, "PNG")).ToImage().pixel(1, 1)), 0);
}

TEST(CVelumPicture, SixteenBitsAChannelBecomeEight) {
  const QImage deep = Quarters(6, 6).convertToFormat(QImage::Format_RGBX64);
  EXPECT_EQ(CVelumPicture(Encoded(deep, "PNG")).ToImage(), Quarters(6, 6));
  const QImage grey = Quarters(6, 6).convertToFormat(QImage::Format_Grayscale16);
  EXPECT_EQ(CVelumPicture(Encoded(grey, "PNG")).ToImage().size(), QSize(6, 6));
}

TEST(CVelumPicture, JpegOverWhiteWhereItIsTransparent) {
  QImage image(16, 16, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  const QByteArray jpeg = CVelumPicture(Encoded(image, "PNG")).ToJpeg();
  EXPECT_EQ(CVelumPicture::FormatOf(jpeg), EPicJpeg);
  EXPECT_EQ(CVelumPicture(jpeg).ToImage().pixel(8, 8), qRgb(255, 255, 255));
}

TEST(CVelumPicture, Rescales) {
  const CVelumPicture picture(Encoded(Quarters(400, 200), "PNG"));
  const CVelumPicture small = picture.Rescaled(200, 100);
  EXPECT_EQ(QSize(small.Width(), small.Height()), QSize(200, 100));
  EXPECT_EQ(small.ToImage().pixel(10, 10), qRgb(0, 255, 0));
  EXPECT_EQ(small.ToImage().pixel(190, 10), qRgb(255, 0, 0));
  EXPECT_EQ(small.ToImage().pixel(100, 90), qRgb(0, 0, 255));
}

// Exif with nothing but an orientation.
QByteArray WithOrientation(const QByteArray& aJpeg, int aOrientation, bool aBigEndian) {
  QByteArray tiff = aBigEndian ? QByteArray::fromHex("4d4d002a0000000800010112000300000001")
                               : QByteArray::fromHex("49492a000800000001001201030001000000");
  const auto value = static_cast<char>(aOrientation);
  tiff += aBigEndian ? QByteArray(1, '\0') + value + QByteArray(2, '\0') : value + QByteArray(3, '\0');
  tiff += QByteArray(4, '\0');
  const QByteArray body = QByteArray("Exif\0\0", 6) + tiff;
  const auto length = static_cast<int>(body.size() + 2);
  return aJpeg.left(2) + QByteArray::fromHex("ffe1") + static_cast<char>(length >> 8) +
         static_cast<char>(length & 0xFF) + body + aJpeg.mid(2);
}

TEST(CVelumPicture, TurnsPhotosUpright) {
  const QImage image = Quarters(64, 32);
  const QByteArray jpeg = Encoded(image, "JPG");
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const QImage shown = CVelumPicture(WithOrientation(jpeg, orientation, orientation % 2 == 0)).ToImage();
    EXPECT_EQ(shown.size(), orientation >= 5 ? QSize(32, 64) : QSize(64, 32)) << orientation;
    // Where the green quarter is to be seen.
    const bool right = orientation == 2 || orientation == 3 || orientation == 6 || orientation == 7;
    const bool below = orientation == 3 || orientation == 4 || orientation == 7 || orientation == 8;
    const QRgb pixel = shown.pixel(right ? shown.width() - 6 : 5, below ? shown.height() - 6 : 5);
    EXPECT_GT(qGreen(pixel), 200) << orientation;
    EXPECT_LT(qRed(pixel) + qBlue(pixel), 100) << orientation;
  }
  EXPECT_EQ(CVelumPicture(WithOrientation(jpeg, 9, true)).ToImage().size(), QSize(64, 32));
}

TEST(CVelumPicture, FillersOfABmpAreNoTransparency) {
  QByteArray bmp = TestPictures::Bmp(4, 4);
  bmp[28] = 32; // bits a pixel: each has a byte more
  bmp = bmp.left(54) + QByteArray::fromHex("c0603000").repeated(16);
  const QImage image = CVelumPicture(bmp).ToImage();
  EXPECT_EQ(image.pixel(3, 3), qRgb(0x30, 0x60, 0xC0));
}

TEST(CVelumPicture, BmpsWithLongHeadersAreRead) {
  const QByteArray plain = TestPictures::Bmp(4, 3, 0x3060C0);
  const QImage image = CVelumPicture(plain).ToImage();
  for (const int head : {52, 56, 108, 124})
    EXPECT_EQ(CVelumPicture(TestPictures::BmpWithMasks(plain, head, 24, 0, {}, plain.mid(54))).ToImage(),
              image)
        << head;
}

TEST(CVelumPicture, ColoursOfABmpLieWhereItsMasksSay) {
  const QByteArray four = TestPictures::Bmp(2, 2);
  // Red in the highest byte, then opacity, green, blue.
  const QByteArray masks = QByteArray::fromHex("000000ff00ff0000ff0000000000ff00");
  const QByteArray pixels = QByteArray::fromHex("c0608030").repeated(4);
  QImage image = CVelumPicture(TestPictures::BmpWithMasks(four, 124, 32, 3, masks, pixels)).ToImage();
  EXPECT_EQ(image.pixel(1, 1), qRgba(0x30, 0x60, 0xC0, 0x80));
  // The same behind a short header, which knows of no opacity.
  image = CVelumPicture(TestPictures::BmpWithMasks(four, 40, 32, 3, masks.left(12), pixels)).ToImage();
  EXPECT_EQ(image.pixel(0, 1), qRgb(0x30, 0x60, 0xC0));
  image = CVelumPicture(TestPictures::BmpWithMasks(four, 40, 32, 6, masks, pixels)).ToImage();
  EXPECT_EQ(image.pixel(0, 0), qRgba(0x30, 0x60, 0xC0, 0x80));
  // Ten bits each.
  const QByteArray tens = QByteArray::fromHex("0000f03f00fc0f00ff030000");
  const QByteArray white = QByteArray::fromHex("ffffff3f").repeated(4);
  image = CVelumPicture(TestPictures::BmpWithMasks(four, 124, 32, 3, tens, white)).ToImage();
  EXPECT_EQ(image.pixel(0, 0), qRgb(255, 255, 255));
  // Two bytes a pixel, 5 6 5.
  const QByteArray small = QByteArray::fromHex("00f80000e00700001f000000");
  const QByteArray red = QByteArray::fromHex("00f8").repeated(4);
  image = CVelumPicture(TestPictures::BmpWithMasks(four, 108, 16, 3, small, red)).ToImage();
  EXPECT_EQ(image.pixel(1, 0), qRgb(255, 0, 0));
}

TEST(CVelumPicture, TooManyPixelsAreRefusedBeforeDecoding) {
  QElapsedTimer timer;
  timer.start();
  QByteArray bmp = TestPictures::Bmp(1, 1);
  qToLittleEndian<qint32>(30000, bmp.data() + 18);
  qToLittleEndian<qint32>(30000, bmp.data() + 22);
  EXPECT_TRUE(Refusal(bmp).contains(u"30000 x 30000"_s)) << Refusal(bmp).toStdString();

  QByteArray gif = TestPictures::Gif();
  qToLittleEndian<quint16>(65535, gif.data() + 6);
  qToLittleEndian<quint16>(65535, gif.data() + 8);
  EXPECT_TRUE(Refusal(gif).contains(u"65535 x 65535"_s)) << "the screen of a GIF";
  gif = TestPictures::Gif();
  const qsizetype descriptor = gif.indexOf(',');
  qToLittleEndian<quint16>(65535, gif.data() + descriptor + 5);
  qToLittleEndian<quint16>(65535, gif.data() + descriptor + 7);
  EXPECT_TRUE(Refusal(gif).contains(u"65535 x 65535"_s)) << "its first picture";

  QByteArray jpeg = Encoded(Quarters(8, 8), "JPG");
  const qsizetype frame = jpeg.indexOf(QByteArray::fromHex("ffc0"));
  qToBigEndian<quint16>(65500, jpeg.data() + frame + 5);
  qToBigEndian<quint16>(65500, jpeg.data() + frame + 7);
  EXPECT_TRUE(Refusal(jpeg).contains(u"65500 x 65500"_s)) << Refusal(jpeg).toStdString();
  EXPECT_LT(timer.elapsed(), 2000);
}

TEST(CVelumPicture, TheLimitIsAHundredMegapixels) {
  QImage image(10000, 10000, QImage::Format_Mono);
  image.fill(0);
  EXPECT_EQ(CVelumPicture(Encoded(image, "PNG")).Width(), 10000);
  EXPECT_TRUE(Refusal(Encoded(QImage(10001, 10000, QImage::Format_Mono), "PNG")).contains(u"100 million"_s));
}

TEST(CVelumPicture, ThousandsOfPassesAreRefused) {
  QByteArray jpeg = Encoded(Quarters(64, 64), "JPG");
  const qsizetype frame = jpeg.indexOf(QByteArray::fromHex("ffc0"));
  qToBigEndian<quint16>(9000, jpeg.data() + frame + 5);
  qToBigEndian<quint16>(9000, jpeg.data() + frame + 7);
  const qsizetype scan = jpeg.indexOf(QByteArray::fromHex("ffda"));
  const QByteArray pass = jpeg.mid(scan, jpeg.size() - scan - 2);
  EXPECT_TRUE(Refusal(jpeg.left(scan) + pass.repeated(1000) + jpeg.right(2)).contains(u"1000 passes"_s));
}

TEST(CVelumPicture, OtherFormatsNeverReachADecoder) {
  EXPECT_EQ(Refusal("P6 1 1 255 abc"), u"This is no picture that can be shown."_s);
  EXPECT_EQ(Refusal("8BPS"), u"This is no picture that can be shown."_s);
  EXPECT_EQ(Refusal({}), u"This is no picture that can be shown."_s);
}

// Every prefix, and every byte changed in four ways: a picture or a refusal, never anything else.
class Damaged : public testing::TestWithParam<int> {};

QByteArray Whole(int aFormat) {
  if (aFormat == EPicBmp) return TestPictures::Bmp(5, 5);
  if (aFormat == EPicGif) return TestPictures::Gif();
  return Encoded(Quarters(9, 9), aFormat == EPicPng ? "PNG" : "JPG");
}

void Try(const QByteArray& aBytes) {
  try {
    const CVelumPicture picture(aBytes);
    if (qint64{picture.Width()} * picture.Height() > 1'000'000) return; // allowed, and slow to look at
    EXPECT_EQ(picture.ToImage().size(), QSize(picture.Width(), picture.Height()));
    static_cast<void>(picture.ToJpeg());
  } catch (const CVelumException& e) {
    EXPECT_TRUE(e.Number() == EHostBadPicture || e.Number() == EHostOutOfMemory) << e.what();
  }
}

TEST_P(Damaged, IsAPictureOrARefusal) {
  const QByteArray whole = Whole(GetParam());
  for (qsizetype i = 0; i <= whole.size(); ++i) Try(whole.left(i));
  for (qsizetype i = 0; i < whole.size(); ++i)
    for (const int value : {0, 255, whole[i] ^ 0x80, whole[i] + 1}) {
      QByteArray bytes = whole;
      bytes[i] = static_cast<char>(value);
      Try(bytes);
    }
}

TEST(CVelumPicture, DamagedBmpsWithLongHeadersToo) {
  const QByteArray masks = QByteArray::fromHex("000000ff00ff0000ff0000000000ff00");
  const QByteArray whole = TestPictures::BmpWithMasks(TestPictures::Bmp(3, 3), 124, 32, 3, masks,
                                                      QByteArray::fromHex("c0608030").repeated(9));
  for (qsizetype i = 0; i <= whole.size(); ++i) Try(whole.left(i));
  for (qsizetype i = 0; i < 70; ++i)
    for (const int value : {0, 255, whole[i] ^ 0x80, whole[i] + 1}) {
      QByteArray bytes = whole;
      bytes[i] = static_cast<char>(value);
      Try(bytes);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, Damaged, testing::Values(EPicBmp, EPicJpeg, EPicPng, EPicGif));

} // namespace
