#include "shell/dialogs/CVelumShellDialogLib.h"

#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumSave.h"
#include "shell/frame/CVelumFrame.h"
#include "shell/frame/CVelumStackName.h"

void CVelumDialogLib::StayAboveFrame(QDialog& aDialog) {
  if (gFrame && !aDialog.parentWidget()) aDialog.setParent(gFrame, aDialog.windowFlags());
}

namespace {

bool IsChanged() {
  return gStack && (gStackView ? gStackView->HasUnsavedChanges() : gStack->Changed());
}

} // namespace

void CVelumDialogLib::CheckLeaveStack(bool& aProceed, bool& aSave) {
  aProceed = true;
  aSave = false;
  if (IsChanged()) {
    CVelumSave(CVelumStackName::Title(*gStack), gFrame).exec();
    CVelumError::Assert(iDialogRes >= ESaveResSave && iDialogRes <= ESaveResBack,
                        u"CheckLeaveStack iDialogRes "_s + QString::number(iDialogRes));
    aSave = iDialogRes == ESaveResSave;
    // Any other answer loses nothing.
    aProceed = aSave || iDialogRes == ESaveResDiscard;
  }
  CVelumSeams::EventPump().PumpPaint();
}

bool CVelumDialogLib::LeaveStackStep() {
  if (!gStack) return true;
  // What cannot be taken from the field is to be mended first.
  if (gStackView && !gStackView->ValidateCurControl()) return false;
  bool proceed = false;
  bool save = false;
  CheckLeaveStack(proceed, save);
  if (!proceed || !save) return proceed;
  if (gFrame) gFrame->Commands().SaveStack();
  return !IsChanged();
}

void CVelumDialogLib::CloseStackStep(bool& aStillOpen) {
  if (gFrame) gFrame->Commands().CloseStack();
  aStillOpen = bool(gStack);
}

void CVelumDialogLib::ShowCards() {
  if (!gStackView) return;
  gStackView->OpenCardList();
  gStackView->OpenCardView();
  gStackView->RefreshViews(true, true);
  Ref<CVelumCard> card;
  if (!gStackView->CurCard() && gStack->NumCards() > 0) static_cast<void>(gStackView->OrderFirst(card));
}
