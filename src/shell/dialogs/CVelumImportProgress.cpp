#include "shell/dialogs/CVelumImportProgress.h"

#include "shell/frame/CVelumSilence.h"

#include <QFileInfo>

CVelumImportProgress::CVelumImportProgress(QWidget* aOwner, const QString& aFilename)
    : iBox(aOwner, tr("Import"), tr("Importing %1…").arg(QFileInfo(aFilename).fileName())) {}

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
  const QString text =
      tr("A quoted cell in line %L1 is never closed. That line and what follows is left out.");
  CVelumSeams::Presenter().Tell(text.arg(aLineNum));
}
