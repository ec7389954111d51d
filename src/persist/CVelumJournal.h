// Protection of a document that is changed in place.
#pragma once

#include "core/file/CVelumFilePatch.h"
#include "persist/CVelumBesideName.h"

#include <QCryptographicHash>

#include <vector>

// The rollback journal of one save. The save has collected the new document in a patch; before it touches the
// file, the journal is written whole to a file beside it (NAME-journal, or what CVelumBesideName gives for
// it) and brought to the disk. It holds both lengths and, for each block that the save changes, cuts off or
// appends, the old bytes and a checksum of the new ones; so whoever finds it can tell a save that was cut off
// from a document that something else has changed. CVelumJournalFormat.h tells its bytes. The journal is
// locked as long as its save runs.
class CVelumJournal {
public:
  // Makes an empty journal for the document aPath, which is no symbolic link and open for writing as aDoc.
  // Raises when that cannot be done, with everything as it was.
  CVelumJournal(const QString& aPath, int aDoc);
  // Removes a journal for which the document has not been touched; one neither finished nor rolled back
  // stays, for the next who opens the document.
  ~CVelumJournal();
  CVelumJournal(const CVelumJournal&) = delete;
  CVelumJournal& operator=(const CVelumJournal&) = delete;

  // Writes all that is needed to get from the document with aPatch back to the one without, and brings it to
  // the disk. Once.
  void Write(const CVelumFilePatch& aPatch);
  // Makes the document what the patch of Write says: each block that differs is written once, whole; and
  // brings it to the disk.
  void Apply(const CVelumFilePatch& aPatch);
  // The new document is whole and on the disk: removes the journal. Raises when it could not be removed;
  // Finished tells whether it was.
  void Finish();
  [[nodiscard]] bool Finished() const { return iFinished; }
  // Puts the old document back and removes the journal. Raises when that fails; the journal is then still
  // there.
  void RollBack();
  // The old document in memory, for when it could not be put back.
  [[nodiscard]] Ref<CVelumFilePatch> OldBytes();

  [[nodiscard]] static QString NameFor(const QString& aPath) {
    return CVelumBesideName::For(aPath, u"-journal"_s);
  }

private:
  // Bytes of the document that the save writes in one go.
  struct TRun {
    qint64 iPos;
    qint64 iLen;
  };

  void CreateLocked();
  void AddBlock(qint64 aPos, QByteArrayView aNew);
  void AddCut(qint64 aFrom);
  void AddPiece(qint64 aPos, QByteArrayView aOld, QByteArrayView aNew);
  void Flush();

  QString iPath;
  QString iJournalPath;
  int iDoc; // the caller's
  int iFd = -1;
  qint64 iOldLen = 0;
  std::vector<TRun> iRuns; // ascending, what Apply writes
  QByteArray iBuf;         // of the journal, not yet written
  QCryptographicHash iSum{QCryptographicHash::Md5};
  bool iTouched = false; // the document may no longer be the old one
  bool iFinished = false;
};
