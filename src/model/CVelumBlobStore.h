// Keeps blobs out of memory while a stack is open.
#pragma once

#include "core/CVelumFile.h"
#include "model/CVelumBlob.h"

enum EBst : qint32 { EBstFileBased = 1, EBstRamBased = 2 };

// File-based: blobs on file are known by their position, about eight are cached. RAM-based: all are in the
// cache, nothing is on file. Blobs have explicit places with holes between them, so that a save only moves
// those that the grown stack data would overrun.
class CVelumBlobStore final : public CVelumStored {
public:
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
  // Opens aFilename for reading and writing when no file is open; otherwise nothing.
  void SetFile(const QString& aFilename);
  void CloseFile();
  [[nodiscard]] bool Changed() const override;
  void SetChanged(bool aChanged) override;
  [[nodiscard]] qint32 NumBlobs() const { return iIndex->Count(); }
  [[nodiscard]] bool HasBlob(qint32 aId) const;

  void AddBlob(const Ref<CVelumBlob>& aBlob);
  // An info-only blob is read without content and does not enter the cache.
  [[nodiscard]] Ref<CVelumBlob> ReadBlob(qint32 aId, bool aInfoOnly);
  [[nodiscard]] bool ReadFirstBlob(Ref<CVelumBlob>& aBlob, qint32& aIndex);
  [[nodiscard]] bool ReadNextBlob(Ref<CVelumBlob>& aBlob, qint32& aIndex);
  void DeleteBlob(qint32 aId);
  // Decrement, and delete the blob when nothing refers to it and only the cache holds it; aBlob is then
  // nothing.
  void DecRefCount(Ref<CVelumBlob>& aBlob);
  void DecDynRefCount(Ref<CVelumBlob>& aBlob);
  void SwitchToRamBased();
  void SwitchToFileBased();
  // Gives up the place of each cached, changed blob on file, so that Commit writes it like a new one.
  void ReleaseChangedPlaces();
  void Commit();
  void SetNewStartPos(qint32 aPos);

  // Read access to the tables, for checks.
  [[nodiscard]] const CVelumArray& Index() const { return *iIndex; }
  [[nodiscard]] const CVelumArray& PosTab() const { return *iPosTab; }

  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;

private:
  void CheckConsistency();
  void FindPlace(const CVelumBlob& aBlob, qint32 aStartPos, qint32 aStartIndex, qint32& aIndex,
                 TVelumElem& aElem);
  void EvictFromCache();
  void AddToCache(const Ref<CVelumBlob>& aBlob);

  qint32 iStartPos = ENoInt;
  Ref<CVelumArray> iIndex;  // blob id to index in iPosTab, ENoInt without a place
  Ref<CVelumArray> iPosTab; // (position, length) by ascending position
  Ref<CVelumArray> iCache;  // blob id to blob
  Ref<CVelumFile> iFile;
  qint32 iFlags = 0;
  qint32 iAge = 0;
  bool iChanged = true;
};
