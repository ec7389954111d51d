#include "toolkit/CVelumMdiArea.h"

#include <QKeyEvent>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTimer>

namespace {

// For so long after a resize, which a new style of the desktop is too, the toolkit paints the title of a
// child with the colours of before.
constexpr int ETitleMs = 400;

} // namespace

CVelumMdiArea::CVelumMdiArea(QWidget* aParent) : QMdiArea(aParent) {
  setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  FollowPalette();
  setFrameShape(QFrame::NoFrame);
}

QMdiSubWindow* CVelumMdiArea::ChildOf(const QWidget* aForm) const {
  return aForm ? qobject_cast<QMdiSubWindow*>(aForm->parentWidget()) : nullptr;
}

void CVelumMdiArea::AddChild(QWidget* aForm) {
  if (ChildOf(aForm)) return;
  QMdiSubWindow* child = addSubWindow(aForm);
  child->setAttribute(Qt::WA_DeleteOnClose, false);
  child->setWindowIcon(aForm->windowIcon());
  child->installEventFilter(this);
  // Each child would take the same keys for its own menu, and so none of them would get them.
  for (QAction* item : child->systemMenu()->actions()) item->setShortcuts(QList<QKeySequence>());
  child->hide();
}

void CVelumMdiArea::RemoveChild(QWidget* aForm) {
  QMdiSubWindow* child = ChildOf(aForm);
  if (!child) return;
  iPlaces.remove(child);
  iHeld.remove(child);
  child->removeEventFilter(this);
  aForm->hide();
  child->setWidget(nullptr);
  aForm->setParent(nullptr);
  removeSubWindow(child);
  // Its own handlers may be on the way back to it.
  child->deleteLater();
}

void CVelumMdiArea::ShowChild(QWidget* aForm, bool aRaise) {
  QMdiSubWindow* child = ChildOf(aForm);
  if (!child) return;
  QMdiSubWindow* active = activeSubWindow();
  aForm->show();
  if (aRaise && child->isMinimized())
    child->showNormal();
  else
    child->show();
  if (aRaise)
    setActiveSubWindow(child);
  else if (active)
    setActiveSubWindow(active);
}

void CVelumMdiArea::HideChild(QWidget* aForm) {
  if (QMdiSubWindow* child = ChildOf(aForm)) child->hide();
}

QRect CVelumMdiArea::ChildRect(QWidget* aForm) const {
  const QMdiSubWindow* child = ChildOf(aForm);
  return child ? iPlaces.value(child, child->geometry()) : QRect();
}

void CVelumMdiArea::SetChildRect(QWidget* aForm, const QRect& aRect) {
  QMdiSubWindow* child = ChildOf(aForm);
  if (!child) return;
  if (child->windowState() & (Qt::WindowMaximized | Qt::WindowMinimized)) child->showNormal();
  child->setGeometry(aRect);
  iPlaces.insert(child, child->geometry());
}

void CVelumMdiArea::NoteState(const QMdiSubWindow& aChild) {
  if (aChild.windowState() & (Qt::WindowMaximized | Qt::WindowMinimized))
    iHeld.insert(&aChild);
  else
    iHeld.remove(&aChild);
}

bool CVelumMdiArea::eventFilter(QObject* aObject, QEvent* aEvent) {
  const auto* child = qobject_cast<const QMdiSubWindow*>(aObject);
  const bool placed = aEvent->type() == QEvent::Move || aEvent->type() == QEvent::Resize;
  if (child && aEvent->type() == QEvent::WindowStateChange) NoteState(*child);
  // A maximised child that follows the area's size says for that moment that it is not maximised; only a
  // change of its state tells the truth.
  if (child && placed && !iHeld.contains(child)) iPlaces.insert(child, child->geometry());
  return QMdiArea::eventFilter(aObject, aEvent);
}

void CVelumMdiArea::FollowPalette() {
  // A little darker than windows, so that these stand out.
  setBackground(palette().color(QPalette::Window).darker(115));
}

void CVelumMdiArea::PaintChildren() {
  for (QMdiSubWindow* child : subWindowList()) child->update();
}

void CVelumMdiArea::changeEvent(QEvent* aEvent) {
  QMdiArea::changeEvent(aEvent);
  if (aEvent->type() != QEvent::PaletteChange) return;
  FollowPalette();
  QTimer::singleShot(ETitleMs, this, &CVelumMdiArea::PaintChildren);
}

void CVelumMdiArea::keyPressEvent(QKeyEvent* aEvent) {
  aEvent->ignore();
}
