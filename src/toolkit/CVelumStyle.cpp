#include "toolkit/CVelumStyle.h"

CVelumStyle::CVelumStyle(QStyle* aBase) : QProxyStyle(aBase) {}

int CVelumStyle::styleHint(StyleHint aHint, const QStyleOption* aOption, const QWidget* aWidget,
                           QStyleHintReturn* aReturn) const {
  if (aHint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
  return QProxyStyle::styleHint(aHint, aOption, aWidget, aReturn);
}
