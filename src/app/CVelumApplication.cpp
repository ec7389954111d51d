#include "app/CVelumApplication.h"

#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumStyle.h"

CVelumApplication::CVelumApplication(int& aArgc, char** aArgv) : QApplication(aArgc, aArgv) {
  setStyle(new CVelumStyle);
}

bool CVelumApplication::notify(QObject* aReceiver, QEvent* aEvent) {
  bool handled = true;
  CVelumGuard::Run(u"CVelumApplication.notify"_s, [&] { handled = QApplication::notify(aReceiver, aEvent); });
  return handled;
}
