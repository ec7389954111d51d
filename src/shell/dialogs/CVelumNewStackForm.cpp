#include "shell/dialogs/CVelumNewStackForm.h"

#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumScriptBar.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumNewStackForm.h"

#include <QPointer>
#include <QScopedValueRollback>

namespace {

// Refuses an empty name, and lets the user go on at its entry.
bool CheckName(QLineEdit& aEntry, const QString& aWhat) {
  if (!aEntry.text().isEmpty()) return true;
  CVelumMsg::Show(EMsgEmptyName, EMsgCritical, aWhat);
  aEntry.setFocus();
  return false;
}

Ref<CVelumStack> NewStack(const QString& aDescr, const QString& aBackgroundName, const QString& aCardName) {
  const auto stack = MakeRef<CVelumStack>(u"Orvelle"_s);
  stack->SetDescr(aDescr);
  stack->SetFlag(EStaBinary, true);
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  if (!stack->GetFirstBackground(background, index)) CVelumError::RaiseHost(EHostObjectNotSet);
  background->SetName(aBackgroundName);
  stack->AddCard(MakeRef<CVelumCard>(aCardName, background), nullptr, true);
  return stack;
}

void ReleaseView() {
  if (gStackView) gStackView->Release();
  gStackView = nullptr;
}

// Shows a stack while none is open.
void ShowStack(const Ref<CVelumStack>& aStack) {
  ReleaseView();
  gStack = aStack;
  gStackView = MakeRef<CVelumStackView>(aStack->Name(), aStack);
  try {
    gStackView->OpenCardView();
    gStackView->OpenCardList();
  } catch (...) {
    ReleaseView();
    gStack = nullptr;
    throw;
  }
}

} // namespace

CVelumNewStackForm::CVelumNewStackForm()
    : CVelumDialogForm(u"CVelumNewStackForm"_s, false), iUi(new Ui::CVelumNewStackForm) {
  iUi->setupUi(this);
  connect(iUi->fCreateBut, &QPushButton::clicked, this, [this] {
    // The stack that is open is closed: a running script ends first.
    CVelumDialogLib::WhenNoScriptRuns([form = QPointer(this)] {
      if (form) form->Create();
    });
  });
  connect(iUi->fCancelBut, &QPushButton::clicked, this, &QDialog::reject);
}

CVelumNewStackForm::~CVelumNewStackForm() = default;

void CVelumNewStackForm::Load() {
  CVelumDialogForm::Load();
  iUi->fDescr->clear();
  iUi->fBackgroundName->setText(tr("Normal Card"));
  iUi->fCardName->setText(tr("Start"));
  iUi->fDescr->setFocus();
}

void CVelumNewStackForm::ChangeNotify(int aKind, CVelumObject*, CVelumObject*) {
  if (aKind == EChangeStackCloses && !iBusy) CVelumWinMan::UnloadForm(*this);
}

bool CVelumNewStackForm::CheckNames() {
  return CheckName(*iUi->fBackgroundName, u"background"_s) && CheckName(*iUi->fCardName, u"card"_s);
}

void CVelumNewStackForm::Create() {
  if (iBusy || !CheckNames()) return;
  CVelumGuard::Run(u"CVelumNewStackForm.fCreateBut"_s, [this] { MakeStack(); });
}

void CVelumNewStackForm::MakeStack() {
  {
    const QScopedValueRollback busy(iBusy, true);
    bool stillOpen = false;
    CVelumDialogLib::CloseStackStep(stillOpen);
    if (stillOpen) return;
    ShowStack(NewStack(iUi->fDescr->text(), iUi->fBackgroundName->text(), iUi->fCardName->text()));
  }
  const QPointer<CVelumNewStackForm> self(this);
  CVelumSeams::ChangeNotify(EChangeStack);
  // A script that hears of the new stack may have closed it, and this window with it.
  if (self) CVelumWinMan::UnloadForm(*this);
}
