#include "shell/frame/CVelumScriptBar.h"

#include "script/CVelumInterpreter.h"
#include "toolkit/CVelumGuard.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QTimer>

namespace {

void Break() {
  if (gInterpreter && gInterpreter->Running()) gInterpreter->Break();
}

} // namespace

CVelumScriptBar::CVelumScriptBar(QWidget* aParent)
    : QWidget(aParent), iProgress(new QProgressBar(this)), iStop(new QToolButton(this)) {
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  iProgress->setObjectName(u"fScriptProgress"_s);
  iProgress->setAccessibleName(tr("Running script"));
  iProgress->setRange(0, 99);
  iProgress->setFormat(tr("Script"));
  iProgress->setMaximumWidth(120);
  iProgress->setAttribute(Qt::WA_TransparentForMouseEvents);
  iStop->setObjectName(u"fScriptStop"_s);
  iStop->setText(tr("Stop"));
  iStop->setToolTip(tr("Stop the running script (Esc)"));
  connect(iStop, &QToolButton::clicked, this, [] { Break(); });
  layout->addWidget(iProgress);
  layout->addWidget(iStop);
  hide();
  qApp->installEventFilter(this);
}

CVelumScriptBar::~CVelumScriptBar() {
  qApp->removeEventFilter(this);
}

void CVelumScriptBar::ShowProgress(int aPercent) {
  iProgress->setValue(aPercent);
  setVisible(aPercent < 100);
}

void CVelumScriptBar::mouseReleaseEvent(QMouseEvent* aEvent) {
  QWidget::mouseReleaseEvent(aEvent);
  Break();
}

// Escape belongs to an open box or menu first: it closes that.
bool CVelumScriptBar::eventFilter(QObject* aWatched, QEvent* aEvent) {
  const bool key = aEvent->type() == QEvent::KeyPress || aEvent->type() == QEvent::ShortcutOverride;
  if (!key || static_cast<QKeyEvent*>(aEvent)->key() != Qt::Key_Escape) return false;
  if (!gInterpreter || !gInterpreter->Running() || QApplication::activeModalWidget() ||
      QApplication::activePopupWidget())
    return false;
  Q_UNUSED(aWatched);
  Break();
  return true;
}

void CVelumDialogLib::WhenNoScriptRuns(const std::function<void()>& aCommand) {
  if (!gInterpreter || !gInterpreter->Running()) return aCommand();
  // The view is still at work on what started the script; the command waits for the next turn of events.
  gInterpreter->BreakAndThen([aCommand] {
    QTimer::singleShot(0, qApp, [aCommand] { CVelumGuard::Run(u"CVelumFrame"_s, aCommand); });
  });
}
