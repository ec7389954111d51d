// F1 everywhere.
#pragma once

#include "core/CVelumObject.h"

#include <QObject>

class QWidget;

// While it lives, F1 opens the help of the control that has the focus, or of the menu item that is chosen.
// Form and control are known by their object names.
class CVelumHelpKeys final : public QObject {
  Q_OBJECT

public:
  CVelumHelpKeys();

protected:
  bool eventFilter(QObject* aObject, QEvent* aEvent) override;
};
