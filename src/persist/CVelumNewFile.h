// A file that is written whole beside the one it is to replace.
#pragma once

#include "core/file/CVelumOs.h"
#include "persist/CVelumBesideName.h"

// Makes NAME-new in the folder of NAME (or what CVelumBesideName gives for it), which only its owner may
// read; TakePlace gives it the name. Whoever opens NAME at any moment finds the old file or the new one.
// NAME-new is locked while this lives: that is the one lock of all saves to NAME, also of those that go into
// NAME itself.
class CVelumNewFile {
public:
  // aTarget need not be there, and is no symbolic link. Waits for another save to aTarget. Raises when that
  // does not end, when the folder cannot be written to, and for a folder or a device.
  explicit CVelumNewFile(const QString& aTarget);
  // Removes the new file unless it has taken its place.
  ~CVelumNewFile();
  CVelumNewFile(const CVelumNewFile&) = delete;
  CVelumNewFile& operator=(const CVelumNewFile&) = delete;

  [[nodiscard]] const QString& Path() const { return iPath; }
  // The open file.
  [[nodiscard]] int Fd() const { return iFd; }
  // Brings the file to the disk and gives it the name, with permissions and owner of the old one, or of aLike
  // where that is given. All buffers must have been flushed. Raises; Placed tells whether the name has
  // changed nevertheless.
  void TakePlace(const QString& aLike = {});
  [[nodiscard]] bool Placed() const { return iPlaced; }

  [[nodiscard]] static QString NameFor(const QString& aTarget) {
    return CVelumBesideName::For(aTarget, u"-new"_s);
  }
  // Removes what a crash has left of a save to aTarget. What somebody holds stays, and what cannot be
  // removed.
  static void RemoveLeft(const QString& aTarget);

private:
  [[nodiscard]] bool Create();
  [[nodiscard]] bool LockOrRemove(int aFd, bool aCreated);

  QString iTarget;
  QString iPath;
  int iFd = -1;
  bool iPlaced = false;
};
