// Adding many cards at once.
#include "core/CVelumChecked.h"
#include "model/CVelumStack.h"

#include <limits>
#include <unordered_map>

namespace {
using TIds = std::vector<qint32>;

// Where new cards of kept-sorted backgrounds go.
struct TPlan {
  std::unordered_map<qint32, TIds> iBefore;
  std::unordered_map<qint32, TIds> iAfter;
  TIds iTail;
};

// Sorting all anew pays when many elements come to few.
bool PaysToSort(qint32 aNew, qint32 aOld) {
  return aNew > aOld / 20;
}

void AppendAll(TIds& aTo, const TIds& aFrom) {
  aTo.insert(aTo.end(), aFrom.begin(), aFrom.end());
}

void AppendPlanned(TIds& aTo, const std::unordered_map<qint32, TIds>& aPlan, qint32 aId) {
  if (const auto it = aPlan.find(aId); it != aPlan.end()) AppendAll(aTo, it->second);
}

// The new cards of a key index stand before the next old card by key; those behind the last old one behind
// it, or at the end when there is none.
void PlanPlaces(const CVelumArray& aKeyIndex, qint32 aFirstNew, TPlan& aPlan) {
  TIds pending;
  qint32 lastOld = ENoInt;
  for (qint32 i = 0; i < aKeyIndex.Count(); ++i) {
    const qint32 id = aKeyIndex.ValRef(i).Int();
    if (id >= aFirstNew) {
      pending.push_back(id);
      continue;
    }
    if (!pending.empty()) aPlan.iBefore[id] = std::move(pending);
    pending.clear();
    lastOld = id;
  }
  if (lastOld == ENoInt)
    AppendAll(aPlan.iTail, pending);
  else if (!pending.empty())
    aPlan.iAfter[lastOld] = std::move(pending);
}

// Adds elements one by one, or all at once.
class CFill {
public:
  CFill(CVelumArray& aArray, qint32 aNew) : iArray(aArray), iBulk(PaysToSort(aNew, aArray.Count())) {
    if (iBulk) iArray.BeginBulk(aNew);
  }
  void Add(const QString& aKey, qint32 aId) {
    TVelumElem elem;
    iArray.InitElem(elem);
    elem.iStrKey = aKey;
    elem.iVal = TVelumValue::OfInt(aId);
    if (iBulk)
      iArray.AppendBulk(elem);
    else
      iArray.CreateStrKey(elem);
  }
  void End() {
    if (iBulk) iArray.EndBulk();
  }

private:
  CVelumArray& iArray;
  bool iBulk;
};
} // namespace

void CVelumStack::BeginBulk(qint32 aExpected) {
  static_cast<void>(aExpected);
  iBulkStart = iCard->Count();
  RecordOrder();
}

void CVelumStack::EndBulk() {
  if (iBulkStart == EBulkOff) return;
  const qint32 start = std::exchange(iBulkStart, EBulkOff);
  BulkNames(start);
  bool placed = false;
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; GetNextBackground(background, i);)
    if (background->Flag(ECseKeepCardsSorted) && BulkKeys(*background, start)) placed = true;
  if (placed) BulkOrder(start);
}

void CVelumStack::BulkNames(qint32 aStart) {
  const qint32 alloc = iNameIndex->Alloc();
  CFill fill(*iNameIndex, iCard->Count() - aStart);
  for (qint32 id = aStart; id < iCard->Count(); ++id)
    if (const CVelumCard* card = FindCard(id)) fill.Add(card->Name(), id);
  fill.End();
  RecordEntries(true, *iNameIndex, 0, iNameIndex->Count(), aStart, alloc);
}

// The keys of the new cards of a background. False if it got none.
bool CVelumStack::BulkKeys(CVelumControlSet& aBackground, qint32 aStart) {
  TIds ids;
  for (qint32 id = aStart; id < iCard->Count(); ++id)
    if (const CVelumCard* card = FindCard(id); card && card->BackgroundId() == aBackground.Id())
      ids.push_back(id);
  if (ids.empty()) return false;
  CVelumArray& index = CVelumChecked::Deref(aBackground.KeyIndex().Get());
  const Ref<CVelumSortKey> key = SortKey(index.SortKeyId());
  const qint32 alloc = index.Alloc();
  CFill fill(index, static_cast<qint32>(ids.size()));
  for (const qint32 id : ids) fill.Add(CVelumChecked::Deref(key).BuildKey(*FindCard(id)), id);
  fill.End();
  RecordEntries(true, index, 0, index.Count(), aStart, alloc);
  return true;
}

// Puts the new cards of kept-sorted backgrounds, which stand where they were added, to their places.
void CVelumStack::BulkOrder(qint32 aStart) {
  TPlan plan;
  Ref<CVelumControlSet> background;
  for (qint32 i = 0; GetNextBackground(background, i);)
    if (background->Flag(ECseKeepCardsSorted) && background->NumCards() > 0)
      PlanPlaces(CVelumChecked::Deref(background->KeyIndex().Get()), aStart, plan);
  TIds ids;
  ids.reserve(size_t(iOrder.Count()));
  for (qint32 pos = 0; pos < iOrder.Count(); ++pos) {
    const qint32 id = iOrder.IdAt(pos);
    const CVelumCard* card = FindCard(id);
    const CVelumControlSet* set = card ? FindBackground(card->BackgroundId()) : nullptr;
    if (id >= aStart && set && set->Flag(ECseKeepCardsSorted)) continue;
    AppendPlanned(ids, plan.iBefore, id);
    ids.push_back(id);
    AppendPlanned(ids, plan.iAfter, id);
  }
  AppendAll(ids, plan.iTail);
  SetOrder(ids);
}
