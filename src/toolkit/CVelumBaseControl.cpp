#include "toolkit/CVelumBaseControl.h"

#include "core/CVelumLimits.h"
#include "core/text/CVelumLocale.h"
#include "toolkit/CVelumBaseColor.h"
#include "toolkit/CVelumFieldNote.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace {

constexpr const char* gProperty = "CVelumBaseControl";

struct TRoles {
  QPalette::ColorRole iText;
  QPalette::ColorRole iBack;
};

bool IsEscape(const QKeyEvent& aKey) {
  return aKey.key() == Qt::Key_Escape && aKey.modifiers() == Qt::NoModifier;
}

TRoles RolesOf(EBase aKind) {
  switch (aKind) {
  case EBaseButton:
    return {QPalette::ButtonText, QPalette::Button};
  case EBaseCheckBox:
  case EBaseLabel:
  case EBaseLine:
    return {QPalette::WindowText, QPalette::Window};
  default:
    return {QPalette::Text, QPalette::Base};
  }
}

} // namespace

namespace CVelumTwips {

int ToPixel(float aTwips) {
  constexpr float EMost = 1.0e5F;
  const float pixels = aTwips / ETwipsPerPixel;
  return std::isnan(pixels) ? 0 : static_cast<int>(std::lround(std::clamp(pixels, -EMost, EMost)));
}

float FromPixel(int aPixel) {
  return static_cast<float>(aPixel) * ETwipsPerPixel;
}

} // namespace CVelumTwips

CVelumBaseControl::CVelumBaseControl(EBase aKind, const QString& aName, QWidget* aWidget,
                                     CVelumBaseSink* aSink)
    : QObject(aWidget), iWidget(aWidget), iSink(aSink), iKind(aKind) {
  setObjectName(aName);
  iWidget->setObjectName(aName);
  iWidget->setProperty(gProperty, QVariant::fromValue(static_cast<QObject*>(this)));
  iWidget->installEventFilter(this);
  iWidget->hide();
}

CVelumBaseControl* CVelumBaseControl::OfWidget(const QWidget* aWidget) {
  for (const QWidget* widget = aWidget; widget; widget = widget->parentWidget()) {
    const QVariant base = widget->property(gProperty);
    if (base.isValid()) return qobject_cast<CVelumBaseControl*>(base.value<QObject*>());
  }
  return nullptr;
}

void CVelumBaseControl::SetPlace(float aLeft, float aTop) {
  iLeft = aLeft;
  iTop = aTop;
  ApplyPlace();
}

void CVelumBaseControl::SetSize(float aWidth, float aHeight) {
  iWidth = aWidth;
  iHeight = aHeight;
  ApplyPlace();
}

void CVelumBaseControl::SetNudge(float aTwips) {
  iNudge = aTwips;
  ApplyPlace();
}

void CVelumBaseControl::ApplyPlace() {
  const float top = iTop + iNudge;
  const QPoint from(CVelumTwips::ToPixel(iLeft), CVelumTwips::ToPixel(top));
  const QPoint to(CVelumTwips::ToPixel(iLeft + iWidth), CVelumTwips::ToPixel(top + iHeight));
  iWidget->setGeometry(from.x(), from.y(), std::max(0, to.x() - from.x()), std::max(0, to.y() - from.y()));
}

bool CVelumBaseControl::Visible() const {
  return !iWidget->isHidden();
}

void CVelumBaseControl::SetVisible(bool aVisible) {
  if (!aVisible) HideNote();
  if (aVisible != Visible()) iWidget->setVisible(aVisible);
}

bool CVelumBaseControl::Enabled() const {
  return iWidget->isEnabledTo(iWidget->parentWidget());
}

void CVelumBaseControl::SetEnabled(bool aEnabled) {
  iWidget->setEnabled(aEnabled);
}

QFont CVelumBaseControl::Font() const {
  return iWidget->font();
}

void CVelumBaseControl::SetFont(const QFont& aFont) {
  iWidget->setFont(aFont);
}

void CVelumBaseControl::SetForeColor(qint32 aColor) {
  if (aColor == iForeColor) return;
  iForeColor = aColor;
  RefreshColors();
}

void CVelumBaseControl::SetBackColor(qint32 aColor) {
  if (aColor == iBackColor) return;
  iBackColor = aColor;
  RefreshColors();
}

void CVelumBaseControl::RefreshColors() {
  const TRoles roles = RolesOf(iKind);
  const QPalette around = iWidget->parentWidget()->palette();
  const TVelumColors colors = CVelumBaseColor::Resolve(iForeColor, iBackColor, around.color(roles.iBack));
  QPalette palette;
  // A disabled control keeps the desktop's grey, so that it shows.
  for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive})
    if (colors.iText.isValid()) palette.setColor(group, roles.iText, colors.iText);
  if (colors.iBack.isValid()) palette.setColor(roles.iBack, colors.iBack);
  AddColors(palette, palette.resolve(around));
  iWidget->setPalette(palette);
}

void CVelumBaseControl::AddColors(QPalette&, const QPalette&) const {}

bool CVelumBaseControl::HasFocus() const {
  const QWidget* focus = QApplication::focusWidget();
  return focus && OfWidget(focus) == this;
}

void CVelumBaseControl::SetFocus() {
  iWidget->setFocus(Qt::OtherFocusReason);
}

bool CVelumBaseControl::Notify(EBaseEvent aEvent) {
  bool cancel = false;
  if (aEvent == EBaseChange) HideNote();
  if (iSink) iSink->BaseEvent(*this, aEvent, cancel);
  return cancel;
}

void CVelumBaseControl::ShowNote(const QString& aText) {
  HideNote();
  iNote = new CVelumFieldNote(*iWidget, aText);
}

void CVelumBaseControl::HideNote() {
  if (!iNote) return;
  // It may be one of its own events that leads here.
  iNote->hide();
  iNote->deleteLater();
  iNote = nullptr;
}

QString CVelumBaseControl::Note() const {
  return iNote && !iNote->isHidden() ? iNote->text() : QString();
}

void CVelumBaseControl::TellNotFitting(int aNum, int aLimit) {
  const QLocale& locale = CVelumLocale::Locale();
  const QString what = aNum == 1 ? tr("One character did not fit.")
                                 : tr("%1 characters did not fit.").arg(locale.toString(aNum));
  ShowNote(what + u' ' + tr("No more than %1 can stand here.").arg(locale.toString(aLimit)));
}

int CVelumBaseControl::EffMaxChar(qint16 aMax) {
  constexpr int most = EMaxStoredText;
  return aMax == ENoShort || aMax <= 0 ? most : std::min<int>(aMax, most);
}

bool CVelumBaseControl::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aWatched == iWidget) {
    if (aEvent->type() == QEvent::FocusIn)
      Notify(EBaseGotFocus);
    else if (aEvent->type() == QEvent::FocusOut)
      LeaveFocus(static_cast<const QFocusEvent&>(*aEvent));
    else if (aEvent->type() == QEvent::KeyPress && IsEscape(static_cast<const QKeyEvent&>(*aEvent)))
      return Notify(EBaseEscape);
  }
  return QObject::eventFilter(aWatched, aEvent);
}

void CVelumBaseControl::LeaveFocus(const QFocusEvent& aEvent) {
  if (aEvent.reason() == Qt::PopupFocusReason && PopupIsOwn()) return;
  // The focus has gone already, and can only be put back when its move is over.
  if (Notify(EBaseValidate)) {
    QMetaObject::invokeMethod(this, &CVelumBaseControl::SetFocus, Qt::QueuedConnection);
    return;
  }
  HideNote();
  const bool stays = aEvent.reason() == Qt::PopupFocusReason || aEvent.reason() == Qt::MenuBarFocusReason ||
                     aEvent.reason() == Qt::ActiveWindowFocusReason;
  if (!stays) OnLeft();
}

bool CVelumBaseControl::PopupIsOwn() const {
  const QWidget* popup = QApplication::activePopupWidget();
  return popup && popup->parentWidget() && OfWidget(popup->parentWidget()) == this;
}
