#include "toolkit/CVelumBaseTextBox.h"

#include "toolkit/CVelumLineEdit.h"

#include <algorithm>

CVelumBaseTextBox::CVelumBaseTextBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseTextBox, aName, new CVelumLineEdit(aParent), aSink),
      iEdit(static_cast<CVelumLineEdit*>(Widget())) {
  iEdit->setMaxLength(iMaxChar);
  connect(iEdit, &QLineEdit::textChanged, this, [this] { Notify(EBaseChange); });
  connect(iEdit, &CVelumLineEdit::NotFitting, this,
          [this](int aNum) { TellNotFitting(aNum, iEdit->maxLength()); });
}

QString CVelumBaseTextBox::Text() const {
  return iEdit->text();
}

void CVelumBaseTextBox::SetText(const QString& aText) {
  const bool same = aText == iEdit->text();
  if (same && !iEdit->isModified()) return;
  const int cursor = same ? iEdit->cursorPosition() : 0;
  // The widget cuts what is longer than its limit, also when the program sets it.
  iEdit->setMaxLength(std::max(iMaxChar, static_cast<int>(aText.size())));
  // Also for the same text: what was typed before must not come back by undo.
  iEdit->setText(aText);
  iEdit->setCursorPosition(cursor);
}

void CVelumBaseTextBox::SetMaxChar(qint16 aMax) {
  iMaxChar = EffMaxChar(aMax);
  iEdit->setMaxLength(std::max(iMaxChar, static_cast<int>(iEdit->text().size())));
}

void CVelumBaseTextBox::SetLocked(bool aLocked) {
  iEdit->setReadOnly(aLocked);
}

void CVelumBaseTextBox::SetPlaceholder(const QString& aText) {
  iEdit->setPlaceholderText(aText);
}

int CVelumBaseTextBox::Cursor() const {
  return iEdit->cursorPosition();
}

void CVelumBaseTextBox::SetCursor(int aPos) {
  iEdit->setCursorPosition(aPos);
}

// A long text is seen from its beginning, as those of its neighbours.
void CVelumBaseTextBox::OnLeft() {
  iEdit->home(false);
}

void CVelumBaseTextBox::Clear() {
  iEdit->clear();
}
