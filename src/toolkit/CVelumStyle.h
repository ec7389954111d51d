// The desktop's style, with what all desktops are to have in common.
#pragma once

#include <QProxyStyle>

// Buttons of dialogs have no pictures: they stand beside the program's own, which have none. Long texts and
// lists have a frame in the colour of selections while they have the focus, as entries of one line do.
class CVelumStyle final : public QProxyStyle {
  Q_OBJECT

public:
  // Without aBase it changes the style that the desktop or the user has chosen.
  explicit CVelumStyle(QStyle* aBase = nullptr);
  int styleHint(StyleHint aHint, const QStyleOption* aOption = nullptr, const QWidget* aWidget = nullptr,
                QStyleHintReturn* aReturn = nullptr) const override;
  void drawPrimitive(PrimitiveElement aElement, const QStyleOption* aOption, QPainter* aPainter,
                     const QWidget* aWidget = nullptr) const override;
};
