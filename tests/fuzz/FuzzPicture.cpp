// Feeds damaged pictures to the decoder: each is a picture or a refusal, and what can be decoded can be shown
// and reduced.
#include "FuzzTarget.h"
#include "exchange/CVelumPicture.h"
#include "support/TestPictures.h"

#include <QBuffer>
#include <algorithm>
#include <cstdlib>

namespace {

QByteArray Encoded(const QImage& aImage, const char* aFormat) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  if (!buffer.open(QIODevice::WriteOnly) || !aImage.save(&buffer, aFormat)) std::abort();
  return bytes;
}

// Small pictures of all kinds that the decoders tell apart.
QList<QByteArray> Seeds() {
  QImage image(24, 17, QImage::Format_ARGB32);
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, qRgba(x * 10, y * 15, x * y, 255 - x));
  QList<QByteArray> seeds{TestPictures::Bmp(5, 7), TestPictures::Gif(), Encoded(image, "JPG")};
  seeds.append(TestPictures::BmpWithMasks(TestPictures::Bmp(3, 3), 124, 32, 3,
                                          QByteArray::fromHex("000000ff00ff0000ff0000000000ff00"),
                                          QByteArray::fromHex("c0608030").repeated(9)));
  for (const auto format : {QImage::Format_ARGB32, QImage::Format_RGB888, QImage::Format_Indexed8,
                            QImage::Format_Mono, QImage::Format_RGBA64, QImage::Format_Grayscale16}) {
    seeds.append(Encoded(image.convertToFormat(format), "PNG"));
    seeds.append(Encoded(image.convertToFormat(format), "BMP"));
  }
  return seeds;
}

quint32 Crc(const QByteArray& aBytes) {
  quint32 crc = 0xFFFFFFFF;
  for (const char each : aBytes) {
    crc ^= static_cast<quint8>(each);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
  }
  return ~crc;
}

// Puts right the checksums of a PNG, so that a decoder looks at what is in its chunks.
void RepairPng(QByteArray& aBytes) {
  for (qsizetype pos = 8; pos + 12 <= aBytes.size();) {
    const qsizetype length = qFromBigEndian<quint32>(aBytes.constData() + pos);
    if (length > aBytes.size() - pos - 12) return;
    qToBigEndian(Crc(aBytes.mid(pos + 4, length + 4)), aBytes.data() + pos + 8 + length);
    pos += length + 12;
  }
}

void Damage(QByteArray& aBytes, std::mt19937& aRandom) {
  const auto below = [&](qsizetype aLimit) {
    return static_cast<qsizetype>(aRandom() % static_cast<quint32>(std::max<qsizetype>(aLimit, 1)));
  };
  // Heads decide more than data.
  const qsizetype at = below(aRandom() % 2 == 0 ? std::min<qsizetype>(aBytes.size(), 64) : aBytes.size());
  switch (aRandom() % 5) {
  case 0:
    aBytes.truncate(at);
    break;
  case 1:
    aBytes.insert(at, static_cast<char>(aRandom()));
    break;
  case 2:
    aBytes.insert(at, aBytes.mid(below(aBytes.size()), below(200)));
    break;
  default:
    if (at < aBytes.size()) aBytes[at] = static_cast<char>(aRandom());
  }
}

} // namespace

QByteArray FuzzTarget::MakeInput(std::mt19937& aRandom) {
  static const QList<QByteArray> seeds = Seeds();
  QByteArray bytes = seeds[static_cast<qsizetype>(aRandom() % static_cast<quint32>(seeds.size()))];
  for (auto i = 1 + aRandom() % 6; i > 0; --i) Damage(bytes, aRandom);
  if (bytes.startsWith("\x89PNG") && aRandom() % 4 != 0) RepairPng(bytes);
  return bytes;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const QByteArray bytes(reinterpret_cast<const char*>(aData), static_cast<qsizetype>(aSize));
  try {
    const CVelumPicture picture(bytes);
    if (qint64{picture.Width()} * picture.Height() > 1'000'000) return 0; // allowed, and slow to look at
    if (picture.ToImage().size() != QSize(picture.Width(), picture.Height())) std::abort();
    if (CVelumPicture::FormatOf(picture.Rescaled(20, 20).ToJpeg()) != EPicJpeg) std::abort();
  } catch (const CVelumException& e) {
    if (e.Number() != EHostBadPicture && e.Number() != EHostOutOfMemory) std::abort();
  }
  return 0;
}
