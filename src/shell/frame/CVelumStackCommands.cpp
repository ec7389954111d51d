#include "shell/frame/CVelumStackCommands.h"

#include "core/CVelumDialogLib.h"
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/CVelumSeams.h"
#include "persist/CVelumAccess.h"
#include "persist/CVelumStackFile.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/dialogs/CVelumOptions.h"
#include "shell/dialogs/CVelumShellDialogLib.h"
#include "shell/frame/CVelumReport.h"
#include "shell/frame/CVelumStackName.h"
#include "toolkit/CVelumGuard.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

// Runs a save. The record of the failure has been filled by the saver; one from elsewhere is filled here.
template <class T> bool RunSave(T aSave) {
  try {
    aSave();
    return true;
  } catch (const CVelumException& e) {
    if (e.Number() != CVelumError::GetErrorCode()) CVelumError::CatchError(u"CVelumFrame.SaveStack"_s);
  } catch (...) {
    CVelumError::CatchError(u"CVelumFrame.SaveStack"_s);
  }
  if (CVelumError::GetErrorCode() != EMsgCouldNotSave) {
    CVelumMsg::ShowLastError();
    return false;
  }
  // A save that was refused before anything was written says why.
  CVelumDialogLib::EndWait();
  CVelumMsg::Show(EMsgCouldNotSave, EMsgCritical, CVelumError::GetErrorRecord().iSysDescr);
  return false;
}

QString Text(const char* aText) {
  return QCoreApplication::translate("CVelumStackCommands", aText);
}

const char* const EFilter =
    QT_TRANSLATE_NOOP("CVelumStackCommands", "Orvelle (*.Orvelle)|*.Orvelle|All Files (*.*)|*");

// The message, and below it what it is about.
bool AskEmpty(const QString& aCards) {
  const QString text = CVelumMsg::Text(EMsgEmptyStackOk, CVelumMsg::EUndefParam) + u"\n\n"_s + aCards + u'.';
  return CVelumSeams::Presenter().Message(EMsgEmptyStackOk, EMsgQuestion, CVelumMsg::Name(EMsgEmptyStackOk),
                                          text);
}

// Where whoever has no folder for stacks keeps documents.
QString DocumentFolder() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

QString FolderOf(const QString& aPath) {
  QString dir;
  QString name;
  CVelumLib::SplitPath(aPath, dir, name);
  return dir;
}

} // namespace

CVelumStackCommands::CVelumStackCommands(QWidget& aFrame)
    : iFrame(aFrame), fLoadDialog(QCoreApplication::translate("CVelumStackCommands", "Open Stack"),
                                  u"Orvelle"_s, Text(EFilter)),
      fSaveDialog(QCoreApplication::translate("CVelumStackCommands", "Save Stack As"), u"Orvelle"_s,
                  Text(EFilter)) {}

void CVelumStackCommands::OpenStack() {
  if (fLoadDialog.InitDir().isEmpty())
    fLoadDialog.SetInitDir(CVelumOptions::StartFolder(gOptions.iLoadDialogInitDir));
  if (!fLoadDialog.ShowOpen(&iFrame)) return;
  const QString path = fLoadDialog.FileName();
  bool stillOpen = false;
  CVelumDialogLib::CloseStackStep(stillOpen);
  if (stillOpen) return;
  CVelumLib::HandleLoadStack(path);
  gOptions.iLoadDialogInitDir = FolderOf(path);
}

void CVelumStackCommands::OpenRecent(const QString& aPath) {
  bool stillOpen = false;
  CVelumDialogLib::CloseStackStep(stillOpen);
  if (!stillOpen) CVelumLib::HandleLoadStack(aPath);
}

void CVelumStackCommands::SaveTo(const QString& aPath) {
  CVelumStackFile file(aPath);
  gStackView->UpdateRect();
  CVelumDialogLib::BeginWait();
  file.SaveStack(gStack, gStackView->State());
  gStackView->NoteSaved();
  CVelumDialogLib::EndWait();
  CVelumReport::Done(
      tr("Saved %1, %2").arg(QFileInfo(aPath).fileName(), CVelumReport::Cards(gStack->NumCards())));
}

void CVelumStackCommands::SaveStack() {
  if (!gStack || !gStackView) return;
  if (gStack->Filename().isEmpty()) {
    SaveStackAs();
    return;
  }
  const bool done = RunSave([this] {
    if (!gStackView->ValidateCurControl()) return;
    // A script that hears of the field may have closed the stack.
    if (gStack && gStackView) SaveTo(gStack->Filename());
  });
  // The message has said that it can only be read: what was changed can still be kept elsewhere.
  if (!done && gStack && !CVelumAccess::WhyReadOnly(gStack->Filename()).isEmpty()) SaveStackAs();
}

void CVelumStackCommands::PrepareSaveDialog() {
  const QString path = gStack->Filename();
  const bool own = !path.isEmpty() && CVelumAccess::WhyReadOnly(path).isEmpty();
  const QString folder = CVelumOptions::StartFolder(own ? FolderOf(path) : QString());
  fSaveDialog.SetInitDir(folder.isEmpty() ? DocumentFolder() : folder);
  fSaveDialog.SetProposedName(CVelumStackName::FileName(*gStack));
}

void CVelumStackCommands::SaveStackAs() {
  if (!gStack || !gStackView || gStackView->RefuseEntry()) return;
  PrepareSaveDialog();
  if (!fSaveDialog.ShowSave(&iFrame)) return;
  const QString path = fSaveDialog.FileName();
  RunSave([&] {
    SaveTo(path);
    gStack->SetFilename(path);
    gStack->ResetChanged();
    CVelumOptions::AddToFileHistory(path);
    CVelumSeams::ChangeNotify(EChangeStack);
  });
}

void CVelumStackCommands::CloseStack() {
  if (!gStack) return;
  CVelumGuard::Run(u"CVelumFrame.fCloseStack"_s, [this] {
    if (CVelumDialogLib::LeaveStackStep()) ReleaseStack();
  });
}

void CVelumStackCommands::ReleaseStack() {
  CVelumSeams::ChangeNotify(EChangeStackCloses);
  CVelumSeams::EventPump().PumpPaint();
  if (gStack && gStack->BlobStore()) gStack->BlobStore()->CloseFile();
  if (gStackView) gStackView->Release();
  gStackView = nullptr;
  gStack = nullptr;
  CVelumSeams::ChangeNotify(EChangeStackClosed);
}

void CVelumStackCommands::DeleteCard() {
  const Ref<CVelumCard> card = gStackView ? gStackView->CurCard() : nullptr;
  if (!card) return;
  CVelumGuard::Run(u"CVelumFrame.fDeleteCard"_s, [&] {
    const QString name = card->Name();
    if (!CVelumMsg::Ask(EMsgDeleteCardOk, EMsgQuestion, name)) return;
    const CVelumError::CCommand command(tr("Delete card '%1'").arg(name));
    CVelumSeams::ChangeNotify(EChangeCardGoes, nullptr, card.Get());
    if (!gStackView) return;
    gStackView->DeleteCard(card, nullptr);
    CVelumReport::Done(tr("Deleted the card “%1”").arg(name));
  });
}

void CVelumStackCommands::EmptyStack() {
  if (!gStackView) return;
  CVelumGuard::Run(u"CVelumFrame.fEmptyStack"_s, [this] {
    const QString cards = CVelumReport::CardsOf(*gStack);
    if (!AskEmpty(cards) || !gStackView || !gStackView->MayDelete(nullptr)) return;
    const CVelumError::CCommand command(tr("Delete all cards"));
    CVelumDialogLib::BeginWait();
    gStackView->EmptyStack();
    CVelumDialogLib::EndWait();
    CVelumReport::Done(tr("Deleted %1").arg(cards));
  });
}
