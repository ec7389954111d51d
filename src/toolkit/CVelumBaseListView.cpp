#include "toolkit/CVelumBaseListView.h"

#include "toolkit/CVelumListWidget.h"

#include <QKeyEvent>

CVelumBaseListView::CVelumBaseListView(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseListView, aName, new CVelumListWidget(aParent), aSink),
      iList(static_cast<CVelumListWidget*>(Widget())), iViewport(iList->viewport()) {
  iViewport->installEventFilter(this);
  connect(iList, &CVelumListWidget::ItemClick, this, [this] { Notify(EBaseItemClick); });
}

void CVelumBaseListView::Clear() {
  iList->SetSource(nullptr);
  iList->DefineColumns({}, {});
}

bool CVelumBaseListView::eventFilter(QObject* aWatched, QEvent* aEvent) {
  // Events still come while the list is being destroyed, when it must not be asked for anything.
  if (aWatched == iViewport) {
    if (aEvent->type() == QEvent::MouseButtonDblClick) Notify(EBaseDblClick);
    return false;
  }
  if (aWatched == iList && aEvent->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(aEvent)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) Notify(EBaseItemClick);
    if (key == Qt::Key_F2) Notify(EBaseDblClick);
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2) return true;
  }
  return CVelumBaseControl::eventFilter(aWatched, aEvent);
}
