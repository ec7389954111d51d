#include "toolkit/CVelumBaseComboBox.h"

#include <QComboBox>
#include <QLineEdit>
#include <algorithm>

CVelumBaseComboBox::CVelumBaseComboBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseComboBox, aName, new QComboBox(aParent), aSink),
      iCombo(static_cast<QComboBox*>(Widget())) {
  iCombo->setEditable(true);
  iCombo->setInsertPolicy(QComboBox::NoInsert);
  // A completion would put in what nobody typed.
  iCombo->setCompleter(nullptr);
  iCombo->lineEdit()->setMaxLength(iMaxChar);
  connect(iCombo, &QComboBox::editTextChanged, this, [this] { Notify(EBaseChange); });
  connect(iCombo, &QComboBox::activated, this, [this] { Notify(EBaseClick); });
}

float CVelumBaseComboBox::NaturalHeight() const {
  return CVelumTwips::FromPixel(iCombo->sizeHint().height());
}

int CVelumBaseComboBox::ListCount() const {
  return iCombo->count();
}

QString CVelumBaseComboBox::Text() const {
  return iCombo->lineEdit()->text();
}

void CVelumBaseComboBox::SetText(const QString& aText) {
  if (aText == Text()) return;
  iCombo->lineEdit()->setMaxLength(std::max(iMaxChar, static_cast<int>(aText.size())));
  iCombo->setEditText(aText);
  iCombo->lineEdit()->home(false);
}

void CVelumBaseComboBox::SetMaxChar(qint16 aMax) {
  iMaxChar = EffMaxChar(aMax);
  iCombo->lineEdit()->setMaxLength(std::max(iMaxChar, static_cast<int>(Text().size())));
}

void CVelumBaseComboBox::Clear() {
  iCombo->clear();
  iCombo->clearEditText();
}
