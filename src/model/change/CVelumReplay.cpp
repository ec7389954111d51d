#include "model/change/CVelumReplay.h"

#include "core/CVelumChecked.h"
#include "model/change/CVelumChange.h"
#include "model/change/CVelumRecorder.h"
#include "model/order/CVelumSortKey.h"

using CVelumModel::ObjAs;

namespace {

bool SameValue(const TVelumValue& aA, const TVelumValue& aB) {
  if (aA.Type() != aB.Type()) return false;
  switch (aA.Type()) {
  case EValStr:
    return aA.Str() == aB.Str();
  case EValReal:
    return aA.Real() == aB.Real() || (aA.Real() != aA.Real() && aB.Real() != aB.Real());
  case EValDate:
    return aA.Date() == aB.Date();
  case EValTime:
    return aA.Time() == aB.Time();
  case EValBoolean:
    return aA.Boolean() == aB.Boolean();
  case EValIntPair:
    return aA.Int0() == aB.Int0() && aA.Int1() == aB.Int1();
  default:
    return aA.Int() == aB.Int();
  }
}

TVelumElem NewElem(const CVelumArray& aArray, TVelumValue aVal, qint32 aKey) {
  TVelumElem elem;
  aArray.InitElem(elem);
  elem.iIntKey = aKey;
  elem.iVal = std::move(aVal);
  return elem;
}

void RestoreAlloc(CVelumArray& aArray, qint32 aAlloc) {
  if (aAlloc != ENoInt) aArray.RestoreAlloc(aAlloc);
}

bool IsEntry(const CVelumArray& aArray, qint32 aPlace, const QString& aKey, qint32 aCardId) {
  return aPlace >= 0 && aPlace < aArray.Count() && aArray.ValRef(aPlace).Int() == aCardId &&
         aArray.StrKeyAt(aPlace) == aKey;
}

void PutEntry(CVelumArray& aArray, qint32 aPlace, const QString& aKey, qint32 aCardId) {
  TVelumElem elem = NewElem(aArray, TVelumValue::OfInt(aCardId), ENoInt);
  elem.iStrKey = aKey;
  aArray.PutBack(aPlace, elem);
}

int TagOf(EChild aKind) {
  switch (aKind) {
  case EChildBackground:
    return EValControlSet;
  case EChildControl:
    return EValControl;
  case EChildSortKey:
    return EValSortKey;
  case EChildKeyIndex:
    return EValArray;
  default:
    return EValBlob;
  }
}

} // namespace

CVelumReplay::CVelumReplay(CVelumStack& aStack)
    : iStack(aStack), iRecorder(std::exchange(CVelumRecord::gRecorder, nullptr)) {}

CVelumReplay::~CVelumReplay() {
  CVelumRecord::gRecorder = iRecorder;
}

CVelumObject* CVelumReplay::Find(CVelumStack& aStack, TDocAddress aObj) {
  switch (aObj.iKind) {
  case EDocStack:
    return &aStack;
  case EDocBackground:
    return aStack.FindBackground(aObj.iId);
  case EDocControl:
    for (qint32 i = 0; i < aStack.iBackground->Count(); ++i) {
      const auto* background = ObjAs<CVelumControlSet>(aStack.iBackground->ValRef(i), EValControlSet);
      if (CVelumControl* control = background ? background->FindControl(aObj.iId) : nullptr) return control;
    }
    return nullptr;
  case EDocCard:
    return aStack.FindCard(aObj.iId);
  case EDocSortKey: {
    const qint32 at = aStack.iSortKey->FindIntKey(aObj.iId);
    return at < 0 ? nullptr : aStack.iSortKey->ValRef(at).Obj();
  }
  case EDocIdGen:
    return aStack.iIdGen.Get();
  case EDocBlob: {
    const qint32 at = aStack.iBlobStore ? aStack.iBlobStore->Cache().FindIntKey(aObj.iId) : -1;
    return at < 0 ? nullptr : aStack.iBlobStore->Cache().ValRef(at).Obj();
  }
  }
  return nullptr;
}

// Values.

bool CVelumReplay::SetValue(qint32 aCardId, qint32 aControlId, const TVelumValue* aOld,
                            const TVelumValue* aNew, qint32 aAlloc) {
  CVelumCard* card = iStack.FindCard(aCardId);
  if (!card) return false;
  CVelumArray& values = card->iValue;
  const qint32 at = values.FindIntKey(aControlId);
  if ((at >= 0) != (aOld != nullptr)) return false;
  if (aOld && !SameValue(values.ValRef(at), *aOld)) return false;
  if (aOld && aNew)
    values.SetValAt(at + 1, *aNew);
  else if (aOld)
    values.DeleteAt(at);
  else if (aNew)
    values.PutBack(values.PlaceOfIntKey(aControlId), NewElem(values, *aNew, aControlId));
  RestoreAlloc(values, aAlloc);
  NoteValue(*card, aControlId);
  return true;
}

void CVelumReplay::NoteValue(CVelumCard& aCard, qint32 aControlId) {
  iDone.iValues = true;
  iDone.iCardId = aCard.Id();
  iDone.iControlId = aControlId;
  aCard.iChanged = true;
  iStack.iCardFinder.Note(aCard, aControlId);
  iStack.ChangeCard(aCard);
  if (const Ref<CVelumControl> control = aCard.ControlById(aControlId))
    if (control->DynFlag(EDynRefControl)) aCard.SetDirty(true);
}

void CVelumReplay::SetMoment(qint32 aCardId, qint32 aDate, qint32 aTime) {
  CVelumCard* card = iStack.FindCard(aCardId);
  if (!card) return;
  card->iModDate = aDate;
  card->iModTime = aTime;
}

// Indexes of names and keys.

CVelumArray* CVelumReplay::Index(qint32 aIndexId) const {
  if (aIndexId == ENoInt) return iStack.iNameIndex.Get();
  const qint32 at = iStack.iKeyIndex->FindIntKey(aIndexId);
  return at < 0 ? nullptr : ObjAs<CVelumArray>(iStack.iKeyIndex->ValRef(at), EValArray);
}

bool CVelumReplay::AddKey(qint32 aIndexId, qint32 aPlace, const QString& aKey, qint32 aCardId,
                          qint32 aAlloc) {
  CVelumArray* index = Index(aIndexId);
  if (!index || aPlace < 0 || aPlace > index->Count()) return false;
  PutEntry(*index, aPlace, aKey, aCardId);
  RestoreAlloc(*index, aAlloc);
  return true;
}

bool CVelumReplay::RemoveKey(qint32 aIndexId, qint32 aPlace, const QString& aKey, qint32 aCardId,
                             qint32 aAlloc) {
  CVelumArray* index = Index(aIndexId);
  if (!index || !IsEntry(*index, aPlace, aKey, aCardId)) return false;
  index->DeleteAt(aPlace);
  RestoreAlloc(*index, aAlloc);
  return true;
}

bool CVelumReplay::AddKeys(qint32 aIndexId, const std::vector<TKeyEntry>& aEntries, qint32 aAlloc) {
  CVelumArray* index = Index(aIndexId);
  if (!index) return false;
  // Each place is one of the whole index, so all are there when the last one is.
  const auto after = static_cast<qint64>(index->Count()) + static_cast<qint64>(aEntries.size());
  if (!aEntries.empty() && (aEntries.front().iPlace < 0 || aEntries.back().iPlace >= after)) return false;
  for (size_t i = 0; i < aEntries.size(); ++i) // room between the places must be filled by old entries
    if (aEntries[i].iPlace > index->Count() + static_cast<qint32>(i)) return false;
  for (const TKeyEntry& entry : aEntries) PutEntry(*index, entry.iPlace, entry.iKey, entry.iCardId);
  RestoreAlloc(*index, aAlloc);
  return true;
}

bool CVelumReplay::RemoveKeys(qint32 aIndexId, const std::vector<TKeyEntry>& aEntries, qint32 aAlloc) {
  CVelumArray* index = Index(aIndexId);
  if (!index) return false;
  for (const TKeyEntry& entry : aEntries)
    if (!IsEntry(*index, entry.iPlace, entry.iKey, entry.iCardId)) return false;
  // Runs of neighbours go at once.
  for (size_t end = aEntries.size(); end > 0;) {
    size_t begin = end - 1;
    while (begin > 0 && aEntries[begin - 1].iPlace + 1 == aEntries[begin].iPlace) --begin;
    index->DeleteAt(aEntries[begin].iPlace, static_cast<qint32>(end - begin));
    end = begin;
  }
  RestoreAlloc(*index, aAlloc);
  return true;
}

// The order.

bool CVelumReplay::AddToOrder(qint32 aCardId, qint32 aAfterId, qint32 aNum, qint32 aAlloc) {
  const CVelumCard* card = iStack.FindCard(aCardId);
  CVelumCardOrder& order = iStack.iOrder;
  if (!card || order.PosOf(aCardId) >= 0) return false;
  const qint32 after = aAfterId == ENoInt ? -1 : order.PosOf(aAfterId);
  if (aAfterId != ENoInt && after < 0) return false;
  order.InsertAt(after + 1, aCardId, aNum, CVelumCardOrder::BackgroundBit(card->BackgroundId()));
  if (aAlloc != ENoInt) order.RestoreAlloc(aAlloc);
  iDone.iOrder = true;
  iDone.iCardId = aCardId;
  return true;
}

bool CVelumReplay::RemoveFromOrder(qint32 aCardId, qint32 aAfterId, qint32 aNum, qint32 aAlloc) {
  CVelumCardOrder& order = iStack.iOrder;
  const qint32 pos = order.PosOf(aCardId);
  if (pos < 0 || order.NumAt(pos) != aNum) return false;
  if ((pos > 0 ? order.IdAt(pos - 1) : ENoInt) != aAfterId) return false;
  order.RemoveAt(pos);
  if (aAlloc != ENoInt) order.RestoreAlloc(aAlloc);
  iDone.iOrder = true;
  return true;
}

bool CVelumReplay::SetOrder(const CVelumCardOrder::TState& aOld, const CVelumCardOrder::TState& aNew) {
  if (!(iStack.iOrder.State() == aOld)) return false;
  std::vector<quint64> bits;
  bits.reserve(aNew.iIds.size());
  for (const qint32 id : aNew.iIds) {
    const CVelumCard* card = iStack.FindCard(id);
    bits.push_back(card ? CVelumCardOrder::BackgroundBit(card->BackgroundId()) : 0);
  }
  iStack.iOrder.Restore(aNew, bits);
  iDone.iOrder = true;
  return true;
}

// Cards.

bool CVelumReplay::FitsCards(qint32 aCount, qint32 aAlloc) const {
  return iStack.iCard->Count() == aCount && iStack.iCard->Alloc() == aAlloc;
}

bool CVelumReplay::FitsIndex(qint32 aIndexId, qint32 aAlloc) const {
  const CVelumArray* index = Index(aIndexId);
  return index && index->Alloc() == aAlloc;
}

bool CVelumReplay::FitsOrder(qint32 aAlloc) const {
  return iStack.iOrder.Alloc() == aAlloc;
}

// Empty slots up to aCount; nothing for ENoInt.
void CVelumReplay::PadCards(qint32 aCount) {
  CVelumArray& cards = *iStack.iCard;
  while (aCount != ENoInt && cards.Count() < aCount)
    cards.CreateAtEnd(NewElem(cards, TVelumValue::OfObj(EValCard, nullptr), ENoInt));
}

bool CVelumReplay::PutCard(const Ref<CVelumCard>& aCard, qint32 aId, qint32 aCount, qint32 aAlloc) {
  CVelumArray& cards = *iStack.iCard;
  CVelumControlSet* background = aCard ? iStack.FindBackground(aCard->BackgroundId()) : nullptr;
  if (!background || aCard->Stack() || iStack.FindCard(aId) || aId < 0) return false;
  // A slot behind the end by more than the table had before is no id of this document.
  if (aId > cards.Count() && (aCount == ENoInt || aId >= aCount)) return false;
  PadCards(aId + 1);
  PadCards(aCount);
  cards.SetObj(aId, aCard);
  RestoreAlloc(cards, aAlloc);
  aCard->iId = aId;
  aCard->SetStack(&iStack);
  aCard->SetDirty(true);
  aCard->iChanged = true;
  background->SetNumCards(background->NumCards() + 1);
  iStack.iOrder.AddBit(aId, CVelumCardOrder::BackgroundBit(background->Id()));
  iStack.iCardFinder.Note(*aCard, ENoInt);
  iDone.iCards = true;
  iDone.iCardId = aId;
  return true;
}

bool CVelumReplay::TakeCard(qint32 aId, Ref<CVelumCard>& aCard, qint32 aCount, qint32 aAlloc) {
  const Ref<CVelumCard> card = iStack.FindCard(aId);
  if (!card || !aCard || card->Name() != aCard->Name()) return false;
  CVelumControlSet* background = iStack.FindBackground(card->BackgroundId());
  if (!background) return false;
  CVelumArray& cards = *iStack.iCard;
  cards.SetObj(aId, nullptr);
  cards.SetToLastObj();
  PadCards(aCount);
  RestoreAlloc(cards, aAlloc);
  background->SetNumCards(background->NumCards() - 1);
  card->SetStack(nullptr);
  aCard = card;
  iDone.iCards = true;
  if (iDone.iCardId == aId) iDone.iCardId = iDone.iControlId = ENoInt;
  return true;
}

bool CVelumReplay::IsGap(qint32 aFrom, qint32 aEnd) const {
  for (qint32 id = aFrom; id < aEnd; ++id)
    if (iStack.FindCard(id)) return false;
  return true;
}

bool CVelumReplay::CloseGap(qint32 aFirst, qint32 aGap, qint32 aCount) {
  if (aGap <= 0 || aFirst < aGap || aFirst >= aCount || iStack.iCard->Count() != aCount) return false;
  if (!IsGap(aFirst - aGap, aFirst)) return false;
  iStack.MoveCardIds(aFirst, aCount, -aGap);
  iStack.iCard->SetToLastObj();
  iDone.iCards = true;
  iDone.iCardId = ENoInt;
  return true;
}

bool CVelumReplay::OpenGap(qint32 aFirst, qint32 aGap, qint32 aCount, qint32 aAlloc) {
  if (aGap <= 0 || aFirst < aGap || aFirst >= aCount || iStack.iCard->Count() != aCount - aGap) return false;
  PadCards(aCount);
  iStack.MoveCardIds(aFirst - aGap, aCount - aGap, aGap);
  RestoreAlloc(*iStack.iCard, aAlloc);
  iDone.iCards = true;
  iDone.iCardId = ENoInt;
  return true;
}

void CVelumReplay::WriteCard(CVelumFile& aFile, CVelumCard& aCard) {
  aCard.Externalize(aFile);
}

Ref<CVelumCard> CVelumReplay::ReadCard(CVelumFile& aFile) {
  auto card = MakeRef<CVelumCard>();
  card->Internalize(aFile);
  if (card->iState & CVelumCard::EUnsorted) card->SortValues();
  return card;
}

// Backgrounds, fields, sort keys, key indexes, pictures.

CVelumArray* CVelumReplay::Collection(EChild aKind) const {
  switch (aKind) {
  case EChildBackground:
    return iStack.iBackground.Get();
  case EChildSortKey:
    return iStack.iSortKey.Get();
  case EChildKeyIndex:
    return iStack.iKeyIndex.Get();
  default:
    return nullptr;
  }
}

void CVelumReplay::NoteChild(EChild aKind) {
  if (aKind == EChildSortKey || aKind == EChildKeyIndex)
    iDone.iSortKeys = true;
  else if (aKind != EChildBlob)
    iDone.iStructure = true;
}

bool CVelumReplay::AddChild(const CVelumChildChange& aChange, TChildAllocs aAllocs) {
  if (!aChange.Child()) return false;
  if (aChange.Kind() == EChildBlob) return AddBlob(aChange);
  NoteChild(aChange.Kind());
  if (aChange.Kind() == EChildControl) return AddControl(aChange, aAllocs);
  CVelumArray& array = *Collection(aChange.Kind());
  if (array.FindIntKey(aChange.Id()) >= 0) return false;
  if (aChange.Kind() == EChildKeyIndex) {
    auto& index = static_cast<CVelumArray&>(*aChange.Child());
    auto* key = static_cast<CVelumSortKey*>(Find(iStack, {EDocSortKey, index.SortKeyId()}));
    if (!key) return false;
    index.ResolveSortKey(key);
  }
  array.CreateIntKey(
      NewElem(array, TVelumValue::OfObj(TagOf(aChange.Kind()), aChange.Child()), aChange.Id()));
  RestoreAlloc(array, aAllocs.iObjs);
  if (aChange.Kind() == EChildBackground) {
    auto& background = static_cast<CVelumControlSet&>(*aChange.Child());
    background.SetStack(&iStack);
    background.SetNumCards(0);
    background.iKeyIndex = nullptr;
  }
  return true;
}

bool CVelumReplay::RemoveChild(CVelumChildChange& aChange, TChildAllocs aAllocs) {
  if (aChange.Kind() == EChildBlob) return RemoveBlob(aChange);
  NoteChild(aChange.Kind());
  if (aChange.Kind() == EChildControl) return RemoveControl(aChange, aAllocs);
  CVelumArray& array = *Collection(aChange.Kind());
  const qint32 at = array.FindIntKey(aChange.Id());
  if (at < 0 || !array.ValRef(at).Obj()) return false;
  const Ref<CVelumStored> child = array.ValRef(at).Obj();
  array.DeleteAt(at);
  RestoreAlloc(array, aAllocs.iObjs);
  if (aChange.Kind() == EChildBackground) static_cast<CVelumControlSet&>(*child).SetStack(nullptr);
  aChange.SetChild(child);
  return true;
}

bool CVelumReplay::AddControl(const CVelumChildChange& aChange, TChildAllocs aAllocs) {
  CVelumControlSet* background = iStack.FindBackground(aChange.OwnerId());
  if (!background || Find(iStack, {EDocControl, aChange.Id()})) return false;
  CVelumArray& set = *background->iSet;
  CVelumArray& ids = *background->iIdIndex;
  const qint32 after = aChange.AfterId() == ENoInt ? -1 : ids.FindIntKey(aChange.AfterId());
  if (aChange.AfterId() != ENoInt && after < 0) return false;
  const qint32 place = after < 0 ? 0 : ids.ValRef(after).Int() + 1;
  set.CreateAt(NewElem(set, TVelumValue::OfObj(EValControl, aChange.Child()), ENoInt), place);
  ids.AdjustInt(place, 1);
  ids.CreateIntKey(NewElem(ids, TVelumValue::OfInt(place), aChange.Id()));
  RestoreAlloc(set, aAllocs.iObjs);
  RestoreAlloc(ids, aAllocs.iIds);
  background->iChanged = true;
  return true;
}

bool CVelumReplay::RemoveControl(CVelumChildChange& aChange, TChildAllocs aAllocs) {
  CVelumControlSet* background = iStack.FindBackground(aChange.OwnerId());
  const qint32 at = background ? background->iIdIndex->FindIntKey(aChange.Id()) : -1;
  if (at < 0) return false;
  CVelumArray& set = *background->iSet;
  CVelumArray& ids = *background->iIdIndex;
  const qint32 place = ids.ValRef(at).Int();
  const CVelumControl* before = background->ControlAt(place - 1);
  if ((before ? before->Id() : ENoInt) != aChange.AfterId()) return false;
  aChange.SetChild(background->ControlAt(place));
  ids.DeleteAt(at);
  ids.AdjustInt(place + 1, -1);
  set.DeleteAt(place);
  RestoreAlloc(set, aAllocs.iObjs);
  RestoreAlloc(ids, aAllocs.iIds);
  background->iChanged = true;
  return true;
}

bool CVelumReplay::AddBlob(const CVelumChildChange& aChange) {
  const Ref<CVelumBlobStore> store = iStack.BlobStore();
  if (!store || store->HasBlob(aChange.Id())) return false;
  store->PutBack(Ref<CVelumBlob>(static_cast<CVelumBlob*>(aChange.Child().Get())));
  return true;
}

bool CVelumReplay::RemoveBlob(CVelumChildChange& aChange) {
  const Ref<CVelumBlobStore> store = iStack.BlobStore();
  if (!store || !store->HasBlob(aChange.Id())) return false;
  aChange.SetChild(Ref<CVelumStored>(store->TakeOut(aChange.Id()).Get()));
  return true;
}

void CVelumReplay::WriteChild(CVelumFile& aFile, EChild aKind, CVelumStored& aChild) {
  if (aKind == EChildBlob)
    WriteBlob(aFile, static_cast<CVelumBlob&>(aChild));
  else
    aChild.Externalize(aFile);
}

Ref<CVelumStored> CVelumReplay::ReadChild(CVelumFile& aFile, EChild aKind, qint32 aId) {
  if (aKind == EChildBlob) return ReadBlob(aFile, aId);
  const Ref<CVelumStored> child = CVelumSeams::NewObject(TagOf(aKind));
  CVelumChangeIo::Require(static_cast<bool>(child), u"child"_s);
  child->Internalize(aFile);
  qint32 id = ENoInt;
  if (aKind == EChildSortKey)
    id = static_cast<CVelumSortKey&>(*child).Id();
  else if (aKind == EChildKeyIndex)
    id = static_cast<CVelumArray&>(*child).Id();
  else
    id = static_cast<CVelumScripted&>(*child).Id();
  CVelumChangeIo::Require(id == aId, u"child id"_s);
  return child;
}

TReplayed CVelumReplay::Finish() {
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; iStack.GetNextBackground(background, i);) background->iKeyIndex = nullptr;
  if (iDone.iStructure || iDone.iSortKeys) iStack.SetControlDynFlags();
  iStack.SetCardListsDirty(nullptr);
  if (iDone.iCards || iDone.iOrder) iStack.iChangeInfo.iCardListChanged = true;
  if (iDone.iCards && !iStack.FindCard(iDone.iCardId)) iDone.iCardId = ENoInt;
  return iDone;
}
