#include "runtime/view/CVelumCardView.h"

#include "core/CVelumChecked.h"
#include "core/CVelumSeams.h"
#include "runtime/CVelumPictureLib.h"
#include "runtime/view/CVelumFrameHost.h"
#include "runtime/view/CVelumGenForm.h"
#include "toolkit/CVelumBaseLabel.h"
#include "toolkit/CVelumBasePictureBox.h"
#include "toolkit/CVelumWinMan.h"

#include <QAction>
#include <QPainter>
#include <QPixmap>
#include <QScopeGuard>

namespace {

constexpr int ENumGenFunc = 10;
// Where a hidden list view lies.
constexpr float EOutside = 10000.0F;

CVelumScreenMeasure screenMeasure;
CVelumBaseMeasure* measure = &screenMeasure;

// A named action of the main window; asserts when it has none of that name.
QAction& ControlByName(const QString& aName) {
  QAction* action = gFrameHost->FindAction(aName);
  CVelumError::Assert(action, u"ControlByName "_s + aName);
  return CVelumChecked::Deref(action);
}

// All that a layout takes from the window: the room inside and the size outside.
std::pair<QSize, QSizeF> SizesOf(CVelumGenForm& aForm) {
  return {aForm.size(), aForm.OuterSize()};
}

// A menu takes "&" for an access key; a label is shown there as on its button.
void SetItem(QAction& aItem, const QString& aCaption) {
  aItem.setText(QString(aCaption).replace(u'&', u"&&"_s));
  aItem.setVisible(true);
}

} // namespace

bool CVelumCardView::FitsForm() const {
  return iCurSet && iLaidOutFor == SizesOf(ViewForm());
}

CVelumCardView::CVelumCardView(Ref<CVelumStack> aStack, QString aName)
    : iStack(std::move(aStack)), iName(std::move(aName)), iLayout(*measure) {}

CVelumCardView::~CVelumCardView() {
  Unbind();
}

void CVelumCardView::SetMeasure(CVelumBaseMeasure* aMeasure) {
  measure = aMeasure ? aMeasure : &screenMeasure;
}

CVelumGenForm& CVelumCardView::ViewForm() const {
  return CVelumChecked::Deref(dynamic_cast<CVelumGenForm*>(CVelumWinMan::NameToForm(iName)));
}

Ref<CVelumControl> CVelumCardView::VelumControl(const CVelumBaseControl* aBase) const {
  for (int i = 0; i < iLayout.NumControls(); ++i)
    if (iLayout.ControlAt(i)->BaseControl() == aBase) return iLayout.ControlAt(i);
  CVelumError::Assert(false, u"VelumControl found "_s + (aBase ? aBase->Name() : QString()));
  return nullptr;
}

bool CVelumCardView::IsVelumControl(const CVelumBaseControl* aBase) const {
  for (int i = 0; i < iLayout.NumControls(); ++i)
    if (iLayout.ControlAt(i)->BaseControl() == aBase) return true;
  return false;
}

Ref<CVelumControl> CVelumCardView::FocusControl() const {
  const CVelumBaseControl* active = ViewForm().ActiveControl();
  return active && IsVelumControl(active) ? VelumControl(active) : nullptr;
}

void CVelumCardView::AssignControlSet(const Ref<CVelumCard>& aCard, const Ref<CVelumControlSet>& aSet) {
  CVelumGenForm& form = ViewForm();
  if (aSet == iCurSet) {
    if (aCard) RenewCard(form, *aCard);
    return;
  }
  const Ref<CVelumControl> before = FocusControl();
  form.setUpdatesEnabled(false);
  const auto enable = qScopeGuard([&form] { form.setUpdatesEnabled(true); });
  Clear();
  iCurSet = aSet;
  if (aSet != iLastSet) iAsked.clear();
  iLastSet = aSet;
  if (!aCard || !aSet) return;
  form.SetBackColor(CVelumCardLayout::BackColorOf(*aCard));
  iLaidOutFor = SizesOf(form);
  iLayout.Build(form, aCard, aSet);
  SetTabOrder(form);
  AssignMenuCommands(*aSet);
  CVelumSeams::EventPump().PumpPaint();
  DrawWallPaper(*aCard);
  RestoreFocus(form, before);
}

void CVelumCardView::RenewCard(CVelumGenForm& aForm, const CVelumCard& aCard) {
  const qint32 color = CVelumCardLayout::BackColorOf(aCard);
  aForm.SetBackColor(color);
  for (CVelumBaseControl* base : aForm.Controls())
    if ((base->Kind() == EBaseCheckBox || base->Kind() == EBaseLabel) && base->Visible())
      base->SetBackColor(color);
  CVelumSeams::EventPump().PumpPaint();
  DrawWallPaper(aCard);
}

void CVelumCardView::HideAll(CVelumGenForm& aForm) {
  // With the focus in one of them, each hiding would hand it to the next.
  aForm.DropFocus();
  for (CVelumBaseControl* base : aForm.Controls()) {
    base->SetVisible(false);
    if (base->Kind() == EBaseListView) base->SetPlace(EOutside, EOutside);
    if (base->Kind() == EBasePictureBox) ReleasePicture(*base);
    if (base->Kind() == EBaseListView || base->Kind() == EBaseRichTextBox) base->Clear();
  }
}

void CVelumCardView::Clear() {
  CVelumGenForm& form = ViewForm();
  Unbind();
  HideAll(form);
  SetTitle(CVelumGenForm::tr("(No Card)"));
  iCurSet = nullptr;
  CVelumSeams::EventPump().PumpPaint();
}

void CVelumCardView::PrepareClose() {
  CVelumGenForm& form = ViewForm();
  for (CVelumBaseControl* base : form.Controls())
    if (base->Kind() == EBasePictureBox) ReleasePicture(*base);
  iCurSet = nullptr;
}

void CVelumCardView::SetTitle(const QString& aTitle) {
  ViewForm().SetCaption(aTitle);
}

void CVelumCardView::Unbind() {
  iLayout.Unbind();
  for (int i = 0; i < iNumFunc; ++i) iFuncControls[static_cast<size_t>(i)]->SetBaseFunc(nullptr);
  iFuncControls.fill(nullptr);
  iNumFunc = 0;
}

void CVelumCardView::SetTabOrder(CVelumGenForm& aForm) {
  QWidget* last = &aForm;
  for (int i = 0; i < iLayout.NumControls(); ++i) {
    const auto* base = qobject_cast<CVelumBaseControl*>(iLayout.ControlAt(i)->BaseControl());
    if (!base) continue;
    QWidget::setTabOrder(last, base->Widget());
    last = base->Widget();
  }
}

void CVelumCardView::RestoreFocus(CVelumGenForm& aForm, const Ref<CVelumControl>& aBefore) {
  const auto take = [&aForm](const Ref<CVelumControl>& aControl) {
    auto* base = aControl ? qobject_cast<CVelumBaseControl*>(aControl->BaseControl()) : nullptr;
    if (!base || !base->Enabled() || !aForm.Controls().contains(base)) return false;
    base->SetFocus();
    return true;
  };
  if (take(aBefore)) return;
  for (int i = 0; i < iLayout.NumControls(); ++i)
    if (take(iLayout.ControlAt(i))) return;
}

void CVelumCardView::AssignMenuCommands(const CVelumControlSet& aSet) {
  if (!gFrameHost) return;
  for (qint32 i = 0; i < aSet.NumControls(); ++i) {
    CVelumControl* control = aSet.ControlAt(i);
    if (!control || control->ConType() != EConCommand || !control->Flag(EConInMenu)) continue;
    iFuncControls[static_cast<size_t>(CVelumChecked::Index(iNumFunc, CVelumCardLayout::EMaxControls))] =
        control;
    ++iNumFunc;
  }
  ControlByName(u"fCmd"_s).setEnabled(iNumFunc != 0);
  for (int i = 0; i < iNumFunc; ++i) ShowMenuCommand(i);
  ControlByName(u"fNoCmd"_s).setVisible(iNumFunc == 0);
  for (int i = iNumFunc; i < ENumGenFunc; ++i)
    ControlByName(u"fGenFunc"_s + QString::number(i)).setVisible(false);
}

void CVelumCardView::ShowMenuCommand(int aNum) {
  CVelumControl& control = *iFuncControls[static_cast<size_t>(aNum)];
  QAction& item = ControlByName(u"fGenFunc"_s + QString::number(aNum));
  SetItem(item, control.Label());
  control.SetBaseFunc(&item);
}

void CVelumCardView::ReleasePicture(CVelumBaseControl& aBox) {
  const Ref<CVelumBlobStore> store = iStack->BlobStore();
  if (store) CVelumLib::ReleasePictureBlob(*store, static_cast<CVelumBasePictureBox&>(aBox));
}

void CVelumCardView::DrawWallPaper(const CVelumCard& aCard) {
  const Ref<CVelumControlSet> set = aCard.Background();
  if (!set || !set->Flag(ECseShowWallPaper)) return;
  CVelumGenForm& form = ViewForm();
  auto& box = CVelumChecked::Deref(dynamic_cast<CVelumBasePictureBox*>(form.FindControl(u"fWallPaperBox"_s)));
  const qint32 id = set->WallPaperId();
  const bool held = !box.Tag().isEmpty() && box.Tag().toInt() == id;
  const bool failed = id != ENoInt && iWallPaperId == id && box.Picture().isNull();
  form.update();
  if (held || failed) return;
  ReleasePicture(box);
  if (id == ENoInt) {
    box.SetPicture({});
    iWallPaperId = ENoInt;
    return;
  }
  HoldWallPaper(box, id);
}

void CVelumCardView::HoldWallPaper(CVelumBasePictureBox& aBox, qint32 aId) {
  CVelumBlobStore& store = CVelumChecked::Deref(iStack->BlobStore());
  // A layout empties the tag, but the picture is still there.
  if (iWallPaperId == aId && store.HasBlob(aId)) {
    store.ReadBlob(aId, false)->IncDynRefCount();
    aBox.SetTag(QString::number(aId));
    return;
  }
  CVelumLib::ShowPictureBlob(store, aBox, aId);
  iWallPaperId = aId;
  if (!aBox.Picture().isNull()) return;
  // Told once, when the card stands.
  QMetaObject::invokeMethod(
      &ViewForm(), [] { CVelumSeams::Presenter().Tell(CVelumGenForm::tr("The wallpaper cannot be read.")); },
      Qt::QueuedConnection);
}

void CVelumCardView::PaintWallPaper(QPainter& aPainter, const CVelumCard& aCard) {
  const Ref<CVelumControlSet> set = aCard.Background();
  if (!set || !set->Flag(ECseShowWallPaper)) return;
  CVelumGenForm& form = ViewForm();
  const auto* box = dynamic_cast<CVelumBasePictureBox*>(form.FindControl(u"fWallPaperBox"_s));
  if (!box || box->Tag().isEmpty() || box->Picture().isNull()) return;
  const QPixmap picture = box->Picture();
  if (set->Flag(ECseTileWallPaper)) {
    aPainter.drawTiledPixmap(form.rect(), picture);
    return;
  }
  const QSizeF outer = form.OuterSize() / static_cast<double>(ETwipsPerPixel);
  const QSizeF size = picture.deviceIndependentSize();
  aPainter.drawPixmap(QPointF((outer.width() - size.width()) / 2, (outer.height() - size.height()) / 2),
                      picture);
}

void CVelumCardView::ShowProgress(int aPercent) {
  if (!CVelumWinMan::FormIsLoaded(iName)) return;
  CVelumGenForm& form = ViewForm();
  CVelumBaseControl* progress = form.FindControl(u"fProgress"_s);
  const CVelumBaseControl* box = form.FindControl(u"fProgressBox"_s);
  progress->SetSize(box->Width() * static_cast<float>(aPercent) / 100, progress->Height());
}
