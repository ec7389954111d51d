// The import itself, out of the window of the CSV settings.
#include "core/CVelumDialogLib.h"
#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumCsvImportOptions.h"
#include "shell/dialogs/CVelumCsvReport.h"
#include "shell/dialogs/CVelumImportProgress.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumReport.h"
#include "toolkit/CVelumGuard.h"
#include "toolkit/CVelumWinMan.h"
#include "ui_CVelumCsvImportOptions.h"

#include <QFileInfo>
#include <QPointer>
#include <QScopedValueRollback>

bool CVelumCsvImportOptions::AskReplace(const Ref<CVelumControlSet>& aBackground) const {
  const bool adds = IsExact() && iUi->fAddCards->isChecked();
  if (adds || aBackground->NumCards() == 0) return true;
  const QString text = CVelumMsg::Text(EMsgDeleteCardsOk, CVelumMsg::EUndefParam) + u"\n\n"_s +
                       tr("The import replaces the %1 of “%2”.")
                           .arg(CVelumReport::Cards(aBackground->NumCards()), aBackground->Name());
  return CVelumSeams::Presenter().Message(EMsgDeleteCardsOk, EMsgQuestion, CVelumMsg::Name(EMsgDeleteCardsOk),
                                          text) &&
         gStackView->MayDelete(aBackground.Get());
}

void CVelumCsvImportOptions::Import() {
  if (iBusy || !iImport.iInto || (IsExact() && !iWork.IsKnown())) return;
  const bool into = iImport.iInto();
  const Ref<CVelumControlSet> background = Target();
  if (into && (!background || !gStackView)) {
    CVelumSeams::Presenter().Tell(tr("Choose the background that the cards are to belong to."));
    return;
  }
  if (into && !AskReplace(background)) return;
  if (IsExact()) iWork.Run().Decide(Choice());
  bool done = false;
  {
    const QScopedValueRollback busy(iBusy, true);
    if (!into && !CVelumDialogLib::LeaveStackStep()) {
      CVelumWinMan::UnloadForm(*this);
      return;
    }
    CVelumGuard::Run(u"CVelumCsvImportOptions.fImportBut_Click"_s, [&] {
      const CVelumError::CCommand command(tr("Import %1").arg(QFileInfo(iFilename).fileName()));
      CVelumDialogLib::BeginWait();
      done = into ? IntoBackground(background) : IntoNewStack();
    });
    CVelumDialogLib::EndWait();
  }
  if (done) Finish(background);
}

// Shows what has come in, and closes the windows of the import.
void CVelumCsvImportOptions::Finish(Ref<CVelumControlSet> aBackground) {
  const bool into = static_cast<bool>(aBackground);
  RememberChoices();
  CVelumReport::Imported(iFilename, iReport.iRecords);
  const TCsvReport report = iReport;
  const qint32 sortField = iSortField;
  const Ref<CVelumStack> stack = gStack;
  qint32 index = 0;
  if (!into) static_cast<void>(stack->GetFirstBackground(aBackground, index));
  const QPointer<CVelumCsvImportOptions> self(this);
  CVelumSeams::ChangeNotify(into ? EChangeStructure : EChangeStack);
  // This window goes with the other one. A script that hears of the new stack may have closed both.
  if (self) iImport.iDone();
  if (gStack == stack) CVelumCsvReport::Show(report, aBackground, sortField);
}

bool CVelumCsvImportOptions::IntoNewStack() {
  TNewStack made;
  {
    CVelumImportProgress progress(this, iFilename);
    const ECsvOutcome outcome =
        IsExact() ? iWork.Run().IntoNew(progress, made)
                  : CVelumImports::ImportCsv1(iFilename, Options(), progress, made, &iReport);
    if (outcome != ECsvOutcome::Done) return false;
  }
  iSortField = IsExact() ? iWork.Run().SortField() : ENoInt;
  if (IsExact()) iReport = iWork.Run().Report();
  iImport.iCloseOthers();
  CVelumLib::ReplaceStack(made.iStack, MakeRef<CVelumStackView>(made.iView, made.iStack));
  return true;
}

bool CVelumCsvImportOptions::IntoBackground(const Ref<CVelumControlSet>& aBackground) {
  const Ref<CVelumStackView> view = gStackView;
  ECsvOutcome outcome{};
  {
    CVelumImportProgress progress(this, iFilename);
    outcome = IsExact()
                  ? iWork.Run().Into(progress, *view)
                  : CVelumImports::ImportCsv1(iFilename, Options(), progress, aBackground, *view, &iReport);
  }
  iSortField = IsExact() ? iWork.Run().SortField() : ENoInt;
  if (IsExact()) iReport = iWork.Run().Report();
  ShowFaults(iReport.iFaults);
  if (outcome != ECsvOutcome::Done) return false;
  CVelumDialogLib::ShowCards();
  return true;
}

void CVelumCsvImportOptions::RememberChoices() const {
  gOptions.iCsvDetectTypes = iUi->fDetectTypes->isChecked();
  gOptions.iCsvGuessKey = iUi->fGuessKey->isChecked();
  gOptions.iCsvTryCardName = iUi->fTryCardName->isChecked();
}
