// How a CSV file is to be read.
#pragma once

#include "exchange/CVelumCsvPreview.h"
#include "runtime/lists/CVelumListBox.h"
#include "toolkit/CVelumDialogForm.h"

#include <memory>

namespace Ui {
class CVelumCsvImportOptions;
}

class CVelumImportOptions;

// Proposes delimiter and coding from the first lines, and imports into what CVelumImportOptions, which must
// stay loaded, says. A second tab shows the first rows as they would come in, and lets the user name the
// types of columns.
class CVelumCsvImportOptions final : public CVelumDialogForm {
  Q_OBJECT

public:
  CVelumCsvImportOptions();
  ~CVelumCsvImportOptions() override;

  void Load() override;
  void Unload() override;
  // Unloads itself when the stack is about to close, unless it replaces it itself.
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

  // Shows the beginning of a file and proposes how to read it.
  void SetImportFile(const QString& aFilename) { Prepare(aFilename); }

  // Brings up the windows of the open stack after cards have come or gone, at the first card if none is
  // shown.
  static void ShowCards();

private:
  void Prepare(const QString& aFilename);
  [[nodiscard]] QChar Delim() const;
  [[nodiscard]] qint32 Coding() const;
  [[nodiscard]] TCsvOptions Options() const;
  void DropPreview();
  void ShowPreview();
  void FillPreview(const TCsvPreview& aPreview);
  void ShowColumnType();
  void TakeColumnType();
  void Import();
  // The two kinds of an import. Whether anything has come in.
  [[nodiscard]] bool IntoNewStack();
  [[nodiscard]] bool IntoBackground(const Ref<CVelumControlSet>& aBackground);
  void RememberChoices() const;

  std::unique_ptr<Ui::CVelumCsvImportOptions> iUi;
  Ref<CVelumListBox> iLineBox;
  QString iFilename;
  // Types that the user named, by column.
  decltype(TCsvOptions::iTypes) iTypes = {};
  bool iPreviewStale = true;
  bool iShowing = false; // the combo box is set, not used
  bool iBusy = false;    // the import runs
};
