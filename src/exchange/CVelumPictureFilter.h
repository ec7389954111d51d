// What of a picture's bytes the image library gets to see: the picture itself, without the descriptions that
// stand around it. Its parsers of descriptions (Exif, colour profiles, texts) are where damaged and hostile
// files do harm, and nothing here needs them.
#pragma once

#include <QByteArray>
#include <QSize>

namespace CVelumPictureFilter {

struct TJpeg {
  QByteArray iBytes;
  int iOrientation = 1; // of Exif, 1 (as it lies) to 8
  int iScans = 0;       // passes over the whole picture that a decoder has to make
};

// Any bytes will do: what is no JPEG, or ends too early, gives what could be made out until there. Kept are
// the frame, the tables, the scans, and the JFIF and Adobe segments that tell the colours.
[[nodiscard]] TJpeg Jpeg(const QByteArray& aBytes);

// The critical chunks and those that decide over colours, but no gamma. What follows a chunk that is cut off
// is dropped.
[[nodiscard]] QByteArray Png(const QByteArray& aBytes);

// The picture behind the 40-byte header that the library reads: longer ones, which many programs write, lose
// what they say beyond it. Pixels of four bytes come out as blue, green, red and opacity (0 in all of them
// where there is none), whichever bits they lay in. Any other bytes come back as they are.
[[nodiscard]] QByteArray Bmp(const QByteArray& aBytes);

// The greatest of the sizes that a GIF names until its first picture: of the screen and of the picture, which
// need not agree. Empty when the bytes are no GIF or hold no picture.
[[nodiscard]] QSize GifSize(const QByteArray& aBytes);

} // namespace CVelumPictureFilter
