// The place of a list.
#pragma once

#include "toolkit/CVelumBaseControl.h"

class QTreeWidget;

class CVelumBaseListView final : public CVelumBaseControl {
public:
  CVelumBaseListView(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink);
  void SetPlaceholder(const QString& aText) override;
  void Clear() override;

private:
  QTreeWidget* iTree;
};
