#include "runtime/lists/CVelumCardListForm.h"

#include "core/CVelumLib.h"
#include "core/CVelumSeams.h"
#include "runtime/lists/CVelumCardListView.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumCardListForm.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScopedValueRollback>

CVelumCardListForm::CVelumCardListForm()
    : CVelumForm(u"CVelumCardListForm"_s, true), iUi(new Ui::CVelumCardListForm) {
  iUi->setupUi(this);
  iUi->fCardBox->SetMultiSelect(true);
  connect(iUi->fCardBox, &CVelumListWidget::ItemClick, this, &CVelumCardListForm::OnItemClick);
  connect(iUi->fCardBox, &CVelumListWidget::ItemDblClick, this, &CVelumCardListForm::OnItemDblClick);
  connect(iUi->fCardBox, &CVelumListWidget::SortChanged, this, &CVelumCardListForm::ShowMovable);
  connect(iUi->fCardBox, &CVelumListWidget::SelChanged, this, &CVelumCardListForm::ShowMovable);
  connect(iUi->fCardBox->model(), &QAbstractItemModel::modelReset, this, &CVelumCardListForm::ShowMovable);
  iUi->fCardBox->viewport()->installEventFilter(this);
  ShowMovable();
  connect(iUi->fBackgroundCombo, &QComboBox::currentIndexChanged, this, [this] {
    if (iShowing || !iView || !iView->CardListView()) return;
    CVelumGuard::Run(u"CVelumCardListForm.fBackgroundCombo"_s,
                     [this] { iView->CardListView()->FillAndShowCardList(false); });
  });
  connect(iUi->fUpBut, &QPushButton::clicked, this, [this] { Move(false); });
  connect(iUi->fDownBut, &QPushButton::clicked, this, [this] { Move(true); });
}

CVelumCardListForm::~CVelumCardListForm() = default;

CVelumListWidget* CVelumCardListForm::CardBox() const {
  return iUi->fCardBox;
}

CVelumComboWidget* CVelumCardListForm::BackgroundCombo() const {
  return iUi->fBackgroundCombo;
}

void CVelumCardListForm::SetView(const Ref<CVelumStackView>& aView) {
  iView = aView;
}

void CVelumCardListForm::Unload() {
  iView = nullptr;
}

void CVelumCardListForm::Load() {
  if (!iView) return;
  const QScopedValueRollback loading(iLoading, true);
  CVelumWinMan::SetFormRect(*this, iView->CardListPlace());
}

void CVelumCardListForm::ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject*) {
  if (aKind != EChangeStack && aKind != EChangeStructure && aKind != EChangeBackgroundGoes) return;
  if (iView && iView->CardListView())
    iView->CardListView()->RefillBackgrounds(aKind == EChangeBackgroundGoes ? aObj1 : nullptr);
}

void CVelumCardListForm::OnItemClick() {
  // Lines are also clicked to be copied or to be moved.
  if (QGuiApplication::keyboardModifiers() & (Qt::ShiftModifier | Qt::ControlModifier)) return;
  const Ref<CVelumStackView> view = iView;
  if (view) CVelumGuard::Run(u"CVelumCardListForm.fCardBox"_s, [&] { view->GoToSelectedCard(); });
}

void CVelumCardListForm::OnItemDblClick() {
  OnItemClick();
  if (iView && iView->CardView()) iView->SetFocusToCardView();
}

void CVelumCardListForm::Move(bool aDown) {
  const Ref<CVelumStackView> view = iView;
  if (!view || !view->CardListView()) return;
  CVelumGuard::Run(u"CVelumCardListForm.Move"_s, [&] {
    const Ref<CVelumCard> card = view->CardListView()->SelCard();
    if (!view->CardListView()->MoveSelected(aDown)) return;
    view->RefreshViews(true, true);
    iUi->fCardBox->setFocus();
    if (view->CardListView()) view->CardListView()->CardBox().SetSelIndexByObj(card.Get());
  });
}

QString CVelumCardListForm::MoveTip(bool aDown) const {
  if (iUi->fCardBox->DisplaySorted()) return tr("The list is shown sorted by a column");
  if (iUi->fCardBox->SelLine() < 0) return tr("Moves the chosen card; none is chosen");
  return aDown ? tr("Moves the chosen card down in the order of the stack")
               : tr("Moves the chosen card up in the order of the stack");
}

void CVelumCardListForm::ShowMovable() {
  const CVelumCardListView* list = iView ? iView->CardListView() : nullptr;
  for (const auto& [button, down] : {std::pair(iUi->fUpBut, false), std::pair(iUi->fDownBut, true)}) {
    button->setEnabled(list && list->CanMove(down));
    button->setToolTip(MoveTip(down));
  }
}

bool CVelumCardListForm::eventFilter(QObject* aObject, QEvent* aEvent) {
  const bool released = aObject == iUi->fCardBox->viewport() && aEvent->type() == QEvent::MouseButtonRelease;
  const auto* mouse = released ? static_cast<const QMouseEvent*>(aEvent) : nullptr;
  // The press has selected the line, unless it was one of several that are marked; these stay.
  if (mouse && mouse->button() == Qt::RightButton &&
      iUi->fCardBox->indexAt(mouse->position().toPoint()).isValid() && iUi->fCardBox->SelLines().size() == 1)
    OnItemClick();
  return QWidget::eventFilter(aObject, aEvent);
}

bool CVelumCardListForm::event(QEvent* aEvent) {
  const bool done = QWidget::event(aEvent);
  const QEvent::Type type = aEvent->type();
  if (type == QEvent::PaletteChange || type == QEvent::ThemeChange || type == QEvent::StyleChange)
    // The list is given the desktop's colours after this, and has one of its own for its text.
    QMetaObject::invokeMethod(this, &CVelumCardListForm::ShowListFont, Qt::QueuedConnection);
  return done;
}

void CVelumCardListForm::ShowListFont() {
  if (iView && iView->CardListView()) iView->CardListView()->ApplyListFont();
}

void CVelumCardListForm::resizeEvent(QResizeEvent* aEvent) {
  QWidget::resizeEvent(aEvent);
  if (iView && IsLoaded() && !iLoading) iView->ResizeCardList();
}

void CVelumCardListForm::closeEvent(QCloseEvent* aEvent) {
  // The window stays, hidden, for the next time.
  aEvent->ignore();
  if (iView && IsLoaded()) iView->CloseCardList();
}
