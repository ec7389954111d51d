#include "toolkit/CVelumForm.h"

#include "core/CVelumLib.h"
#include "toolkit/CVelumMdiArea.h"
#include "toolkit/CVelumWinMan.h"

#include <QMdiSubWindow>
#include <QWidget>
#include <cmath>

namespace {

// The area in which aWidget stands as a child window; nothing for a window of its own.
CVelumMdiArea* AreaOf(const QWidget* aWidget) {
  const auto* child = qobject_cast<QMdiSubWindow*>(aWidget->parentWidget());
  return child ? qobject_cast<CVelumMdiArea*>(child->mdiArea()) : nullptr;
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
  QWidget* widget = Widget();
  const CVelumMdiArea* area = AreaOf(widget);
  const QRect rect = area ? area->ChildRect(widget) : QRect(widget->pos(), widget->size());
  const auto twips = [](int aPixels) { return CVelumLib::PixelsToTwips(aPixels); };
  return {twips(rect.x()), twips(rect.y()), twips(rect.width()), twips(rect.height())};
}

QSizeF CVelumForm::OuterSize() {
  const QWidget* widget = Widget();
  const QSize size = AreaOf(widget) ? widget->parentWidget()->size() : widget->size();
  return {CVelumLib::PixelsToTwips(size.width()), CVelumLib::PixelsToTwips(size.height())};
}

void CVelumForm::SetPlace(const QRectF& aPlace, bool aWithSize) {
  QWidget* widget = Widget();
  CVelumMdiArea* area = AreaOf(widget);
  const QPoint pos(ToPixels(aPlace.x()), ToPixels(aPlace.y()));
  const QSize size(ToPixels(aPlace.width()), ToPixels(aPlace.height()));
  if (area) {
    area->SetChildRect(widget, QRect(pos, aWithSize ? size : area->ChildRect(widget).size()));
    return;
  }
  widget->move(pos);
  if (aWithSize) widget->resize(size);
}
