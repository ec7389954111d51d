// Measuring of text in a font, in twips (15 to a logical pixel).
#pragma once

#include "core/CVelumObject.h"

#include <QFont>

// A surface that takes a font and tells how large texts are in it. Tests pin layouts with one of their own.
class CVelumBaseMeasure {
public:
  virtual ~CVelumBaseMeasure() = default;
  virtual void SetFont(const QFont& aFont) { iFont = aFont; }
  [[nodiscard]] const QFont& Font() const { return iFont; }
  // Height of a line and width of a text without line ends.
  [[nodiscard]] virtual float TextHeight(const QString& aText) const = 0;
  [[nodiscard]] virtual float TextWidth(const QString& aText) const = 0;
  // Mean width of a character: that of the sample of 72 characters divided by its length.
  [[nodiscard]] float AvgCharWidth() const;

private:
  QFont iFont;
};

// Measures with the metrics of the screen, in whole pixels, so that a text fits the width told for it.
class CVelumScreenMeasure final : public CVelumBaseMeasure {
public:
  [[nodiscard]] float TextHeight(const QString& aText) const override;
  [[nodiscard]] float TextWidth(const QString& aText) const override;
  // The layout metrics of the program (CVelumSeams), measured in aFont.
  static void InstallMetrics(const QFont& aFont);
};
