#include "model/change/CVelumOrderChange.h"

#include "model/change/CVelumReplay.h"

using namespace CVelumChangeIo;

namespace {

void WriteState(CVelumFile& aFile, const CVelumCardOrder::TState& aState) {
  WriteIds(aFile, aState.iIds);
  WriteIds(aFile, aState.iNums);
  for (const qint32 num : {aState.iId, aState.iFlags, aState.iAllocStep, aState.iAlloc, aState.iSortKeyId})
    aFile.WriteInt(num);
}

CVelumCardOrder::TState ReadState(CVelumFile& aFile) {
  CVelumCardOrder::TState state;
  state.iIds = ReadIds(aFile);
  state.iNums = ReadIds(aFile);
  Require(state.iIds.size() == state.iNums.size(), u"order"_s);
  for (qint32* num : {&state.iId, &state.iFlags, &state.iAllocStep, &state.iAlloc, &state.iSortKeyId})
    *num = aFile.ReadInt();
  return state;
}

qint64 CostOf(const CVelumCardOrder::TState& aState) {
  return static_cast<qint64>((aState.iIds.size() + aState.iNums.size()) * sizeof(qint32));
}

} // namespace

bool CVelumOrderChange::Apply(CVelumReplay& aReplay) {
  return aReplay.FitsOrder(iAlloc) && Replay(aReplay, iAdded, ENoInt);
}

bool CVelumOrderChange::Replay(CVelumReplay& aReplay, bool aAdd, qint32 aAlloc) const {
  return aAdd ? aReplay.AddToOrder(iCardId, iAfterId, iNum, aAlloc)
              : aReplay.RemoveFromOrder(iCardId, iAfterId, iNum, aAlloc);
}

void CVelumOrderChange::WriteBody(CVelumFile& aFile) const {
  aFile.WriteBoolean(iAdded);
  for (const qint32 num : {iCardId, iAfterId, iNum, iAlloc}) aFile.WriteInt(num);
}

void CVelumOrderChange::ReadBody(CVelumFile& aFile) {
  iAdded = aFile.ReadBoolean();
  for (qint32* num : {&iCardId, &iAfterId, &iNum, &iAlloc}) *num = aFile.ReadInt();
}

bool CVelumOrderAllChange::Apply(CVelumReplay& aReplay) {
  return aReplay.SetOrder(iBefore, iAfter);
}

bool CVelumOrderAllChange::Revert(CVelumReplay& aReplay) {
  return aReplay.SetOrder(iAfter, iBefore);
}

qint64 CVelumOrderAllChange::Cost() const {
  return static_cast<qint64>(sizeof(*this)) + CostOf(iBefore) + CostOf(iAfter);
}

void CVelumOrderAllChange::WriteBody(CVelumFile& aFile) const {
  WriteState(aFile, iBefore);
  WriteState(aFile, iAfter);
}

void CVelumOrderAllChange::ReadBody(CVelumFile& aFile) {
  iBefore = ReadState(aFile);
  iAfter = ReadState(aFile);
}
