// The window for the options that are the user's to make.
#pragma once

#include "toolkit/CVelumDialogForm.h"
#include "toolkit/CVelumFileDialog.h"

#include <memory>

namespace Ui {
class CVelumOptionEdit;
}

// Shows three of the options. OK keeps and writes them; everything else leaves them as they are.
class CVelumOptionEdit final : public CVelumDialogForm {
  Q_OBJECT

public:
  CVelumOptionEdit();
  ~CVelumOptionEdit() override;

  void Load() override;

private:
  void SelectAuto();
  void SelectFolder();
  // A failure to write is told, and the window stays.
  void Ok();

  std::unique_ptr<Ui::CVelumOptionEdit> iUi;
  CVelumFileDialog fSelectDialog;
};
