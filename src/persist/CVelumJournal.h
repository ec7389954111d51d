// Protection of a document that is changed in place.
#pragma once

#include "core/CVelumFile.h"
#include "persist/CVelumBesideName.h"

#include <functional>
#include <map>

// The rollback journal of one save. Before bytes of the document are overwritten or cut off, the old ones
// are written to a file beside it (NAME-journal, or what CVelumBesideName gives for it) and brought to the
// disk. Whoever opens the document and finds a journal puts the old bytes back first; so there is always the
// old document or the new one. The journal is locked as long as its save runs, and a locked one is left
// alone.
//
// The file, little-endian: a head of 48 bytes (8 bytes "OrvJrn01"; as 64-bit integers the length that the
// document had, its device and its inode; the MD5 sum of these 32 bytes), then records (position, length,
// both 64 bits; the MD5 sum of these 16 bytes and of the bytes; the bytes). A head or record that is cut
// short or has another sum was never relied on: it ends the journal.
class CVelumJournal final : public CVelumWriteGuard {
public:
  // Begins to protect the document aPath, which is there and is no symbolic link. Raises when the journal
  // cannot be made, with the document untouched.
  explicit CVelumJournal(const QString& aPath);
  // Gives up the lock. A journal neither finished nor rolled back stays, for the next who opens.
  ~CVelumJournal() override;
  CVelumJournal(const CVelumJournal&) = delete;
  CVelumJournal& operator=(const CVelumJournal&) = delete;

  // Keeps what stands in aLen bytes from aPos, unless that has been done; to the disk by Sync.
  void Cover(qint64 aPos, qint64 aLen);
  void Sync();
  // Cover, and Sync when there was something new.
  void BeforeWrite(qint64 aPos, qint64 aLen) override;
  // The new document is whole and on the disk: removes the journal. Raises when it could not be removed;
  // Finished tells whether it was.
  void Finish();
  [[nodiscard]] bool Finished() const { return iFinished; }
  // Puts the old document back and removes the journal. Raises when that fails; the journal is then still
  // there.
  void RollBack();

  [[nodiscard]] static QString NameFor(const QString& aPath) {
    return CVelumBesideName::For(aPath, u"-journal"_s);
  }
  // To be called before the document aPath is read or written. Puts the old document back if a save was
  // cut off; true if it did. A journal that was made for another file than the one that has the name now
  // only counts if aIsWhole denies that this one is whole in itself; otherwise it is set aside.
  // Host error 70 when another program is saving the document at this moment.
  static bool Recover(const QString& aPath, const std::function<bool()>& aIsWhole);

private:
  void CreateLocked();
  void WriteHead();
  void AddRecord(qint64 aPos, qint64 aLen);

  QString iPath;
  QString iJournalPath;
  int iDoc = -1; // descriptor for reading old bytes and putting them back
  int iFd = -1;
  qint64 iLen = 0;                   // of the document when the save began
  std::map<qint64, qint64> iCovered; // start to end of what has been kept, neither touching nor overlapping
  bool iDirty = false;               // something is not on the disk yet
  bool iInFolder = false;            // the journal's name is on the disk
  bool iFinished = false;
};
