// What the window of the imports hands over to the window of the CSV settings when it opens that.
#pragma once

#include "model/fields/CVelumControlSet.h"

#include <functional>

// Choices as they are at the moment: they can still be changed in the other window.
struct TVelumCsvImport {
  // Whether the cards go into the open stack, and the background that they are to belong to there.
  std::function<bool()> iInto;
  std::function<Ref<CVelumControlSet>()> iBackground;
  // A new stack takes the place of the open one: all other windows are told that it is about to close.
  std::function<void()> iCloseOthers;
  // The cards are in: whoever opened the window closes, and takes it along.
  std::function<void()> iDone;
};

// "CVelumCsvImportOptions"
class CVelumCsvImporter {
public:
  virtual ~CVelumCsvImporter() = default;
  // To be called before the window is loaded; without it nothing is imported.
  virtual void SetImport(const TVelumCsvImport& aImport) = 0;
  // Shows the beginning of a file and proposes how to read it.
  virtual void SetImportFile(const QString& aFilename) = 0;
};
