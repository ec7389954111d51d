// The one entry to all exports.
#pragma once

#include "model/CVelumStack.h"
#include "runtime/lists/CVelumListBox.h"
#include "toolkit/CVelumDialogForm.h"
#include "toolkit/CVelumFileDialog.h"

#include <memory>

namespace Ui {
class CVelumExportOptions;
}

// The user picks a format, and for CSV the background; CVelumCsvExportOptions asks for the rest.
class CVelumExportOptions final : public CVelumDialogForm {
  Q_OBJECT

public:
  CVelumExportOptions();
  ~CVelumExportOptions() override;

  void Load() override;
  // Takes the window of the CSV settings along.
  void Unload() override;
  // Unloads itself when the stack is about to close, and lets go of a background that is deleted.
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

  // The background whose cards are to be exported; nothing where none is selected.
  [[nodiscard]] Ref<CVelumControlSet> Background() const;

private:
  void HandleDisables();
  void Export();
  void ExportXmlFile();
  void ShowCsvSettings();

  std::unique_ptr<Ui::CVelumExportOptions> iUi;
  Ref<CVelumListBox> iBackgroundBox;
  CVelumFileDialog fExportXmlDialog;
};
