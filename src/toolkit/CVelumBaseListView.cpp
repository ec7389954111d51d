#include "toolkit/CVelumBaseListView.h"

#include <QTreeWidget>

CVelumBaseListView::CVelumBaseListView(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseListView, aName, new QTreeWidget(aParent), aSink),
      iTree(static_cast<QTreeWidget*>(Widget())) {
  iTree->setRootIsDecorated(false);
  iTree->setHeaderHidden(true);
  iTree->setUniformRowHeights(true);
  connect(iTree, &QTreeWidget::itemClicked, this, [this] { Notify(EBaseItemClick); });
}

void CVelumBaseListView::SetPlaceholder(const QString& aText) {
  iTree->clear();
  if (!aText.isEmpty()) new QTreeWidgetItem(iTree, {aText});
}

void CVelumBaseListView::Clear() {
  iTree->clear();
}
