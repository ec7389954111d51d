#include "runtime/wiki/CVelumWikiTextEdit.h"

#include "core/CVelumSeams.h"
#include "core/CVelumValue.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumBaseRichTextBox.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumWikiTextEdit.h"

CVelumWikiTextEdit::CVelumWikiTextEdit()
    : CVelumDialogForm(u"CVelumWikiTextEdit"_s, true), iUi(new Ui::CVelumWikiTextEdit) {
  iUi->setupUi(this);
  fWikiText = new CVelumBaseRichTextBox(u"fWikiText"_s, this, nullptr);
  iUi->fTextLayout->addWidget(fWikiText->Widget());
  fWikiText->SetVisible(true);
  fWikiText->Widget()->setAccessibleName(tr("Wiki text"));
  // Made last, it comes first.
  setTabOrder(fWikiText->Widget(), iUi->fSelToLinkBut);
  const auto on = [this](QPushButton* aButton, void (CVelumWikiTextEdit::*aDo)()) {
    connect(aButton, &QPushButton::clicked, this,
            [this, aDo] { CVelumGuard::Run(u"CVelumWikiTextEdit"_s, [&] { (this->*aDo)(); }); });
  };
  on(iUi->fSelToLinkBut, &CVelumWikiTextEdit::SelToLink);
  on(iUi->fSaveBut, &CVelumWikiTextEdit::Save);
  connect(iUi->fCancelBut, &QPushButton::clicked, this, &QDialog::reject);
}

CVelumWikiTextEdit::~CVelumWikiTextEdit() = default;

void CVelumWikiTextEdit::SetObj(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl) {
  if (Changed()) {
    if (aCard == iCard && aControl == iControl) return;
    CVelumSeams::Presenter().Tell(tr("Another text is still being edited. Save or cancel it first."));
    return;
  }
  iCard = aCard;
  iControl = aControl;
  iStored = CVelumValue::ValToExtText(aCard->GetControlVal(aControl->Id(), false), aControl->FieldInfo());
  const bool readOnly = aControl->Flag(EConReadOnly);
  fWikiText->SetMaxChar(aControl->MaxChar());
  fWikiText->SetText(iStored);
  // A line end that is none of CR LF comes back as one; that is no change.
  iStored = fWikiText->Text();
  fWikiText->SetLocked(readOnly);
  iUi->fSelToLinkBut->setEnabled(!readOnly);
  iUi->fSaveBut->setEnabled(!readOnly);
  fWikiText->SetFocus();
}

bool CVelumWikiTextEdit::Changed() const {
  return iCard && fWikiText->Text() != iStored;
}

bool CVelumWikiTextEdit::IsThere() const {
  return gStackView && iCard && gStackView->Holds(iCard) && iCard->ControlById(iControl->Id()) == iControl;
}

void CVelumWikiTextEdit::ChangeNotify(int aKind, CVelumObject*, CVelumObject*) {
  if (aKind == EChangeStackCloses) CVelumWinMan::UnloadForm(*this);
}

void CVelumWikiTextEdit::DropEntries() {
  CVelumWinMan::UnloadForm(*this);
}

void CVelumWikiTextEdit::Unload() {
  CVelumDialogForm::Unload();
  iCard = nullptr;
  iControl = nullptr;
}

void CVelumWikiTextEdit::SelToLink() {
  const int start = fWikiText->SelStart();
  int len = fWikiText->SelLen();
  if (len <= 0) return;
  if (fWikiText->Text().mid(start + len - 1, 1) == u" "_s) --len;
  if (!fWikiText->Surround(start, len, u"[["_s, u"]]"_s))
    CVelumSeams::Presenter().Tell(tr("The text would get too long."));
  fWikiText->SetFocus();
}

void CVelumWikiTextEdit::Save() {
  if (!IsThere()) {
    CVelumSeams::Presenter().Tell(tr("The field is no longer there. Its text cannot be saved."));
    return;
  }
  gStackView->SetCardValue(iCard, iControl->Id(),
                           CVelumValue::ExtTextToVal(fWikiText->Text(), iControl->FieldInfo()));
  accept();
}
