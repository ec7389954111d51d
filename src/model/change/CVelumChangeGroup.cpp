#include "model/change/CVelumChangeGroup.h"

#include "core/CVelumMsg.h"
#include "model/change/CVelumCardChange.h"

using namespace CVelumChangeIo;

namespace {

[[noreturn]] void RefuseReplay(const CVelumChangeGroup& aGroup) {
  CVelumError::Throw(EMsgChangeDoesNotFit, u"CVelumChangeGroup"_s, aGroup.Name(), {});
}

} // namespace

void CVelumChangeGroup::Add(std::unique_ptr<CVelumChange> aChange) {
  iChanges.push_back(std::move(aChange));
  iCost = -1;
}

qint64 CVelumChangeGroup::Cost() const {
  if (iCost >= 0) return iCost;
  iCost = CostOf(iName);
  for (const auto& change : iChanges) iCost += change->Cost() + static_cast<qint64>(2 * sizeof(void*));
  return iCost;
}

void CVelumChangeGroup::Stow(CVelumPictureStash& aStash, bool aReverted) {
  for (const auto& change : iChanges)
    if (auto* child = dynamic_cast<CVelumChildChange*>(change.get()))
      child->Stow(aStash, child->IsAdded() != aReverted);
  iCost = -1;
}

TGoing CVelumChangeGroup::Going(bool aRevert) const {
  TGoing going;
  for (const auto& change : iChanges) {
    if (const auto* card = dynamic_cast<const CVelumCardChange*>(change.get())) {
      if (card->IsAdded() != aRevert) continue;
      for (const Ref<CVelumCard>& one : card->Cards())
        if (one->Stack()) going.iCards.push_back(one);
    } else if (const auto* child = dynamic_cast<const CVelumChildChange*>(change.get())) {
      if (child->Kind() == EChildBackground && child->IsAdded() == aRevert)
        going.iBackgrounds.push_back(static_cast<CVelumControlSet*>(child->Child().Get()));
    }
  }
  return going;
}

TReplayed CVelumChangeGroup::Apply(CVelumStack& aStack) const {
  CVelumReplay replay(aStack);
  size_t done = 0;
  while (done < iChanges.size() && iChanges[done]->Apply(replay)) ++done;
  const bool whole = done == iChanges.size();
  while (!whole && done > 0) static_cast<void>(iChanges[--done]->Revert(replay));
  const TReplayed replayed = replay.Finish();
  if (!whole) RefuseReplay(*this);
  return replayed;
}

TReplayed CVelumChangeGroup::Revert(CVelumStack& aStack) const {
  CVelumReplay replay(aStack);
  size_t left = iChanges.size();
  while (left > 0 && iChanges[left - 1]->Revert(replay)) --left;
  const bool whole = left == 0;
  while (!whole && left < iChanges.size()) static_cast<void>(iChanges[left++]->Apply(replay));
  const TReplayed replayed = replay.Finish();
  if (!whole) RefuseReplay(*this);
  return replayed;
}

void CVelumChangeGroup::Write(CVelumFile& aFile) const {
  WriteText(aFile, iName);
  aFile.WriteInt(static_cast<qint32>(iChanges.size()));
  for (const auto& change : iChanges) change->Write(aFile);
}

CVelumChangeGroup CVelumChangeGroup::Read(CVelumFile& aFile) {
  CVelumChangeGroup group(ReadText(aFile));
  const qint32 count = ReadCount(aFile, 1);
  for (qint32 i = 0; i < count; ++i) group.Add(CVelumChange::Read(aFile));
  return group;
}
