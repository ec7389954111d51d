// The mark of unsaved changes in the title of the main window.
#pragma once

#include <QElapsedTimer>
#include <QTimer>

class QWidget;

// Looks at the open stack when events have been handled, and sets the window's mark of changes. A stack of
// very many cards takes a while to look at, so that it is done the more rarely the longer it takes.
class CVelumChangeMark final : public QObject {
  Q_OBJECT

public:
  // aWindow has "[*]" in its title while a stack is open, and outlives this object.
  explicit CVelumChangeMark(QWidget& aWindow);
  // Looks at once.
  void Check();

private:
  // Looks now or, if that was done a moment ago, in a moment.
  void CheckSoon();
  [[nodiscard]] qint64 Pause() const;

  QWidget& iWindow;
  QElapsedTimer iSince; // the last look
  qint64 iCost = 0;     // milliseconds that it took
  QTimer iTimer;
  bool iDue = true;
};
