// The application object: the safety net below all event handlers.
#pragma once

#include <QApplication>

class CVelumApplication final : public QApplication {
public:
  CVelumApplication(int& aArgc, char** aArgv);
  // A failure that no handler caught is shown, and the program goes on.
  bool notify(QObject* aReceiver, QEvent* aEvent) override;
};
