#include "toolkit/CVelumBaseMeasure.h"

#include "core/CVelumSeams.h"
#include "toolkit/CVelumBaseControl.h"

#include <QFontMetricsF>
#include <cmath>

namespace {

const QString gSample = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.,:+-/()=?"_s;

float PixelsUp(double aPixels) {
  return static_cast<float>(std::ceil(aPixels)) * ETwipsPerPixel;
}

} // namespace

float CVelumBaseMeasure::AvgCharWidth() const {
  return TextWidth(gSample) / static_cast<float>(gSample.size());
}

float CVelumScreenMeasure::TextHeight(const QString& aText) const {
  Q_UNUSED(aText);
  return PixelsUp(QFontMetricsF(Font()).height());
}

float CVelumScreenMeasure::TextWidth(const QString& aText) const {
  return PixelsUp(QFontMetricsF(Font()).horizontalAdvance(aText));
}

void CVelumScreenMeasure::InstallMetrics(const QFont& aFont) {
  CVelumScreenMeasure measure;
  measure.SetFont(aFont);
  TVelumMetrics metrics;
  metrics.iCharHeight = measure.TextHeight(u"A"_s);
  metrics.iAvgCharWidth = measure.AvgCharWidth();
  CVelumSeams::SetMetrics(metrics);
}
