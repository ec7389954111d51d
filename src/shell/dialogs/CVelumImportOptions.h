// The one entry to all imports.
#pragma once

#include "exchange/CVelumStep.h"
#include "model/fields/CVelumControlSet.h"
#include "runtime/lists/CVelumListBox.h"
#include "shell/dialogs/CVelumCsvImporter.h"
#include "toolkit/CVelumDialogForm.h"
#include "toolkit/CVelumFileDialog.h"

#include <memory>

namespace Ui {
class CVelumImportOptions;
}

// The user picks one of five formats, and for some the target; then a file dialog asks for the file.
class CVelumImportOptions final : public CVelumDialogForm {
  Q_OBJECT

public:
  CVelumImportOptions();
  ~CVelumImportOptions() override;

  void Load() override;
  // Takes the window of the CSV settings along.
  void Unload() override;
  // Unloads itself when the stack is about to close, unless an import of its own replaces it. Lets go of a
  // background that is deleted; the choice of another one stays.
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

  // What the user chose; the window of the CSV settings reads them.
  [[nodiscard]] bool IntoCurStack() const;
  // Opens the window, with CSV chosen, and goes on as if the user had picked the file.
  static void ShowCsvImport(const QString& aPath);
  // Takes the tick away: the next import is not to go where this one went.
  void ForgetTarget();
  // Tells all other windows that the stack is about to close, before an import takes its place.
  void CloseOthers();
  // Nothing where none is selected.
  [[nodiscard]] Ref<CVelumControlSet> Background() const;

private:
  // Which controls can be used with the chosen format.
  void HandleDisables();
  void SetTarget(bool aEnabled, bool aInto, bool aBackgroundEnabled);
  void Import();
  // The file of a format, or an empty text; keeps the folder in the option.
  [[nodiscard]] QString AskFile(CVelumFileDialog& aDialog, const QString& aInitDir);
  static void KeepFolder(const QString& aPath, QString& aInitDir);
  void ImportCsvFile();
  void ImportCsvFrom(const QString& aPath);
  // What the window of the CSV settings is to know of this one.
  [[nodiscard]] TVelumCsvImport HandOver();
  void ImportXmlFile();
  void ImportHandBaseFile();
  void ImportOrvelle();
  void ImportTextFile();
  // Runs an import with the wait cursor and the progress; shows what goes wrong.
  template <class TWork> bool Run(const QString& aProc, const QString& aPath, const TWork& aWork);

  std::unique_ptr<Ui::CVelumImportOptions> iUi;
  Ref<CVelumListBox> iBackgroundBox;
  CVelumFileDialog fImportCsvDialog;
  CVelumFileDialog fImportXmlDialog;
  CVelumFileDialog fImportHandBaseDialog;
  CVelumFileDialog fImportOrvelleDialog;
  CVelumFileDialog fImportTextDialog;
  bool iBusy = false; // an import runs
};
