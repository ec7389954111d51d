// Cards enter and leave.
#include "core/CVelumChecked.h"
#include "model/CVelumStack.h"
#include "model/change/CVelumRecorder.h"

#include <limits>

using CVelumModel::ObjAs;

CVelumCard* CVelumStack::FindCard(qint32 aId) const {
  if (aId < 0 || aId >= iCard->Count()) return nullptr;
  return ObjAs<CVelumCard>(iCard->ValRef(aId), EValCard);
}

Ref<CVelumCard> CVelumStack::GetCardById(qint32 aId) const {
  return FindCard(aId);
}

void CVelumStack::AddCard(const Ref<CVelumCard>& aCard, const Ref<CVelumCard>& aBeforeCard,
                          bool aWithDefaults) {
  CVelumCard& card = CVelumChecked::Deref(aCard);
  CVelumControlSet& background = CVelumChecked::Deref(FindBackground(card.BackgroundId()));
  if (card.Stack()) CVelumError::RaiseHost(EHostBadCall);
  const bool byKey = background.Flag(ECseKeepCardsSorted) && iCard->Count() < iBulkStart;
  Ref<CVelumCard> before;
  // What can fail does so before anything is changed.
  if (byKey)
    static_cast<void>(CVelumChecked::Deref(background.KeyIndex().Get()));
  else
    before = KnownBefore(FirstOfKept(aBeforeCard), card);
  const bool dirty = card.Dirty();
  const qint32 count = iCard->Count();
  const qint32 alloc = iCard->Alloc();
  card.SetId(PlaceCard(aCard));
  card.SetStack(this);
  card.SetDirty(dirty);
  background.SetNumCards(background.NumCards() + 1);
  try {
    RecordCard(true, card, count, alloc);
    if (byKey)
      AddKey(card, background);
    else
      InsertCardOrder(aCard, before);
    AddName(card);
  } catch (...) {
    DropHalfAdded(card, background, byKey);
    throw;
  }
  iCardFinder.Note(card, ENoInt);
  SetCardListsDirty(nullptr);
  iChangeInfo.iCardListChanged = true;
  if (aWithDefaults) card.InitAllVal();
}

// Takes a card that could not be added out of all places that it has got so far.
void CVelumStack::DropHalfAdded(CVelumCard& aCard, CVelumControlSet& aBackground, bool aByKey) {
  const Ref<CVelumCard> card = &aCard; // the slot may hold the last reference
  qint32 at = 0;
  if (const Ref<CVelumArray> index = aByKey ? aBackground.KeyIndex() : nullptr)
    if (index->GetIntIndex(aCard.Id(), at)) RemoveEntry(*index, at);
  if (iOrder.PosOf(aCard.Id()) >= 0) RemoveCardOrder(aCard);
  aBackground.SetNumCards(aBackground.NumCards() - 1);
  RecordCard(false, aCard, iCard->Count(), iCard->Alloc());
  iCard->SetObj(aCard.Id(), nullptr);
  iCard->SetToLastObj();
  aCard.SetStack(nullptr);
}

// The first card of the background of aCard if that one is kept sorted: what is put before it must not part
// its cards.
Ref<CVelumCard> CVelumStack::FirstOfKept(const Ref<CVelumCard>& aCard) const {
  const CVelumControlSet* background = aCard ? FindBackground(aCard->BackgroundId()) : nullptr;
  if (!background || !background->Flag(ECseKeepCardsSorted)) return aCard;
  Ref<CVelumCard> first;
  qint32 index = 0;
  return GetFirstCardInBackground(background->Id(), first, index) ? first : nullptr;
}

// Appends to iCard; the index is the card's id.
qint32 CVelumStack::PlaceCard(const Ref<CVelumCard>& aCard) {
  TVelumElem elem;
  iCard->InitElem(elem);
  elem.iVal = TVelumValue::OfObj(EValCard, aCard);
  return iCard->CreateAtEnd(elem);
}

void CVelumStack::DeleteCard(const Ref<CVelumCard>& aCard) {
  // aCard may be one that goes.
  const Ref<CVelumCard> card = aCard; // NOLINT(performance-unnecessary-copy-initialization)
  CVelumError::Assert(CVelumChecked::Deref(card).Stack() == this, u"DeleteCard stack"_s);
  if (card->Stack() != this) return;
  CVelumControlSet& background = CVelumChecked::Deref(FindBackground(card->BackgroundId()));
  CVelumError::Assert(FindCard(card->Id()) == card.Get(), u"DeleteCard card"_s);
  if (FindCard(card->Id()) != card.Get()) return;
  if (background.Flag(ECseKeepCardsSorted)) RemoveKey(*card, background);
  card->DropBlobs();
  RemoveName(*card);
  RemoveCardOrder(*card);
  TakeOut(*card, background);
  SetCardListsDirty(nullptr);
  iChangeInfo.iCardListChanged = true;
}

// A card that stands in no index any more leaves the table. It keeps its values: a change that brings it back
// needs them.
void CVelumStack::TakeOut(CVelumCard& aCard, CVelumControlSet& aBackground) {
  const Ref<CVelumCard> card = &aCard; // the slot may hold the last reference
  aBackground.SetNumCards(aBackground.NumCards() - 1);
  RecordCard(false, aCard, iCard->Count(), iCard->Alloc());
  iCard->SetObj(aCard.Id(), nullptr);
  iCard->SetToLastObj();
  aCard.SetStack(nullptr);
}

// Many cards at once: the entries of all of them leave each index in one go.
void CVelumStack::DeleteCards(const std::vector<Ref<CVelumCard>>& aCards) {
  if (aCards.empty()) return;
  std::vector<bool> going(size_t(iCard->Count()), false);
  for (const Ref<CVelumCard>& card : aCards) going[size_t(card->Id())] = true;
  Ref<CVelumArray> index;
  for (qint32 i = 0; GetNextKeyIndex(index, i);) RemoveEntriesOf(*index, going);
  RemoveEntriesOf(*iNameIndex, going);
  RecordOrder();
  for (const Ref<CVelumCard>& card : aCards) {
    card->DropBlobs();
    RemoveCardOrder(*card);
    TakeOut(*card, CVelumChecked::Deref(FindBackground(card->BackgroundId())));
  }
  SetCardListsDirty(nullptr);
  iChangeInfo.iCardListChanged = true;
}

void CVelumStack::DeleteAllCards() {
  std::vector<Ref<CVelumCard>> cards;
  Ref<CVelumCard> card;
  for (qint32 at = 0; GetNextCard(card, at);) cards.push_back(card);
  DeleteCards(cards);
  iChangeInfo.iCardListChanged = true;
}

void CVelumStack::DeleteBackground(const Ref<CVelumControlSet>& aBackground, bool aOnlyCards) {
  // aBackground may be the only reference, and go.
  const Ref<CVelumControlSet> background = aBackground; // NOLINT(performance-unnecessary-copy-initialization)
  const qint32 id = CVelumChecked::Deref(background).Id();
  const bool own = FindBackground(id) == background.Get();
  CVelumError::AssertObj(own, this, u"DeleteBackground"_s, u"DeleteBackground aBackground of stack"_s);
  if (!own) return;
  DeleteCardsOf(*background);
  if (aOnlyCards) return;
  DeleteKeysOf(id);
  // Nothing else holds the picture behind its cards.
  if (background->WallPaperId() != ENoInt && iBlobStore)
    iBlobStore->ReleaseReference(background->WallPaperId());
  RecordChild(false, EChildBackground, id, *background, iBackground->Alloc());
  iBackground->DeleteIntKey(id);
  background->SetStack(nullptr);
}

void CVelumStack::DeleteCardsOf(const CVelumControlSet& aBackground, qint32 aEnd) {
  std::vector<Ref<CVelumCard>> cards;
  Ref<CVelumCard> card;
  for (qint32 at = 0; GetNextCardInBackground(aBackground.Id(), card, at);)
    if (card->Id() < aEnd) cards.push_back(card);
  DeleteCards(cards);
}

void CVelumStack::DeleteKeysOf(qint32 aBackgroundId) {
  for (qint32 i = iKeyIndex->Count() - 1; i >= 0; --i) {
    const CVelumArray* index = KeyIndexAt(i);
    const Ref<CVelumSortKey> key = index ? SortKey(index->SortKeyId()) : nullptr;
    if (key && key->BackgroundId() == aBackgroundId) DeleteKeyIndex(index->Id());
  }
  for (qint32 i = iSortKey->Count() - 1; i >= 0; --i)
    if (const CVelumSortKey* key = SortKeyAt(i); key && key->BackgroundId() == aBackgroundId)
      DeleteSortKey(key->Id());
}

void CVelumStack::DeleteControl(qint32 aId, const Ref<CVelumControlSet>& aBackground) {
  CVelumControlSet& background = CVelumChecked::Deref(aBackground);
  for (qint32 i = 0; i < iCard->Count(); ++i)
    if (CVelumCard* card = FindCard(i); card && card->BackgroundId() == background.Id()) card->DropVal(aId);
  RenewKeysOf(aId);
  background.DeleteControl(aId);
}

void CVelumStack::ChangeCard(const CVelumCard& aCard) {
  constexpr qint16 most = std::numeric_limits<qint16>::max();
  iChangeInfo.iCardChanged = true;
  if (IsLastChanged(aCard)) return;
  if (iChangeInfo.iNumCardsChanged < most) ++iChangeInfo.iNumCardsChanged;
  iChangeInfo.iLastChangedCard = const_cast<CVelumCard*>(&aCard);
  iLastChangedIn = ENoInt;
}

// A card that stands in the stack went to another background.
void CVelumStack::BackgroundSet(CVelumCard& aCard, qint32 aOldId) {
  const qint32 newId = aCard.BackgroundId();
  NewListBasis();
  if (iOrder.PosOf(aCard.Id()) < 0 || FindCard(aCard.Id()) != &aCard) return;
  if (CVelumControlSet* background = FindBackground(aOldId))
    background->SetNumCards(background->NumCards() - 1);
  if (CVelumControlSet* background = FindBackground(newId))
    background->SetNumCards(background->NumCards() + 1);
  iOrder.AddBit(aCard.Id(), CVelumCardOrder::BackgroundBit(newId));
  iCardFinder.Note(aCard, ENoInt);
}
