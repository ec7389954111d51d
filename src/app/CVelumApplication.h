// The application object: the safety net below all event handlers.
#pragma once

#include <QApplication>

class CVelumApplication final : public QApplication {
public:
  using QApplication::QApplication;
  // A failure that no handler caught is shown, and the program goes on.
  bool notify(QObject* aReceiver, QEvent* aEvent) override;
};
