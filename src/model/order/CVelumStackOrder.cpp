// The order of the cards, and lookups and walks over them.
#include "core/CVelumChecked.h"
#include "model/CVelumStack.h"
#include "model/change/CVelumRecorder.h"

#include <algorithm>
#include <limits>

namespace {
constexpr qint32 EStep = 100;
// In a walk the memory of cards is asked for this many cards ahead, then that of their values, then of texts.
constexpr qint32 ECardAhead = 24;
constexpr qint32 EValuesAhead = 14;
constexpr qint32 ETextsAhead = 5;
constexpr qint32 EMostValues = 32;

TVelumElem OrderElem(const CVelumArray& aArray, const QString& aKey, qint32 aId) {
  TVelumElem elem;
  aArray.InitElem(elem);
  elem.iStrKey = aKey;
  elem.iVal = TVelumValue::OfInt(aId);
  return elem;
}

// Asks for memory that will be read soon: cards of a sorted background lie anywhere, and a walk over many of
// them would mostly wait.
void Fetch(const void* aFrom, size_t aLen) {
  constexpr size_t line = 64;
  for (size_t at = 0; at < aLen; at += line) __builtin_prefetch(static_cast<const char*>(aFrom) + at);
}

void FetchCard(const CVelumCard* aCard) {
  if (aCard) Fetch(aCard, sizeof(CVelumCard));
}

void FetchValues(const CVelumCard* aCard) {
  if (!aCard || aCard->Value().Count() == 0) return;
  Fetch(&aCard->Value().ValRef(0),
        size_t(std::min(aCard->Value().Count(), EMostValues)) * sizeof(TVelumCell));
}

void FetchTexts(const CVelumCard* aCard) {
  const qint32 num = aCard ? std::min(aCard->Value().Count(), EMostValues) : 0;
  for (qint32 i = 0; i < num; ++i)
    if (const TVelumValue& val = aCard->Value().ValRef(i); val.Type() == EValStr)
      __builtin_prefetch(val.Str().constData());
}
} // namespace

const CVelumArray& CVelumStack::OrderIndex() const {
  iOrderView = iOrder.ToArray();
  return *iOrderView;
}

qint32 CVelumStack::OrderNumOf(const CVelumCard& aCard) const {
  if (const auto id = static_cast<size_t>(aCard.Id()); id < iNumsById.size() && iNumsById[id] != ENoInt)
    return iNumsById[id];
  const qint32 num = iOrder.NumOf(aCard.Id());
  return num != ENoInt && FindCard(aCard.Id()) == &aCard ? num : aCard.iOrderNum;
}

bool CVelumStack::GetCard(const QString& aName, Ref<CVelumCard>& aCard) const {
  TVelumElem elem;
  qint32 next = 0;
  aCard = iNameIndex->ReadByStrKey(aName, elem, next) ? GetCardById(elem.iVal.Int()) : nullptr;
  return static_cast<bool>(aCard);
}

bool CVelumStack::GetFirstCard(Ref<CVelumCard>& aCard, qint32& aIndex) const {
  aIndex = 0;
  return GetNextCard(aCard, aIndex);
}

bool CVelumStack::GetNextCard(Ref<CVelumCard>& aCard, qint32& aIndex) const {
  CVelumCard* card = nullptr;
  while (!card && aIndex >= 0 && aIndex < iOrder.Count()) {
    const std::span<const qint32> ids = iOrder.IdsFrom(aIndex++);
    card = FindCard(ids.front());
    if (card) FetchAhead(ids, aIndex);
  }
  aCard = card;
  return card != nullptr;
}

void CVelumStack::FetchAhead(std::span<const qint32> aIds, qint32 aIndex) const {
  if (aIndex >= iOrder.Count() - ECardAhead) return;
  const qint32 far = aIds.size() > ECardAhead + 1 ? aIds[ECardAhead + 1] : iOrder.IdAt(aIndex + ECardAhead);
  // Cards in the order in which they were made lie so in memory, and the processor fetches these by itself.
  if (far == aIds[0] + ECardAhead + 1) return;
  FetchCard(FindCard(far));
  FetchValues(FindCard(iOrder.IdAt(aIndex + EValuesAhead)));
  FetchTexts(FindCard(iOrder.IdAt(aIndex + ETextsAhead)));
}

qint32 CVelumStack::GetCardIndex(const CVelumCard& aCard, qint32& aNumCards) const {
  aNumCards = iOrder.Count();
  const qint32 pos = iOrder.PosOf(aCard.Id());
  CVelumError::Assert(pos >= 0, u"GetCardIndex OrderIndex found"_s);
  return pos >= 0 ? pos : aNumCards;
}

bool CVelumStack::GetCardByNum(qint32 aNum, Ref<CVelumCard>& aCard) const {
  const bool inside = aNum >= 0 && aNum < iOrder.Count();
  aCard = inside ? GetCardById(iOrder.IdAt(aNum)) : nullptr;
  return static_cast<bool>(aCard);
}

bool CVelumStack::GetFirstCardInBackground(qint32 aBackgroundId, Ref<CVelumCard>& aCard,
                                           qint32& aIndex) const {
  aIndex = 0;
  return GetNextCardInBackground(aBackgroundId, aCard, aIndex);
}

bool CVelumStack::GetNextCardInBackground(qint32 aBackgroundId, Ref<CVelumCard>& aCard,
                                          qint32& aIndex) const {
  const quint64 bit = CVelumCardOrder::BackgroundBit(aBackgroundId);
  aCard = nullptr;
  if (aIndex < 0) return false;
  while (!aCard && (aIndex = iOrder.SkipForward(aIndex, bit)) < iOrder.Count()) {
    CVelumCard* card = FindCard(iOrder.IdAt(aIndex++));
    if (card && card->BackgroundId() == aBackgroundId) aCard = card;
  }
  return static_cast<bool>(aCard);
}

bool CVelumStack::GetLastCardInBackground(qint32 aBackgroundId, Ref<CVelumCard>& aCard) const {
  const quint64 bit = CVelumCardOrder::BackgroundBit(aBackgroundId);
  aCard = nullptr;
  qint32 pos = iOrder.Count() - 1;
  while (!aCard && (pos = iOrder.SkipBackward(pos, bit)) >= 0) {
    CVelumCard* card = FindCard(iOrder.IdAt(pos--));
    if (card && card->BackgroundId() == aBackgroundId) aCard = card;
  }
  return static_cast<bool>(aCard);
}

qint32 CVelumStack::NumBackgroundCards(qint32 aBackgroundId) const {
  const CVelumControlSet* background = FindBackground(aBackgroundId);
  return background ? background->NumCards() : 0;
}

bool CVelumStack::OrderFirst(Ref<CVelumCard>& aCard) const {
  qint32 index = 0;
  return GetFirstCard(aCard, index);
}

bool CVelumStack::OrderLast(Ref<CVelumCard>& aCard) const {
  aCard = nullptr;
  for (qint32 pos = iOrder.Count() - 1; !aCard && pos >= 0; --pos) aCard = FindCard(iOrder.IdAt(pos));
  return static_cast<bool>(aCard);
}

bool CVelumStack::OrderNext(const CVelumCard& aCur, Ref<CVelumCard>& aNext) const {
  const qint32 pos = iOrder.PosOf(aCur.Id());
  CVelumError::AssertObj(pos >= 0, this, u"OrderNext"_s, u"found curCard"_s);
  qint32 index = pos >= 0 ? pos + 1 : iOrder.Count();
  return GetNextCard(aNext, index);
}

bool CVelumStack::OrderPrev(const CVelumCard& aCur, Ref<CVelumCard>& aPrev) const {
  const qint32 cur = iOrder.PosOf(aCur.Id());
  CVelumError::AssertObj(cur >= 0, this, u"OrderPrev"_s, u"found curCard"_s);
  aPrev = nullptr;
  for (qint32 pos = cur - 1; !aPrev && pos >= 0; --pos) aPrev = FindCard(iOrder.IdAt(pos));
  return static_cast<bool>(aPrev);
}

// Changing the order.

void CVelumStack::InsertCardOrder(const Ref<CVelumCard>& aCard, const Ref<CVelumCard>& aBeforeCard) {
  qint32 pos = iOrder.Count();
  if (aBeforeCard) {
    const qint32 beforePos = iOrder.PosOf(aBeforeCard->Id());
    CVelumError::Assert(beforePos >= 0, u"AddCard aBeforeCard OrderNum found"_s);
    if (beforePos >= 0) pos = beforePos;
  }
  NewListBasis();
  const qint32 num = NumBefore(pos);
  aCard->iOrderNum = num;
  const qint32 alloc = iOrder.Alloc();
  iOrder.InsertAt(pos, aCard->Id(), num, CVelumCardOrder::BackgroundBit(aCard->BackgroundId()));
  aCard->iChanged = true;
  if (CVelumRecorder* recorder = CVelumRecord::Of(this))
    recorder->Order(true, aCard->Id(), pos > 0 ? iOrder.IdAt(pos - 1) : ENoInt, num, alloc);
}

// aBeforeCard if aCard can be put before it, else nothing. Asked before a card leaves its place, so that it
// is never without one.
Ref<CVelumCard> CVelumStack::KnownBefore(const Ref<CVelumCard>& aBeforeCard, const CVelumCard& aCard) const {
  if (!aBeforeCard) return nullptr;
  const bool known = iOrder.PosOf(aBeforeCard->Id()) >= 0 && aBeforeCard.Get() != &aCard;
  CVelumError::Assert(known, u"AddCard aBeforeCard OrderNum found"_s);
  return known ? aBeforeCard : nullptr;
}

// The number of a card that is to stand before the position; renumbers when there is no room.
qint32 CVelumStack::NumBefore(qint32 aPos) {
  for (int pass = 0;; ++pass) {
    const qint64 prev = aPos > 0 ? iOrder.NumAt(aPos - 1) : 0;
    const qint64 next = aPos < iOrder.Count() ? iOrder.NumAt(aPos) : prev + 2 * qint64(EStep);
    const qint64 num = prev + (next - prev) / 2;
    const bool fits = next - prev > 1 && num <= std::numeric_limits<qint32>::max();
    if (fits) return static_cast<qint32>(num);
    if (pass > 0) CVelumError::RaiseHost(EHostOverflow);
    RenumberOrderIndex(EStep);
  }
}

// To be called before the order, or its numbers, change as a whole.
void CVelumStack::RecordOrder() const {
  if (CVelumRecorder* recorder = CVelumRecord::Of(this)) recorder->OrderAll(iOrder);
}

void CVelumStack::RenumberOrderIndex(qint32 aStep) {
  RecordOrder();
  iOrder.Renumber(aStep);
}

void CVelumStack::RemoveCardOrder(const CVelumCard& aCard) {
  const qint32 pos = iOrder.PosOf(aCard.Id());
  CVelumError::Assert(pos >= 0, u"DeleteIntKey found"_s);
  if (pos < 0) return;
  NewListBasis();
  if (CVelumRecorder* recorder = CVelumRecord::Of(this))
    recorder->Order(false, aCard.Id(), pos > 0 ? iOrder.IdAt(pos - 1) : ENoInt, iOrder.NumAt(pos),
                    iOrder.Alloc());
  iOrder.RemoveAt(pos);
}

void CVelumStack::MoveCard(const Ref<CVelumCard>& aCard, const Ref<CVelumCard>& aBeforeCard) {
  const Ref<CVelumCard> before = KnownBefore(aBeforeCard, CVelumChecked::Deref(aCard));
  RemoveCardOrder(*aCard);
  InsertCardOrder(aCard, before);
  iChangeInfo.iCardListChanged = true;
}

void CVelumStack::MoveAllCardsOfBackground(const Ref<CVelumControlSet>& aBackground,
                                           const Ref<CVelumCard>& aBeforeCard) {
  const CVelumControlSet& background = CVelumChecked::Deref(aBackground);
  CVelumError::AssertObj(background.Flag(ECseKeepCardsSorted), this, u"MoveAllCardsOfBackground"_s,
                         u"sorted"_s);
  Ref<CVelumCard> card;
  qint32 end = 0;
  const qint32 from = GetFirstCardInBackground(background.Id(), card, end) ? end - 1 : iOrder.Count();
  end = from;
  while (GetCardByNum(end, card) && card->BackgroundId() == background.Id()) ++end;
  qint32 to = iOrder.Count();
  if (aBeforeCard) {
    to = iOrder.PosOf(aBeforeCard->Id());
    CVelumError::AssertObj(to >= 0, this, u"MoveAllCardsOfBackground"_s, u"beforeCard order"_s);
  }
  const bool outside = to >= 0 && (to <= from || to >= end);
  CVelumError::AssertObj(outside, &iOrder, u"Move"_s, u"aToIndex"_s);
  if (outside && from != end && to != from && to != end) {
    RecordOrder();
    iOrder.Move(from, end - from, to, EStep);
    NewListBasis();
  }
  iChangeInfo.iCardListChanged = true;
}

void CVelumStack::AdjustCardPos(const Ref<CVelumCard>& aCard, bool aIsNew, const QString& aKey) {
  CVelumControlSet& background =
      CVelumChecked::Deref(FindBackground(CVelumChecked::Deref(aCard).BackgroundId()));
  const CVelumArray& keyIndex = CVelumChecked::Deref(background.KeyIndex());
  TVelumElem elem;
  qint32 next = 0;
  const bool found = keyIndex.ReadByStrKey(aKey, elem, next);
  PlaceByKey(aCard, aIsNew, keyIndex, found ? next - 1 : keyIndex.Count() - 1);
}

// Puts a card to the place in the order that its place in the key index demands.
void CVelumStack::PlaceByKey(const Ref<CVelumCard>& aCard, bool aIsNew, const CVelumArray& aKeyIndex,
                             qint32 aIndex) {
  if (!aIsNew) RemoveCardOrder(*aCard);
  InsertCardOrder(aCard, NextByKey(aKeyIndex, aIndex));
  CVelumSeams::ChangeNotify(EChangeOrder);
  iChangeInfo.iCardListChanged = true;
}

// The card before which that of an index is to stand: the next one by key, or, for the last one by key, the
// one that follows its predecessor by key in the order. Nothing: at the end.
Ref<CVelumCard> CVelumStack::NextByKey(const CVelumArray& aKeyIndex, qint32 aIndex) const {
  if (aIndex + 1 < aKeyIndex.Count()) return GetCardById(aKeyIndex.ValRef(aIndex + 1).Int());
  if (aKeyIndex.Count() < 2) return nullptr;
  const qint32 pos = iOrder.PosOf(aKeyIndex.ValRef(aKeyIndex.Count() - 2).Int());
  if (pos < 0 || pos + 1 >= iOrder.Count()) return nullptr;
  return GetCardById(iOrder.IdAt(pos + 1));
}

void CVelumStack::Sort(const Ref<CVelumControlSet>& aBackground, const Ref<CVelumSortKey>& aSortKey,
                       const Ref<CVelumCard>& aBeforeCard, bool aUseKeyIndex) {
  CVelumControlSet& background = CVelumChecked::Deref(aBackground);
  Ref<CVelumArray> index;
  if (aUseKeyIndex) {
    index = background.KeyIndex();
  } else {
    index = MakeRef<CVelumArray>(EArrStrKey | EArrSortKey | EArrDuplicates, EValInt);
    index->SetSortKey(aSortKey);
  }
  const Ref<CVelumSortKey> key = aUseKeyIndex ? SortKey(CVelumChecked::Deref(index).SortKeyId()) : aSortKey;
  SortIntoIndex(CVelumChecked::Deref(index), CVelumChecked::Deref(key), background.Id());
  const qint32 beforePos = aBeforeCard ? iOrder.PosOf(aBeforeCard->Id()) : -1;
  const qint32 before = beforePos >= 0 ? beforePos : iOrder.Count();
  std::vector<qint32> ids;
  ids.reserve(size_t(iOrder.Count()));
  const auto copyOthers = [&](qint32 aFrom, qint32 aTo) {
    for (qint32 i = aFrom; i < aTo; ++i) {
      const CVelumCard* card = FindCard(iOrder.IdAt(i));
      if (card && card->BackgroundId() != background.Id()) ids.push_back(card->Id());
    }
  };
  copyOthers(0, before);
  for (qint32 i = 0; i < index->Count(); ++i) ids.push_back(index->ValRef(i).Int());
  copyOthers(before, iOrder.Count());
  SetOrder(ids);
}

// The keys of all cards of a background enter aIndex.
void CVelumStack::SortIntoIndex(CVelumArray& aIndex, const CVelumSortKey& aKey, qint32 aBackgroundId) {
  const bool bulk = aIndex.Count() == 0;
  const qint32 alloc = aIndex.Alloc();
  if (bulk) aIndex.BeginBulk(NumBackgroundCards(aBackgroundId));
  Ref<CVelumCard> card;
  qint32 cursor = 0;
  while (GetNextCardInBackground(aBackgroundId, card, cursor)) {
    const QString key = aKey.BuildKey(*card);
    if (bulk)
      aIndex.AppendBulk(OrderElem(aIndex, key, card->Id()));
    else
      static_cast<void>(AddEntry(aIndex, key, card->Id()));
  }
  if (!bulk) return;
  aIndex.EndBulk();
  RecordEntries(true, aIndex, 0, aIndex.Count(), 0, alloc);
}

void CVelumStack::SetOrder(const std::vector<qint32>& aIds) {
  std::vector<quint64> bits;
  bits.reserve(aIds.size());
  for (const qint32 id : aIds) {
    const CVelumCard* card = FindCard(id);
    bits.push_back(card ? CVelumCardOrder::BackgroundBit(card->BackgroundId()) : 0);
  }
  RecordOrder();
  iOrder.Assign(aIds, bits, EStep);
  NewListBasis();
  iChangeInfo.iCardListChanged = true;
}

void CVelumStack::NewIndexForSortKey(const Ref<CVelumSortKey>& aSortKey) {
  const Ref<CVelumControlSet> background = Background(CVelumChecked::Deref(aSortKey).BackgroundId());
  auto index = MakeRef<CVelumArray>(EArrStrKey | EArrSortKey, EValInt);
  index->SetSortKey(aSortKey);
  index->SetId(iIdGen->NextId());
  AddKeyIndex(index);
  CVelumChecked::Deref(background).SetKeyIndexId(index->Id());
  Sort(background, aSortKey, nullptr, true);
}
