#include "exchange/CVelumPicture.h"

#include "exchange/CVelumPictureFilter.h"

#include <FreeImage.h>

#include <algorithm>

namespace {

// Passes times pixels that a JPEG may ask for. A progressive picture has about ten passes; thousands of them
// over a large one would take minutes.
constexpr qint64 EMaxWork = 30 * CVelumPicture::EMaxPixels;

[[noreturn]] void Refuse(const QString& aReason) {
  throw CVelumException(EHostBadPicture, u"CVelumPicture"_s, aReason);
}

[[noreturn]] void RefuseDamaged() {
  Refuse(u"The picture is damaged and cannot be read."_s);
}

// The library's plugin for raw camera files tells them by trying to open them.
void Prepare() {
  [[maybe_unused]] static const int done = FreeImage_SetPluginEnabled(FIF_RAW, FALSE);
}

// A stream of the library over bytes that are only read.
class CStream {
public:
  explicit CStream(const QByteArray& aBytes)
      : iStream(FreeImage_OpenMemory(
            reinterpret_cast<BYTE*>(const_cast<char*>(aBytes.constData())), // NOLINT: read only
            static_cast<DWORD>(aBytes.size()))) {
    if (!iStream) CVelumError::RaiseHost(EHostOutOfMemory);
  }
  CStream() : iStream(FreeImage_OpenMemory()) {
    if (!iStream) CVelumError::RaiseHost(EHostOutOfMemory);
  }
  ~CStream() { FreeImage_CloseMemory(iStream); }
  CStream(const CStream&) = delete;
  CStream& operator=(const CStream&) = delete;
  [[nodiscard]] FIMEMORY* Get() const { return iStream; }

private:
  FIMEMORY* iStream;
};

// The library reports failures by null, but not the exceptions of its own parts.
FIBITMAP* Load(int aFormat, const QByteArray& aBytes, int aFlags) {
  const CStream stream(aBytes);
  try {
    return FreeImage_LoadFromMemory(static_cast<FREE_IMAGE_FORMAT>(aFormat), stream.Get(), aFlags);
  } catch (...) {
    return nullptr;
  }
}

QSize HeadSize(int aFormat, const QByteArray& aBytes) {
  // The library decodes a GIF to tell its size.
  if (aFormat == EPicGif) return CVelumPictureFilter::GifSize(aBytes);
  FIBITMAP* head = Load(aFormat, aBytes, FIF_LOAD_NOPIXELS);
  if (!head) return {};
  const QSize size(static_cast<int>(FreeImage_GetWidth(head)), static_cast<int>(FreeImage_GetHeight(head)));
  FreeImage_Unload(head);
  return size;
}

void CheckSize(const QSize& aSize, int aPasses) {
  if (aSize.width() <= 0 || aSize.height() <= 0) RefuseDamaged();
  const qint64 pixels = qint64{aSize.width()} * aSize.height();
  if (pixels > CVelumPicture::EMaxPixels)
    Refuse(u"The picture has %1 x %2 pixels; at most 100 million in all can be shown."_s.arg(aSize.width())
               .arg(aSize.height()));
  if (pixels * aPasses > EMaxWork)
    Refuse(u"The picture is stored in %1 passes, which are too many."_s.arg(aPasses));
}

} // namespace

void CVelumPicture::TUnload::operator()(FIBITMAP* aBitmap) const {
  FreeImage_Unload(aBitmap);
}

int CVelumPicture::FormatOf(const QByteArray& aBytes) {
  if (aBytes.isEmpty()) return EPicUnknown;
  Prepare();
  const CStream stream(aBytes);
  return FreeImage_GetFileTypeFromMemory(stream.Get(), 0);
}

bool CVelumPicture::IsDecoded(int aFormat) {
  return aFormat == EPicBmp || aFormat == EPicJpeg || aFormat == EPicPng || aFormat == EPicGif;
}

QString CVelumPicture::MimeTypeOf(int aFormat) {
  switch (aFormat) {
  case EPicBmp:
    return u"image/x-windows-bmp"_s;
  case EPicJpeg:
    return u"image/jpeg"_s;
  case EPicPng:
    return u"image/png"_s;
  case EPicGif:
    return u"image/gif"_s;
  default:
    return u"unknown"_s;
  }
}

CVelumPicture::CVelumPicture(const QByteArray& aBytes) {
  const int format = FormatOf(aBytes);
  if (!IsDecoded(format)) Refuse(u"This is no picture that can be shown."_s);
  CVelumPictureFilter::TJpeg jpeg;
  if (format == EPicJpeg) jpeg = CVelumPictureFilter::Jpeg(aBytes);
  const QByteArray bytes = format == EPicJpeg  ? jpeg.iBytes
                           : format == EPicPng ? CVelumPictureFilter::Png(aBytes)
                           : format == EPicBmp ? CVelumPictureFilter::Bmp(aBytes)
                                               : aBytes;
  CheckSize(HeadSize(format, bytes), jpeg.iScans);
  Replace(Load(format, bytes, format == EPicJpeg ? JPEG_ACCURATE : 0));
  Normalise(format);
  Turn(jpeg.iOrientation);
}

CVelumPicture::CVelumPicture(TBitmap aBitmap) : iBitmap(std::move(aBitmap)) {}

void CVelumPicture::Replace(FIBITMAP* aBitmap) {
  if (!aBitmap) RefuseDamaged();
  iBitmap.reset(aBitmap);
}

// Leaves 1 to 32 bits a pixel.
void CVelumPicture::Normalise(int aFormat) {
  if (!FreeImage_HasPixels(iBitmap.get())) RefuseDamaged();
  switch (FreeImage_GetImageType(iBitmap.get())) {
  case FIT_BITMAP:
    break;
  case FIT_UINT16:
    return Replace(FreeImage_ConvertTo8Bits(iBitmap.get()));
  case FIT_RGB16:
    return Replace(FreeImage_ConvertTo24Bits(iBitmap.get()));
  default:
    return Replace(FreeImage_ConvertTo32Bits(iBitmap.get()));
  }
  // The fourth byte of most such files is a filler of zeros.
  if (aFormat == EPicBmp && FreeImage_GetBPP(iBitmap.get()) == 32 && !HasAlpha())
    Replace(FreeImage_ConvertTo24Bits(iBitmap.get()));
}

bool CVelumPicture::HasAlpha() const {
  for (unsigned y = 0; y < FreeImage_GetHeight(iBitmap.get()); ++y) {
    const auto* line = reinterpret_cast<const RGBQUAD*>(FreeImage_GetScanLine(iBitmap.get(), int(y)));
    const auto* end = line + FreeImage_GetWidth(iBitmap.get());
    if (std::any_of(line, end, [](const RGBQUAD& aPixel) { return aPixel.rgbReserved != 0; })) return true;
  }
  return false;
}

// The eight ways in which a camera can have been held.
void CVelumPicture::Turn(int aOrientation) {
  if (aOrientation >= 5)
    Replace(FreeImage_Rotate(iBitmap.get(), aOrientation == 5 || aOrientation == 8 ? 90 : -90));
  if (aOrientation == 3) Replace(FreeImage_Rotate(iBitmap.get(), 180));
  if (aOrientation == 2) FreeImage_FlipHorizontal(iBitmap.get());
  if (aOrientation == 4 || aOrientation == 5 || aOrientation == 7) FreeImage_FlipVertical(iBitmap.get());
}

int CVelumPicture::Width() const {
  return static_cast<int>(FreeImage_GetWidth(iBitmap.get()));
}

int CVelumPicture::Height() const {
  return static_cast<int>(FreeImage_GetHeight(iBitmap.get()));
}

CVelumPicture CVelumPicture::Rescaled(int aWidth, int aHeight) const {
  TBitmap scaled(FreeImage_Rescale(iBitmap.get(), aWidth, aHeight, FILTER_BILINEAR));
  if (!scaled) CVelumError::RaiseHost(EHostOutOfMemory);
  return CVelumPicture(std::move(scaled));
}

QByteArray CVelumPicture::ToJpeg() const {
  RGBQUAD white = {255, 255, 255, 0};
  TBitmap flat;
  if (FreeImage_IsTransparent(iBitmap.get())) {
    const TBitmap deep(FreeImage_ConvertTo32Bits(iBitmap.get()));
    if (deep) flat.reset(FreeImage_Composite(deep.get(), FALSE, &white, nullptr));
  } else {
    flat.reset(FreeImage_ConvertTo24Bits(iBitmap.get()));
  }
  const CStream stream;
  if (!flat || !FreeImage_SaveToMemory(FIF_JPEG, flat.get(), stream.Get(), JPEG_QUALITYGOOD)) return {};
  BYTE* bytes = nullptr;
  DWORD size = 0;
  if (!FreeImage_AcquireMemory(stream.Get(), &bytes, &size)) return {};
  return {reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size)};
}

QImage CVelumPicture::ToImage() const {
  FIBITMAP* from = iBitmap.get();
  const bool alpha = FreeImage_IsTransparent(from);
  TBitmap deep;
  if (FreeImage_GetBPP(from) != 24 && FreeImage_GetBPP(from) != 32) {
    deep.reset(FreeImage_ConvertTo32Bits(from));
    from = deep.get();
  }
  QImage image(Width(), Height(), alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  if (!from || image.isNull()) CVelumError::RaiseHost(EHostOutOfMemory);
  const bool full = FreeImage_GetBPP(from) == 32;
  for (int y = 0; y < image.height(); ++y) {
    const BYTE* pixel = FreeImage_GetScanLine(from, image.height() - 1 - y); // the library's lowest line is 0
    auto* to = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (QRgb* end = to + image.width(); to != end; ++to, pixel += full ? 4 : 3)
      *to = qRgba(pixel[FI_RGBA_RED], pixel[FI_RGBA_GREEN], pixel[FI_RGBA_BLUE],
                  alpha && full ? pixel[FI_RGBA_ALPHA] : 255);
  }
  return image;
}
