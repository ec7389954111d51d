#include "toolkit/CVelumBaseTextBox.h"

#include <QLineEdit>
#include <algorithm>

CVelumBaseTextBox::CVelumBaseTextBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseTextBox, aName, new QLineEdit(aParent), aSink),
      iEdit(static_cast<QLineEdit*>(Widget())) {
  iEdit->setMaxLength(iMaxChar);
  connect(iEdit, &QLineEdit::textChanged, this, [this] { Notify(EBaseChange); });
}

QString CVelumBaseTextBox::Text() const {
  return iEdit->text();
}

void CVelumBaseTextBox::SetText(const QString& aText) {
  if (aText == iEdit->text()) return;
  // The widget cuts what is longer than its limit, also when the program sets it.
  iEdit->setMaxLength(std::max(iMaxChar, static_cast<int>(aText.size())));
  iEdit->setText(aText);
  iEdit->home(false);
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

void CVelumBaseTextBox::Clear() {
  iEdit->clear();
}
