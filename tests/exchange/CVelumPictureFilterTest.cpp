#include "exchange/CVelumPictureFilter.h"

#include "support/PrintQt.h"
#include "support/TestPictures.h"

#include <gtest/gtest.h>

namespace {

QByteArray Hex(const char* aHex) {
  return QByteArray::fromHex(aHex);
}

// A JPEG in outline: start, a table, a scan with a stuffed byte and a restart in its data, end.
const QByteArray gHead = QByteArray::fromHex("ffd8");
const QByteArray gTable = QByteArray::fromHex("ffdb0004abcd");
const QByteArray gScan = QByteArray::fromHex("ffda0004010211ff0022ffd333");
const QByteArray gEnd = QByteArray::fromHex("ffd9");

TEST(CVelumPictureFilter, KeepsWhatMakesAJpeg) {
  const QByteArray whole = gHead + gTable + gScan + gEnd;
  const auto jpeg = CVelumPictureFilter::Jpeg(whole);
  EXPECT_EQ(jpeg.iBytes, whole);
  EXPECT_EQ(jpeg.iScans, 1);
  EXPECT_EQ(jpeg.iOrientation, 1);
}

TEST(CVelumPictureFilter, DropsDescriptionsOfAJpegWhereverTheyStand) {
  const QByteArray jfif = Hex("ffe000074a46494600");
  const QByteArray adobe = Hex("ffee000741646f6265");
  const QByteArray exif = Hex("ffe1000845786966") + Hex("0000");
  const QByteArray thumbnail = Hex("ffe000074a46585800");
  const QByteArray profile = Hex("ffe20004abcd");
  const QByteArray comment = Hex("fffe0004abcd");
  const auto jpeg = CVelumPictureFilter::Jpeg(gHead + jfif + exif + thumbnail + profile + adobe + comment +
                                              gTable + gScan + profile + gScan + exif + gEnd + "rest");
  EXPECT_EQ(jpeg.iBytes, gHead + jfif + adobe + gTable + gScan + gScan + gEnd);
  EXPECT_EQ(jpeg.iScans, 2);
}

TEST(CVelumPictureFilter, FillBytesStandBeforeAMarker) {
  const auto jpeg = CVelumPictureFilter::Jpeg(gHead + Hex("ffff") + gTable + gScan + gEnd);
  EXPECT_EQ(jpeg.iBytes, gHead + gTable + gScan + gEnd);
}

TEST(CVelumPictureFilter, ACutJpegEndsBeforeTheSegmentThatIsCut) {
  const QByteArray whole = gHead + gTable + gScan + gEnd;
  for (qsizetype i = 0; i < whole.size(); ++i) {
    const QByteArray kept = CVelumPictureFilter::Jpeg(whole.left(i)).iBytes;
    EXPECT_TRUE(whole.startsWith(kept)) << i;
    EXPECT_LE(kept.size(), i);
  }
  EXPECT_EQ(CVelumPictureFilter::Jpeg(gHead + Hex("ffdb0001") + gEnd).iBytes, gHead) << "too short a length";
}

TEST(CVelumPictureFilter, OrientationOfAnyBytesIsOneOfEight) {
  const QByteArray tiff = Hex("49492a0008000000010012010300010000000600000000000000");
  const QByteArray exif = QByteArray("Exif\0\0", 6) + tiff;
  const QByteArray segment = Hex("ffe1") + '\0' + static_cast<char>(exif.size() + 2) + exif;
  EXPECT_EQ(CVelumPictureFilter::Jpeg(gHead + segment + gEnd).iOrientation, 6);
  for (qsizetype i = 4; i < segment.size(); ++i)
    for (const char value : {'\0', '\xFF', '\x7F', '\x01'}) {
      QByteArray changed = segment;
      changed[i] = value;
      const int orientation = CVelumPictureFilter::Jpeg(gHead + changed + gEnd).iOrientation;
      EXPECT_TRUE(orientation >= 1 && orientation <= 8) << i;
    }
}

TEST(CVelumPictureFilter, KeepsTheChunksOfAPngThatAreSeen) {
  const auto chunk = [](const char* aType, const QByteArray& aData) {
    QByteArray length(4, '\0');
    qToBigEndian(static_cast<quint32>(aData.size()), length.data());
    return length + aType + aData + "crc!";
  };
  const QByteArray signature = Hex("89504e470d0a1a0a");
  const QByteArray seen = chunk("IHDR", "1234567890123") + chunk("PLTE", "abc") + chunk("tRNS", "a");
  const QByteArray data = chunk("IDAT", "zzzz") + chunk("IEND", {});
  EXPECT_EQ(CVelumPictureFilter::Png(signature + seen + chunk("iTXt", "t") + chunk("iCCP", "p") +
                                     chunk("gAMA", "gggg") + chunk("cHRM", "c") + chunk("eXIf", "e") + data),
            signature + seen + data);
  EXPECT_EQ(CVelumPictureFilter::Png(signature + seen + Hex("ffffffff") + "IDATrest"), signature + seen);
  EXPECT_EQ(CVelumPictureFilter::Png(signature), signature);
  EXPECT_EQ(CVelumPictureFilter::Png({}), QByteArray());
}

TEST(CVelumPictureFilter, ABmpGetsTheShortHeader) {
  const QByteArray plain = TestPictures::Bmp(2, 2);
  EXPECT_EQ(CVelumPictureFilter::Bmp(plain), plain);
  EXPECT_EQ(CVelumPictureFilter::Bmp(TestPictures::BmpWithMasks(plain, 124, 24, 0, {}, plain.mid(54))),
            plain);
  for (qsizetype i = 0; i < 54; ++i) EXPECT_EQ(CVelumPictureFilter::Bmp(plain.left(i)), plain.left(i)) << i;
  // A colour table stays between header and pixels.
  QByteArray table = TestPictures::BmpWithMasks(plain, 108, 8, 0, {}, "tabletable" + plain.mid(54));
  table[10] = static_cast<char>(table[10] + 10);
  const QByteArray shortened = CVelumPictureFilter::Bmp(table);
  EXPECT_EQ(shortened.mid(54), "tabletable" + plain.mid(54));
  EXPECT_EQ(shortened[10], 64);
}

TEST(CVelumPictureFilter, SizeOfAGif) {
  EXPECT_EQ(CVelumPictureFilter::GifSize(TestPictures::Gif()), QSize(1, 1));
  const QByteArray extension = Hex("21f90401020304002103") + Hex("02aabb0100") + Hex("00");
  QByteArray gif = TestPictures::Gif();
  gif.insert(gif.indexOf(','), extension);
  EXPECT_EQ(CVelumPictureFilter::GifSize(gif), QSize(1, 1));
  for (qsizetype i = 0; i < gif.indexOf(','); ++i)
    EXPECT_TRUE(CVelumPictureFilter::GifSize(gif.left(i)).isEmpty()) << i;
  EXPECT_TRUE(CVelumPictureFilter::GifSize("GIF89a").isEmpty());
  EXPECT_TRUE(CVelumPictureFilter::GifSize("GIF80a" + gif.mid(6)).isEmpty());
}

} // namespace
