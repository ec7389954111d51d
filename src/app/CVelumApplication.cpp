#include "app/CVelumApplication.h"

#include "toolkit/CVelumGuard.h"

bool CVelumApplication::notify(QObject* aReceiver, QEvent* aEvent) {
  bool handled = true;
  CVelumGuard::Run(u"CVelumApplication.notify"_s, [&] { handled = QApplication::notify(aReceiver, aEvent); });
  return handled;
}
