#include "runtime/view/CVelumGenForm.h"

#include "core/CVelumSeams.h"
#include "runtime/CVelumPictureLib.h"
#include "runtime/script/CVelumScriptRunner.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumBaseButton.h"
#include "toolkit/CVelumBaseCheckBox.h"
#include "toolkit/CVelumBaseComboBox.h"
#include "toolkit/CVelumBaseLabel.h"
#include "toolkit/CVelumBaseLine.h"
#include "toolkit/CVelumBaseListView.h"
#include "toolkit/CVelumBasePictureBox.h"
#include "toolkit/CVelumBaseRichTextBox.h"
#include "toolkit/CVelumBaseTextBox.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"

#include <QApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QStyleHints>
#include <algorithm>

namespace {

struct TPool {
  EBase iKind;
  QStringView iPrefix;
  int iSize;
  float iWidth; // as designed; most are set anew with each layout
  float iHeight;
};

constexpr TPool gPools[] = {
    {EBaseTextBox, u"fGenTextBox", 20, 1200, 315},   {EBaseRichTextBox, u"fGenRichTextBox", 10, 1200, 495},
    {EBaseComboBox, u"fGenComboBox", 10, 1200, 315}, {EBaseCheckBox, u"fGenCheckBox", 10, 300, 315},
    {EBaseButton, u"fGenButton", 10, 1200, 375},     {EBaseListView, u"fGenListView", 10, 1200, 495},
    {EBaseLabel, u"fGenLabel", 30, 1200, 195},       {EBasePictureBox, u"fGenPictureBox", 10, 1200, 495},
    {EBaseLine, u"fGenLine", 1, 1200, 15},
};

constexpr float EProgressWidth = 1500.0F;
constexpr float EProgressHeight = 180.0F;

const TPool& PoolOf(EBase aKind) {
  return gPools[static_cast<size_t>(aKind)];
}

CVelumBaseControl* NewPictureBox(const QString& aName, CVelumGenForm& aForm) {
  auto* box = new CVelumBasePictureBox(aName, &aForm, &aForm);
  box->SetInteractive();
  QObject::connect(box, &CVelumBasePictureBox::Offered, &aForm,
                   [&aForm, box](const QMimeData& aData) { aForm.TakeOffer(*box, aData); });
  return box;
}

CVelumBaseControl* NewBase(EBase aKind, const QString& aName, CVelumGenForm& aForm) {
  switch (aKind) {
  case EBaseTextBox:
    return new CVelumBaseTextBox(aName, &aForm, &aForm);
  case EBaseRichTextBox:
    return new CVelumBaseRichTextBox(aName, &aForm, &aForm);
  case EBaseComboBox:
    return new CVelumBaseComboBox(aName, &aForm, &aForm);
  case EBaseCheckBox:
    return new CVelumBaseCheckBox(aName, &aForm, &aForm);
  case EBaseButton:
    return new CVelumBaseButton(aName, &aForm, &aForm);
  case EBaseListView:
    return new CVelumBaseListView(aName, &aForm, &aForm);
  case EBaseLabel:
    return new CVelumBaseLabel(aName, &aForm);
  case EBasePictureBox:
    return NewPictureBox(aName, aForm);
  case EBaseLine:
    break;
  }
  return new CVelumBaseLine(aName, &aForm);
}

} // namespace

// Which handler the event of a kind of control goes to. Labels and the line are passive.
struct CVelumGenForm::TRoad {
  EBase iKind;
  EBaseEvent iEvent;
  void (CVelumGenForm::*iTo)(CVelumBaseControl& aBase, bool& ioCancel);
};

CVelumGenForm::CVelumGenForm() : CVelumForm(u"CVelumGenForm"_s, true) {
  setObjectName(Name());
  setAutoFillBackground(true);
  for (const TPool& pool : gPools) AddPool(pool.iKind);
  AddOthers();
  SetCaption(tr("(No Card)"));
}

CVelumGenForm::~CVelumGenForm() = default;

QString CVelumGenForm::Prefix(EBase aKind) {
  return PoolOf(aKind).iPrefix.toString();
}

void CVelumGenForm::AddPool(EBase aKind) {
  const TPool& pool = PoolOf(aKind);
  for (int i = 0; i < pool.iSize; ++i) {
    CVelumBaseControl* base = NewBase(aKind, Prefix(aKind) + QString::number(i), *this);
    base->SetSize(pool.iWidth, pool.iHeight);
    Add(base);
  }
}

void CVelumGenForm::AddOthers() {
  auto* box = new CVelumBasePictureBox(u"fProgressBox"_s, this, this);
  box->SetFrame(false);
  box->SetSize(EProgressWidth, EProgressHeight);
  Add(box);
  auto* progress = new CVelumBasePictureBox(u"fProgress"_s, box->Widget(), this);
  progress->SetFrame(false);
  progress->SetSize(0, EProgressHeight);
  progress->Widget()->setBackgroundRole(QPalette::Highlight);
  progress->Widget()->setAutoFillBackground(true);
  Add(progress);
  Add(new CVelumBasePictureBox(u"fWallPaperBox"_s, this, this));
  Add(new CVelumBasePictureBox(u"fTempPicBox"_s, this, this));
  iLinesBox = new CVelumBaseRichTextBox(u"fLinesBox"_s, this, this);
  iLinesBox->Widget()->installEventFilter(this);
  iLinesBox->Widget()->setAccessibleName(tr("Lines of the list"));
  Add(iLinesBox);
}

void CVelumGenForm::Add(CVelumBaseControl* aBase) {
  iControls.append(aBase);
  iByName.insert(aBase->Name(), aBase);
}

void CVelumGenForm::SetView(const Ref<CVelumStackView>& aView) {
  iView = aView;
}

void CVelumGenForm::Load() {
  if (iView) CVelumWinMan::SetFormRect(*this, iView->CardViewPlace());
}

void CVelumGenForm::Unload() {
  iView = nullptr;
}

CVelumBaseControl* CVelumGenForm::ActiveControl() const {
  return CVelumBaseControl::OfWidget(focusWidget());
}

void CVelumGenForm::DropFocus() {
  if (QWidget* widget = focusWidget()) widget->clearFocus();
}

float CVelumGenForm::OuterWidth() {
  return static_cast<float>(OuterSize().width());
}

void CVelumGenForm::SetCaption(const QString& aCaption) {
  iCaption = aCaption;
  // The toolkit takes "[*]" for the mark of a changed document; doubled, it is the text.
  setWindowTitle(QString(aCaption).replace(u"[*]"_s, u"[*][*]"_s));
}

void CVelumGenForm::SetCard(int, const Ref<CVelumCard>& aCard) {
  const Ref<CVelumStackView> view = iView;
  if (!view) return;
  view->GoToCard(aCard);
  view->SetFocusToCardView();
}

void CVelumGenForm::BaseEvent(CVelumBaseControl& aBase, EBaseEvent aEvent, bool& ioCancel) {
  static constexpr TRoad roads[] = {
      {EBaseTextBox, EBaseChange, &CVelumGenForm::OnChange},
      {EBaseTextBox, EBaseGotFocus, &CVelumGenForm::OnGotFocus},
      {EBaseTextBox, EBaseValidate, &CVelumGenForm::OnValidate},
      {EBaseTextBox, EBaseEscape, &CVelumGenForm::OnEscape},
      {EBaseRichTextBox, EBaseChange, &CVelumGenForm::OnChange},
      {EBaseRichTextBox, EBaseClick, &CVelumGenForm::OnClick},
      {EBaseRichTextBox, EBaseDblClick, &CVelumGenForm::OnDblClick},
      {EBaseRichTextBox, EBaseGotFocus, &CVelumGenForm::OnGotFocus},
      {EBaseRichTextBox, EBasePaste, &CVelumGenForm::OnPaste},
      {EBaseRichTextBox, EBaseValidate, &CVelumGenForm::OnValidate},
      {EBaseRichTextBox, EBaseEscape, &CVelumGenForm::OnEscape},
      {EBaseComboBox, EBaseChange, &CVelumGenForm::OnChange},
      {EBaseComboBox, EBaseClick, &CVelumGenForm::OnChange}, // a choice is a change
      {EBaseComboBox, EBaseGotFocus, &CVelumGenForm::OnGotFocus},
      {EBaseComboBox, EBaseValidate, &CVelumGenForm::OnValidate},
      {EBaseComboBox, EBaseEscape, &CVelumGenForm::OnEscape},
      {EBaseCheckBox, EBaseClick, &CVelumGenForm::OnCheckClick},
      {EBaseCheckBox, EBaseGotFocus, &CVelumGenForm::OnGotFocus},
      {EBaseCheckBox, EBaseValidate, &CVelumGenForm::OnValidate},
      {EBaseButton, EBaseClick, &CVelumGenForm::OnClick},
      {EBaseComboBox, EBaseDblClick, &CVelumGenForm::OnEditLines},
      {EBaseListView, EBaseItemClick, &CVelumGenForm::OnItemClick},
      {EBaseListView, EBaseDblClick, &CVelumGenForm::OnEditLines},
      {EBasePictureBox, EBaseClick, &CVelumGenForm::OnClick},
      {EBasePictureBox, EBaseDblClick, &CVelumGenForm::OnDblClick},
  };
  if (!iView) return;
  for (const TRoad& road : roads)
    if (road.iKind == aBase.Kind() && road.iEvent == aEvent) {
      // A value that could not be taken stays where it can be seen.
      if (!CVelumGuard::Run(u"CVelumGenForm.BaseEvent"_s, [&] { (this->*road.iTo)(aBase, ioCancel); }))
        ioCancel = aEvent == EBaseValidate;
      return;
    }
}

void CVelumGenForm::OnChange(CVelumBaseControl& aBase, bool&) {
  iView->BaseObjChange(&aBase);
}

void CVelumGenForm::OnClick(CVelumBaseControl& aBase, bool&) {
  // A click on the progress display stops the running script.
  const bool progress = aBase.Name() == u"fProgress" || aBase.Name() == u"fProgressBox";
  if (aBase.Kind() != EBasePictureBox)
    iView->BaseObjClick(&aBase);
  else if (!progress)
    CVelumLib::TogglePictureFit(static_cast<CVelumBasePictureBox&>(aBase));
  else if (CVelumScriptRunner* runner = CVelumScriptRunner::Installed())
    runner->Break();
}

void CVelumGenForm::TakeOffer(CVelumBasePictureBox& aBox, const QMimeData& aData) {
  CVelumGuard::Run(u"CVelumGenForm.TakeOffer"_s, [&] {
    const CVelumCardView* view = iView ? iView->CardView() : nullptr;
    if (!view || !view->IsVelumControl(&aBox)) return;
    const Ref<CVelumControl> control = view->VelumControl(&aBox);
    CVelumLib::ImportPicture(*control, aData);
  });
}

void CVelumGenForm::OnCheckClick(CVelumBaseControl& aBase, bool&) {
  if (!iShowing) iView->BaseObjClick(&aBase);
}

void CVelumGenForm::OnDblClick(CVelumBaseControl& aBase, bool&) {
  iView->BaseObjDblClick(&aBase);
}

void CVelumGenForm::OnGotFocus(CVelumBaseControl& aBase, bool&) {
  iView->BaseObjGotFocus(&aBase);
}

void CVelumGenForm::OnPaste(CVelumBaseControl& aBase, bool&) {
  iView->BaseObjPaste(&aBase);
}

void CVelumGenForm::OnValidate(CVelumBaseControl& aBase, bool& ioCancel) {
  if (&aBase == iLinesBox) return iView->TakeLines();
  // A menu opens over a field that keeps the focus: only what was typed is to be taken then.
  if (aBase.HasFocus() && !iView->CurObjChanged()) return;
  // Anything that was typed elsewhere meanwhile is taken by the same rule.
  if (iView->CurObj() == &aBase)
    iView->BaseObjValidate(&aBase, ioCancel);
  else
    iView->ValidateCurControl();
  if (aBase.HasFocus() && iView) iView->BaseObjGotFocus(&aBase);
}

void CVelumGenForm::OnEscape(CVelumBaseControl& aBase, bool& ioCancel) {
  ioCancel = iView->CurObj() == &aBase && iView->TakeBackEntry();
}

void CVelumGenForm::OnItemClick(CVelumBaseControl& aBase, bool&) {
  iView->BaseObjItemClick(&aBase);
}

void CVelumGenForm::OnEditLines(CVelumBaseControl& aBase, bool&) {
  iView->EditLines(&aBase);
}

bool CVelumGenForm::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (DropsMouse(aWatched, *aEvent)) return true;
  const bool isKey = aWatched == iLinesBox->Widget() && aEvent->type() == QEvent::KeyPress && iView;
  return (isKey && LinesKey(static_cast<const QKeyEvent&>(*aEvent))) ||
         QWidget::eventFilter(aWatched, aEvent);
}

bool CVelumGenForm::LinesKey(const QKeyEvent& aKey) {
  const bool enter = aKey.key() == Qt::Key_Return || aKey.key() == Qt::Key_Enter;
  if (aKey.key() == Qt::Key_Escape)
    iView->DropLines();
  else if (aKey.key() == Qt::Key_F2 || (enter && (aKey.modifiers() & Qt::ControlModifier)))
    CVelumGuard::Run(u"CVelumGenForm.fLinesBox"_s, [this] { iView->TakeLines(); });
  else
    return false;
  return true;
}

void CVelumGenForm::DropDblClick() {
  iCardClick.start();
  iDropsRelease = false;
  // Removed and put in front again when it is there already.
  qApp->installEventFilter(this);
}

bool CVelumGenForm::DropsMouse(const QObject* aWatched, const QEvent& aEvent) {
  const bool press = aEvent.type() == QEvent::MouseButtonPress;
  const bool second = aEvent.type() == QEvent::MouseButtonDblClick;
  const bool release = aEvent.type() == QEvent::MouseButtonRelease && iDropsRelease;
  if (!iCardClick.isValid() || !(press || second || release)) return false;
  const auto* widget = qobject_cast<const QWidget*>(aWatched);
  if (!widget) return false;
  const bool drops =
      !press && (widget == this || isAncestorOf(widget)) &&
      (release || iCardClick.elapsed() <= QGuiApplication::styleHints()->mouseDoubleClickInterval());
  iDropsRelease = drops && second;
  if (iDropsRelease) return true;
  iCardClick.invalidate();
  qApp->removeEventFilter(this);
  return drops;
}

void CVelumGenForm::ShowLines(const CVelumBaseControl& aOver, const QString& aText) {
  constexpr float lines = 6;
  const TVelumMetrics& metrics = CVelumSeams::Metrics();
  const float height = std::min(std::max(aOver.Height(), lines * metrics.iCharHeight), ClientHeight());
  const float width = std::min(std::max(aOver.Width(), 20 * metrics.iAvgCharWidth), ClientWidth());
  iLinesBox->SetFont(aOver.Font());
  iLinesBox->SetSize(width, height);
  // Over its list, as far as it fits into the window.
  iLinesBox->SetPlace(std::max(0.0F, std::min(aOver.Left(), ClientWidth() - width)),
                      std::max(0.0F, std::min(aOver.Top(), ClientHeight() - height)));
  iLinesBox->Clear();
  iLinesBox->SetText(aText);
  iLinesBox->SetVisible(true);
  iLinesBox->Widget()->raise();
  iLinesBox->SetFocus();
}
