// The commands that open, save and close the stack.
#pragma once

#include "toolkit/CVelumFileDialog.h"

#include <QCoreApplication>

// Each command catches and shows what goes wrong; the stack then stays open as it is.
class CVelumStackCommands {
  Q_DECLARE_TR_FUNCTIONS(CVelumStackCommands)

public:
  explicit CVelumStackCommands(QWidget& aFrame);

  // Asks for a file, closes the stack that is open, and opens it.
  void OpenStack();
  // The same for a file of the recent list.
  void OpenRecent(const QString& aPath);
  // Takes what was typed last, and saves; asks for a name when there is none yet, and where the stack can
  // only be read, after saying why.
  void SaveStack();
  // Asks for a name and saves under it. What was typed last and not yet taken is left out.
  void SaveStackAs();
  // Asks about changes; then closes all windows of the stack and lets go of it.
  void CloseStack();
  // With a current card: asks, and deletes it.
  void DeleteCard();
  // Asks, and deletes all cards.
  void EmptyStack();

private:
  void SaveTo(const QString& aPath);
  // The folder and the name that the next save dialog begins with.
  void PrepareSaveDialog();
  void ReleaseStack();

  QWidget& iFrame;
  CVelumFileDialog fLoadDialog;
  CVelumFileDialog fSaveDialog;
};
