#include "shell/frame/CVelumChangeMark.h"

#include "runtime/view/CVelumStackView.h"

#include <QAbstractEventDispatcher>
#include <QWidget>

namespace {

constexpr qint64 EMinPause = 200; // milliseconds
// A twentieth of the time at most goes into looking.
constexpr qint64 EShare = 20;

} // namespace

CVelumChangeMark::CVelumChangeMark(QWidget& aWindow) : iWindow(aWindow) {
  iTimer.setSingleShot(true);
  connect(&iTimer, &QTimer::timeout, this, [this] { iDue = true; });
  connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
          &CVelumChangeMark::CheckSoon);
}

qint64 CVelumChangeMark::Pause() const {
  return qMax(EMinPause, EShare * iCost);
}

void CVelumChangeMark::CheckSoon() {
  if (iTimer.isActive()) return;
  const qint64 rest = iSince.isValid() ? Pause() - iSince.elapsed() : 0;
  if (!iDue && rest > 0)
    iTimer.start(static_cast<int>(rest));
  else
    Check();
}

void CVelumChangeMark::Check() {
  iDue = false;
  QElapsedTimer clock;
  clock.start();
  const bool changed = gStackView ? gStackView->HasUnsavedChanges() : gStack && gStack->Changed();
  iCost = clock.elapsed();
  iSince.start();
  if (iWindow.isWindowModified() != changed) iWindow.setWindowModified(changed);
}
