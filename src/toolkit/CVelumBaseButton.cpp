#include "toolkit/CVelumBaseButton.h"

#include <QPushButton>

CVelumBaseButton::CVelumBaseButton(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseButton, aName, new QPushButton(aParent), aSink),
      iButton(static_cast<QPushButton*>(Widget())) {
  iButton->setAutoDefault(false);
  connect(iButton, &QPushButton::clicked, this, [this] { Notify(EBaseClick); });
}

QString CVelumBaseButton::Text() const {
  return iCaption;
}

void CVelumBaseButton::SetText(const QString& aText) {
  iCaption = aText;
  iButton->setText(QString(aText).replace(u'&', u"&&"_s));
}

void CVelumBaseButton::SetPicture(const QIcon& aIcon, const QString& aToolTip) {
  iButton->setIcon(aIcon);
  iButton->setToolTip(aToolTip);
}

bool CVelumBaseButton::HasPicture() const {
  return !iButton->icon().isNull();
}
