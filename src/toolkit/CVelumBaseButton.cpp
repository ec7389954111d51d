#include "toolkit/CVelumBaseButton.h"

#include "toolkit/CVelumSvgIcon.h"

#include <QPushButton>

namespace {

// Its picture is painted in the colours of its face: a light card has light buttons on a dark desktop too.
class CFaceButton final : public QPushButton {
public:
  using QPushButton::QPushButton;

protected:
  void paintEvent(QPaintEvent* aEvent) override {
    QPalette face = palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
      face.setColor(group, QPalette::WindowText, face.color(group, QPalette::ButtonText));
      face.setColor(group, QPalette::Window, face.color(group, QPalette::Button));
    }
    const CVelumSvgIcon::CColors colors(face);
    QPushButton::paintEvent(aEvent);
  }
};

} // namespace

CVelumBaseButton::CVelumBaseButton(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBaseButton, aName, new CFaceButton(aParent), aSink),
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
