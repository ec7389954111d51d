#include "toolkit/CVelumBaseLine.h"

#include <QFrame>

CVelumBaseLine::CVelumBaseLine(const QString& aName, QWidget* aParent)
    : CVelumBaseControl(EBaseLine, aName, new QFrame(aParent), nullptr) {
  auto* frame = static_cast<QFrame*>(Widget());
  frame->setFrameStyle(QFrame::HLine | QFrame::Plain);
  frame->setForegroundRole(QPalette::Mid);
}

void CVelumBaseLine::SetEnds(float aX1, float aX2, float aY) {
  SetPlace(aX1, aY);
  SetSize(aX2 - aX1, ETwipsPerPixel);
}
