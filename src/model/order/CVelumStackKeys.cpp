// The keys of the cards in the key indexes.
#include "core/CVelumChecked.h"
#include "model/CVelumStack.h"
#include "model/change/CVelumRecorder.h"

namespace {
TVelumElem KeyElem(const CVelumArray& aIndex, const QString& aKey, qint32 aId) {
  TVelumElem elem;
  aIndex.InitElem(elem);
  elem.iStrKey = aKey;
  elem.iVal = TVelumValue::OfInt(aId);
  return elem;
}

} // namespace

// Takes out the entry of a card: that of aKey, or, where that one is not its own, the one that stands for it.
void CVelumStack::DropEntry(CVelumArray& aIndex, const QString& aKey, qint32 aId) {
  TVelumElem elem;
  qint32 next = 0;
  if (aIndex.ReadByStrKey(aKey, elem, next) && elem.iVal.Int() == aId)
    RemoveEntry(aIndex, next - 1);
  else if (aIndex.GetIntIndex(aId, next))
    RemoveEntry(aIndex, next);
}

void CVelumStack::AddKey(CVelumCard& aCard, CVelumControlSet& aBackground) {
  CVelumArray& index = CVelumChecked::Deref(aBackground.KeyIndex());
  const Ref<CVelumSortKey> key = SortKey(index.SortKeyId());
  PlaceByKey(&aCard, true, index, AddEntry(index, CVelumChecked::Deref(key).BuildKey(aCard), aCard.Id()));
}

void CVelumStack::RemoveKey(CVelumCard& aCard, CVelumControlSet& aBackground) {
  if (InBulk(aCard)) return;
  CVelumArray& index = CVelumChecked::Deref(aBackground.KeyIndex());
  const Ref<CVelumSortKey> key = SortKey(index.SortKeyId());
  // A card can go also when a field of the sort key has gone before.
  const bool known = CVelumChecked::Deref(key).CanBuild(&aBackground);
  DropEntry(index, known ? key->BuildKey(aCard) : QString(), aCard.Id());
}

// A sort key of which a field has gone has no keys to keep.
void CVelumStack::StoreKeys(CVelumCard& aCard, qint32 aControlId) {
  if (InBulk(aCard)) return;
  const CVelumControlSet* background = aCard.FindBackground();
  for (qint32 i = 0; i < iSortKey->Count(); ++i)
    if (CVelumSortKey* key = SortKeyAt(i); key && key->ControlOccurs(aControlId) && key->CanBuild(background))
      key->SetStoredKey(key->BuildKey(aCard));
}

void CVelumStack::ReplaceKeys(CVelumCard& aCard, qint32 aControlId, CVelumControlSet& aBackground) {
  if (InBulk(aCard)) return;
  for (qint32 i = 0; i < iKeyIndex->Count(); ++i) {
    const Ref<CVelumArray> index = KeyIndexAt(i);
    const Ref<CVelumSortKey> key = index ? SortKey(index->SortKeyId()) : nullptr;
    if (!key || !key->ControlOccurs(aControlId) || !key->CanBuild(&aBackground)) continue;
    const QString newKey = key->BuildKey(aCard);
    if (newKey == key->StoredKey()) continue;
    DropEntry(*index, key->StoredKey(), aCard.Id());
    const qint32 at = AddEntry(*index, newKey, aCard.Id());
    if (IsKeptBy(aBackground, *index)) PlaceByKey(&aCard, false, *index, at);
  }
}

bool CVelumStack::IsKeptBy(const CVelumControlSet& aBackground, const CVelumArray& aIndex) {
  return aBackground.Flag(ECseKeepCardsSorted) && aBackground.KeyIndexId() == aIndex.Id();
}

void CVelumStack::RenewKeysOf(qint32 aControlId) {
  for (qint32 i = 0; i < iKeyIndex->Count(); ++i) {
    CVelumArray* index = KeyIndexAt(i);
    const Ref<CVelumSortKey> key = index ? SortKey(index->SortKeyId()) : nullptr;
    if (!key || !key->ControlOccurs(aControlId)) continue;
    CVelumControlSet* background = FindBackground(key->BackgroundId());
    if (!key->CanBuild(background)) continue;
    FillKeys(*index, *key);
    if (!IsKeptBy(*background, *index) || !FollowKeys(*background, *index)) continue;
    NewListBasis();
    CVelumSeams::ChangeNotify(EChangeOrder);
    iChangeInfo.iCardListChanged = true;
  }
}

void CVelumStack::ControlTypeSet(qint32 aControlId, qint32 aConType) {
  for (qint32 i = 0; i < iSortKey->Count(); ++i)
    if (CVelumSortKey* key = SortKeyAt(i)) key->SetControlType(aControlId, aConType);
  RenewKeysOf(aControlId);
}

// Makes all entries of an index anew.
void CVelumStack::FillKeys(CVelumArray& aIndex, const CVelumSortKey& aKey) {
  RecordEntries(false, aIndex, 0, aIndex.Count(), 0, aIndex.Alloc());
  const qint32 alloc = aIndex.Alloc();
  aIndex.Clear();
  aIndex.BeginBulk(NumBackgroundCards(aKey.BackgroundId()));
  Ref<CVelumCard> card;
  for (qint32 at = 0; GetNextCardInBackground(aKey.BackgroundId(), card, at);)
    if (!InBulk(*card)) aIndex.AppendBulk(KeyElem(aIndex, aKey.BuildKey(*card), card->Id()));
  aIndex.EndBulk();
  RecordEntries(true, aIndex, 0, aIndex.Count(), 0, alloc);
}

// Puts the cards of a background into the places that they hold in the order, by their keys. False if they
// stand so. The index has an entry for each of them.
bool CVelumStack::FollowKeys(const CVelumControlSet& aBackground, const CVelumArray& aIndex) {
  bool moved = false;
  Ref<CVelumCard> card;
  qint32 entry = 0;
  for (qint32 at = 0; GetNextCardInBackground(aBackground.Id(), card, at);) {
    if (InBulk(*card)) continue;
    const qint32 id = aIndex.ValRef(entry++).Int();
    if (card->Id() == id) continue;
    if (!moved) RecordOrder();
    iOrder.SetIdAt(at - 1, id);
    moved = true;
  }
  return moved;
}
