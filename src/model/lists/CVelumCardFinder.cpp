#include "model/lists/CVelumCardFinder.h"

#include "core/CVelumValue.h"
#include "model/CVelumStack.h"

#include <QHashFunctions>
#include <algorithm>
#include <iterator>

namespace {

constexpr size_t EMostLater = 4096;

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
size_t WideHashOf(const TVelumValue& aVal) {
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

// In the upper half.
quint64 HashOf(const TVelumValue& aVal) {
  const quint64 wide = WideHashOf(aVal);
  return (wide ^ (wide << 32)) & ~quint64{0xFFFFFFFF};
}

// An import brings so many entries that they take less memory among the others.
void Merge(std::vector<quint64>& aEntries, std::set<quint64>& aLater) {
  std::vector<quint64> all;
  all.reserve(aEntries.size() + aLater.size());
  std::set_union(aEntries.begin(), aEntries.end(), aLater.begin(), aLater.end(), std::back_inserter(all));
  aEntries = std::move(all);
  aLater.clear();
}

qint32 IdOf(quint64 aEntry) {
  return static_cast<qint32>(aEntry & 0xFFFFFFFF);
}

} // namespace

TCards CVelumCardFinder::Find(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                              const TVelumValue& aVal, quint32 aBasis) {
  if (aControlId == ENoInt) return AllCards(aStack, aBackgroundId);
  const CVelumControlSet* background = aStack.FindBackground(aBackgroundId);
  const CVelumControl* control = background ? background->FindControl(aControlId) : nullptr;
  if (!control) return Walk(aStack, aBackgroundId, aControlId, aVal);
  const TIndex* index = IndexOf(aBackgroundId, aControlId);
  if (!index || !IsFresh(*index, *control, aBasis)) {
    Build(aStack, aBackgroundId, aControlId, aBasis);
    index = IndexOf(aBackgroundId, aControlId);
  }
  // A walk tells of values that cannot be compared.
  const bool comparable =
      aVal.Type() == EValUndef || index->iType == EValUndef || aVal.Type() == index->iType;
  if (index->iMixed || !comparable) return Walk(aStack, aBackgroundId, aControlId, aVal);
  return LookUp(*index, aStack, aVal);
}

// A field that is itself a computed list changes with any card.
bool CVelumCardFinder::IsFresh(const TIndex& aIndex, const CVelumControl& aControl, quint32 aBasis) {
  if (aControl.Flag(EConCardList) && aIndex.iBasis != aBasis) return false;
  return aIndex.iDefault == aControl.DefaultVal();
}

TCards CVelumCardFinder::Walk(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                              const TVelumValue& aVal) {
  TCards cards = AllCards(aStack, aBackgroundId);
  std::erase_if(cards, [&](CVelumCard* aCard) { return !Matches(*aCard, aControlId, aVal); });
  return cards;
}

TCards CVelumCardFinder::LookUp(const TIndex& aIndex, const CVelumStack& aStack, const TVelumValue& aVal) {
  std::vector<std::pair<qint32, CVelumCard*>> found; // with positions
  const quint64 hash = HashOf(aVal);
  const auto take = [&](auto aFrom, auto aEnd) {
    for (; aFrom != aEnd && (*aFrom ^ hash) >> 32 == 0; ++aFrom) {
      CVelumCard* card = aStack.FindCard(IdOf(*aFrom));
      if (!card || card->BackgroundId() != aIndex.iBackgroundId) continue;
      qint32 num = 0;
      if (Matches(*card, aIndex.iControlId, aVal)) found.emplace_back(aStack.GetCardIndex(*card, num), card);
    }
  };
  const auto& entries = aIndex.iEntries;
  take(std::lower_bound(entries.begin(), entries.end(), hash), entries.end());
  take(aIndex.iLater.lower_bound(hash), aIndex.iLater.end());
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  TCards cards;
  for (const auto& [position, card] : found) cards.push_back(card);
  return cards;
}

CVelumCardFinder::TIndex* CVelumCardFinder::IndexOf(qint32 aBackgroundId, qint32 aControlId) {
  for (TIndex& index : iIndexes)
    if (index.iBackgroundId == aBackgroundId && index.iControlId == aControlId) return &index;
  return nullptr;
}

CVelumCardFinder::TEntry CVelumCardFinder::EntryOf(TIndex& aIndex, CVelumCard& aCard) {
  const TVelumValue val = aCard.GetControlVal(aIndex.iControlId, true);
  if (aIndex.iType == EValUndef) aIndex.iType = val.Type();
  if (val.Type() != EValUndef && val.Type() != aIndex.iType) aIndex.iMixed = true;
  return HashOf(val) | static_cast<quint32>(aCard.Id());
}

// Reading a value can compute a list, and so ask for cards again: the indexes are only touched at the end.
void CVelumCardFinder::Build(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                             quint32 aBasis) {
  const CVelumControlSet* background = aStack.FindBackground(aBackgroundId);
  const CVelumControl* control = background ? background->FindControl(aControlId) : nullptr;
  if (!control) return;
  TIndex index{aBackgroundId, aControlId, aBasis, control->DefaultVal()};
  index.iEntries.reserve(static_cast<size_t>(background->NumCards()));
  // By id, which is how the cards lie in memory.
  for (qint32 id = 0; id < aStack.Cards().Count(); ++id) {
    CVelumCard* card = aStack.FindCard(id);
    if (card && card->BackgroundId() == aBackgroundId) index.iEntries.push_back(EntryOf(index, *card));
  }
  std::sort(index.iEntries.begin(), index.iEntries.end());
  if (TIndex* old = IndexOf(aBackgroundId, aControlId))
    *old = std::move(index);
  else
    iIndexes.push_back(std::move(index));
}

void CVelumCardFinder::NoteIn(CVelumCard& aCard, qint32 aControlId) {
  for (TIndex& index : iIndexes) {
    const bool concerned = aControlId == ENoInt || aControlId == index.iControlId;
    if (!concerned || aCard.BackgroundId() != index.iBackgroundId) continue;
    const CVelumControl* control = aCard.ControlById(index.iControlId).Get();
    // Lists are not asked for while they change; their index is made anew.
    if (!control || control->Flag(EConCardList)) continue;
    index.iLater.insert(EntryOf(index, aCard));
    if (index.iLater.size() > index.iEntries.size() + EMostLater) Merge(index.iEntries, index.iLater);
  }
}
