#include "shell/CVelumImportProgress.h"

#include "shell/CVelumSilence.h"

#include <QFileInfo>
#include <QProgressDialog>

namespace {

constexpr int EPatience = 500; // milliseconds until the box comes up

} // namespace

CVelumImportProgress::CVelumImportProgress(QWidget* aOwner, const QString& aFilename)
    : iDialog(std::make_unique<QProgressDialog>(aOwner)) {
  iDialog->setObjectName(u"CVelumImportProgress"_s);
  iDialog->setWindowTitle(QProgressDialog::tr("Import"));
  iDialog->setLabelText(QProgressDialog::tr("Importing %1…").arg(QFileInfo(aFilename).fileName()));
  iDialog->setCancelButtonText(QProgressDialog::tr("Cancel"));
  iDialog->setWindowModality(Qt::ApplicationModal);
  iDialog->setMinimumDuration(EPatience);
  iDialog->setAutoReset(false);
  iDialog->setRange(0, EAll);
  iDialog->setValue(0);
}

CVelumImportProgress::~CVelumImportProgress() = default;

void CVelumImportProgress::Message(qint32 aMsg, const QString& aP0) {
  if (iSilenced.contains(aMsg)) return;
  if (aMsg != EMsgTooManyItems) {
    CVelumImportWatch::Message(aMsg, aP0);
    return;
  }
  const CVelumSilence silence;
  CVelumImportWatch::Message(aMsg, aP0);
  if (silence.Chosen()) iSilenced.insert(aMsg);
}

// Whoever does not hear of it takes the cards for all there are.
void CVelumImportProgress::Unclosed(qint32 aLineNum) {
  CVelumSeams::Presenter().Tell(
      QProgressDialog::tr(
          "A quoted cell in line %L1 is never closed. That line and what follows is left out.")
          .arg(aLineNum));
}

bool CVelumImportProgress::Progress(int aDone) {
  // Lets the toolkit paint, and takes clicks on the Cancel button alone.
  iDialog->setValue(std::min(aDone, EAll));
  return !iDialog->wasCanceled();
}

bool CVelumImportProgress::Step(qint64 aDone, qint64 aTotal) {
  if (aTotal > 0) return Progress(static_cast<int>(aDone * EAll / aTotal));
  iDialog->setRange(0, 0);
  return Progress(0);
}
