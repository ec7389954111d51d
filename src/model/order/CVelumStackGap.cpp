// Ids of cards that came in place of others.
#include "core/CVelumChecked.h"
#include "model/CVelumRecorder.h"
#include "model/CVelumStack.h"

// The keys of sort keys hold ids.
bool CVelumStack::HasKeysFrom(qint32 aFirst) const {
  Ref<CVelumArray> index;
  for (qint32 cursor = 0; GetNextKeyIndex(index, cursor);)
    for (qint32 i = 0; i < index->Count(); ++i)
      if (index->ValRef(i).Int() >= aFirst) return true;
  return false;
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
  for (qint32 id = aFirst; id < iCard->Count(); ++id) {
    const Ref<CVelumCard> card = GetCardById(id);
    if (!card) continue;
    CVelumRecord::Removed(*this, "Card", *card, id);
    iCard->SetObj(id, nullptr);
    iCard->SetObj(id - gap, card);
    card->SetId(id - gap);
    CVelumRecord::Added(*this, "Card", *card, id - gap);
  }
  iCard->SetToLastObj();
  iNameIndex->AdjustInt(aFirst, -gap);
  iCardFinder.Clear();
  SetOrder(order);
}
