// The settings of an export as CSV.
#pragma once

#include "shell/dialogs/CVelumCsvExporter.h"
#include "toolkit/CVelumDialogForm.h"
#include "toolkit/CVelumFileDialog.h"

#include <memory>

namespace Ui {
class CVelumCsvExportOptions;
}

// Exports the background that is handed over.
class CVelumCsvExportOptions final : public CVelumDialogForm, public CVelumCsvExporter {
  Q_OBJECT

public:
  CVelumCsvExportOptions();
  ~CVelumCsvExportOptions() override;

  void SetExport(const TVelumCsvExport& aExport) override { iExport = aExport; }
  void Load() override;
  // Keeps the folder and the delimiter for the next time.
  void Unload() override;
  // Unloads itself when the stack is about to close.
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

private:
  [[nodiscard]] QString Delimiter() const;
  // Counts for a moment what the usual coding lacks, says so, and proposes the other one then.
  void ShowLacking();
  void Export();
  [[nodiscard]] bool IsPlain() const;
  // aLeftOut: names of fields that the file for other programs lacks.
  [[nodiscard]] bool WriteFile(const QString& aPath, qint64& aLacking, QStringList& aLeftOut);

  std::unique_ptr<Ui::CVelumCsvExportOptions> iUi;
  CVelumFileDialog fExportDialog;
  TVelumCsvExport iExport;
};
