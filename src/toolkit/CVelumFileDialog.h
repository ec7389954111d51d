// The open and save dialogs of the platform.
#pragma once

#include "core/CVelumObject.h"

#include <functional>

class QWidget;

// Keeps its settings from one call to the next. A file without an extension is saved with that of the chosen
// filter, or with the default one where the filter has none.
class CVelumFileDialog {
public:
  // aFilter: pairs of a label and patterns, "Label (*.a;*.b)|*.a;*.b|All (*.*)|*".
  CVelumFileDialog(QString aTitle, QString aDefaultExt, QString aFilter);

  [[nodiscard]] const QString& Title() const { return iTitle; }
  [[nodiscard]] const QString& InitDir() const { return iInitDir; }
  void SetInitDir(const QString& aDir) { iInitDir = aDir; }
  [[nodiscard]] const QString& FileName() const { return iFileName; }
  // The name that the next save dialog begins with; empty for none.
  [[nodiscard]] const QString& ProposedName() const { return iProposedName; }
  void SetProposedName(const QString& aName) { iProposedName = aName; }

  // Asks for a file that exists. False when the user cancels; otherwise FileName is the whole path, and the
  // next dialog starts in its folder.
  [[nodiscard]] bool ShowOpen(QWidget* aOwner);
  // Asks for a name to save under, and before it takes a file that exists.
  [[nodiscard]] bool ShowSave(QWidget* aOwner);
  // Asks for a folder that exists; FileName is then its path.
  [[nodiscard]] bool ShowFolder(QWidget* aOwner);

  // The filters in the toolkit's form, and the extension that belongs to one of them.
  [[nodiscard]] QStringList NameFilters() const;
  [[nodiscard]] QString ExtensionFor(const QString& aNameFilter) const;

  // For tests: answers every dialog of the program with a path, or with an empty text for a cancel.
  using TVelumAnswer = std::function<QString(const CVelumFileDialog& aDialog, bool aSave)>;
  static void SetAnswer(TVelumAnswer aAnswer);

private:
  [[nodiscard]] bool Take(const QString& aPath);

  QString iTitle;
  QString iDefaultExt;
  QString iFilter;
  QString iInitDir;
  QString iFileName;
  QString iProposedName;
};
