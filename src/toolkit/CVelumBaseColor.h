// Colours of controls between the colours of a document and the palette of the desktop.
#pragma once

#include "core/CVelumConst.h"

#include <QColor>

// A colour pair to paint with. An invalid colour: the palette's own is right.
struct TVelumColors {
  QColor iText;
  QColor iBack;
};

namespace CVelumBaseColor {

// 0xBBGGRR as the documents store it; ENoInt gives an invalid colour.
[[nodiscard]] QColor ToColor(qint32 aColor);
[[nodiscard]] qint32 FromColor(const QColor& aColor);
// Contrast ratio of two colours, 1 to 21, by their relative luminance as WCAG 2 defines it.
[[nodiscard]] double Contrast(const QColor& aA, const QColor& aB);
// What to paint for the colours aFore and aBack (0xBBGGRR, ENoInt unset) of a document on a desktop whose
// background is aPalBack. A black text counts as unset, since it is the default of fonts. Two colours
// that the document states stay as they are; a stated text on the desktop's background keeps its hue and
// gets only as much lighter or darker as it must to be read; an unset text on a stated background is black,
// or white where black could not be read.
[[nodiscard]] TVelumColors Resolve(qint32 aFore, qint32 aBack, const QColor& aPalBack);

} // namespace CVelumBaseColor
