// How a CSV file is to be read.
#pragma once

#include "exchange/CVelumCsvPreview.h"
#include "runtime/lists/CVelumListBox.h"
#include "shell/dialogs/CVelumCsvImporter.h"
#include "shell/dialogs/CVelumCsvWork.h"
#include "toolkit/CVelumDialogForm.h"

#include <memory>

class QMenu;

namespace Ui {
class CVelumCsvImportOptions;
}

// Shows the first records as they would come in, proposes how to read them, and imports into what
// the window that opened it says. Exact, the way that is chosen at first, looks through
// the whole file meanwhile, and its import waits for that; Classic reads by the older rules.
class CVelumCsvImportOptions final : public CVelumDialogForm, public CVelumCsvImporter {
  Q_OBJECT

public:
  CVelumCsvImportOptions();
  ~CVelumCsvImportOptions() override;

  void Load() override;
  void Unload() override;
  // Unloads itself when the stack is about to close, unless it replaces it itself.
  void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override;

  void SetImport(const TVelumCsvImport& aImport) override { iImport = aImport; }
  void SetImportFile(const QString& aFilename) override { Prepare(aFilename); }

protected:
  // The target may have been changed in the other window.
  void changeEvent(QEvent* aEvent) override;

private:
  void ConnectChoices();
  void ConnectColumns();
  void Prepare(const QString& aFilename);
  void ProposeClassic();
  void CheckDelim(QChar aDelim);
  [[nodiscard]] bool IsExact() const;
  // A way of reading was chosen.
  void TakeWay();
  // Something about the file, or about its columns, was chosen.
  void TakeReading();
  void TakeChoice();
  void DropTypes();
  [[nodiscard]] QChar Delim() const;
  [[nodiscard]] qint32 Coding() const;
  [[nodiscard]] TCsvOptions Options() const;
  void DropPreview();
  void ShowPreview();
  void ShowColumnType();
  void TakeColumnType();
  void ChooseTypeAt(int aColumn);
  // The background that the cards are to go into; nothing: a new stack.
  [[nodiscard]] Ref<CVelumControlSet> Target() const;
  void ShowTarget();

  // The exact way.
  [[nodiscard]] std::optional<ECsvEncoding> Encoding() const;
  [[nodiscard]] TCsvReading Reading() const;
  [[nodiscard]] TCsvChoice Choice() const;
  void ShowExact();
  void ShowRecords();
  void ShowNote();
  void ShowNaming();
  [[nodiscard]] QString TypeText(int aColumn, int aEntry) const;
  void ShowColumnField();
  void TakeColumnField();
  [[nodiscard]] QString NameOf(int aColumn) const;
  [[nodiscard]] QString TitleOf(int aColumn) const;
  [[nodiscard]] ECsvFit FitOf(int aRow, int aColumn) const;
  void ShowFaults(const CVelumCsvFaults& aFaults);
  void ShowUsable();

  void Import();
  [[nodiscard]] bool AskReplace(const Ref<CVelumControlSet>& aBackground) const;
  // The two kinds of an import. Whether anything has come in.
  [[nodiscard]] bool IntoNewStack();
  [[nodiscard]] bool IntoBackground(const Ref<CVelumControlSet>& aBackground);
  void Finish(Ref<CVelumControlSet> aBackground);
  void RememberChoices() const;

  std::unique_ptr<Ui::CVelumCsvImportOptions> iUi;
  Ref<CVelumListBox> iLineBox;
  QMenu* iTypeMenu;
  TVelumCsvImport iImport;
  QString iFilename;
  CVelumCsvWork iWork;
  // Types and fields that the user named, by column.
  QHash<int, qint32> iTypes;
  QHash<int, qint32> iFields;
  TCsvReport iReport; // of the import
  qint32 iSortField = ENoInt;
  bool iPreviewStale = true;
  bool iProposed = false; // the proposals of the classic way have been made
  bool iShowing = false;  // controls are set, not used
  bool iBusy = false;     // the import runs
};
