#include "toolkit/CVelumLineEdit.h"

#include "core/CVelumObject.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QScopedValueRollback>

namespace {

bool IsLineEnd(QChar aChar) {
  return aChar == u'\n' || aChar == u'\r' || aChar == QChar::LineSeparator ||
         aChar == QChar::ParagraphSeparator || aChar == QChar(0x85);
}

// The selection of other programs is pasted by Ctrl, Shift and Insert.
QClipboard::Mode ModeOf(const QKeyEvent& aKey) {
  const bool both = (aKey.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) ==
                    (Qt::ControlModifier | Qt::ShiftModifier);
  return both && aKey.key() == Qt::Key_Insert ? QClipboard::Selection : QClipboard::Clipboard;
}

// The menu's entry to paste; the toolkit has no other name for it than its text, a key behind it.
QAction* PasteOf(const QMenu& aMenu) {
  const QString name = QLineEdit::tr("&Paste");
  for (QAction* action : aMenu.actions())
    if (action->text().section(u'\t', 0, 0) == name) return action;
  return nullptr;
}

} // namespace

CVelumLineEdit::CVelumLineEdit(QWidget* aParent) : QLineEdit(aParent) {
  connect(this, &QLineEdit::inputRejected, this, [this] {
    if (!iBringing) Q_EMIT NotFitting(1);
  });
}

QString CVelumLineEdit::OneLine(const QString& aText) {
  qsizetype end = aText.size();
  while (end > 0 && IsLineEnd(aText[end - 1])) --end;
  QString line;
  line.reserve(end);
  bool blank = false;
  for (const QChar c : QStringView(aText).first(end)) {
    const bool control = c.category() == QChar::Other_Control || IsLineEnd(c);
    if (!control)
      line += c;
    else if (!blank)
      line += u' ';
    blank = control;
  }
  return line;
}

template <class T> void CVelumLineEdit::Bring(const QString& aText, qsizetype aReplaced, T aHow) {
  const qsizetype room = maxLength() - (text().size() - aReplaced);
  {
    const QScopedValueRollback bringing(iBringing, true);
    aHow();
  }
  if (aText.size() > room) Q_EMIT NotFitting(static_cast<int>(aText.size() - room));
}

void CVelumLineEdit::PasteFrom(QClipboard::Mode aMode) {
  if (isReadOnly()) return;
  const QString line = OneLine(QGuiApplication::clipboard()->text(aMode));
  if (!line.isEmpty()) Bring(line, selectedText().size(), [&] { insert(line); });
}

void CVelumLineEdit::keyPressEvent(QKeyEvent* aEvent) {
  if (!aEvent->matches(QKeySequence::Paste)) return QLineEdit::keyPressEvent(aEvent);
  PasteFrom(ModeOf(*aEvent));
  aEvent->accept();
}

void CVelumLineEdit::mouseReleaseEvent(QMouseEvent* aEvent) {
  const bool pastes =
      aEvent->button() == Qt::MiddleButton && QGuiApplication::clipboard()->supportsSelection();
  if (!pastes || isReadOnly()) return QLineEdit::mouseReleaseEvent(aEvent);
  setCursorPosition(cursorPositionAt(aEvent->position().toPoint()));
  PasteFrom(QClipboard::Selection);
}

void CVelumLineEdit::contextMenuEvent(QContextMenuEvent* aEvent) {
  QMenu* menu = createStandardContextMenu();
  if (!menu) return;
  menu->setAttribute(Qt::WA_DeleteOnClose);
  if (QAction* paste = PasteOf(*menu)) {
    disconnect(paste, &QAction::triggered, nullptr, nullptr);
    connect(paste, &QAction::triggered, this, [this] { PasteFrom(QClipboard::Clipboard); });
  }
  menu->popup(aEvent->globalPos());
}

void CVelumLineEdit::dropEvent(QDropEvent* aEvent) {
  // A text that is moved inside the field is one line already.
  if (!aEvent->mimeData()->hasText() || aEvent->source() == this) return QLineEdit::dropEvent(aEvent);
  QMimeData line;
  line.setText(OneLine(aEvent->mimeData()->text()));
  QDropEvent drop(aEvent->position(), aEvent->possibleActions(), &line, aEvent->buttons(),
                  aEvent->modifiers());
  drop.setDropAction(aEvent->dropAction());
  Bring(line.text(), 0, [&] { QLineEdit::dropEvent(&drop); });
  aEvent->setDropAction(drop.dropAction());
  aEvent->setAccepted(drop.isAccepted());
}
