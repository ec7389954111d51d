#include "toolkit/CVelumForm.h"

#include "core/CVelumLib.h"
#include "toolkit/CVelumWinMan.h"

#include <QMdiSubWindow>
#include <QWidget>
#include <cmath>

namespace {

// The widget whose geometry is the form's place.
QWidget* Placed(QWidget* aWidget) {
  auto* sub = qobject_cast<QMdiSubWindow*>(aWidget->parentWidget());
  return sub ? sub : aWidget;
}

int ToPixels(double aTwips) {
  return static_cast<int>(std::lround(CVelumLib::TwipsToPixels(aTwips)));
}

} // namespace

CVelumForm::CVelumForm(QString aName, bool aSizable) : iName(std::move(aName)), iSizable(aSizable) {}

CVelumForm::~CVelumForm() {
  CVelumWinMan::Forget(*this);
}

void CVelumForm::Load() {
  CVelumWinMan::RestoreWindow(*this);
}

void CVelumForm::Unload() {
  CVelumWinMan::SaveWindow(*this);
}

void CVelumForm::ChangeNotify(int, CVelumObject*, CVelumObject*) {}

QRectF CVelumForm::Place() {
  const QWidget* widget = Placed(Widget());
  const auto twips = [](int aPixels) { return CVelumLib::PixelsToTwips(aPixels); };
  return {twips(widget->x()), twips(widget->y()), twips(widget->width()), twips(widget->height())};
}

void CVelumForm::SetPlace(const QRectF& aPlace, bool aWithSize) {
  QWidget* widget = Placed(Widget());
  widget->move(ToPixels(aPlace.x()), ToPixels(aPlace.y()));
  if (aWithSize) widget->resize(ToPixels(aPlace.width()), ToPixels(aPlace.height()));
}
