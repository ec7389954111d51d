#include "toolkit/CVelumFieldNote.h"

#include "core/CVelumObject.h"

#include <QAccessible>
#include <algorithm>

namespace {

constexpr int EMaxWidth = 300;
constexpr int EPadding = 4;
// Between the field and its note.
constexpr int EGap = 2;

} // namespace

CVelumFieldNote::CVelumFieldNote(QWidget& aField, const QString& aText)
    : QLabel(aText, aField.parentWidget()), iField(aField) {
  setObjectName(u"fFieldNote"_s);
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setMargin(EPadding);
  setFrameStyle(QFrame::Box | QFrame::Plain);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::ToolTipBase);
  setForegroundRole(QPalette::ToolTipText);
  setAccessibleName(aText);
  iField.setAccessibleDescription(aText);
  PutAt(iField.geometry());
  raise();
  show();
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void CVelumFieldNote::PutAt(const QRect& aField) {
  const QSize room = parentWidget()->size();
  const int width = std::min({sizeHint().width(), EMaxWidth, room.width()});
  const int height = heightForWidth(width);
  const int below = aField.bottom() + 1 + EGap;
  const bool fits = below + height <= room.height() || aField.top() < room.height() - below;
  const int top = fits ? below : aField.top() - EGap - height;
  setGeometry(std::clamp(aField.left(), 0, std::max(0, room.width() - width)),
              std::clamp(top, 0, std::max(0, room.height() - height)), width, height);
}

void CVelumFieldNote::hideEvent(QHideEvent* aEvent) {
  QLabel::hideEvent(aEvent);
  if (iField.accessibleDescription() == text()) iField.setAccessibleDescription({});
}

void CVelumFieldNote::mousePressEvent(QMouseEvent*) {
  hide();
}
