#include "toolkit/CVelumBaseCheckBox.h"

#include <QCheckBox>

CVelumBaseCheckBox::CVelumBaseCheckBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseCheckBox, aName, new QCheckBox(aParent), aSink),
      iBox(static_cast<QCheckBox*>(Widget())) {
  iBox->setAutoFillBackground(true);
  iBox->setBackgroundRole(QPalette::Window);
  connect(iBox, &QCheckBox::stateChanged, this, [this] { Notify(EBaseClick); });
}

int CVelumBaseCheckBox::Value() const {
  switch (iBox->checkState()) {
  case Qt::Checked:
    return 1;
  case Qt::PartiallyChecked:
    return 2;
  default:
    return 0;
  }
}

void CVelumBaseCheckBox::SetValue(int aValue) {
  if (aValue == 2)
    iBox->setCheckState(Qt::PartiallyChecked);
  else
    iBox->setChecked(aValue != 0);
}

QString CVelumBaseCheckBox::Text() const {
  return iBox->text();
}

void CVelumBaseCheckBox::SetText(const QString& aText) {
  iBox->setText(aText);
}
