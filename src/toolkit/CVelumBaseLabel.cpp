#include "toolkit/CVelumBaseLabel.h"

#include <QLabel>

CVelumBaseLabel::CVelumBaseLabel(const QString& aName, QWidget* aParent)
    : CVelumBaseControl(EBaseLabel, aName, new QLabel(aParent), nullptr),
      iLabel(static_cast<QLabel*>(Widget())) {
  iLabel->setTextFormat(Qt::PlainText);
  iLabel->setAutoFillBackground(true);
  iLabel->setIndent(0);
  iLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

QString CVelumBaseLabel::Text() const {
  return iLabel->text();
}

void CVelumBaseLabel::SetText(const QString& aText) {
  if (aText != iLabel->text()) iLabel->setText(aText);
}
