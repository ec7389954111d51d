// The user's settings, as the whole program reads them.
#pragma once

#include "core/CVelumObject.h"

#include <array>

struct TVelumOptions {
  QString iAutoLoadName; // stack that is opened at start
  QString iStackFolder;  // folder of the user's stacks
  bool iShowWelcome = true;
  // First folder of each file dialog.
  QString iLoadDialogInitDir;
  QString iImportCsvDialogInitDir;
  QString iImportXmlDialogInitDir;
  QString iImportHandBaseDialogInitDir;
  QString iImportOrvelleDialogInitDir;
  QString iImportTextDialogInitDir;
  QString iImportPicDialogInitDir;
  QString iExportCsvDialogInitDir;
  QString iCsvExportDelimiter;
  QString iExportXmlDialogInitDir;
  // What the CSV import proposes.
  bool iCsvDetectTypes = true;
  bool iCsvGuessKey = true;
  bool iCsvTryCardName = true;
  bool iSuppressFontInfo = false; // the message about fonts was shown once
};

extern TVelumOptions gOptions;
// The files used last, newest first; 0 to 6 are used and stored.
extern std::array<QString, 8> gFileHistory;

namespace CVelumOptions {

// Reads all settings; what is missing gets its default.
void LoadOptions();
// Writes all settings.
void SaveOptions();
// Where a file dialog begins whose last folder was aDir: there, or in the folder of the stacks when aDir is
// empty or gone. Empty when that is gone too.
[[nodiscard]] QString StartFolder(const QString& aDir);
// Puts aName in front of the history, where it stands once; the oldest of seven drops out.
void AddToFileHistory(const QString& aName);

} // namespace CVelumOptions
