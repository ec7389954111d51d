// Icons drawn as SVG in the colours of the desktop.
#pragma once

#include "core/CVelumObject.h"

#include <QIcon>
#include <QPalette>

namespace CVelumSvgIcon {

// The icon of an SVG file, drawn sharp in every size and in the palette of the moment of painting: in the
// picture "currentColor" stands for the palette's text, "Highlight" for its accent, made as much lighter or
// darker as it must be to stand out. A null icon when there is no such file.
[[nodiscard]] QIcon Load(const QString& aPath);

// As long as it lives, icons are painted in aPalette instead of the desktop's: for widgets that stand on
// other colours than those.
class CColors {
public:
  explicit CColors(QPalette aPalette);
  ~CColors();
  CColors(const CColors&) = delete;
  CColors& operator=(const CColors&) = delete;

private:
  QPalette iPalette;
  const QPalette* iBefore;
};

} // namespace CVelumSvgIcon
