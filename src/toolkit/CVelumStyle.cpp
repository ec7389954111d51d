#include "toolkit/CVelumStyle.h"

#include <QAbstractScrollArea>
#include <QPainter>
#include <QStyleOption>

CVelumStyle::CVelumStyle(QStyle* aBase) : QProxyStyle(aBase) {}

int CVelumStyle::styleHint(StyleHint aHint, const QStyleOption* aOption, const QWidget* aWidget,
                           QStyleHintReturn* aReturn) const {
  if (aHint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
  return QProxyStyle::styleHint(aHint, aOption, aWidget, aReturn);
}

void CVelumStyle::drawPrimitive(PrimitiveElement aElement, const QStyleOption* aOption, QPainter* aPainter,
                                const QWidget* aWidget) const {
  QProxyStyle::drawPrimitive(aElement, aOption, aPainter, aWidget);
  const bool focused = aElement == PE_Frame && (aOption->state & State_HasFocus);
  if (!focused || !qobject_cast<const QAbstractScrollArea*>(aWidget)) return;
  aPainter->save();
  aPainter->setPen(aOption->palette.color(QPalette::Active, QPalette::Highlight));
  aPainter->drawRect(aOption->rect.adjusted(0, 0, -1, -1));
  aPainter->restore();
}
