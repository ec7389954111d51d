// The part of CVelumGenForm that is a window: its colours, its size, and the events of its own.
#include "core/CVelumSeams.h"
#include "runtime/view/CVelumFrameHost.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumBaseColor.h"
#include "toolkit/CVelumGuard.h"

#include <QAction>
#include <QCloseEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <utility>

namespace {

// Until a layout that could not be made is tried again.
constexpr int EBusyMs = 20;

} // namespace

void CVelumGenForm::SetBackColor(qint32 aColor) {
  if (aColor == iBackColor) return;
  iBackColor = aColor;
  FollowPalette();
}

void CVelumGenForm::FollowPalette() {
  iDesktopKey = QGuiApplication::palette().cacheKey();
  setPalette(CVelumBaseColor::CardPalette(iBackColor, QGuiApplication::palette()));
}

void CVelumGenForm::FollowDesktop() {
  // Some desktops give each widget a palette of its own, the inner ones of controls too.
  for (QWidget* child : findChildren<QWidget*>())
    if (!child->isWindow()) child->setPalette({});
  FollowPalette();
  RefreshColors();
}

bool CVelumGenForm::event(QEvent* aEvent) {
  const bool done = QWidget::event(aEvent);
  if (aEvent->type() == QEvent::WindowDeactivate && iView) iView->BaseFormLostFocus();
  switch (aEvent->type()) {
  case QEvent::ApplicationPaletteChange:
  case QEvent::ThemeChange:
  case QEvent::StyleChange:
    QueueFollow();
    break;
  case QEvent::PaletteChange:
    RefreshColors();
    // A window inside another one hears of the desktop only so.
    if (QGuiApplication::palette().cacheKey() != iDesktopKey) QueueFollow();
    break;
  default:
    break;
  }
  return done;
}

// The toolkit goes on from here to the controls, so that it comes after that.
void CVelumGenForm::QueueFollow() {
  QMetaObject::invokeMethod(this, &CVelumGenForm::FollowDesktop, Qt::QueuedConnection);
}

void CVelumGenForm::RefreshColors() {
  for (CVelumBaseControl* base : std::as_const(iControls)) base->RefreshColors();
}

void CVelumGenForm::resizeEvent(QResizeEvent* aEvent) {
  QWidget::resizeEvent(aEvent);
  if (IsLoaded()) QueueLayout(0);
}

void CVelumGenForm::QueueLayout(int aMs) {
  if (std::exchange(iLayoutQueued, true)) return;
  QTimer::singleShot(aMs, this, &CVelumGenForm::LayOut);
}

void CVelumGenForm::LayOut() {
  iLayoutQueued = false;
  if (!iView || !IsLoaded()) return;
  CVelumGuard::Run(u"CVelumGenForm.Resize"_s, [this] { iView->BaseFormResize(); });
  // The view is in the middle of something else.
  if (iView && iView->ResizePending()) QueueLayout(EBusyMs);
}

void CVelumGenForm::paintEvent(QPaintEvent* aEvent) {
  QWidget::paintEvent(aEvent);
  if (!iView || !iView->CurCard() || !iView->CardView()) return;
  QPainter painter(this);
  iView->CardView()->PaintWallPaper(painter, *iView->CurCard());
}

void CVelumGenForm::mouseReleaseEvent(QMouseEvent* aEvent) {
  QWidget::mouseReleaseEvent(aEvent);
  if (aEvent->button() != Qt::RightButton || !gFrameHost) return;
  const QAction* cmd = gFrameHost->FindAction(u"fCmd"_s);
  if (QMenu* menu = gFrameHost->CmdMenu(); menu && cmd && cmd->isEnabled())
    menu->popup(aEvent->globalPosition().toPoint());
}

void CVelumGenForm::mouseDoubleClickEvent(QMouseEvent* aEvent) {
  QWidget::mouseDoubleClickEvent(aEvent);
  // A passive control hands its events on; they are not the form's own.
  if (!childAt(aEvent->position().toPoint())) CVelumSeams::Presenter().Tell(tr("DblClick"));
}

void CVelumGenForm::closeEvent(QCloseEvent* aEvent) {
  // The program itself never closes this window, it hides and unloads it: so this is the user's wish.
  aEvent->setAccepted(!gFrameHost || !IsLoaded() || gFrameHost->CloseStack());
}
