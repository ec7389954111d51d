#include "shell/dialogs/CVelumCardEdit.h"

#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "runtime/CVelumRuntimeDialogLib.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumNotBuilt.h"
#include "shell/frame/CVelumFrame.h"
#include "shell/frame/CVelumScriptBar.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumToolkitDialogLib.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumCardEdit.h"

#include <QPointer>
#include <QScopedValueRollback>

using CVelumDialogLib::SetEnabled;

namespace {

QString Moment(double aDate, double aTime) {
  return CVelumLocale::ShortDate(aDate) + u' ' + CVelumLocale::LongTime(aTime);
}

// Shows the new state in the card window and in the card list.
void RefreshViews() {
  if (gStackView) gStackView->RefreshViews(true, true);
}

} // namespace

CVelumCardEdit::CVelumCardEdit() : CVelumDialogForm(u"CVelumCardEdit"_s, true), iUi(new Ui::CVelumCardEdit) {
  iUi->setupUi(this);
  iBackgroundBox = MakeRef<CVelumListBox>(ELisSingle, iUi->fBackgroundBox, this);
  iCardBox = MakeRef<CVelumListBox>(ELisSingle, iUi->fCardBox, this);
  iControlBox = MakeRef<CVelumListBox>(ELisSingle, iUi->fControlBox, this);
  ConnectLists();
  ConnectButtons();
}

CVelumCardEdit::~CVelumCardEdit() = default;

void CVelumCardEdit::ConnectLists() {
  const auto onSelect = [this](CVelumListWidget* aList, void (CVelumCardEdit::*aTake)()) {
    connect(aList, &CVelumListWidget::SelChanged, this, [this, aTake] {
      if (!iShowing) CVelumGuard::Run(u"CVelumCardEdit.Select"_s, [&] { (this->*aTake)(); });
    });
  };
  onSelect(iUi->fBackgroundBox, &CVelumCardEdit::TakeBackground);
  onSelect(iUi->fCardBox, &CVelumCardEdit::TakeCard);
  connect(iUi->fControlBox, &CVelumListWidget::ItemDblClick, this,
          [this] { CVelumGuard::Run(u"CVelumCardEdit.fControlBox"_s, [this] { EditControl(); }); });
}

void CVelumCardEdit::ConnectButtons() {
  const auto on = [this](QAbstractButton* aButton, auto aAction) {
    connect(aButton, &QAbstractButton::clicked, this,
            [aAction] { CVelumGuard::Run(u"CVelumCardEdit"_s, aAction); });
  };
  on(iUi->fNewBut, [this] {
    SetMode(ENew);
    iUi->fName->setFocus();
  });
  on(iUi->fCreateBut, [this] { CreateCard(); });
  on(iUi->fModifyBut, [this] { ModifyCard(); });
  on(iUi->fDeleteBut, [this] {
    // A script that runs on the card ends first.
    CVelumDialogLib::WhenNoScriptRuns([form = QPointer(this)] {
      if (form) CVelumGuard::Run(u"CVelumCardEdit.fDeleteBut"_s, [&] { form->DeleteCard(); });
    });
  });
  on(iUi->fScriptBut, [] { CVelumNotBuilt::OpenForm(u"CVelumScriptEdit"_s, tr("Cards, Script"), gFrame); });
  on(iUi->fSelectFontBut,
     [] { CVelumNotBuilt::OpenForm(u"CVelumFontSelect"_s, tr("Cards, Select font"), gFrame); });
  on(iUi->fSelectColorBut, [this] {
    if (CVelumDialogLib::SelectColor(this, *iUi->fColorSample, iBackColor)) iEdited = true;
  });
  on(iUi->fClearColorBut, [this] {
    ShowBackColor(ENoInt);
    iEdited = true;
  });
  connect(iUi->fName, &QLineEdit::textEdited, this, [this] { iEdited = true; });
  on(iUi->fSelectCardBut, [this] {
    auto* select = dynamic_cast<CVelumCardSelect*>(CVelumWinMan::NameToForm(u"CVelumCardSelect"_s));
    if (select) select->SelectCard(this, nullptr, 0);
  });
  // It only tells.
  on(iUi->fChanged, [this] { iUi->fChanged->setChecked(CurCard() && CurCard()->Changed()); });
  on(iUi->fHelpBut, [this] { CVelumMsg::ShowHelp(Name(), {}); });
  on(iUi->fCloseBut, [this] { close(); });
}

// Life of the window.

void CVelumCardEdit::Load() {
  CVelumDialogForm::Load();
  iCardBox->Define1Column(tr("Card Name"));
  iControlBox->DefineColumnsList(u"%1:0.4,%2:0.6"_s.arg(tr("Name"), tr("Current Value")));
  const QScopedValueRollback showing(iShowing, true);
  FillBackgrounds();
  CVelumDialogLib::SelectCurBackground(*iBackgroundBox);
  TakeBackground();
}

void CVelumCardEdit::Unload() {
  CVelumDialogForm::Unload();
  const QScopedValueRollback showing(iShowing, true);
  SetMode(ENone);
  iCurSet = nullptr;
  for (const Ref<CVelumListBox>& box : {iBackgroundBox, iCardBox, iControlBox}) box->ClearAndShow();
}

void CVelumCardEdit::ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) {
  switch (aKind) {
  case EChangeStructure:
  case EChangeValues:
  case EChangeCards:
    return Refresh(nullptr);
  case EChangeBackgroundGoes:
    // It lets go of a background that is about to be deleted.
    if (aObj1 && aObj1 == iCurSet.Get()) SelectBackground(nullptr);
    return;
  case EChangeStackCloses:
    return CVelumWinMan::UnloadForm(*this);
  case EChangeCardGoes: {
    const Ref<CVelumCard> before = gStack ? gStack->GetCardById(iBeforeId) : nullptr;
    if (aObj2 && aObj2 == before.Get()) ForgetInsertPos();
    return Refresh(aObj2);
  }
  default:
    return;
  }
}

void CVelumCardEdit::DropEntries() {
  SetMode(iMode == EEdit && CurCard() ? EEdit : ENone);
}

void CVelumCardEdit::Refresh(const CVelumObject* aGoing) {
  const QScopedValueRollback showing(iShowing, true);
  const QString name = iBackgroundBox->SelLine();
  const int mode = iMode;
  FillBackgrounds();
  int index = -1;
  bool found = false;
  iBackgroundBox->GetObjIndex(iCurSet.Get(), index, found);
  if (!found) iCurSet = nullptr;
  // The same background, or one of the same name.
  iBackgroundBox->SetSelIndexOrClear(found ? index : iBackgroundBox->FindInList(name));
  if (!found) return TakeBackground();
  FillCards(aGoing);
  if (mode == EEdit && (!CurCard() || aGoing == iCurCard.Get())) return SetMode(ENone);
  if (mode == EEdit) {
    iCardBox->GetObjIndex(iCurCard.Get(), index, found);
    iCardBox->SetSelIndexOrClear(found ? index : -1);
    ShowFacts();
    // What is being typed stays.
    if (!iEdited) ShowEntries();
  }
  iUi->fModeText->setText(ModeText());
}

// Lists.

void CVelumCardEdit::FillBackgrounds() {
  CVelumDialogLib::FillBackgroundList(*iBackgroundBox, gStack.Get(), {}, nullptr);
}

void CVelumCardEdit::FillCards(const CVelumObject* aGoing) {
  if (iCurSet)
    CVelumDialogLib::FillCardList(*iCardBox, *iCurSet, aGoing);
  else
    iCardBox->ClearAndShow();
}

void CVelumCardEdit::TakeBackground() {
  const QScopedValueRollback showing(iShowing, true);
  iCurSet = dynamic_cast<CVelumControlSet*>(iBackgroundBox->SelObj().Get());
  FillCards(nullptr);
  iCardBox->SetSelIndexOrClear(-1);
  SetMode(ENone);
}

void CVelumCardEdit::TakeCard() {
  const Ref<CVelumObject> obj = iCardBox->SelObj();
  iCurCard = dynamic_cast<CVelumCard*>(obj.Get());
  SetMode(CurCard() ? EEdit : ENone);
}

void CVelumCardEdit::SelectBackground(const Ref<CVelumControlSet>& aSet) {
  const QScopedValueRollback showing(iShowing, true);
  int index = -1;
  bool found = false;
  iBackgroundBox->GetObjIndex(aSet.Get(), index, found);
  if (aSet && !found) {
    FillBackgrounds();
    iBackgroundBox->GetObjIndex(aSet.Get(), index, found);
  }
  iBackgroundBox->SetSelIndexOrClear(found ? index : -1);
  TakeBackground();
}

void CVelumCardEdit::SetAndShowCard(const Ref<CVelumCard>& aCard) {
  if (!aCard || !aCard->Stack()) return;
  SelectBackground(aCard->Background());
  const QScopedValueRollback showing(iShowing, true);
  int index = -1;
  bool found = false;
  iCardBox->GetObjIndex(aCard.Get(), index, found);
  iCardBox->SetSelIndexOrClear(found ? index : -1);
  iCurCard = aCard;
  SetMode(EEdit);
}

void CVelumCardEdit::NewCard(const Ref<CVelumControlSet>& aSet) {
  SelectBackground(aSet);
  SetMode(ENew);
  iUi->fName->setFocus();
}

Ref<CVelumCard> CVelumCardEdit::CurCard() const {
  return iCurCard && iCurCard->Stack() ? iCurCard : nullptr;
}

// Entries.

QString CVelumCardEdit::ModeText() const {
  if (iMode == EEdit && iCurCard) return iCurCard->Name();
  if (iMode == ENew && iCurSet) return u"<new \"%1\">"_s.arg(iCurSet->Name());
  return {};
}

void CVelumCardEdit::SetMode(int aMode) {
  const bool known = aMode == ENone || aMode == EEdit || aMode == ENew;
  CVelumError::Assert(known, u"SetMode aMode "_s + QString::number(aMode));
  iMode = known && (aMode != ENew || iCurSet) ? aMode : ENone;
  if (iMode != EEdit) {
    iCurCard = nullptr;
    const QScopedValueRollback showing(iShowing, true);
    iCardBox->SetSelIndexOrClear(-1);
    ClearEntries();
  }
  SetEntries(iMode == EEdit, iMode == ENew);
  if (iMode == EEdit) ShowCard();
  if (iMode == ENew) iUi->fAtEnd->setChecked(true);
  iUi->fModeText->setText(ModeText());
}

void CVelumCardEdit::ClearEntries() {
  for (QLineEdit* entry : {iUi->fName, iUi->fCardName, iUi->fCreDate, iUi->fModDate}) entry->clear();
  iUi->fChanged->setChecked(false);
  iControlBox->ClearAndShow();
  iBeforeId = ENoInt;
  iFont = nullptr;
  CVelumDialogLib::ShowFont(nullptr, *iUi->fFontName, *iUi->fFontSize, *iUi->fFontColor);
  ShowBackColor(ENoInt);
  iEdited = false;
}

void CVelumCardEdit::SetEntries(bool aEdit, bool aNew) {
  const bool any = aEdit || aNew;
  const std::pair<QWidget*, bool> entries[] = {
      {iUi->fName, any},           {iUi->fNameLabel, any},        {iUi->fFontName, false},
      {iUi->fFontSize, false},     {iUi->fCardName, false},       {iUi->fCreDate, false},
      {iUi->fModDate, false},      {iUi->fChanged, false},        {iUi->fAtEnd, aNew},
      {iUi->fBeforeCur, aNew},     {iUi->fAfterCur, aNew},        {iUi->fBeforeSpec, aNew},
      {iUi->fSelectCardBut, aNew}, {iUi->fSelectFontBut, any},    {iUi->fSelectColorBut, any},
      {iUi->fClearColorBut, any},  {iUi->fNewBut, bool(iCurSet)}, {iUi->fCreateBut, aNew},
      {iUi->fModifyBut, aEdit},    {iUi->fDeleteBut, aEdit},      {iUi->fScriptBut, aEdit}};
  for (const auto& [entry, enabled] : entries) SetEnabled(*entry, enabled, false);
  (aNew ? iUi->fCreateBut : iUi->fModifyBut)->setDefault(true);
}

void CVelumCardEdit::ShowCard() {
  if (!CurCard()) return;
  ShowEntries();
  ShowFacts();
}

void CVelumCardEdit::ShowEntries() {
  iUi->fName->setText(iCurCard->Name());
  iFont = iCurCard->Font();
  CVelumDialogLib::ShowFont(iFont.Get(), *iUi->fFontName, *iUi->fFontSize, *iUi->fFontColor);
  ShowBackColor(iCurCard->BackColor());
  iEdited = false;
}

void CVelumCardEdit::ShowFacts() {
  iUi->fCreDate->setText(Moment(iCurCard->CreDate(), iCurCard->CreTime()));
  iUi->fModDate->setText(Moment(iCurCard->ModDate(), iCurCard->ModTime()));
  iUi->fChanged->setChecked(iCurCard->Changed());
  iControlBox->Clear();
  const Ref<CVelumControlSet> set = iCurCard->Background();
  Ref<CVelumControl> control;
  for (qint32 i = 0; set && set->GetNextControl(control, i);) {
    const TVelumValue val = iCurCard->GetControlVal(control->Id(), false);
    iControlBox->AddLine(control->Name() + u'\t' + CVelumValue::ValToExtText(val, control->FieldInfo()),
                         control);
  }
  iControlBox->Show();
}

void CVelumCardEdit::ShowBackColor(qint32 aColor) {
  iBackColor = aColor;
  CVelumDialogLib::ShowColor(*iUi->fColorSample, aColor);
}

void CVelumCardEdit::SetFont(int aCase, const Ref<CVelumFont>& aFont) {
  CVelumError::Assert(aCase == 0, u"SetFont aCase"_s);
  if (aCase != 0) return;
  iFont = aFont;
  iEdited = true;
  CVelumDialogLib::ShowFont(iFont.Get(), *iUi->fFontName, *iUi->fFontSize, *iUi->fFontColor);
}

void CVelumCardEdit::SetCard(int aCase, const Ref<CVelumCard>& aCard) {
  CVelumError::Assert(aCase == 0, u"SetCard aCase"_s);
  // The answer may come when no new card is being made any more.
  if (aCase != 0 || iMode != ENew) return;
  iBeforeId = aCard->Id();
  iUi->fCardName->setText(aCard->Name());
  iUi->fBeforeSpec->setChecked(true);
}

void CVelumCardEdit::ForgetInsertPos() {
  iBeforeId = ENoInt;
  iUi->fCardName->clear();
  iUi->fAtEnd->setChecked(true);
}

// Commands.

bool CVelumCardEdit::CheckName() {
  if (!iUi->fName->text().isEmpty()) return true;
  CVelumMsg::Show(EMsgEmptyName, EMsgCritical, u"card"_s);
  iUi->fName->setFocus();
  return false;
}

Ref<CVelumCard> CVelumCardEdit::InsertPos() {
  const Ref<CVelumCard> cur = gStackView ? gStackView->CurCard() : nullptr;
  Ref<CVelumCard> next;
  if (iUi->fAtEnd->isChecked()) return nullptr;
  if (iUi->fBeforeCur->isChecked()) return cur;
  if (iUi->fAfterCur->isChecked()) return cur && gStack->OrderNext(*cur, next) ? next : nullptr;
  if (iUi->fBeforeSpec->isChecked()) return gStack->GetCardById(iBeforeId);
  CVelumError::Assert(false, u"CreateCard pos"_s);
  return nullptr;
}

void CVelumCardEdit::CreateCard() {
  if (!gStack || !gStackView || !iCurSet || !CheckName()) return;
  const Ref<CVelumCard> before = InsertPos();
  const QString name = iUi->fName->text();
  const CVelumError::CCommand command(tr("New card '%1'").arg(name));
  const auto card = MakeRef<CVelumCard>(name, iCurSet);
  WriteCard(card);
  gStackView->AddCard(card, before);
  Ref<CVelumControl> nameField;
  if (iCurSet->GetControlByFlag(EConCardName, nameField)) {
    gStack->RenameCard(card, name);
    RefreshViews();
  }
  gStackView->GoToCard(card);
  CVelumSeams::ChangeNotify(EChangeCards);
  // A script that hears of the card may have closed the stack, and this window with it.
  if (IsLoaded()) SetAndShowCard(card);
}

void CVelumCardEdit::ModifyCard() {
  const Ref<CVelumCard> card = CurCard();
  if (!card || !CheckName()) return;
  const CVelumError::CCommand command(tr("Change card '%1'").arg(card->Name()));
  WriteCard(card);
  ShowCard();
  CVelumSeams::ChangeNotify(EChangeCards);
}

void CVelumCardEdit::WriteCard(const Ref<CVelumCard>& aCard) {
  const QString name = iUi->fName->text();
  if (name != aCard->Name()) {
    gStack->RenameCard(aCard, name);
    RefreshViews();
  }
  aCard->SetFont(iFont);
  aCard->SetBackColor(iBackColor);
}

void CVelumCardEdit::EditControl() {
  const Ref<CVelumControl> control = dynamic_cast<CVelumControl*>(iControlBox->SelObj().Get());
  if (!control) return;
  CVelumForm* form = CVelumNotBuilt::OpenForm(u"CVelumControlEdit"_s, tr("Cards, Field"), gFrame);
  if (auto* editor = dynamic_cast<CVelumControlEditor*>(form)) editor->SetAndShowControl(iCurSet, control);
}

void CVelumCardEdit::DeleteCard() {
  const Ref<CVelumCard> card = CurCard();
  if (!card || !gStackView) return;
  const CVelumError::CCommand command(tr("Delete card '%1'").arg(card->Name()));
  CVelumSeams::ChangeNotify(EChangeCardGoes, nullptr, card.Get());
  if (gStackView && card->Stack()) gStackView->DeleteCard(card, nullptr);
  SetMode(ENone);
}
