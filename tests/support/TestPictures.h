// Tiny pictures that tests make themselves.
#pragma once

#include <QByteArray>
#include <QtEndian>

namespace TestPictures {

// An uncompressed picture of one colour, 24 bits a pixel.
inline QByteArray Bmp(int aWidth, int aHeight, quint32 aRgb = 0x3060C0) {
  const auto number = [](quint32 aValue, int aBytes) {
    QByteArray bytes(4, '\0');
    qToLittleEndian(aValue, bytes.data());
    return bytes.left(aBytes);
  };
  const int stride = (aWidth * 3 + 3) / 4 * 4;
  const auto pixels = static_cast<quint32>(stride * aHeight);
  QByteArray line;
  for (int i = 0; i < aWidth; ++i) line += number(aRgb, 3);
  line = line.leftJustified(stride, '\0');
  return QByteArray("BM") + number(54 + pixels, 4) + number(0, 4) + number(54, 4) + number(40, 4) +
         number(quint32(aWidth), 4) + number(quint32(aHeight), 4) + number(1, 2) + number(24, 2) +
         number(0, 4) + number(pixels, 4) + number(2835, 4) + number(2835, 4) + number(0, 4) + number(0, 4) +
         line.repeated(aHeight);
}

// The same picture behind a header of aHeadLen bytes, as newer programs write it, with masks for red, green,
// blue and opacity in it, or behind a short one.
inline QByteArray BmpWithMasks(const QByteArray& aBmp, int aHeadLen, int aBitCount, int aCoding,
                               const QByteArray& aMasks, const QByteArray& aPixels) {
  QByteArray head = aBmp.left(54);
  const QByteArray rest = aHeadLen > 40 ? aMasks.leftJustified(aHeadLen - 40, '\0', true) : aMasks;
  head[10] = static_cast<char>(54 + rest.size());
  head[14] = static_cast<char>(aHeadLen);
  head[28] = static_cast<char>(aBitCount);
  head[30] = static_cast<char>(aCoding);
  return head + rest + aPixels;
}

// A picture of one pixel; a real decoder reads it.
inline QByteArray Gif() {
  return QByteArray::fromHex("4749463839610100010080000000000000ffff2c0000000001000100000202440100"
                             "3b");
}

} // namespace TestPictures
