#include "persist/CVelumBlobCheck.h"

#include "core/CVelumMsg.h"

#include <QBitArray>
#include <algorithm>

CVelumBlobCheck::CVelumBlobCheck(CVelumStack& aStack) : iStack(aStack), iStore(aStack.BlobStore()) {}

QList<qint32> CVelumBlobCheck::Ids() const {
  QList<qint32> ids;
  for (qint32 i = 0; iStore && i < iStore->NumBlobs(); ++i) ids.append(iStore->Index().IntKeyAt(i));
  return ids;
}

QStringList CVelumBlobCheck::Run() {
  if (!iStore) return {};
  CheckPlaces();
  ReadBlobs();
  CountReferences();
  CheckPairs();
  CheckCounts();
  return iProblems;
}

void CVelumBlobCheck::CheckPlaces() {
  const CVelumArray& index = iStore->Index();
  const CVelumArray& places = iStore->PosTab();
  QBitArray used(places.Count());
  for (qint32 i = 0; i < index.Count(); ++i) {
    const qint32 place = index.ValRef(i).Int();
    if (place == ENoInt) continue;
    const QString name = u"blob %1"_s.arg(index.IntKeyAt(i));
    if (place < 0 || place >= places.Count())
      Add(u"%1: there is no place %2 in the blob area"_s.arg(name).arg(place));
    else if (used.testBit(place))
      Add(u"%1: its place %2 belongs to another blob too"_s.arg(name).arg(place));
    else
      used.setBit(place);
  }
  qint64 end = iStore->StartPos();
  for (qint32 i = 0; i < places.Count(); ++i) {
    const TVelumValue& place = places.ValRef(i);
    const QString name = u"blob area: place %1 at %2"_s.arg(i).arg(place.Int0());
    if (!used.testBit(i)) Add(name + u" belongs to no blob"_s);
    if (place.Int1() <= 0) Add(u"%1 has the length %2"_s.arg(name).arg(place.Int1()));
    if (place.Int0() < end) Add(u"%1 begins before %2, where the one before it ends"_s.arg(name).arg(end));
    end = std::max(end, qint64{place.Int0()} + std::max(0, place.Int1()));
  }
}

void CVelumBlobCheck::ReadBlobs() {
  const CVelumArray& index = iStore->Index();
  for (qint32 i = 0; i < index.Count(); ++i) {
    const qint32 id = index.IntKeyAt(i);
    const qint32 place = index.ValRef(i).Int();
    if (place != ENoInt && (place < 0 || place >= iStore->PosTab().Count())) continue;
    try {
      ReadBlob(id, place);
    } catch (...) {
      CVelumError::CatchError(u"CVelumBlobCheck.ReadBlobs"_s);
      const TVelumError error = CVelumError::GetErrorRecord();
      Add(u"blob %1: cannot be read: %2"_s.arg(id).arg(
          error.iMsgId < EMsgAssertFailed ? error.iSysDescr
                                          : CVelumMsg::Text(error.iMsgId, error.iP0, error.iP1)));
    }
  }
}

Ref<CVelumBlob> CVelumBlobCheck::ReadFrom(qint32 aId, qint32 aPlace) {
  if (aPlace == ENoInt) return iStore->ReadBlob(aId, false);
  if (!iFile) {
    iFile = MakeRef<CVelumFile>(iStack.Filename(), EFilRead);
    iFile->OpenFile();
    if (iStore->File()) iFile->SetPatch(iStore->File()->Patch());
  }
  iFile->SeekPos(iStore->PosTab().ValRef(aPlace).Int0());
  Ref<CVelumBlob> blob = MakeRef<CVelumBlob>();
  blob->Internalize(*iFile);
  return blob;
}

void CVelumBlobCheck::ReadBlob(qint32 aId, qint32 aPlace) {
  const Ref<CVelumBlob> blob = ReadFrom(aId, aPlace);
  iFacts.insert(aId, {blob->OriginalId(), blob->SampleId(), blob->RefCount()});
  if (blob->Id() != aId) Add(u"blob %1: its place holds blob %2"_s.arg(aId).arg(blob->Id()));
  if (aPlace == ENoInt) return;
  const TVelumValue& place = iStore->PosTab().ValRef(aPlace);
  const qint64 read = iFile->CurrentPos() - place.Int0();
  if (read != place.Int1()) Add(u"blob %1: is %2 bytes long, not %3"_s.arg(aId).arg(read).arg(place.Int1()));
}

void CVelumBlobCheck::CountReference(qint32 aBlobId, const QString& aFrom) {
  if (aBlobId == ENoInt) return;
  if (!iStore->HasBlob(aBlobId)) Add(u"%1: blob %2 does not exist"_s.arg(aFrom).arg(aBlobId));
  ++iRefs[aBlobId];
}

// References come from card values, wallpapers and samples.
void CVelumBlobCheck::CountReferences() {
  for (qint32 i = 0; i < iStack.Cards().Count(); ++i) {
    const Ref<CVelumCard> card = iStack.GetCardById(i);
    for (qint32 j = 0; card && j < card->Value().Count(); ++j) {
      const TVelumValue& val = card->Value().ValRef(j);
      if (val.Type() == EValBlobId) CountReference(val.Int(), u"card %1 '%2'"_s.arg(i).arg(card->Name()));
    }
  }
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  for (bool found = iStack.GetFirstBackground(background, index); found;
       found = iStack.GetNextBackground(background, index))
    CountReference(background->WallPaperId(), u"background '%1', wallpaper"_s.arg(background->Name()));
  for (const qint32 id : Ids()) {
    const auto facts = iFacts.constFind(id);
    if (facts != iFacts.constEnd())
      CountReference(facts->iOriginalId, u"blob %1, the picture it is a sample of"_s.arg(id));
  }
}

void CVelumBlobCheck::CheckPairs() {
  for (const qint32 id : Ids()) {
    const auto facts = iFacts.constFind(id);
    if (facts == iFacts.constEnd() || facts->iSampleId == ENoInt) continue;
    const auto sample = iFacts.constFind(facts->iSampleId);
    if (!iStore->HasBlob(facts->iSampleId))
      Add(u"blob %1: its sample, blob %2, does not exist"_s.arg(id).arg(facts->iSampleId));
    else if (sample != iFacts.constEnd() && sample->iOriginalId != id)
      Add(u"blob %1: its sample, blob %2, is that of another picture"_s.arg(id).arg(facts->iSampleId));
  }
}

void CVelumBlobCheck::CheckCounts() {
  for (const qint32 id : Ids()) {
    const auto facts = iFacts.constFind(id);
    if (facts == iFacts.constEnd() || facts->iRefCount == iRefs.value(id)) continue;
    Add(u"blob %1: its reference count is %2, but %3 were found"_s.arg(id)
            .arg(facts->iRefCount)
            .arg(iRefs.value(id)));
  }
}
