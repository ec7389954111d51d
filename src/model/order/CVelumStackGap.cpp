// Ids of cards that came in place of others.
#include "core/CVelumChecked.h"
#include "model/CVelumStack.h"
#include "model/change/CVelumRecorder.h"

// The keys of sort keys hold ids.
bool CVelumStack::HasKeysFrom(qint32 aFirst) const {
  Ref<CVelumArray> index;
  for (qint32 cursor = 0; GetNextKeyIndex(index, cursor);)
    for (qint32 i = 0; i < index->Count(); ++i)
      if (index->ValRef(i).Int() >= aFirst) return true;
  return false;
}

// Moves the cards of the ids from aFrom to before aEnd, in the table and in the name index, which is sorted
// by names.
void CVelumStack::MoveCardIds(qint32 aFrom, qint32 aEnd, qint32 aBy) {
  for (qint32 i = 0; i < aEnd - aFrom; ++i) {
    const qint32 id = aBy < 0 ? aFrom + i : aEnd - 1 - i;
    const Ref<CVelumCard> card = GetCardById(id);
    if (!card) continue;
    iCard->SetObj(id, nullptr);
    iCard->SetObj(id + aBy, card);
    card->SetId(id + aBy);
    iOrder.AddBit(id + aBy, CVelumCardOrder::BackgroundBit(card->BackgroundId()));
  }
  iNameIndex->AdjustInt(aFrom, aBy);
  iCardFinder.Clear();
}

void CVelumStack::CloseGap(qint32 aFirst) {
  qint32 end = qMin(aFirst, iCard->Count());
  while (end > 0 && !FindCard(end - 1)) --end;
  const qint32 gap = aFirst - end;
  if (gap <= 0 || aFirst >= iCard->Count() || HasKeysFrom(aFirst)) return;
  std::vector<qint32> order;
  order.reserve(static_cast<size_t>(iOrder.Count()));
  for (qint32 pos = 0; pos < iOrder.Count(); ++pos) {
    const qint32 id = iOrder.IdAt(pos);
    order.push_back(id < aFirst ? id : id - gap);
  }
  RecordOrder();
  if (CVelumRecorder* recorder = CVelumRecord::Of(this))
    recorder->Gap(aFirst, gap, iCard->Count(), iCard->Alloc());
  MoveCardIds(aFirst, iCard->Count(), -gap);
  iCard->SetToLastObj();
  SetOrder(order);
}
