#include "exchange/CVelumPictureFilter.h"

#include <QtEndian>
#include <algorithm>
#include <cstring>

namespace {

// Markers of a JPEG.
constexpr quint8 EFill = 0xFF;
constexpr quint8 EStuffed = 0x00; // an 0xFF of the picture's data
constexpr quint8 ETem = 0x01;
constexpr quint8 ERst0 = 0xD0;
constexpr quint8 EStart = 0xD8;
constexpr quint8 EEnd = 0xD9;
constexpr quint8 EScan = 0xDA;
constexpr quint8 EApp0 = 0xE0;
constexpr quint8 EApp1 = 0xE1;
constexpr quint8 EApp14 = 0xEE;
constexpr quint8 EApp15 = 0xEF;
constexpr quint8 EComment = 0xFE;

quint8 ByteAt(const QByteArray& aBytes, qsizetype aPos) {
  return aPos >= 0 && aPos < aBytes.size() ? static_cast<quint8>(aBytes[aPos]) : quint8{0};
}

bool HasAt(const QByteArray& aBytes, qsizetype aPos, const char* aText, qsizetype aLen) {
  return aPos >= 0 && aLen <= aBytes.size() - aPos &&
         std::memcmp(aBytes.constData() + aPos, aText, static_cast<size_t>(aLen)) == 0;
}

// Numbers of a TIFF block, which says itself in which order its bytes stand. Reads zero beyond its end.
class CTiffReader {
public:
  explicit CTiffReader(const QByteArray& aBlock) : iBlock(aBlock), iBig(aBlock.startsWith("MM")) {}
  [[nodiscard]] quint32 Number(qsizetype aPos, int aBytes) const {
    quint32 number = 0;
    for (int i = 0; i < aBytes; ++i)
      number = number << 8 | ByteAt(iBlock, aPos + (iBig ? i : aBytes - 1 - i));
    return number;
  }

private:
  const QByteArray& iBlock;
  bool iBig;
};

// The orientation that an Exif segment names in its first directory; 1 when it names none.
int Orientation(const QByteArray& aBlock) {
  constexpr quint32 ETag = 0x0112;
  constexpr int EEntry = 12;
  const CTiffReader tiff(aBlock);
  const qsizetype directory = tiff.Number(4, 4);
  const auto entries = static_cast<int>(tiff.Number(directory, 2));
  for (int i = 0; i < entries; ++i) {
    const qsizetype entry = directory + 2 + qsizetype{i} * EEntry;
    if (entry + EEntry > aBlock.size()) break;
    if (tiff.Number(entry, 2) != ETag) continue;
    const quint32 value = tiff.Number(entry + 8, 2);
    return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
  }
  return 1;
}

// Walks over the segments of a JPEG and keeps what makes the picture.
class CJpegWalker {
public:
  explicit CJpegWalker(const QByteArray& aBytes) : iBytes(aBytes) {}

  CVelumPictureFilter::TJpeg Run() {
    iJpeg.iBytes.reserve(iBytes.size());
    while (NextMarker()) {
      const quint8 marker = ByteAt(iBytes, iPos + 1);
      if (marker == EEnd) {
        Keep(2);
        break;
      }
      const bool alone = marker == EStart || marker == ETem;
      const qsizetype length = alone ? 2 : 2 + (ByteAt(iBytes, iPos + 2) << 8 | ByteAt(iBytes, iPos + 3));
      if (length > iBytes.size() - iPos || (!alone && length < 4)) break;
      Take(marker, length);
    }
    return iJpeg;
  }

private:
  // Goes to the next marker that is none of the data's own, keeping data on the way.
  bool NextMarker() {
    const qsizetype from = iPos;
    qsizetype pos = from;
    for (;; pos += 2) {
      const qsizetype left = std::max<qsizetype>(iBytes.size() - pos, 0);
      const void* found = left > 0 ? std::memchr(iBytes.constData() + pos, EFill, size_t(left)) : nullptr;
      pos = found ? static_cast<const char*>(found) - iBytes.constData() : iBytes.size();
      if (pos + 1 >= iBytes.size()) break;
      const quint8 next = ByteAt(iBytes, pos + 1);
      if (next == EFill) {
        --pos; // a fill byte: the marker may follow
        continue;
      }
      if (next != EStuffed && (next & 0xF8) != ERst0) break;
    }
    if (iJpeg.iScans > 0) iJpeg.iBytes.append(iBytes.constData() + from, pos - from);
    iPos = pos;
    return pos + 1 < iBytes.size();
  }

  void Take(quint8 aMarker, qsizetype aLength) {
    if (aMarker == EScan) ++iJpeg.iScans;
    if (aMarker == EApp1 && HasAt(iBytes, iPos + 4, "Exif\0\0", 6))
      iJpeg.iOrientation = Orientation(iBytes.mid(iPos + 10, aLength - 10));
    if (IsWanted(aMarker))
      Keep(aLength);
    else
      iPos += aLength;
  }

  [[nodiscard]] bool IsWanted(quint8 aMarker) const {
    if (aMarker == EApp0) return HasAt(iBytes, iPos + 4, "JFIF", 5);
    if (aMarker == EApp14) return HasAt(iBytes, iPos + 4, "Adobe", 5);
    return aMarker != EComment && (aMarker < EApp0 || aMarker > EApp15);
  }

  void Keep(qsizetype aLength) {
    iJpeg.iBytes.append(iBytes.constData() + iPos, aLength);
    iPos += aLength;
  }

  const QByteArray& iBytes;
  qsizetype iPos = 0;
  CVelumPictureFilter::TJpeg iJpeg;
};

// Whether a chunk of a PNG says something about the picture itself. A gamma or white point is left out: the
// library applies it to true colours but not to those of a palette, so that two pictures of the same colours
// would be shown differently.
bool IsWantedChunk(const char* aType) {
  if (aType[0] >= 'A' && aType[0] <= 'Z') return true;
  static constexpr const char* EColours[] = {"tRNS", "sRGB", "sBIT"};
  return std::any_of(std::begin(EColours), std::end(EColours),
                     [&](const char* aName) { return std::memcmp(aType, aName, 4) == 0; });
}

// The position behind the sub-blocks of a GIF that begin at aPos.
qsizetype BehindSubBlocks(const QByteArray& aBytes, qsizetype aPos) {
  while (ByteAt(aBytes, aPos) != 0) aPos += 1 + ByteAt(aBytes, aPos);
  return aPos + 1;
}

// Bytes of the colour table that the packed field of a GIF announces.
qsizetype TableLen(quint8 aPacked) {
  return (aPacked & 0x80) != 0 ? qsizetype{3} << ((aPacked & 7) + 1) : 0;
}

QSize SizeAt(const QByteArray& aBytes, qsizetype aPos) {
  return {ByteAt(aBytes, aPos) | ByteAt(aBytes, aPos + 1) << 8,
          ByteAt(aBytes, aPos + 2) | ByteAt(aBytes, aPos + 3) << 8};
}

// Heads of a BMP: 14 bytes of the file, then those of the picture, which begin with their number.
constexpr qsizetype EFileHead = 14;
constexpr qsizetype EPicHead = 40;
constexpr qsizetype EMasks = 12; // of red, green and blue
constexpr quint32 EUncoded = 0;
constexpr quint32 EBitFields = 3;
constexpr quint32 EAlphaBitFields = 6;

quint32 LongAt(const QByteArray& aBytes, qsizetype aPos) {
  return aPos + 4 <= aBytes.size() ? qFromLittleEndian<quint32>(aBytes.constData() + aPos) : 0;
}

void PutLong(QByteArray& aBytes, qsizetype aPos, quint32 aValue) {
  qToLittleEndian(aValue, aBytes.data() + aPos);
}

// Which bits of a pixel hold a colour, read as 0 to 255.
struct TMask {
  explicit TMask(quint32 aBits)
      : iBits(aBits), iShift(aBits ? qCountTrailingZeroBits(aBits) : 0), iMost(aBits >> iShift) {}
  [[nodiscard]] quint32 Of(quint32 aPixel) const {
    return iMost ? static_cast<quint32>(quint64{(aPixel & iBits) >> iShift} * 255 / iMost) : 0;
  }
  quint32 iBits;
  quint32 iShift;
  quint32 iMost;
};

// The header of a BMP, as far as it decides how the pixels lie.
struct TBmp {
  explicit TBmp(const QByteArray& aBytes)
      : iHead(LongAt(aBytes, EFileHead)), iBitCount(SizeAt(aBytes, EFileHead + 14).width()),
        iCoding(LongAt(aBytes, EFileHead + 16)),
        iPixels(std::max<qsizetype>(LongAt(aBytes, 10), EFileHead + iHead)) {}
  [[nodiscard]] bool IsLong() const { return iHead == 52 || iHead == 56 || iHead == 108 || iHead == 124; }
  [[nodiscard]] bool HasMasks() const { return iCoding == EBitFields || iCoding == EAlphaBitFields; }
  qsizetype iHead;
  int iBitCount;
  quint32 iCoding;
  qsizetype iPixels; // where they begin
};

// Pixels of 32 bits in the order that needs no masks. A cut one at the end is dropped.
QByteArray InOrder(const QByteArray& aBytes, const TBmp& aBmp) {
  const qsizetype masks = EFileHead + EPicHead;
  const bool hasAlpha = aBmp.iHead >= 56 || aBmp.iCoding == EAlphaBitFields;
  const TMask red(LongAt(aBytes, masks));
  const TMask green(LongAt(aBytes, masks + 4));
  const TMask blue(LongAt(aBytes, masks + 8));
  const TMask alpha(hasAlpha ? LongAt(aBytes, masks + 12) : 0);
  // Behind a short header the masks stand on their own.
  const qsizetype least = aBmp.iHead == EPicHead ? masks + EMasks + (hasAlpha ? 4 : 0) : 0;
  const qsizetype from = std::max(aBmp.iPixels, least);
  QByteArray pixels(std::max<qsizetype>(aBytes.size() - from, 0) / 4 * 4, '\0');
  for (qsizetype i = 0; i < pixels.size(); i += 4) {
    const quint32 pixel = LongAt(aBytes, from + i);
    PutLong(pixels, i, blue.Of(pixel) | green.Of(pixel) << 8 | red.Of(pixel) << 16 | alpha.Of(pixel) << 24);
  }
  return pixels;
}

} // namespace

CVelumPictureFilter::TJpeg CVelumPictureFilter::Jpeg(const QByteArray& aBytes) {
  return CJpegWalker(aBytes).Run();
}

QByteArray CVelumPictureFilter::Png(const QByteArray& aBytes) {
  constexpr qsizetype ESignature = 8;
  constexpr qsizetype EFrame = 12; // length, type and checksum
  QByteArray kept = aBytes.left(ESignature);
  kept.reserve(aBytes.size());
  for (qsizetype pos = ESignature; pos + EFrame <= aBytes.size();) {
    const qsizetype length = EFrame + qFromBigEndian<quint32>(aBytes.constData() + pos);
    if (length > aBytes.size() - pos) break;
    if (IsWantedChunk(aBytes.constData() + pos + 4)) kept.append(aBytes.constData() + pos, length);
    pos += length;
  }
  return kept;
}

QByteArray CVelumPictureFilter::Bmp(const QByteArray& aBytes) {
  const TBmp bmp(aBytes);
  const bool reorder = bmp.iBitCount == 32 && bmp.HasMasks() && (bmp.IsLong() || bmp.iHead == EPicHead);
  if (aBytes.size() < EFileHead + EPicHead || !(bmp.IsLong() || reorder)) return aBytes;
  QByteArray head = aBytes.left(EFileHead + EPicHead);
  PutLong(head, EFileHead, EPicHead);
  if (reorder) {
    PutLong(head, EFileHead + 16, EUncoded);
    PutLong(head, EFileHead + 32, 0); // no colours in a table
    PutLong(head, 10, static_cast<quint32>(head.size()));
    return head + InOrder(aBytes, bmp);
  }
  if (bmp.HasMasks()) {
    PutLong(head, EFileHead + 16, EBitFields);
    head += aBytes.mid(head.size(), EMasks);
  }
  const QByteArray table = aBytes.mid(EFileHead + bmp.iHead, bmp.iPixels - EFileHead - bmp.iHead);
  PutLong(head, 10, static_cast<quint32>(head.size() + table.size()));
  return head + table + aBytes.mid(bmp.iPixels);
}

QSize CVelumPictureFilter::GifSize(const QByteArray& aBytes) {
  constexpr quint8 EExtension = 0x21;
  constexpr quint8 EPicture = 0x2C;
  if (!aBytes.startsWith("GIF87a") && !aBytes.startsWith("GIF89a")) return {};
  const QSize screen = SizeAt(aBytes, 6);
  qsizetype pos = 13 + TableLen(ByteAt(aBytes, 10));
  while (ByteAt(aBytes, pos) == EExtension) pos = BehindSubBlocks(aBytes, pos + 2);
  if (ByteAt(aBytes, pos) != EPicture) return {};
  return screen.expandedTo(SizeAt(aBytes, pos + 5));
}
