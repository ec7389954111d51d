// Entries of the name index and of key indexes come and go here, so that each of them is recorded.
#include "model/CVelumStack.h"
#include "model/change/CVelumRecorder.h"

bool CVelumStack::IsIndex(const CVelumArray& aIndex, qint32& aId) const {
  aId = &aIndex == iNameIndex.Get() ? ENoInt : aIndex.Id();
  if (aId == ENoInt) return &aIndex == iNameIndex.Get();
  const qint32 at = iKeyIndex->FindIntKey(aId);
  return at >= 0 && iKeyIndex->ValRef(at).Obj() == &aIndex;
}

qint32 CVelumStack::AddEntry(CVelumArray& aIndex, const QString& aKey, qint32 aCardId) {
  TVelumElem elem;
  aIndex.InitElem(elem);
  elem.iStrKey = aKey;
  elem.iVal = TVelumValue::OfInt(aCardId);
  const qint32 alloc = aIndex.Alloc();
  const qint32 at = aIndex.CreateStrKey(elem);
  qint32 id = ENoInt;
  if (CVelumRecorder* recorder = CVelumRecord::Of(this); recorder && IsIndex(aIndex, id))
    recorder->Key(true, id, at, aKey, aCardId, alloc);
  return at;
}

void CVelumStack::RemoveEntry(CVelumArray& aIndex, qint32 aAt) {
  qint32 id = ENoInt;
  if (CVelumRecorder* recorder = CVelumRecord::Of(this); recorder && IsIndex(aIndex, id))
    recorder->Key(false, id, aAt, aIndex.StrKeyAt(aAt), aIndex.ValRef(aAt).Int(), aIndex.Alloc());
  aIndex.DeleteAt(aAt);
}

void CVelumStack::RemoveEntriesOf(CVelumArray& aIndex, const std::vector<bool>& aCards) {
  std::vector<TKeyEntry> entries;
  for (qint32 i = 0; i < aIndex.Count(); ++i) {
    const qint32 card = aIndex.ValRef(i).Int();
    if (card >= 0 && size_t(card) < aCards.size() && aCards[size_t(card)])
      entries.push_back({i, card, aIndex.StrKeyAt(i)});
  }
  for (size_t end = entries.size(); end > 0;) { // runs of neighbours go at once
    size_t begin = end - 1;
    while (begin > 0 && entries[begin - 1].iPlace + 1 == entries[begin].iPlace) --begin;
    aIndex.DeleteAt(entries[begin].iPlace, static_cast<qint32>(end - begin));
    end = begin;
  }
  qint32 id = ENoInt;
  if (CVelumRecorder* recorder = CVelumRecord::Of(this); recorder && IsIndex(aIndex, id))
    recorder->Keys(false, id, std::move(entries), aIndex.Alloc(), aIndex.Alloc());
}

void CVelumStack::RecordEntries(bool aAdded, const CVelumArray& aIndex, qint32 aFrom, qint32 aEnd,
                                qint32 aFirstCard, qint32 aAlloc) const {
  qint32 id = ENoInt;
  CVelumRecorder* recorder = CVelumRecord::Of(this);
  if (!recorder || !IsIndex(aIndex, id)) return;
  std::vector<TKeyEntry> entries;
  for (qint32 i = aFrom; i < aEnd; ++i)
    if (const qint32 card = aIndex.ValRef(i).Int(); card >= aFirstCard)
      entries.push_back({i, card, aIndex.StrKeyAt(i)});
  recorder->Keys(aAdded, id, std::move(entries), aAdded ? aAlloc : aIndex.Alloc(),
                 aAdded ? aIndex.Alloc() : aAlloc);
}

void CVelumStack::RecordCard(bool aAdded, CVelumCard& aCard, qint32 aCount, qint32 aAlloc) const {
  if (CVelumRecorder* recorder = CVelumRecord::Of(this)) recorder->Card(aAdded, aCard, aCount, aAlloc);
}
