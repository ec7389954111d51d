// A file that is written whole beside the one it is to replace.
#pragma once

#include "core/CVelumOs.h"

// Makes NAME-new in the folder of NAME (or what CVelumBesideName gives for it), locked against a second
// writer; TakePlace gives it the name. Whoever opens NAME at any moment finds the old file or the new one.
class CVelumNewFile {
public:
  // aTarget need not be there, and is no symbolic link. Raises when the folder cannot be written to, and for
  // a folder or a device.
  explicit CVelumNewFile(const QString& aTarget);
  // Removes the new file unless it has taken its place.
  ~CVelumNewFile();
  CVelumNewFile(const CVelumNewFile&) = delete;
  CVelumNewFile& operator=(const CVelumNewFile&) = delete;

  [[nodiscard]] const QString& Path() const { return iPath; }
  // Brings the file to the disk and gives it the name, with permissions and owner of the old one. All
  // buffers must have been flushed. Raises; Placed tells whether the name has changed nevertheless.
  void TakePlace();
  [[nodiscard]] bool Placed() const { return iPlaced; }

private:
  void Create();

  QString iTarget;
  QString iPath;
  int iFd = -1;
  bool iPlaced = false;
};
