#include "runtime/lists/CVelumCardSelect.h"

#include "core/CVelumSeams.h"
#include "runtime/CVelumRuntimeDialogLib.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumCardSelect.h"

#include <QScopedValueRollback>

CVelumCardSelect::CVelumCardSelect()
    : CVelumDialogForm(u"CVelumCardSelect"_s, true), iUi(new Ui::CVelumCardSelect) {
  iUi->setupUi(this);
  iBackgroundBox = MakeRef<CVelumListBox>(ELisCombo, iUi->fBackgroundCombo, this);
  iCardBox = MakeRef<CVelumListBox>(ELisSingle, iUi->fCardBox, this);
  connect(iUi->fBackgroundCombo, &QComboBox::currentIndexChanged, this, [this] {
    if (!iLoading) CVelumGuard::Run(u"CVelumCardSelect.fBackgroundCombo"_s, [this] { FillCards(); });
  });
  connect(iUi->fCardBox, &CVelumListWidget::SelChanged, this, &CVelumCardSelect::TakeCard);
  connect(iUi->fCardBox, &CVelumListWidget::ItemDblClick, this, &CVelumCardSelect::Select);
  connect(iUi->fSelectBut, &QPushButton::clicked, this, &CVelumCardSelect::Select);
  connect(iUi->fCloseBut, &QPushButton::clicked, this, &QDialog::reject);
}

CVelumCardSelect::~CVelumCardSelect() = default;

void CVelumCardSelect::Load() {
  CVelumDialogForm::Load();
  const QScopedValueRollback loading(iLoading, true);
  iCardBox->Define1Column(tr("Name"));
  CVelumDialogLib::FillBackgroundList(*iBackgroundBox, gStack.Get(), {}, nullptr);
  CVelumDialogLib::SelectCurBackground(*iBackgroundBox);
  FillCards();
}

void CVelumCardSelect::Unload() {
  CVelumDialogForm::Unload();
  iCardBox->ClearAndShow();
  iCard = nullptr;
}

void CVelumCardSelect::ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject*) {
  if (aKind == EChangeBackgroundGoes) LetGo(aObj1);
  if (aKind == EChangeStackCloses) CVelumWinMan::UnloadForm(*this);
}

void CVelumCardSelect::LetGo(const CVelumObject* aBackground) {
  const Ref<CVelumObject> chosen = iBackgroundBox->SelObj();
  const bool going = chosen.Get() == aBackground;
  // No other background will do for whoever asked for a card of this one.
  if (going && !iUi->fBackgroundCombo->isEnabled()) return CVelumWinMan::UnloadForm(*this);
  {
    const QScopedValueRollback loading(iLoading, true);
    CVelumDialogLib::FillBackgroundList(*iBackgroundBox, gStack.Get(), {}, aBackground);
    if (chosen && !going)
      iBackgroundBox->SetSelIndexByObj(chosen.Get());
    else if (iBackgroundBox->NumLines() > 0)
      iBackgroundBox->SetSelIndex(0);
  }
  if (going) FillCards();
}

void CVelumCardSelect::FillCards() {
  const Ref<CVelumObject> obj = iBackgroundBox->SelObj();
  if (const auto* set = dynamic_cast<CVelumControlSet*>(obj.Get()))
    CVelumDialogLib::FillCardList(*iCardBox, *set);
  else
    iCardBox->ClearAndShow();
  TakeCard();
}

void CVelumCardSelect::TakeCard() {
  iCard = dynamic_cast<CVelumCard*>(iCardBox->SelObj().Get());
  iUi->fSelectBut->setEnabled(static_cast<bool>(iCard));
}

void CVelumCardSelect::SelectCard(QWidget* aOwner, const Ref<CVelumControlSet>& aBackground, int aTag) {
  CVelumWinMan::ShowDialog(*this);
  iOwner = aOwner;
  iTag = aTag;
  {
    const QScopedValueRollback loading(iLoading, true);
    int index = -1;
    bool found = false;
    iBackgroundBox->GetObjIndex(aBackground.Get(), index, found);
    // One that was made after the window was loaded.
    if (aBackground && !found)
      CVelumDialogLib::FillBackgroundList(*iBackgroundBox, gStack.Get(), {}, nullptr);
    if (aBackground) iBackgroundBox->SetSelIndexByObj(aBackground.Get());
  }
  iUi->fBackgroundCombo->setEnabled(!aBackground);
  if (aBackground) FillCards();
}

void CVelumCardSelect::Select() {
  auto* taker = dynamic_cast<CVelumCardTaker*>(iOwner.data());
  // The card may have left its stack since it was chosen.
  if (!taker || !iCard || !iCard->Stack()) return;
  const QPointer<QWidget> owner = iOwner;
  iOwner = nullptr;
  CVelumGuard::Run(u"CVelumCardSelect.Select"_s, [&] { taker->SetCard(iTag, iCard); });
  // It may have closed itself.
  if (!owner) return;
  owner->raise();
  owner->activateWindow();
}
