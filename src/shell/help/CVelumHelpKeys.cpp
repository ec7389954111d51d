#include "shell/help/CVelumHelpKeys.h"

#include "core/CVelumMsg.h"
#include "shell/dialogs/CVelumMsgForm.h"
#include "toolkit/CVelumGuard.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>

namespace {

const QString EFormPrefix = u"CVelum"_s;

// The name of the nearest control at or above a widget, below its form.
QString ControlName(const QWidget* aWidget, const QWidget* aForm) {
  const auto* menu = qobject_cast<const QMenu*>(aWidget);
  if (menu && menu->activeAction()) {
    const QAction* action = menu->activeAction();
    return action->menu() ? action->menu()->objectName() : action->objectName();
  }
  for (; aWidget && aWidget != aForm; aWidget = aWidget->parentWidget())
    if (aWidget->objectName().startsWith(u'f')) return aWidget->objectName();
  return {};
}

} // namespace

CVelumHelpKeys::CVelumHelpKeys() {
  qApp->installEventFilter(this);
}

bool CVelumHelpKeys::eventFilter(QObject* aObject, QEvent* aEvent) {
  if (aEvent->type() != QEvent::KeyPress || !aObject->isWidgetType()) return false;
  const auto* key = static_cast<const QKeyEvent*>(aEvent);
  if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier) return false;
  const auto* widget = static_cast<const QWidget*>(aObject);
  const QWidget* form = widget;
  while (form && !form->objectName().startsWith(EFormPrefix)) form = form->parentWidget();
  // A message box knows its message, also when another one was shown since.
  if (!form || qobject_cast<const CVelumMsgForm*>(form)) return false;
  CVelumGuard::Run(u"CVelumHelpKeys"_s,
                   [&] { CVelumMsg::ShowHelp(form->objectName(), ControlName(widget, form)); });
  return true;
}
