#include "shell/frame/CVelumUndoKeys.h"

#include <QKeyEvent>

namespace {

bool IsUndoKey(const QKeyEvent& aKey) {
  const Qt::KeyboardModifiers modifiers = aKey.modifiers() & ~Qt::KeypadModifier;
  if (aKey.key() == Qt::Key_Z)
    return modifiers == Qt::ControlModifier || modifiers == (Qt::ControlModifier | Qt::ShiftModifier);
  return aKey.key() == Qt::Key_Y && modifiers == Qt::ControlModifier;
}

} // namespace

bool CVelumUndoKeys::eventFilter(QObject* aObj, QEvent* aEvent) {
  if (aEvent->type() == QEvent::ShortcutOverride && IsUndoKey(*static_cast<QKeyEvent*>(aEvent))) {
    aEvent->ignore();
    return true;
  }
  return QObject::eventFilter(aObj, aEvent);
}
