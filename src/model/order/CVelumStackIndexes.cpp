// After a load: the indexes say what the cards give, and the order of the cards follows them.
#include "core/CVelumChecked.h"
#include "model/CVelumStack.h"
#include "model/order/CVelumIndexCheck.h"

namespace {
constexpr qint32 ENameFlags = EArrStrKey | EArrDuplicates | EArrExactCase;

CVelumIndexSum SumOf(const CVelumArray& aIndex) {
  CVelumIndexSum sum;
  for (qint32 i = 0; i < aIndex.Count(); ++i) sum.Add(aIndex.StrKeyAt(i), CVelumIndexCheck::IdAt(aIndex, i));
  return sum;
}
} // namespace

// The sums to take from the cards. An index whose keys cannot be built is left as it is.
CVelumStack::TIndexSums CVelumStack::BeginSums() const {
  TIndexSums sums;
  for (qint32 i = 0; i < iKeyIndex->Count(); ++i) {
    CVelumArray* index = KeyIndexAt(i);
    if (!(index->Flags() & EArrSortKey)) continue;
    const Ref<CVelumSortKey> key = SortKey(index->SortKeyId());
    const CVelumControlSet* background = FindBackground(key->BackgroundId());
    if (key->CanBuild(background)) sums.iKeys.push_back({index, key.Get(), background, {}});
  }
  return sums;
}

// In the walk over all cards, while a card is in the processor's cache.
void CVelumStack::SumUp(CVelumCard& aCard, TIndexSums& aSums) {
  aSums.iNames.Add(aCard.Name(), aCard.Id());
  for (TKeySum& sum : aSums.iKeys) {
    if (sum.iBackground->Id() != aCard.BackgroundId()) continue;
    sum.iKey->BuildKey(aCard, aSums.iText);
    sum.iCards.Add(aSums.iText, aCard.Id());
  }
}

// Older versions wrote the index in collation order; with other flags cards could not be added or found by
// name.
void CVelumStack::MendNames(const TIndexSums& aSums) {
  const qint32 flags = iNameIndex->Flags();
  if (flags != ENameFlags) {
    if ((flags | EArrExactCase) != ENameFlags) NoteProblem(u"The name index had the flags %1"_s.arg(flags));
    iNameIndex->SetFlags(ENameFlags);
    iNameIndex->EnsureSorted();
    iNameIndex->SetChanged(true);
  }
  if (SumOf(*iNameIndex) == aSums.iNames) return;
  NoteProblems(CVelumIndexCheck(*this, EMaxProblems + 1).Names());
  const bool changed = iNameIndex->OwnChanged();
  iNameIndex->Clear();
  BulkNames(0);
  iNameIndex->SetChanged(changed);
}

void CVelumStack::NoteProblems(const QStringList& aTexts) {
  for (const QString& text : aTexts) NoteProblem(text);
}

// Where the keys are those of the cards, an order that does not follow them is that of another locale, and is
// counted. Where they are not, what moves the cards cannot be told apart, and nothing is.
void CVelumStack::CheckOrderIndex(const TIndexSums& aSums) {
  iOrderCorrections = 0;
  for (const TKeySum& sum : aSums.iKeys)
    if (!(SumOf(*sum.iIndex) == sum.iCards)) RenewStaleKeys(sum);
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; GetNextBackground(background, i);)
    if (background->Flag(ECseKeepCardsSorted)) CheckOrderIndexFor(*background);
}

void CVelumStack::RenewStaleKeys(const TKeySum& aSum) {
  NoteProblems(CVelumIndexCheck(*this, EMaxProblems + 1).Keys(*aSum.iIndex, *aSum.iKey));
  FillKeys(*aSum.iIndex, *aSum.iKey);
  aSum.iIndex->SetChanged(false);
  if (IsKeptBy(*aSum.iBackground, *aSum.iIndex))
    static_cast<void>(FollowKeys(*aSum.iBackground, *aSum.iIndex));
}

void CVelumStack::CheckOrderIndexFor(CVelumControlSet& aBackground) {
  const QString proc = u"CheckOrderIndexFor"_s;
  Ref<CVelumCard> card;
  qint32 slot = 0;
  if (!GetFirstCardInBackground(aBackground.Id(), card, slot)) return;
  --slot;
  const CVelumArray& keyIndex = CVelumChecked::Deref(aBackground.KeyIndex());
  for (qint32 i = 0; i < keyIndex.Count(); ++i) {
    CVelumError::AssertObj(slot < iOrder.Count(), this, proc, u"orderElem parallel"_s);
    if (slot >= iOrder.Count()) return;
    const qint32 id = CVelumIndexCheck::IdAt(keyIndex, i);
    if (iOrder.IdAt(slot) != id) {
      const CVelumCard* card1 = FindCard(id);
      CVelumError::ThrowBadStruct(card1, this, u"CVelumStack."_s + proc, u"card"_s);
      SwapForCorrection(slot, *card1);
    }
    ++slot;
  }
}

// Brings aCard1 into the slot, and the card of the slot to where aCard1 stood.
void CVelumStack::SwapForCorrection(qint32 aSlot, const CVelumCard& aCard1) {
  const QString proc = u"CheckOrderIndexFor"_s;
  const qint32 pos = iOrder.PosOf(aCard1.Id());
  CVelumError::AssertObj(pos >= 0, this, proc, u"orderElem1"_s);
  if (pos < 0) return;
  CVelumError::AssertObj(pos > aSlot, this, proc, u"back correction"_s);
  const qint32 id2 = iOrder.IdAt(aSlot);
  iOrder.SetIdAt(aSlot, aCard1.Id());
  iOrder.SetIdAt(pos, id2);
  ++iOrderCorrections;
}
