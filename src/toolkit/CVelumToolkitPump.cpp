#include "toolkit/CVelumToolkitPump.h"

#include <QCursor>
#include <QGuiApplication>

CVelumToolkitPump::~CVelumToolkitPump() {
  if (qApp) SetWaitCursor(false);
}

void CVelumToolkitPump::Pump() {
  QCoreApplication::processEvents();
}

void CVelumToolkitPump::PumpPaint() {
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
}

void CVelumToolkitPump::SetWaitCursor(bool aOn) {
  if (aOn == iWaiting) return;
  iWaiting = aOn;
  if (aOn)
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QGuiApplication::restoreOverrideCursor();
}
