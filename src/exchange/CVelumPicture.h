// A decoded picture. The one class that calls the image library.
#pragma once

#include "core/CVelumError.h"

#include <QByteArray>
#include <QImage>
#include <memory>

struct FIBITMAP;

// Picture formats, as the image library numbers them.
enum EPic : int { EPicUnknown = -1, EPicBmp = 0, EPicJpeg = 2, EPicPng = 13, EPicGif = 25 };

// The host error of a picture that cannot be shown; its description tells why.
inline constexpr qint32 EHostBadPicture = 481;

// Only the four formats of EPic ever reach a decoder of the library, told by their content: its others crash
// and hang on damaged files. What a decoder would need is measured first (pixels, passes), and it gets
// the bytes without the descriptions in them (CVelumPictureFilter).
class CVelumPicture {
public:
  // More than so many pixels are refused.
  static constexpr qint64 EMaxPixels = 100'000'000;

  // The format by content; EPicUnknown for none, another number for one of the library's other formats.
  [[nodiscard]] static int FormatOf(const QByteArray& aBytes);
  // Whether it is one of the four.
  [[nodiscard]] static bool IsDecoded(int aFormat);
  // What stands in a blob for a format.
  [[nodiscard]] static QString MimeTypeOf(int aFormat);

  // Decodes, and turns the picture upright. Of an animation it is the first picture. Host error
  // EHostBadPicture for what is none of the four formats, too large, or damaged.
  explicit CVelumPicture(const QByteArray& aBytes);

  // Pixels.
  [[nodiscard]] int Width() const;
  [[nodiscard]] int Height() const;
  // A copy of another size. Host error EHostOutOfMemory when there is no room for it.
  [[nodiscard]] CVelumPicture Rescaled(int aWidth, int aHeight) const;
  // The bytes of a JPEG, with white where the picture is transparent; empty when it could not be made.
  [[nodiscard]] QByteArray ToJpeg() const;
  // The picture as the toolkit takes it.
  [[nodiscard]] QImage ToImage() const;

private:
  struct TUnload {
    void operator()(FIBITMAP* aBitmap) const;
  };
  using TBitmap = std::unique_ptr<FIBITMAP, TUnload>;

  explicit CVelumPicture(TBitmap aBitmap);
  void Replace(FIBITMAP* aBitmap);
  void Normalise(int aFormat);
  void Turn(int aOrientation);
  [[nodiscard]] bool HasAlpha() const;

  TBitmap iBitmap;
};
