#include "toolkit/CVelumScreenFit.h"

#include <QApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace {

qint64 Shared(const QRect& aOne, const QRect& aOther) {
  const QRect both = aOne & aOther;
  return both.isValid() ? qint64{both.width()} * both.height() : 0;
}

QScreen* ScreenOf(const QRect& aPlace) {
  QScreen* best = QGuiApplication::primaryScreen();
  for (QScreen* screen : QGuiApplication::screens())
    if (!best || Shared(aPlace, screen->geometry()) > Shared(aPlace, best->geometry())) best = screen;
  return best;
}

} // namespace

QRect CVelumScreenFit::Fit(QRect aPlace, const QRect& aScreen, int aTitle) {
  const QRect room = aScreen.adjusted(0, 0, 0, -aTitle);
  aPlace.setSize(aPlace.size().boundedTo(room.size()));
  if (aPlace.right() > room.right()) aPlace.moveRight(room.right());
  if (aPlace.bottom() > room.bottom()) aPlace.moveBottom(room.bottom());
  if (aPlace.top() < room.top()) aPlace.moveTop(room.top());
  return aPlace;
}

void CVelumScreenFit::KeepOnScreen(QWidget& aWindow, bool aSizable) {
  if (!aWindow.isWindow()) return;
  const QRect now(aWindow.pos(), aWindow.size());
  const QScreen* screen = ScreenOf(now);
  if (!screen) return;
  const int title = QApplication::style()->pixelMetric(QStyle::PM_TitleBarHeight);
  const QRect fitted = Fit(now, screen->availableGeometry(), title);
  if (fitted.topLeft() != now.topLeft()) aWindow.move(fitted.topLeft());
  if (aSizable && fitted.size() != now.size()) aWindow.resize(fitted.size());
}
