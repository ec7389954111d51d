#include "model/CVelumCardFinder.h"

#include "core/CVelumValue.h"
#include "model/CVelumStack.h"

#include <QHashFunctions>
#include <algorithm>

namespace {

using TCards = CVelumCardFinder::TCards;

TCards AllCards(const CVelumStack& aStack, qint32 aBackgroundId) {
  TCards cards;
  Ref<CVelumCard> card;
  for (qint32 i = 0; aStack.GetNextCardInBackground(aBackgroundId, card, i);) cards.push_back(card.Get());
  return cards;
}

bool Matches(CVelumCard& aCard, qint32 aControlId, const TVelumValue& aVal) {
  return CVelumValue::Equal(aCard.GetControlVal(aControlId, true), aVal);
}

// Equal for values that are equal.
size_t HashOf(const TVelumValue& aVal) {
  switch (aVal.Type()) {
  case EValStr:
    return qHash(aVal.Str());
  case EValReal:
  case EValDate:
  case EValTime:
    return qHash(aVal.Real() + aVal.Date() + aVal.Time()); // two of them are 0
  case EValBoolean:
    return aVal.Boolean() ? 1 : 0;
  default:
    return qHash(aVal.Int());
  }
}

} // namespace

TCards CVelumCardFinder::Find(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                              const TVelumValue& aVal, quint32 aBasis) {
  if (aControlId == ENoInt) return AllCards(aStack, aBackgroundId);
  const bool again = IndexOf(aBackgroundId, aControlId).iBasis == aBasis;
  if (again && !IndexOf(aBackgroundId, aControlId).iBuilt) Build(aStack, aBackgroundId, aControlId, aBasis);
  TIndex& index = IndexOf(aBackgroundId, aControlId);
  if (again && index.iType != EValUndef && index.iType == aVal.Type()) return LookUp(index, aStack, aVal);
  if (!again) index = {aBackgroundId, aControlId, aBasis};
  return Walk(aStack, aBackgroundId, aControlId, aVal);
}

TCards CVelumCardFinder::Walk(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                              const TVelumValue& aVal) {
  TCards cards = AllCards(aStack, aBackgroundId);
  std::erase_if(cards, [&](CVelumCard* aCard) { return !Matches(*aCard, aControlId, aVal); });
  return cards;
}

TCards CVelumCardFinder::LookUp(const TIndex& aIndex, const CVelumStack& aStack, const TVelumValue& aVal) {
  const auto [from, to] =
      std::equal_range(aIndex.iEntries.begin(), aIndex.iEntries.end(), TEntry{HashOf(aVal), ENoInt}, ByHash);
  const qint32 controlId = aIndex.iControlId;
  TCards cards;
  std::for_each(from, to, [&](const TEntry& aEntry) { cards.push_back(aStack.FindCard(aEntry.iId)); });
  std::erase_if(cards, [&](CVelumCard* aCard) { return !aCard || !Matches(*aCard, controlId, aVal); });
  return cards;
}

CVelumCardFinder::TIndex& CVelumCardFinder::IndexOf(qint32 aBackgroundId, qint32 aControlId) {
  for (TIndex& index : iIndexes)
    if (index.iBackgroundId == aBackgroundId && index.iControlId == aControlId) return index;
  return iIndexes.emplace_back(TIndex{aBackgroundId, aControlId, 0});
}

// Reading a value can compute a list, and so ask for cards again: the index is only touched at the end.
void CVelumCardFinder::Build(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                             quint32 aBasis) {
  TIndex index{aBackgroundId, aControlId, aBasis, true};
  bool same = true;
  for (CVelumCard* card : AllCards(aStack, aBackgroundId)) {
    const TVelumValue val = card->GetControlVal(aControlId, true);
    if (index.iEntries.empty()) index.iType = val.Type();
    same = same && val.Type() == index.iType;
    index.iEntries.push_back({HashOf(val), card->Id()});
  }
  if (!same) index.iType = EValUndef;
  std::stable_sort(index.iEntries.begin(), index.iEntries.end(), ByHash);
  IndexOf(aBackgroundId, aControlId) = std::move(index);
}
