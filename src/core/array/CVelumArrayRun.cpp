#include "core/array/CVelumArrayRun.h"

#include "core/CVelumError.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

// Copies the bytes of aNum objects, which then count as gone from where they were.
template <class T> void Relocate(T* aTo, const T* aFrom, qint32 aNum) {
  if (aNum > 0)
    std::memmove(static_cast<void*>(aTo), static_cast<const void*>(aFrom),
                 static_cast<size_t>(aNum) * sizeof(T));
}

size_t BytesFor(qint32 aCap, bool aKeyed) {
  return static_cast<size_t>(aCap) * (sizeof(TVelumCell) + (aKeyed ? sizeof(QString) : 0));
}

} // namespace

CVelumArrayRun::~CVelumArrayRun() {
  if (Keyed()) std::destroy_n(Keys(), iCount);
  std::destroy_n(iCells, iCount);
  std::free(iCells);
}

void CVelumArrayRun::Reserve(qint32 aCap) {
  if (aCap <= Cap()) return;
  void* mem = std::realloc(static_cast<void*>(iCells), BytesFor(aCap, Keyed()));
  if (!mem) CVelumError::RaiseHost(EHostOutOfMemory);
  iCells = static_cast<TVelumCell*>(mem);
  const QString* oldKeys = Keys();
  iCapAndKeyed = static_cast<quint32>(aCap) * 2 + (Keyed() ? 1 : 0);
  if (Keyed()) Relocate(Keys(), oldKeys, iCount);
}

qint32 CVelumArrayRun::GrownCap(qint32 aCount) const {
  return aCount <= Cap() ? Cap() : std::max(aCount, Cap() + Cap() / 2 + 2);
}

void CVelumArrayRun::Insert(qint32 aIndex, TVelumCell&& aCell, QString&& aKey) {
  Reserve(GrownCap(iCount + 1));
  Relocate(iCells + aIndex + 1, iCells + aIndex, iCount - aIndex);
  new (iCells + aIndex) TVelumCell(std::move(aCell));
  if (Keyed()) {
    Relocate(Keys() + aIndex + 1, Keys() + aIndex, iCount - aIndex);
    new (Keys() + aIndex) QString(std::move(aKey));
  }
  ++iCount;
}

void CVelumArrayRun::Erase(qint32 aIndex, qint32 aNum) {
  const qint32 behind = aIndex + aNum;
  std::destroy_n(iCells + aIndex, aNum);
  Relocate(iCells + aIndex, iCells + behind, iCount - behind);
  if (Keyed()) {
    std::destroy_n(Keys() + aIndex, aNum);
    Relocate(Keys() + aIndex, Keys() + behind, iCount - behind);
  }
  iCount -= aNum;
}

void CVelumArrayRun::TakeTail(CVelumArrayRun& aFrom, qint32 aFirst) {
  const qint32 num = aFrom.iCount - aFirst;
  Reserve(iCount + num);
  Relocate(iCells + iCount, aFrom.iCells + aFirst, num);
  if (Keyed()) Relocate(Keys() + iCount, aFrom.Keys() + aFirst, num);
  iCount += num;
  aFrom.iCount = aFirst;
}

void CVelumArrayRun::Permute(const qint32* aOrder) {
  CVelumArrayRun sorted(Keyed());
  sorted.Reserve(iCount);
  for (qint32 i = 0; i < iCount; ++i) {
    Relocate(sorted.iCells + i, iCells + aOrder[i], 1);
    if (Keyed()) Relocate(sorted.Keys() + i, Keys() + aOrder[i], 1);
  }
  sorted.iCount = std::exchange(iCount, 0);
  Swap(sorted);
}

void CVelumArrayRun::SetKeyed(bool aKeyed) {
  if (aKeyed == Keyed()) return;
  CVelumArrayRun other(aKeyed);
  other.Reserve(iCount);
  Relocate(other.iCells, iCells, iCount);
  if (aKeyed)
    std::uninitialized_default_construct_n(other.Keys(), iCount);
  else
    std::destroy_n(Keys(), iCount);
  other.iCount = std::exchange(iCount, 0);
  Swap(other);
}

void CVelumArrayRun::Swap(CVelumArrayRun& aOther) noexcept {
  std::swap(iCells, aOther.iCells);
  std::swap(iCount, aOther.iCount);
  std::swap(iCapAndKeyed, aOther.iCapAndKeyed);
}
