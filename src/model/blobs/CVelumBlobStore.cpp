#include "model/blobs/CVelumBlobStore.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumLimits.h"
#include "core/CVelumMsg.h"
#include "model/change/CVelumRecorder.h"

namespace {

constexpr int ETypeId = 11;
constexpr qint32 ECacheLimit = 8; // soft: blobs that are held or changed may exceed it

// Arrays are copied only to be put back after a failed save.
Ref<CVelumArray> CopyOf(const CVelumArray& aFrom) {
  auto copy = MakeRef<CVelumArray>(aFrom.Flags(), aFrom.Type());
  bool keyed = (aFrom.Flags() & EArrIntKey) != 0;
  TVelumElem elem;
  if (keyed) copy->BeginBulk(aFrom.Count());
  for (qint32 i = 0; i < aFrom.Count(); ++i) {
    elem.iVal = aFrom.ValRef(i);
    if (keyed) elem.iIntKey = aFrom.IntKeyAt(i);
    if (keyed) {
      copy->AppendBulk(elem);
    } else {
      copy->CreateAtEnd(elem);
    }
  }
  if (keyed) copy->EndBulk();
  copy->SetId(aFrom.Id());
  copy->SetChanged(aFrom.OwnChanged());
  return copy;
}

Ref<CVelumBlob> ToBlob(const TVelumValue& aVal) {
  return Ref<CVelumBlob>(static_cast<CVelumBlob*>(aVal.Obj()));
}

bool HasPlace(const TVelumValue& aVal) {
  return aVal.Int() != ENoInt;
}

// The span of the blob at aPos; false when no blob begins there.
bool SpanAt(CVelumFile& aFile, qint64 aPos, CVelumBlob::TSpan& aSpan) {
  try {
    aSpan = CVelumBlob::SpanAt(aFile, aPos);
    return true;
  } catch (const CVelumException& e) {
    if (e.Number() < EMsgAssertFailed) throw; // the disk, not the bytes
    return false;
  }
}

} // namespace

CVelumBlobStore::CVelumBlobStore() : CVelumBlobStore(0) {}

CVelumBlobStore::CVelumBlobStore(qint32 aFlags)
    : iIndex(MakeRef<CVelumArray>(EArrIntKey, EValInt)), iPosTab(MakeRef<CVelumArray>(0, EValIntPair)),
      iCache(MakeRef<CVelumArray>(EArrIntKey, EValBlob)), iFlags(aFlags) {}

void CVelumBlobStore::SetFlag(qint32 aBit, bool aOn) {
  iFlags = aOn ? iFlags | aBit : iFlags & ~aBit;
  iChanged = true;
}

CVelumBlobStore::TPlace CVelumBlobStore::PlaceAt(qint32 aPosIndex) const {
  const TVelumValue& val = iPosTab->ValRef(CVelumChecked::Index(aPosIndex, iPosTab->Count()));
  return {val.Int0(), val.Int1()};
}

qint32 CVelumBlobStore::BehindPos() const {
  if (!HasBlobsOnFile()) return iStartPos;
  TPlace last = PlaceAt(iPosTab->Count() - 1);
  return CVelumChecked::Add(last.iPos, last.iLen);
}

void CVelumBlobStore::SetFile(const QString& aFilename) {
  if (iFile) return;
  auto file = MakeRef<CVelumFile>(aFilename, EFilReadWrite);
  file->OpenFile();
  static_cast<void>(file->TryLockShared());
  SetFile(file);
}

void CVelumBlobStore::SetFile(const Ref<CVelumFile>& aFile) {
  if (iFile) return;
  iFile = aFile;
  NoteFileId();
}

void CVelumBlobStore::CloseFile() {
  if (!iFile) return;
  Ref<CVelumFile> file = std::exchange(iFile, nullptr);
  iFileId = {};
  file->CloseFile();
}

void CVelumBlobStore::NoteFileId() {
  iFileId = iFile ? iFile->FileId() : TVelumFileId();
}

CVelumFile& CVelumBlobStore::OpenedFile() const {
  return CVelumChecked::Deref(iFile);
}

bool CVelumBlobStore::Changed() const {
  return iChanged || iIndex->Changed() || iPosTab->Changed() || (Flag(EBstRamBased) && iCache->Changed());
}

void CVelumBlobStore::SetChanged(bool aChanged) {
  iChanged = aChanged;
  if (aChanged) return;
  iIndex->SetChanged(false);
  iPosTab->SetChanged(false);
  iCache->SetChanged(false);
}

bool CVelumBlobStore::HasBlob(qint32 aId) const {
  return iIndex->FindIntKey(aId) >= 0;
}

Ref<CVelumBlob> CVelumBlobStore::Cached(qint32 aId) const {
  qint32 at = iCache->FindIntKey(aId);
  return at < 0 ? nullptr : ToBlob(iCache->ValRef(at));
}

void CVelumBlobStore::AddBlob(const Ref<CVelumBlob>& aBlob) {
  CVelumBlob& blob = CVelumChecked::Deref(aBlob);
  CVelumError::AssertObj(!blob.OnFile(), this, u"AddBlob"_s, u"on file"_s);
  TVelumElem elem;
  elem.iIntKey = blob.Id();
  elem.iVal = TVelumValue::OfInt(ENoInt);
  iIndex->CreateIntKey(elem);
  AddToCache(aBlob);
  iChanged = true;
  RecordBlob(true, blob);
}

// Whether the store is that of the recorded stack.
bool CVelumBlobStore::IsRecorded() const {
  return CVelumRecord::gRecorder && CVelumRecord::gRecorder->Stack().BlobStore() == this;
}

void CVelumBlobStore::RecordBlob(bool aAdded, CVelumBlob& aBlob) const {
  if (IsRecorded()) CVelumRecord::gRecorder->Child(aAdded, EChildBlob, ENoInt, aBlob.Id(), aBlob, ENoInt, {});
}

void CVelumBlobStore::PutBack(const Ref<CVelumBlob>& aBlob) {
  CVelumBlob& blob = CVelumChecked::Deref(aBlob);
  blob.SetOnFile(false);
  blob.SetChanged(true);
  while (blob.DynRefCount() > 0) blob.DecDynRefCount(); // whoever held it when it left is gone
  TVelumElem elem;
  elem.iIntKey = blob.Id();
  elem.iVal = TVelumValue::OfInt(ENoInt);
  iIndex->CreateIntKey(elem);
  AddToCache(aBlob);
  iChanged = true;
}

Ref<CVelumBlob> CVelumBlobStore::TakeOut(qint32 aId) {
  Ref<CVelumBlob> blob = ReadBlob(aId, false);
  const qint32 posIndex = iIndex->ValRef(iIndex->FindIntKey(aId)).Int();
  if (posIndex != ENoInt && Flag(EBstFileBased)) DeletePlace(posIndex);
  iCache->DeleteIntKey(aId);
  iIndex->DeleteIntKey(aId);
  if (blob->DynRefCount() > 0) blob->DecDynRefCount(); // the cache was a holder
  iChanged = true;
  return blob;
}

void CVelumBlobStore::AddToCache(const Ref<CVelumBlob>& aBlob) {
  if (iCache->Count() >= ECacheLimit && Flag(EBstFileBased)) EvictFromCache();
  TVelumElem elem;
  elem.iIntKey = aBlob->Id();
  elem.iVal = TVelumValue::OfObj(EValBlob, aBlob);
  iCache->CreateIntKey(elem);
  aBlob->IncDynRefCount();
  aBlob->SetAge(iAge++);
  CheckConsistency();
}

void CVelumBlobStore::EvictFromCache() {
  while (iCache->Count() >= ECacheLimit) {
    Ref<CVelumBlob> oldest;
    for (qint32 i = 0; i < iCache->Count(); ++i) {
      Ref<CVelumBlob> blob = ToBlob(iCache->ValRef(i));
      bool idle = blob && !blob->DiffersFromFile() && blob->DynRefCount() == 1;
      if (idle && (!oldest || blob->Age() < oldest->Age())) oldest = blob;
    }
    if (!oldest) return;
    iCache->DeleteIntKey(oldest->Id());
  }
}

Ref<CVelumBlob> CVelumBlobStore::ReadFrom(CVelumFile& aFile, qint32 aPos, qint32 aId, bool aInfoOnly) {
  aFile.SeekPos(aPos);
  auto blob = MakeRef<CVelumBlob>();
  blob->SetInfoOnly(aInfoOnly);
  blob->Internalize(aFile);
  if (blob->Id() == aId) return blob;
  // Noted before the question, so that the check of all places does not ask it again.
  iDamaged.insert(aId);
  CVelumError::AssertObj(false, this, u"ReadBlob"_s, u"id"_s);
  return blob;
}

Ref<CVelumBlob> CVelumBlobStore::ReadBlob(qint32 aId, bool aInfoOnly) {
  qint32 at = iIndex->FindIntKey(aId);
  CVelumError::AssertObj(at >= 0, this, u"ReadBlob"_s, u"iFound"_s);
  if (at < 0) CVelumError::RaiseHost(EHostObjectNotSet);
  Ref<CVelumBlob> blob = Cached(aId);
  if (!blob && Flag(EBstFileBased) && HasPlace(iIndex->ValRef(at))) {
    TPlace place = PlaceAt(iIndex->ValRef(at).Int());
    blob = ReadFrom(OpenedFile(), place.iPos, aId, aInfoOnly);
    // One of another id, let pass by the user, must not take the place of the blob that has that id.
    if (!aInfoOnly && blob->Id() == aId) AddToCache(blob);
  }
  CVelumError::AssertObj(static_cast<bool>(blob), this, u"ReadBlob"_s, u"in store"_s);
  if (!blob) CVelumError::RaiseHost(EHostObjectNotSet);
  CheckConsistency();
  return blob;
}

bool CVelumBlobStore::ReadFirstBlob(Ref<CVelumBlob>& aBlob, qint32& aIndex) {
  aIndex = 0;
  return ReadNextBlob(aBlob, aIndex);
}

bool CVelumBlobStore::ReadNextBlob(Ref<CVelumBlob>& aBlob, qint32& aIndex) {
  if (aIndex < 0 || aIndex >= iIndex->Count()) return false;
  aBlob = ReadBlob(iIndex->IntKeyAt(aIndex), false);
  ++aIndex;
  return true;
}

// What is wrong with the bytes at a place, as the check words it; empty for a sound blob.
QString CVelumBlobStore::FaultAt(qint32 aId, const TPlace& aPlace, qint64 aSize) const {
  CVelumBlob::TSpan span;
  if (!SpanAt(OpenedFile(), aPlace.iPos, span) || span.iId != aId) return u"id"_s;
  bool fits = span.iLen == aPlace.iLen && aPlace.iPos + span.iLen <= aSize;
  return fits ? QString() : u"len "_s + QString::number(span.iLen);
}

void CVelumBlobStore::CheckConsistency() {
  if (!iFile) return;
  qint64 size = iFile->Size();
  for (qint32 i = 0; i < iIndex->Count(); ++i) {
    qint32 id = iIndex->IntKeyAt(i);
    if (!HasPlace(iIndex->ValRef(i)) || iDamaged.contains(id)) continue;
    QString fault = FaultAt(id, PlaceAt(iIndex->ValRef(i).Int()), size);
    if (fault.isEmpty()) continue;
    // Noted whatever the answer is: the next check is to be about something else.
    iDamaged.insert(id);
    CVelumError::AssertObj(false, this, u"CheckConsistency"_s, fault);
  }
}

bool CVelumBlobStore::IsSound() {
  try {
    qint64 behind = iStartPos;
    for (qint32 i = 0; i < iPosTab->Count(); ++i) {
      TPlace place = PlaceAt(i);
      if (place.iPos < behind || place.iLen <= 0) return false;
      behind = static_cast<qint64>(place.iPos) + place.iLen;
    }
    qint64 size = iFile ? iFile->Size() : 0;
    for (qint32 i = 0; i < iIndex->Count(); ++i) {
      if (iIndex->FindIntKey(iIndex->IntKeyAt(i)) != i) return false;
      if (!HasPlace(iIndex->ValRef(i))) continue;
      if (!FaultAt(iIndex->IntKeyAt(i), PlaceAt(iIndex->ValRef(i).Int()), size).isEmpty()) return false;
    }
    return true;
  } catch (const CVelumException&) {
    return false;
  }
}

void CVelumBlobStore::DeletePlace(qint32 aPosIndex) {
  iPosTab->DeleteAt(aPosIndex);
  iIndex->AdjustInt(CVelumChecked::Add(aPosIndex, 1), -1);
}

void CVelumBlobStore::DeleteBlob(qint32 aId) {
  // A blob that a change is to bring back must be known whole: its bytes go with its place.
  if (IsRecorded()) static_cast<void>(ReadBlob(aId, false));
  qint32 originalId = ReadBlob(aId, true)->OriginalId();
  Ref<CVelumBlob> blob = Cached(aId);
  if (blob) {
    // Asked before anything is changed: if the user answers no, both tables must still match.
    CVelumError::AssertObj(blob->RefCount() == 0, this, u"DeleteBlob"_s, u"refCount"_s);
    CVelumError::AssertObj(blob->DynRefCount() == 1, this, u"DeleteBlob"_s, u"dynRefCount"_s);
  }
  qint32 posIndex = iIndex->ValRef(iIndex->FindIntKey(aId)).Int();
  if (blob) RecordBlob(false, *blob);
  if (posIndex != ENoInt && Flag(EBstFileBased)) DeletePlace(posIndex);
  if (blob) iCache->DeleteIntKey(aId);
  iIndex->DeleteIntKey(aId);
  iChanged = true;
  if (originalId != ENoInt) {
    Ref<CVelumBlob> original = ReadBlob(originalId, false);
    DecRefCount(original);
  }
  CheckConsistency();
}

// Deletes a blob that nothing refers to and only the cache holds.
void CVelumBlobStore::DropDead(Ref<CVelumBlob>& aBlob) {
  if (aBlob->DynRefCount() != 1 || aBlob->RefCount() != 0) return;
  DeleteBlob(aBlob->Id());
  aBlob = nullptr;
}

void CVelumBlobStore::DecRefCount(Ref<CVelumBlob>& aBlob) {
  // The count of an info-only object would be lost with it.
  if (CVelumChecked::Deref(aBlob).InfoOnly()) aBlob = ReadBlob(aBlob->Id(), false);
  aBlob->DecRefCount();
  DropDead(aBlob);
}

void CVelumBlobStore::DecDynRefCount(Ref<CVelumBlob>& aBlob) {
  CVelumChecked::Deref(aBlob).DecDynRefCount();
  DropDead(aBlob);
}

void CVelumBlobStore::IncDynRefCounts() {
  for (qint32 i = 0; i < iCache->Count(); ++i)
    if (Ref<CVelumBlob> blob = ToBlob(iCache->ValRef(i))) blob->IncDynRefCount();
}

bool CVelumBlobStore::IsReadable(qint32 aId) const {
  qint32 at = iIndex->FindIntKey(aId);
  if (at < 0 || iDamaged.contains(aId)) return false;
  if (Cached(aId) || !iFile || !HasPlace(iIndex->ValRef(at))) return true;
  return FaultAt(aId, PlaceAt(iIndex->ValRef(at).Int()), iFile->Size()).isEmpty();
}

void CVelumBlobStore::AddReference(qint32 aId) {
  if (IsReadable(aId)) ReadBlob(aId, false)->IncRefCount();
}

void CVelumBlobStore::ReleaseReference(qint32 aId) {
  if (!IsReadable(aId)) return;
  Ref<CVelumBlob> blob = ReadBlob(aId, false);
  DecRefCount(blob);
}

void CVelumBlobStore::SwitchToRamBased() {
  if (Flag(EBstRamBased)) return;
  SetFlag(EBstFileBased, false);
  SetFlag(EBstRamBased, true);
  for (qint32 i = 0; i < iIndex->Count(); ++i) {
    if (!HasPlace(iIndex->ValRef(i))) continue;
    qint32 id = iIndex->IntKeyAt(i);
    Ref<CVelumBlob> blob = Cached(id);
    if (!blob) {
      blob = ReadFrom(OpenedFile(), PlaceAt(iIndex->ValRef(i).Int()).iPos, id, false);
      AddToCache(blob);
    }
    blob->SetOnFile(false);
    iIndex->SetValAt(i + 1, TVelumValue::OfInt(ENoInt));
  }
  iPosTab->Clear();
  iChanged = true;
}

void CVelumBlobStore::SwitchToFileBased() {
  SetFlag(EBstRamBased, false);
  SetFlag(EBstFileBased, true);
}

void CVelumBlobStore::ReleaseChangedPlaces() {
  for (qint32 i = 0; i < iIndex->Count(); ++i) {
    if (!HasPlace(iIndex->ValRef(i))) continue;
    Ref<CVelumBlob> blob = Cached(iIndex->IntKeyAt(i));
    if (!blob || !blob->DiffersFromFile()) continue;
    DeletePlace(iIndex->ValRef(i).Int());
    iIndex->SetValAt(i + 1, TVelumValue::OfInt(ENoInt));
    iChanged = true;
  }
}

qint32 CVelumBlobStore::FindPlace(qint64 aLen, qint32 aStartPos, qint32 aIndex) {
  auto len = CVelumChecked::Narrow<qint32>(aLen);
  qint32 pos = aStartPos;
  qint32 index = aIndex;
  for (; index < iPosTab->Count(); ++index) {
    TPlace next = PlaceAt(index);
    if (CVelumChecked::Add(pos, len) <= next.iPos) break;
    pos = CVelumChecked::Add(next.iPos, next.iLen);
  }
  // The end has to be a position too, or no table could stand behind the blobs.
  static_cast<void>(CVelumChecked::Add(pos, len));
  TVelumElem elem;
  elem.iVal = TVelumValue::OfPair(pos, len);
  iPosTab->CreateAt(elem, index);
  iIndex->AdjustInt(index, 1);
  return index;
}

void CVelumBlobStore::WriteAt(CVelumBlob& aBlob, qint32 aPosIndex, CVelumFile& aFile) {
  aFile.SeekPos(PlaceAt(aPosIndex).iPos);
  aBlob.Externalize(aFile);
}

// Both write behind all others, and return the index of the new place.
qint32 CVelumBlobStore::AppendTo(CVelumFile& aFile, CVelumBlob& aBlob) {
  qint32 posIndex = FindPlace(aBlob.ExtLen(), BehindPos(), iPosTab->Count());
  WriteAt(aBlob, posIndex, aFile);
  return posIndex;
}

qint32 CVelumBlobStore::AppendRaw(CVelumFile& aFile, const QByteArray& aBytes) {
  qint32 posIndex = FindPlace(aBytes.size(), BehindPos(), iPosTab->Count());
  aFile.SeekPos(PlaceAt(posIndex).iPos);
  aFile.WriteRawBytes(aBytes);
  return posIndex;
}

Ref<CVelumBlob> CVelumBlobStore::BlobToMove(qint32 aId, const TPlace& aPlace) {
  Ref<CVelumBlob> blob = Cached(aId);
  return blob ? blob : ReadFrom(OpenedFile(), aPlace.iPos, aId, false);
}

// The id of the blob that has a place; ENoInt when none has.
qint32 CVelumBlobStore::IdOfPlace(qint32 aPosIndex) const {
  for (qint32 i = 0; i < iIndex->Count(); ++i)
    if (iIndex->ValRef(i).Int() == aPosIndex) return iIndex->IntKeyAt(i);
  return ENoInt;
}

void CVelumBlobStore::MovePlacesBefore(qint32 aPos) {
  qint32 num = 0;
  while (num < iPosTab->Count() && PlaceAt(num).iPos < aPos) ++num;
  if (num == 0) return;
  // The last of them may reach beyond aPos, where others will be written before its turn comes.
  qint32 lastId = IdOfPlace(num - 1);
  Ref<CVelumBlob> last = lastId == ENoInt ? nullptr : BlobToMove(lastId, PlaceAt(num - 1));
  for (qint32 i = 0; i < iIndex->Count(); ++i) {
    qint32 posIndex = iIndex->ValRef(i).Int();
    if (posIndex >= num) continue;
    qint32 id = iIndex->IntKeyAt(i);
    Ref<CVelumBlob> blob = id == lastId ? last : BlobToMove(id, PlaceAt(posIndex));
    qint32 newIndex = FindPlace(blob->ExtLen(), aPos, num);
    WriteAt(*blob, newIndex, OpenedFile());
    iIndex->SetValAt(i + 1, TVelumValue::OfInt(newIndex));
  }
  iPosTab->DeleteAt(0, num);
  iIndex->AdjustInt(0, -num);
}

void CVelumBlobStore::SetNewStartPos(qint32 aPos) {
  CVelumError::AssertObj(Flag(EBstFileBased), this, u"SetNewStartPos"_s, u"file based"_s);
  if (iIndex->Count() > 0) MovePlacesBefore(aPos);
  iStartPos = aPos;
  iChanged = true;
  if (iIndex->Count() > 0) CheckConsistency();
}

void CVelumBlobStore::CommitNew(qint32 aAt) {
  Ref<CVelumBlob> blob = Cached(iIndex->IntKeyAt(aAt));
  CVelumError::AssertObj(static_cast<bool>(blob), this, u"Commit"_s, u"iBlob iFound"_s);
  CVelumBlob& found = CVelumChecked::Deref(blob);
  qint32 posIndex = FindPlace(found.ExtLen(), iStartPos, 0);
  WriteAt(found, posIndex, OpenedFile());
  iIndex->SetValAt(aAt + 1, TVelumValue::OfInt(posIndex));
  iChanged = true;
}

void CVelumBlobStore::CommitChanged(qint32 aAt, CVelumBlob& aBlob) {
  qint32 posIndex = iIndex->ValRef(aAt).Int();
  CVelumError::AssertObj(posIndex >= 0 && posIndex < iPosTab->Count(), this, u"Commit"_s, u"iPosTab found"_s);
  TPlace place = PlaceAt(posIndex);
  qint64 len = aBlob.ExtLen();
  CVelumError::AssertObj(len <= place.iLen, this, u"Commit"_s, u"implemented"_s);
  if (len > place.iLen) CVelumError::RaiseHost(EHostBadCall, aBlob.ObjDescr());
  WriteAt(aBlob, posIndex, OpenedFile());
  aBlob.SetChanged(false);
  // The pair lands on the element in front of this one; that is how it is. A save never comes here, since
  // it gives up the places of changed blobs first.
  iPosTab->SetValAt(posIndex, TVelumValue::OfPair(place.iPos, static_cast<qint32>(len)));
}

void CVelumBlobStore::Commit() {
  if (Flag(EBstRamBased)) return;
  for (qint32 i = 0; i < iIndex->Count(); ++i) {
    if (!HasPlace(iIndex->ValRef(i))) {
      CommitNew(i);
      continue;
    }
    Ref<CVelumBlob> blob = Cached(iIndex->IntKeyAt(i));
    if (blob && blob->Changed()) CommitChanged(i, *blob);
  }
  CheckConsistency();
}

// The blob at a place; nothing, and noted as damaged, where it cannot be read.
Ref<CVelumBlob> CVelumBlobStore::ReadSound(qint32 aId, const TPlace& aPlace) {
  try {
    bool sound = !iDamaged.contains(aId) && FaultAt(aId, aPlace, OpenedFile().Size()).isEmpty();
    if (sound) return ReadFrom(OpenedFile(), aPlace.iPos, aId, false);
  } catch (const CVelumException& e) {
    if (e.Number() < EMsgAssertFailed) throw;
  }
  iDamaged.insert(aId);
  return nullptr;
}

// The bytes at a place where no blob can be read: as many as the table or the frame says, whichever is more,
// as far as the file has them. A place must not be empty.
QByteArray CVelumBlobStore::RawAt(const TPlace& aPlace) const {
  CVelumBlob::TSpan span;
  bool framed = SpanAt(OpenedFile(), aPlace.iPos, span);
  qint64 len = std::clamp<qint64>(std::max<qint64>(framed ? span.iLen : 0, aPlace.iLen), 1, ENoStoredBlob);
  QByteArray bytes = aPlace.iPos < 0 ? QByteArray() : OpenedFile().PeekAt(aPlace.iPos, len);
  return bytes.isEmpty() ? QByteArray(1, '\0') : bytes;
}

void CVelumBlobStore::WriteAllTo(const Ref<CVelumFile>& aFile, qint32 aStartPos) {
  QList<TPlace> oldPlace;
  for (qint32 i = 0; i < iIndex->Count(); ++i) {
    qint32 posIndex = iIndex->ValRef(i).Int();
    oldPlace.append(posIndex == ENoInt ? TPlace{ENoInt, 0} : PlaceAt(posIndex));
    iIndex->SetValAt(i + 1, TVelumValue::OfInt(ENoInt));
  }
  iPosTab->Clear();
  iStartPos = aStartPos;
  iChanged = true;
  for (qint32 i = 0; i < iIndex->Count(); ++i) {
    qint32 id = iIndex->IntKeyAt(i);
    bool onFile = oldPlace[i].iPos != ENoInt;
    Ref<CVelumBlob> blob = Cached(id);
    if (blob) iDamaged.remove(id);
    if (!blob && onFile) blob = ReadSound(id, oldPlace[i]);
    CVelumError::AssertObj(blob || onFile, this, u"Commit"_s, u"iBlob iFound"_s);
    qint32 posIndex = onFile && !blob ? AppendRaw(*aFile, RawAt(oldPlace[i]))
                                      : AppendTo(*aFile, CVelumChecked::Deref(blob));
    iIndex->SetValAt(i + 1, TVelumValue::OfInt(posIndex));
  }
  iFile = aFile;
  CheckConsistency();
}

CVelumBlobStore::TState CVelumBlobStore::State() const {
  TState state{iStartPos, iFlags, iChanged, CopyOf(*iIndex), CopyOf(*iPosTab), iFile, iFileId, {}};
  for (qint32 i = 0; i < iCache->Count(); ++i)
    if (Ref<CVelumBlob> blob = ToBlob(iCache->ValRef(i))) state.iMarks.append({blob, blob->Marks()});
  return state;
}

void CVelumBlobStore::Restore(const TState& aState) {
  iStartPos = aState.iStartPos;
  iFlags = aState.iFlags;
  iChanged = aState.iChanged;
  iIndex = aState.iIndex;
  iPosTab = aState.iPosTab;
  iFile = aState.iFile;
  iFileId = aState.iFileId;
  // What came into memory since then still is on file.
  for (qint32 i = 0; i < iCache->Count(); ++i)
    if (Ref<CVelumBlob> blob = ToBlob(iCache->ValRef(i)); blob && HasBlob(blob->Id()))
      blob->SetOnFile(HasPlace(iIndex->ValRef(iIndex->FindIntKey(blob->Id()))));
  for (const auto& [blob, marks] : aState.iMarks) blob->SetMarks(marks);
  if (Flag(EBstFileBased)) EvictFromCache();
}

// Tables of another kind would be misread everywhere.
void CVelumBlobStore::CheckTables(const CVelumFile& aFile) const {
  constexpr qint32 EKeys = EArrStrKey | EArrIntKey;
  bool index = (iIndex->Flags() & EKeys) == EArrIntKey && iIndex->Type() == EValInt;
  bool posTab = (iPosTab->Flags() & EKeys) == 0 && iPosTab->Type() == EValIntPair;
  CVelumError::ThrowBadStruct(index && posTab, &aFile, u"CVelumBlobStore.Internalize"_s, u"tables"_s);
}

void CVelumBlobStore::Internalize(CVelumFile& aFile) {
  static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, 0, 0));
  iStartPos = aFile.ReadInt();
  iFlags = aFile.ReadInt();
  iIndex = MakeRef<CVelumArray>();
  iIndex->Internalize(aFile);
  iPosTab = MakeRef<CVelumArray>();
  iPosTab->Internalize(aFile);
  iCache = MakeRef<CVelumArray>(EArrIntKey, EValBlob);
  CheckTables(aFile);
  // What a file holds is on file, whatever a damaged flag says.
  iFlags = (iFlags | EBstFileBased) & ~EBstRamBased;
  iChanged = false;
  CheckConsistency();
}

void CVelumBlobStore::Externalize(CVelumFile& aFile) {
  CVelumError::AssertObj(Flag(EBstFileBased), this, u"Externalize"_s, u"EBstFileBased"_s);
  CVelumLib::WriteBinObjStart(aFile, ETypeId, 0);
  aFile.WriteInt(iStartPos);
  aFile.WriteInt(iFlags);
  iIndex->Externalize(aFile);
  iPosTab->Externalize(aFile);
}

qint64 CVelumBlobStore::ExtLen() const {
  return 4 + 4 + 4 + iIndex->ExtLen() + iPosTab->ExtLen();
}
