#include "toolkit/CVelumBasePictureBox.h"

#include <QEvent>
#include <QLabel>

CVelumBasePictureBox::CVelumBasePictureBox(const QString& aName, QWidget* aParent, CVelumBaseSink* aSink)
    : CVelumBaseControl(EBasePictureBox, aName, new QLabel(aParent), aSink),
      iLabel(static_cast<QLabel*>(Widget())) {
  iLabel->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  iLabel->setTextFormat(Qt::PlainText);
  iLabel->setAlignment(Qt::AlignCenter);
  iLabel->setBackgroundRole(QPalette::Base);
  iLabel->setForegroundRole(QPalette::Text);
  iLabel->setAutoFillBackground(true);
}

void CVelumBasePictureBox::SetPicture(const QPixmap& aPicture) {
  iPicture = aPicture;
  iLabel->setPixmap(aPicture);
}

void CVelumBasePictureBox::SetFrame(bool aOn) {
  iLabel->setFrameStyle(aOn ? QFrame::StyledPanel | QFrame::Sunken : QFrame::NoFrame);
  iLabel->setAutoFillBackground(aOn);
}

void CVelumBasePictureBox::SetPlaceholder(const QString& aText) {
  iLabel->setText(aText);
}

bool CVelumBasePictureBox::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aWatched == iLabel && aEvent->type() == QEvent::MouseButtonRelease) {
    Notify(EBaseClick);
    return true; // a box around this one would get the same click
  }
  if (aWatched == iLabel && aEvent->type() == QEvent::MouseButtonDblClick) {
    Notify(EBaseDblClick);
    return true;
  }
  return CVelumBaseControl::eventFilter(aWatched, aEvent);
}
