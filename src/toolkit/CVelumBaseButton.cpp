#include "toolkit/CVelumBaseButton.h"

#include "toolkit/CVelumBaseColor.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QPushButton>

namespace {

constexpr double EMinContrast = 3.0;

QPixmap Tinted(const QIcon& aIcon, const QSize& aSize, qreal aRatio, const QColor& aColor) {
  QPixmap pixmap = aIcon.pixmap(aSize, aRatio);
  QPainter painter(&pixmap);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(QRect(QPoint(), aSize), aColor);
  return pixmap;
}

} // namespace

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
  iPicture = aIcon;
  ShowPicture();
  iButton->setToolTip(aToolTip);
}

void CVelumBaseButton::ShowPicture() {
  const QPalette palette = iButton->palette();
  const QColor drawn = QGuiApplication::palette().color(QPalette::WindowText);
  const bool seen = CVelumBaseColor::Contrast(drawn, palette.color(QPalette::Button)) >= EMinContrast;
  if (seen || iPicture.isNull())
    iButton->setIcon(iPicture);
  else
    iButton->setIcon(Tinted(iPicture, iButton->iconSize(), iButton->devicePixelRatioF(),
                            palette.color(QPalette::Active, QPalette::ButtonText)));
}

bool CVelumBaseButton::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aWatched == iButton && aEvent->type() == QEvent::PaletteChange) ShowPicture();
  return CVelumBaseControl::eventFilter(aWatched, aEvent);
}

bool CVelumBaseButton::HasPicture() const {
  return !iButton->icon().isNull();
}
