#include "model/change/CVelumCardChange.h"

#include "model/change/CVelumReplay.h"

using namespace CVelumChangeIo;

CVelumCardChange::CVelumCardChange(bool aAdded, Ref<CVelumCard> aCard, qint32 aCount, qint32 aAlloc)
    : iCards{std::move(aCard)}, iIds{iCards.front()->Id()}, iCount(aCount), iAlloc(aAlloc), iAdded(aAdded) {}

bool CVelumCardChange::Join(bool aAdded, const Ref<CVelumCard>& aCard) {
  if (aAdded != iAdded) return false;
  iCards.push_back(aCard);
  iIds.push_back(aCard->Id());
  return true;
}

// aBack: the table gets the size that it had before the change.
bool CVelumCardChange::Put(CVelumReplay& aReplay, bool aBack) {
  const auto num = static_cast<qint32>(iCards.size());
  for (qint32 i = 0; i < num; ++i) {
    const auto at = static_cast<size_t>(aBack ? num - 1 - i : i);
    if (aReplay.PutCard(iCards[at], iIds[at], aBack ? iCount : ENoInt, aBack ? iAlloc : ENoInt)) continue;
    for (qint32 done = i; done-- > 0;) {
      const auto back = static_cast<size_t>(aBack ? num - 1 - done : done);
      static_cast<void>(aReplay.TakeCard(iIds[back], iCards[back], ENoInt, ENoInt));
    }
    return false;
  }
  return true;
}

bool CVelumCardChange::Take(CVelumReplay& aReplay, bool aBack) {
  const auto num = static_cast<qint32>(iCards.size());
  for (qint32 i = 0; i < num; ++i) {
    const auto at = static_cast<size_t>(aBack ? num - 1 - i : i);
    const bool last = aBack && i == num - 1;
    if (aReplay.TakeCard(iIds[at], iCards[at], last ? iCount : ENoInt, last ? iAlloc : ENoInt)) continue;
    for (qint32 done = i; done-- > 0;) {
      const auto back = static_cast<size_t>(aBack ? num - 1 - done : done);
      static_cast<void>(aReplay.PutCard(iCards[back], iIds[back], iIds[back] + 1, ENoInt));
    }
    return false;
  }
  return true;
}

bool CVelumCardChange::Apply(CVelumReplay& aReplay) {
  if (!aReplay.FitsCards(iCount, iAlloc)) return false;
  return iAdded ? Put(aReplay, false) : Take(aReplay, false);
}

bool CVelumCardChange::Revert(CVelumReplay& aReplay) {
  return iAdded ? Take(aReplay, true) : Put(aReplay, true);
}

qint64 CVelumCardChange::CostOf(const CVelumCard& aCard) {
  qint64 cost = static_cast<qint64>(sizeof(CVelumCard)) + CVelumChangeIo::CostOf(aCard.Name());
  const CVelumArray& values = aCard.Value();
  for (qint32 i = 0; i < values.Count(); ++i)
    cost += static_cast<qint64>(sizeof(TVelumCell)) + CVelumChangeIo::CostOf(values.ValRef(i));
  return cost;
}

qint64 CVelumCardChange::Cost() const {
  constexpr auto each = static_cast<qint64>(sizeof(Ref<CVelumCard>) + sizeof(qint32));
  qint64 cost = static_cast<qint64>(sizeof(*this));
  for (const Ref<CVelumCard>& card : iCards)
    cost += each + (card->Stack() ? 0 : CostOf(*card)); // a card in the table is the document's
  return cost;
}

void CVelumCardChange::WriteBody(CVelumFile& aFile) const {
  aFile.WriteBoolean(iAdded);
  aFile.WriteInt(iCount);
  aFile.WriteInt(iAlloc);
  WriteIds(aFile, iIds);
  for (const Ref<CVelumCard>& card : iCards) CVelumReplay::WriteCard(aFile, *card);
}

void CVelumCardChange::ReadBody(CVelumFile& aFile) {
  iAdded = aFile.ReadBoolean();
  iCount = aFile.ReadInt();
  iAlloc = aFile.ReadInt();
  iIds = ReadIds(aFile);
  for (size_t i = 0; i < iIds.size(); ++i) iCards.push_back(CVelumReplay::ReadCard(aFile));
}
