// Files that are dropped on the main window.
#pragma once

#include <QObject>
#include <QString>
#include <functional>

class QMimeData;
class QWidget;

// Takes a single stack or table of this computer from a drag anywhere over the window, also over controls
// that would take its path as a text; leaves all other drags to them. What is to be done with the file comes
// when control is back in the event loop, so that the program it was dragged from can go on.
class CVelumFileDrop final : public QObject {
  Q_OBJECT

public:
  using TTake = std::function<void(const QString& aPath)>;

  // aWindow outlives this object.
  CVelumFileDrop(QWidget& aWindow, TTake aStack, TTake aTable);
  bool eventFilter(QObject* aObject, QEvent* aEvent) override;

private:
  enum class EKind { None, Stack, Table };
  // What the dragged file is by its ending; several files are none.
  [[nodiscard]] static EKind KindOf(const QMimeData* aData, QString& aPath);
  void Take(EKind aKind, const QString& aPath);

  QWidget& iWindow;
  TTake iStack;
  TTake iTable;
};
