// Colours of controls between the colours of a document and the palette of the desktop.
#pragma once

#include "core/CVelumConst.h"

#include <QColor>
#include <QPalette>

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
// aColor with its hue, only as much lighter or darker as it must be to be read on aBack.
[[nodiscard]] QColor Readable(const QColor& aColor, const QColor& aBack);
// What to paint for the colours aFore and aBack (0xBBGGRR, ENoInt unset) of a document on a desktop whose
// background is aPalBack. A black text counts as unset, since it is the default of fonts. Two colours
// that the document states stay as they are; a stated text on the desktop's background keeps its hue and
// gets only as much lighter or darker as it must to be read; an unset text on a stated background is black,
// or white where black could not be read.
[[nodiscard]] TVelumColors Resolve(qint32 aFore, qint32 aBack, const QColor& aPalBack);

// The palette of a form with the background aBack (0xBBGGRR) on a desktop with the palette aDesktop. With
// ENoInt it is the desktop's. A stated background is the paper of a card: on it everything that states no
// colour is as on a light desktop, boxes white and their text black, also when the desktop is dark.
[[nodiscard]] QPalette CardPalette(qint32 aBack, const QPalette& aDesktop);

} // namespace CVelumBaseColor
