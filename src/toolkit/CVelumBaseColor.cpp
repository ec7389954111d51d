#include "toolkit/CVelumBaseColor.h"

#include <algorithm>
#include <cmath>

namespace {

// Contrast that adjusted text must reach; below the second, black text becomes white.
constexpr double EGoodContrast = 4.5;
constexpr double EMinContrast = 3.0;
// The plain grey that Qt's styles are drawn for.
const QColor gLightButton(239, 239, 239);

double Linear(double aChannel) {
  return aChannel <= 0.04045 ? aChannel / 12.92 : std::pow((aChannel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& aColor) {
  return 0.2126 * Linear(static_cast<double>(aColor.redF())) +
         0.7152 * Linear(static_cast<double>(aColor.greenF())) +
         0.0722 * Linear(static_cast<double>(aColor.blueF()));
}

} // namespace

namespace CVelumBaseColor {

QColor ToColor(qint32 aColor) {
  if (aColor == ENoInt) return {};
  return QColor(aColor & 0xFF, (aColor >> 8) & 0xFF, (aColor >> 16) & 0xFF);
}

qint32 FromColor(const QColor& aColor) {
  return aColor.isValid() ? aColor.red() | aColor.green() << 8 | aColor.blue() << 16 : ENoInt;
}

double Contrast(const QColor& aA, const QColor& aB) {
  const double a = Luminance(aA);
  const double b = Luminance(aB);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor Readable(const QColor& aColor, const QColor& aBack) {
  const QColor with =
      Contrast(Qt::white, aBack) >= Contrast(Qt::black, aBack) ? QColor(Qt::white) : QColor(Qt::black);
  QColor result = aColor;
  for (int step = 1; step <= 10 && Contrast(result, aBack) < EGoodContrast; ++step) {
    auto mix = [step](int aFrom, int aTo) { return aFrom + (aTo - aFrom) * step / 10; };
    result = QColor(mix(aColor.red(), with.red()), mix(aColor.green(), with.green()),
                    mix(aColor.blue(), with.blue()));
  }
  return result;
}

TVelumColors Resolve(qint32 aFore, qint32 aBack, const QColor& aPalBack) {
  const bool foreSet = aFore != ENoInt && aFore != 0;
  if (aBack == ENoInt) {
    if (!foreSet) return {};
    return {Readable(ToColor(aFore), aPalBack), {}};
  }
  const QColor back = ToColor(aBack);
  if (foreSet) return {ToColor(aFore), back};
  return {Contrast(Qt::black, back) >= EMinContrast ? QColor(Qt::black) : QColor(Qt::white), back};
}

QPalette CardPalette(qint32 aBack, const QPalette& aDesktop) {
  if (aBack == ENoInt) return {};
  const bool dark = Luminance(aDesktop.color(QPalette::Base)) < Luminance(aDesktop.color(QPalette::Text));
  QPalette palette = dark ? QPalette(gLightButton) : QPalette();
  const QColor back = ToColor(aBack);
  palette.setColor(QPalette::Window, back);
  const QColor text = Contrast(Qt::black, back) >= EMinContrast ? Qt::black : Qt::white;
  for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive})
    palette.setColor(group, QPalette::WindowText, text);
  return palette;
}

} // namespace CVelumBaseColor
