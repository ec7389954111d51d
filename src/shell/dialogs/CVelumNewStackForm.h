// The window that makes a new stack.
#pragma once

#include "toolkit/CVelumDialogForm.h"

#include <memory>

namespace Ui {
class CVelumNewStackForm;
}

// Makes a stack with one background and one card in place of the one that is open.
class CVelumNewStackForm final : public CVelumDialogForm {
  Q_OBJECT

public:
  CVelumNewStackForm();
  ~CVelumNewStackForm() override;

  // Proposes names for the background and the card.
  void Load() override;
  // Unloads itself when the stack is about to close, unless it closes it itself.
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

private:
  void Create();
  [[nodiscard]] bool CheckNames();
  void MakeStack();

  std::unique_ptr<Ui::CVelumNewStackForm> iUi;
  bool iBusy = false; // the stack is being made
};
