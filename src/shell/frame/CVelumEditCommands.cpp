#include "shell/frame/CVelumEditCommands.h"

#include "core/CVelumMsg.h"
#include "runtime/lists/CVelumCardListForm.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/frame/CVelumReport.h"
#include "toolkit/CVelumWinMan.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QMimeData>
#include <QTextDocument>
#include <QTextEdit>

namespace {

constexpr qsizetype EMaxName = 60; // characters of a step's name in the menu

QLineEdit* Line() {
  QWidget* focus = QApplication::focusWidget();
  if (const auto* combo = qobject_cast<QComboBox*>(focus)) return combo->lineEdit();
  return qobject_cast<QLineEdit*>(focus);
}

QTextEdit* Text() {
  return qobject_cast<QTextEdit*>(QApplication::focusWidget());
}

bool IsWritable() {
  if (const QLineEdit* line = Line()) return !line->isReadOnly();
  const QTextEdit* text = Text();
  return text && !text->isReadOnly();
}

bool HasSelection() {
  if (const QLineEdit* line = Line()) return line->hasSelectedText();
  const QTextEdit* text = Text();
  return text && text->textCursor().hasSelection();
}

bool EntryCanUndo() {
  if (!IsWritable()) return false;
  const QLineEdit* line = Line();
  return line ? line->isUndoAvailable() : Text()->document()->isUndoAvailable();
}

bool EntryCanRedo() {
  if (!IsWritable()) return false;
  const QLineEdit* line = Line();
  return line ? line->isRedoAvailable() : Text()->document()->isRedoAvailable();
}

// Does it to the entry that has the focus.
template <class TLine> void OnEntry(TLine aLine, void (QTextEdit::*aText)()) {
  if (QLineEdit* line = Line())
    (line->*aLine)();
  else if (QTextEdit* text = Text())
    (text->*aText)();
}

QString InMenu(QString aName) {
  if (aName.size() > EMaxName) aName = aName.left(EMaxName - 1) + QChar(0x2026);
  return aName.replace(u'&', u"&&"_s);
}

} // namespace

bool CVelumEditCommands::InCardList() {
  for (QWidget* widget = QApplication::focusWidget(); widget; widget = widget->parentWidget())
    if (qobject_cast<CVelumCardListForm*>(widget)) return true;
  return false;
}

bool CVelumEditCommands::CanUndo() const {
  return EntryCanUndo() || (gStackView && gStackView->CanUndo());
}

bool CVelumEditCommands::CanRedo() const {
  return EntryCanRedo() || (gStackView && gStackView->CanRedo());
}

QString CVelumEditCommands::UndoText() const {
  if (EntryCanUndo()) return tr("&Undo typing");
  return tr("&Undo %1").arg(InMenu(gStackView ? gStackView->UndoName() : QString())).trimmed();
}

QString CVelumEditCommands::RedoText() const {
  if (EntryCanRedo()) return tr("&Redo typing");
  return tr("&Redo %1").arg(InMenu(gStackView ? gStackView->RedoName() : QString())).trimmed();
}

void CVelumEditCommands::Undo() {
  if (EntryCanUndo()) return OnEntry(&QLineEdit::undo, &QTextEdit::undo);
  Replay(false);
}

void CVelumEditCommands::Redo() {
  if (EntryCanRedo()) return OnEntry(&QLineEdit::redo, &QTextEdit::redo);
  Replay(true);
}

// Windows show what is in the stack: what was entered there and not taken over would stand on nothing.
bool CVelumEditCommands::DropEntries() const {
  for (CVelumForm* form : CVelumWinMan::LoadedForms()) {
    if (!form->HasEntries()) continue;
    if (!CVelumMsg::Ask(EMsgDiscardChangesOk, EMsgQuestion, form->Widget()->windowTitle())) return false;
    form->DropEntries();
  }
  return true;
}

void CVelumEditCommands::Replay(bool aAgain) {
  const Ref<CVelumStackView> view = gStackView;
  if (!view || !(aAgain ? view->CanRedo() : view->CanUndo()) || !DropEntries()) return;
  const QString name = aAgain ? view->Redo() : view->Undo();
  if (!name.isEmpty()) CVelumReport::Done((aAgain ? tr("Made again: %1") : tr("Taken back: %1")).arg(name));
}

bool CVelumEditCommands::CanCut() const {
  return IsWritable() && HasSelection();
}

bool CVelumEditCommands::CanCopy() const {
  return HasSelection();
}

bool CVelumEditCommands::CanPaste() const {
  const QMimeData* data = QApplication::clipboard()->mimeData();
  return IsWritable() && data && data->hasText();
}

bool CVelumEditCommands::CanDelete() const {
  return IsWritable() || (InCardList() && gStackView && gStackView->CurCard());
}

bool CVelumEditCommands::CanSelectAll() const {
  return Line() || Text();
}

void CVelumEditCommands::Cut() {
  if (CanCut()) OnEntry(&QLineEdit::cut, &QTextEdit::cut);
}

void CVelumEditCommands::Copy() {
  if (CanCopy()) OnEntry(&QLineEdit::copy, &QTextEdit::copy);
}

void CVelumEditCommands::Paste() {
  if (CanPaste()) OnEntry(&QLineEdit::paste, &QTextEdit::paste);
}

bool CVelumEditCommands::Delete() {
  if (!IsWritable()) return false;
  if (QLineEdit* line = Line())
    line->del();
  else
    Text()->textCursor().deleteChar();
  return true;
}

void CVelumEditCommands::SelectAll() {
  OnEntry(&QLineEdit::selectAll, &QTextEdit::selectAll);
}
