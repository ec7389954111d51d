#include "toolkit/CVelumBaseRichTextBox.h"

#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <algorithm>

namespace {

// With the frame's pixel these make the 120 twips by which a field is higher than its lines.
constexpr double EMargin = 3.0;

bool IsKey(const QEvent& aEvent, std::initializer_list<int> aKeys, Qt::KeyboardModifier aModifier) {
  if (aEvent.type() != QEvent::KeyPress) return false;
  const auto& key = static_cast<const QKeyEvent&>(aEvent);
  const Qt::KeyboardModifiers held = key.modifiers() & ~Qt::KeypadModifier;
  return held == aModifier && std::find(aKeys.begin(), aKeys.end(), key.key()) != aKeys.end();
}

} // namespace

CVelumBaseRichTextBox::CVelumBaseRichTextBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseRichTextBox, aName, new QTextEdit(aParent), aSink),
      iEdit(static_cast<QTextEdit*>(Widget())) {
  iEdit->setAcceptRichText(false);
  iEdit->setTabChangesFocus(true);
  iEdit->document()->setDocumentMargin(EMargin);
  iEdit->viewport()->installEventFilter(this);
  connect(iEdit, &QTextEdit::textChanged, this, [this] {
    if (iSetting) return;
    HoldLimit();
    Notify(EBaseChange);
  });
}

QString CVelumBaseRichTextBox::Text() const {
  // The document's plain text turns no-break blanks into blanks; the raw text keeps them.
  QString text = iEdit->document()->toRawText();
  text.replace(QChar::ParagraphSeparator, u"\r\n"_s);
  return text;
}

void CVelumBaseRichTextBox::SetText(const QString& aText) {
  const bool same = aText == Text();
  if (same && !iEdit->document()->isModified()) return;
  const int cursor = same ? Cursor() : 0;
  {
    const QScopedValueRollback setting(iSetting, true);
    // Also for the same text: what was typed before must not come back by undo.
    iEdit->setPlainText(aText);
  }
  iLimit = std::max(iMaxChar, StoredLen());
  SetCursor(cursor);
  Notify(EBaseChange);
}

void CVelumBaseRichTextBox::SetFont(const QFont& aFont) {
  const QScopedValueRollback setting(iSetting, true);
  CVelumBaseControl::SetFont(aFont);
}

void CVelumBaseRichTextBox::SetMaxChar(qint16 aMax) {
  iMaxChar = EffMaxChar(aMax);
  iLimit = std::max(iMaxChar, StoredLen());
}

void CVelumBaseRichTextBox::SetLocked(bool aLocked) {
  iEdit->setReadOnly(aLocked);
}

void CVelumBaseRichTextBox::SetPlaceholder(const QString& aText) {
  iEdit->setPlaceholderText(aText);
}

int CVelumBaseRichTextBox::Cursor() const {
  return iEdit->textCursor().position();
}

void CVelumBaseRichTextBox::SetCursor(int aPos) {
  QTextCursor cursor = iEdit->textCursor();
  cursor.setPosition(std::clamp(aPos, 0, iEdit->document()->characterCount() - 1));
  iEdit->setTextCursor(cursor);
}

void CVelumBaseRichTextBox::Clear() {
  const QScopedValueRollback setting(iSetting, true);
  iEdit->clear();
}

int CVelumBaseRichTextBox::StoredLen() const {
  // The document counts one unit for each paragraph's end, the last one included; CR LF are two.
  return iEdit->document()->characterCount() - 1 + iEdit->document()->blockCount() - 1;
}

void CVelumBaseRichTextBox::HoldLimit() {
  int surplus = StoredLen() - iLimit;
  if (surplus <= 0) return;
  // What was typed or pasted ends at the cursor, and is at least as long as the surplus.
  const QString text = iEdit->document()->toRawText();
  QTextCursor cursor = iEdit->textCursor();
  const int end = cursor.position();
  int from = end;
  while (from > 0 && (surplus > 0 || (from < end && text.at(from).isLowSurrogate())))
    surplus -= text.at(--from) == QChar::ParagraphSeparator ? 2 : 1;
  const QScopedValueRollback setting(iSetting, true);
  cursor.setPosition(from, QTextCursor::KeepAnchor);
  cursor.joinPreviousEditBlock();
  cursor.removeSelectedText();
  cursor.endEditBlock();
}

bool CVelumBaseRichTextBox::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aWatched == iEdit->viewport()) {
    if (aEvent->type() == QEvent::MouseButtonRelease) Notify(EBaseClick);
    if (aEvent->type() == QEvent::MouseButtonDblClick) Notify(EBaseDblClick);
    return false;
  }
  if (aWatched == iEdit && IsKey(*aEvent, {Qt::Key_U}, Qt::ControlModifier)) {
    Notify(EBasePaste);
    return true;
  }
  if (aWatched == iEdit && IsKey(*aEvent, {Qt::Key_Return, Qt::Key_Enter}, Qt::ShiftModifier)) {
    // The widget would put in a line separator, which no other program takes for a line's end.
    if (!iEdit->isReadOnly()) iEdit->insertPlainText(u"\n"_s);
    return true;
  }
  return CVelumBaseControl::eventFilter(aWatched, aEvent);
}
