#include "core/array/CVelumArrayStore.h"

void CVelumArrayStore::Insert(qint32 aIndex, TVelumCell&& aCell, QString&& aKey) {
  if (iBlocks)
    iBlocks->Insert(aIndex, std::move(aCell), std::move(aKey));
  else
    iRun.Insert(aIndex, std::move(aCell), std::move(aKey));
}

void CVelumArrayStore::Erase(qint32 aIndex, qint32 aNum) {
  if (!iBlocks) return iRun.Erase(aIndex, aNum);
  iBlocks->Erase(aIndex, aNum);
  if (iBlocks->Count() == 0) iBlocks.reset();
}

void CVelumArrayStore::Permute(const qint32* aOrder) {
  const bool spread = iBlocks != nullptr;
  Gather();
  iRun.Permute(aOrder);
  if (spread) Spread();
}

void CVelumArrayStore::SetKeyed(bool aKeyed) {
  const bool spread = iBlocks != nullptr;
  Gather();
  iRun.SetKeyed(aKeyed);
  if (spread) Spread();
}

void CVelumArrayStore::Spread() {
  if (iBlocks || iRun.Count() <= CVelumArrayBlocks::EBlock) return;
  auto blocks = std::make_unique<CVelumArrayBlocks>(iRun.Keyed());
  blocks->Spread(iRun);
  iRun = CVelumArrayRun(iRun.Keyed());
  iBlocks = std::move(blocks);
}

void CVelumArrayStore::Gather() {
  if (!iBlocks) return;
  iBlocks->Gather(iRun);
  iBlocks.reset();
}
