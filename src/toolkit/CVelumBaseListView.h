// A list with columns on the card.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class CVelumListWidget;

// Its lines and columns are set through its widget. ItemClick comes for a click on a line and for the return
// key, DblClick for a double click anywhere and for F2.
class CVelumBaseListView final : public CVelumBaseControl {
public:
  CVelumBaseListView(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  // Takes lines and columns away.
  void Clear() override;

protected:
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;

private:
  CVelumListWidget* iList;
  QWidget* iViewport; // of iList
};
