#include "model/change/CVelumRecorder.h"

#include "model/change/CVelumCardChange.h"
#include "model/change/CVelumGapChange.h"
#include "model/change/CVelumMemberChange.h"

namespace {

// The recorders that live, the one that listens last: a stack that is opened beside the open one takes over,
// and gives back when it could not be opened.
std::vector<CVelumRecorder*> sRecorders;

void Listen() {
  CVelumRecord::gRecorder = sRecorders.empty() ? nullptr : sRecorders.back();
  CVelumSeams::SetCommandWatch(CVelumRecord::gRecorder);
}

} // namespace

CVelumRecorder::CVelumRecorder(CVelumStack& aStack, CVelumChangeTaker& aTaker)
    : iStack(aStack), iTaker(aTaker) {
  sRecorders.push_back(this);
  Listen();
}

CVelumRecorder::~CVelumRecorder() {
  std::erase(sRecorders, this);
  Listen();
}

void CVelumRecorder::CommandBegun(const QString& aName) {
  if (iNames.isEmpty()) HandOver(false);
  iNames.append(aName);
}

void CVelumRecorder::CommandEnded() {
  if (iNames.isEmpty()) return;
  iNames.removeLast();
  if (iNames.isEmpty()) HandOver(false);
}

void CVelumRecorder::TakeName() {
  if (!iGroup.Name().isEmpty()) return;
  const auto name =
      std::find_if(iNames.cbegin(), iNames.cend(), [](const QString& aName) { return !aName.isEmpty(); });
  if (name != iNames.cend()) iGroup.SetName(*name);
}

void CVelumRecorder::EndGroup() {
  HandOver(false);
}

// What passes the bound of a step is handed over at once: a deletion of millions of cards need not be kept
// whole.
void CVelumRecorder::Weigh(qint64 aCost) {
  iWeight += aCost;
  if (iWeight > iTaker.Bound()) HandOver(true);
}

void CVelumRecorder::HandOver(bool aMore) {
  if (iOrderAll) iOrderAll->Complete(iStack.CardOrder().State());
  iOrderAll = nullptr;
  iLastValue = nullptr;
  iFirstNew = std::numeric_limits<qint32>::max();
  iWeight = 0;
  CVelumChangeGroup group = std::exchange(iGroup, CVelumChangeGroup());
  const bool last = std::exchange(iPieces, aMore) && !aMore;
  if (!group.IsEmpty() || last) iTaker.Take(std::move(group), aMore);
}

void CVelumRecorder::Add(std::unique_ptr<CVelumChange> aChange) {
  if (iNames.isEmpty()) ++iStrays;
  iLastValue = nullptr;
  iGroup.Add(std::move(aChange));
  TakeName();
}

void CVelumRecorder::Member(const CVelumObject& aObj, TDocAddress aAddress, EMember aMember,
                            const TMemberVal& aOld, const TMemberVal& aNew) {
  if (aOld == aNew || CVelumReplay::Find(iStack, aAddress) != &aObj) return;
  if (aAddress.iKind == EDocCard && IsNew(aAddress.iId)) return;
  auto* last = dynamic_cast<CVelumMemberChange*>(iGroup.Last());
  if (last && last->Obj() == aAddress && last->Member() == aMember)
    last->SetNew(aNew);
  else
    Add(std::make_unique<CVelumMemberChange>(aAddress, aMember, aOld, aNew));
}

void CVelumRecorder::Value(const CVelumCard& aCard, qint32 aControlId, const TVelumValue* aOld,
                           const TVelumValue* aNew, qint32 aAlloc) {
  if (aCard.Stack() != &iStack || IsNew(aCard.Id())) return;
  auto change = std::make_unique<CVelumValueChange>(aCard.Id(), aControlId, aOld, aNew, aAlloc);
  CVelumValueChange* value = change.get();
  const qint64 cost = change->Cost();
  Add(std::move(change));
  iLastValue = value;
  Weigh(cost);
}

void CVelumRecorder::Moment(const CVelumCard& aCard, TCardMoment aOld, TCardMoment aNew) {
  if (aOld == aNew || aCard.Stack() != &iStack || IsNew(aCard.Id())) return;
  if (iLastValue && iLastValue->CardId() == aCard.Id()) {
    iLastValue->SetMoment(aOld, aNew);
    return;
  }
  Member(aCard, aCard.Address(), EMemberModDate, aOld.iDate, aNew.iDate);
  Member(aCard, aCard.Address(), EMemberModTime, aOld.iTime, aNew.iTime);
}

void CVelumRecorder::Key(bool aAdded, qint32 aIndexId, qint32 aPlace, const QString& aKey, qint32 aCardId,
                         qint32 aAlloc) {
  Add(std::make_unique<CVelumKeyChange>(aAdded, aIndexId, aPlace, aKey, aCardId, aAlloc));
}

void CVelumRecorder::Keys(bool aAdded, qint32 aIndexId, std::vector<TKeyEntry> aEntries, qint32 aOldAlloc,
                          qint32 aNewAlloc) {
  if (aEntries.empty() && aOldAlloc == aNewAlloc) return;
  auto change =
      std::make_unique<CVelumKeyBulkChange>(aAdded, aIndexId, std::move(aEntries), aOldAlloc, aNewAlloc);
  const qint64 cost = change->Cost();
  Add(std::move(change));
  Weigh(cost);
}

void CVelumRecorder::Order(bool aAdded, qint32 aCardId, qint32 aAfterId, qint32 aNum, qint32 aAlloc) {
  if (iOrderAll) return;
  Add(std::make_unique<CVelumOrderChange>(aAdded, aCardId, aAfterId, aNum, aAlloc));
}

void CVelumRecorder::OrderAll(const CVelumCardOrder& aOrder) {
  if (iOrderAll) return;
  auto change = std::make_unique<CVelumOrderAllChange>(aOrder.State());
  CVelumOrderAllChange* all = change.get();
  Add(std::move(change));
  iOrderAll = all;
}

void CVelumRecorder::Card(bool aAdded, CVelumCard& aCard, qint32 aCount, qint32 aAlloc) {
  if (aAdded) iFirstNew = std::min(iFirstNew, aCard.Id());
  auto* last = dynamic_cast<CVelumCardChange*>(iGroup.Last());
  if (!last || !last->Join(aAdded, &aCard))
    Add(std::make_unique<CVelumCardChange>(aAdded, &aCard, aCount, aAlloc));
  // A card that enters is the document's, and costs nothing here.
  Weigh(aAdded ? 0 : CVelumCardChange::CostOf(aCard));
}

void CVelumRecorder::Gap(qint32 aFirst, qint32 aGap, qint32 aCount, qint32 aAlloc) {
  Add(std::make_unique<CVelumGapChange>(aFirst, aGap, aCount, aAlloc));
  iFirstNew = iFirstNew >= aFirst ? iFirstNew - aGap : std::min(iFirstNew, aFirst - aGap);
}

void CVelumRecorder::Child(bool aAdded, EChild aKind, qint32 aOwnerId, qint32 aId, CVelumStored& aChild,
                           qint32 aAfterId, TChildAllocs aAllocs) {
  Add(std::make_unique<CVelumChildChange>(aAdded, aKind, aOwnerId, aId, &aChild, aAfterId, aAllocs));
}
