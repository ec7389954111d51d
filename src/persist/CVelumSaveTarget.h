// The file that a save goes to.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumNewFile.h"

// Holds the lock of all saves to a document, from before anything of it is looked at until the save is over;
// so what is compared stays as it is, as far as this program's saves go. Puts the document right first if a
// save was cut off.
class CVelumSaveTarget {
public:
  // aFilename as the user named it. Raises when another program is saving there or the folder cannot be
  // written to, and refuses a document in doubt (see CVelumRecovery).
  CVelumSaveTarget(QString aFilename, CVelumStack& aStack);
  // Where the new document has not taken its place, all is as it was.
  ~CVelumSaveTarget();
  CVelumSaveTarget(const CVelumSaveTarget&) = delete;
  CVelumSaveTarget& operator=(const CVelumSaveTarget&) = delete;

  // The file itself, behind all symbolic links.
  [[nodiscard]] const QString& Path() const { return iPath; }
  // The file that is written beside it.
  [[nodiscard]] CVelumNewFile& NewFile() { return iNew; }
  // Whether the file is the one that the stack was loaded from or saved to last, and as it was then.
  [[nodiscard]] bool IsKnown() const;
  // Puts the new file in its place. Another version that stands there is kept beside first.
  void TakePlace();
  // Tells the user of a version that was kept.
  void TellKept() const;

private:
  [[nodiscard]] const TVelumFileId& KnownId() const;
  void BringBackLoaded();

  QString iFilename;
  QString iPath;
  CVelumStack& iStack;
  CVelumNewFile iNew;
  QString iKept; // name under which another version was kept
};
