// Keeps blobs out of memory while a stack is open.
#pragma once

#include "core/file/CVelumFile.h"
#include "model/blobs/CVelumBlob.h"

#include <QList>
#include <QSet>

enum EBst : qint32 { EBstFileBased = 1, EBstRamBased = 2 };

// File-based: blobs on file are known by their position, about eight are cached. RAM-based: all are in the
// cache, nothing is on file. Blobs have explicit places with holes between them, so that a save only moves
// those that the grown stack data would overrun.
class CVelumBlobStore final : public CVelumStored {
public:
  // Allocated only: for Internalize.
  CVelumBlobStore();
  explicit CVelumBlobStore(qint32 aFlags);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumBlobStore"_s; }
  [[nodiscard]] qint32 Flags() const { return iFlags; }
  [[nodiscard]] Ref<CVelumFile> File() const { return iFile; }
  [[nodiscard]] bool Flag(qint32 aBit) const { return (iFlags & aBit) != 0; }
  void SetFlag(qint32 aBit, bool aOn);
  [[nodiscard]] qint32 StartPos() const { return iStartPos; }
  [[nodiscard]] bool HasBlobsOnFile() const { return iPosTab->Count() > 0; }
  // The first position behind the blob area.
  [[nodiscard]] qint32 BehindPos() const;
  // Opens aFilename for reading and writing when no file is open; otherwise nothing. The open file bears a
  // shared lock, so that nobody else saves into it.
  void SetFile(const QString& aFilename);
  // The same with a file that is open already and bears that lock.
  void SetFile(const Ref<CVelumFile>& aFile);
  void CloseFile();
  // The state of the open file when it was opened or noted last; empty when none is open.
  [[nodiscard]] const TVelumFileId& FileId() const { return iFileId; }
  void NoteFileId();
  // The state of the document that it was read from or written to, for a store without an open file or when
  // the document may have changed since.
  void SetFileId(const TVelumFileId& aId) { iFileId = aId; }
  [[nodiscard]] bool Changed() const override;
  void SetChanged(bool aChanged) override;
  [[nodiscard]] qint32 NumBlobs() const { return iIndex->Count(); }
  [[nodiscard]] bool HasBlob(qint32 aId) const;

  void AddBlob(const Ref<CVelumBlob>& aBlob);
  // An info-only blob is read without content and does not enter the cache: its counts and members are not
  // to be changed. After an overruled assertion of an unknown id: host error 91.
  [[nodiscard]] Ref<CVelumBlob> ReadBlob(qint32 aId, bool aInfoOnly);
  [[nodiscard]] bool ReadFirstBlob(Ref<CVelumBlob>& aBlob, qint32& aIndex);
  [[nodiscard]] bool ReadNextBlob(Ref<CVelumBlob>& aBlob, qint32& aIndex);
  void DeleteBlob(qint32 aId);
  // Decrement, and delete the blob when nothing refers to it and only the cache holds it; aBlob is then
  // nothing.
  void DecRefCount(Ref<CVelumBlob>& aBlob);
  void DecDynRefCount(Ref<CVelumBlob>& aBlob);
  // Every cached blob gets a holder more; for loading from XML.
  void IncDynRefCounts();
  // A card value or a wallpaper that names a blob comes or goes. A blob that is not there, or whose bytes
  // cannot be read, is left alone: what names it must still be changeable.
  void AddReference(qint32 aId);
  void ReleaseReference(qint32 aId);
  void SwitchToRamBased();
  void SwitchToFileBased();
  // Gives up the place of each cached, changed blob on file, so that Commit writes it like a new one.
  void ReleaseChangedPlaces();
  // Writes new and changed blobs. In front of it SetNewStartPos has made room for the stack data.
  void Commit();
  void SetNewStartPos(qint32 aPos);
  // Writes all blobs to another, new file, from aStartPos on without holes, and takes it as the store's
  // file. Blobs that are not cached come from the file so far, one at a time.
  void WriteAllTo(const Ref<CVelumFile>& aFile, qint32 aStartPos);
  // The blobs whose bytes on file were found to be damaged. That is asked about once for each; later checks
  // leave it out, and a save moves the bytes as they are.
  [[nodiscard]] const QSet<qint32>& Damaged() const { return iDamaged; }
  // Whether the tables agree with each other and with the file, without asking anybody. A store where they
  // don't must not be written in place.
  [[nodiscard]] bool IsSound();

  // All that a save changes in the store.
  struct TState {
    qint32 iStartPos;
    qint32 iFlags;
    bool iChanged;
    Ref<CVelumArray> iIndex;
    Ref<CVelumArray> iPosTab;
    Ref<CVelumFile> iFile;
    TVelumFileId iFileId;
    QList<std::pair<Ref<CVelumBlob>, CVelumBlob::TMarks>> iMarks;
  };
  [[nodiscard]] TState State() const;
  void Restore(const TState& aState);

  // For changes that are taken back: a blob enters with the counts it has, or leaves whole whatever refers to
  // it.
  void PutBack(const Ref<CVelumBlob>& aBlob);
  [[nodiscard]] Ref<CVelumBlob> TakeOut(qint32 aId);

  // Read access to the tables, for checks.
  [[nodiscard]] const CVelumArray& Index() const { return *iIndex; }
  [[nodiscard]] const CVelumArray& PosTab() const { return *iPosTab; }
  // The blobs in memory.
  [[nodiscard]] const CVelumArray& Cache() const { return *iCache; }

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"BlobStore"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  struct TPlace {
    qint32 iPos;
    qint32 iLen;
  };

  void CheckConsistency();
  [[nodiscard]] QString FaultAt(qint32 aId, const TPlace& aPlace, qint64 aSize) const;
  [[nodiscard]] bool IsReadable(qint32 aId) const;
  [[nodiscard]] Ref<CVelumBlob> ReadSound(qint32 aId, const TPlace& aPlace);
  [[nodiscard]] QByteArray RawAt(const TPlace& aPlace) const;
  void CheckTables(const CVelumFile& aFile) const;
  void CheckXmlTables() const;
  [[nodiscard]] TPlace PlaceAt(qint32 aPosIndex) const;
  [[nodiscard]] Ref<CVelumBlob> Cached(qint32 aId) const;
  [[nodiscard]] Ref<CVelumBlob> ReadFrom(CVelumFile& aFile, qint32 aPos, qint32 aId, bool aInfoOnly);
  [[nodiscard]] qint32 IdOfPlace(qint32 aPosIndex) const;
  // The blob at a place, from the cache or past it.
  [[nodiscard]] Ref<CVelumBlob> BlobToMove(qint32 aId, const TPlace& aPlace);
  // First fit for aLen bytes at or behind aStartPos among the places from aIndex on; adds the place and
  // returns its index.
  qint32 FindPlace(qint64 aLen, qint32 aStartPos, qint32 aIndex);
  void WriteAt(CVelumBlob& aBlob, qint32 aPosIndex, CVelumFile& aFile);
  qint32 AppendTo(CVelumFile& aFile, CVelumBlob& aBlob);
  qint32 AppendRaw(CVelumFile& aFile, const QByteArray& aBytes);
  void DeletePlace(qint32 aPosIndex);
  void MovePlacesBefore(qint32 aPos);
  void CommitNew(qint32 aAt);
  void CommitChanged(qint32 aAt, CVelumBlob& aBlob);
  void DropDead(Ref<CVelumBlob>& aBlob);
  [[nodiscard]] bool IsRecorded() const;
  void RecordBlob(bool aAdded, CVelumBlob& aBlob) const;
  void EvictFromCache();
  void AddToCache(const Ref<CVelumBlob>& aBlob);
  [[nodiscard]] CVelumFile& OpenedFile() const;

  qint32 iStartPos = ENoInt;
  Ref<CVelumArray> iIndex;  // blob id to index in iPosTab, ENoInt without a place
  Ref<CVelumArray> iPosTab; // (position, length) by ascending position
  Ref<CVelumArray> iCache;  // blob id to blob
  Ref<CVelumFile> iFile;
  TVelumFileId iFileId;
  QSet<qint32> iDamaged;
  qint32 iFlags = 0;
  qint32 iAge = 0;
  bool iChanged = true;
};
