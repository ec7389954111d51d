// Undo and redo by key.
#pragma once

#include <QObject>

// Text entries claim these keys even when they have nothing to take back; this hands them to the menu, which
// asks the entry first. Installed on the application; windows without such a menu keep their keys.
class CVelumUndoKeys final : public QObject {
  Q_OBJECT

public:
  using QObject::QObject;

  bool eventFilter(QObject* aObj, QEvent* aEvent) override;
};
