#include "core/array/CVelumArrayBlocks.h"

#include <algorithm>
#include <bit>

void CVelumArrayBlocks::Insert(qint32 aIndex, TVelumCell&& aCell, QString&& aKey) {
  if (aIndex == iCount) return Append(std::move(aCell), std::move(aKey));
  TPlace place = Locate(aIndex);
  if (iRuns[place.iRun].Count() >= EBlock) {
    Split(place.iRun);
    place = Locate(aIndex);
  }
  InsertInto(place, std::move(aCell), std::move(aKey));
}

// A full last run is left full: rising keys, the usual case, fill every run.
void CVelumArrayBlocks::Append(TVelumCell&& aCell, QString&& aKey) {
  if (iRuns.empty() || iRuns.back().Count() >= EBlock) {
    iRuns.emplace_back(iKeyed);
    ShapeChanged();
  }
  InsertInto({iRuns.size() - 1, iRuns.back().Count()}, std::move(aCell), std::move(aKey));
}

void CVelumArrayBlocks::InsertInto(TPlace aPlace, TVelumCell&& aCell, QString&& aKey) {
  CVelumArrayRun& run = iRuns[aPlace.iRun];
  run.Reserve(EBlock);
  run.Insert(aPlace.iOffset, std::move(aCell), std::move(aKey));
  Count(aPlace.iRun, 1);
}

void CVelumArrayBlocks::Erase(qint32 aIndex, qint32 aNum) {
  while (aNum > 0) {
    const TPlace place = Locate(aIndex);
    CVelumArrayRun& run = iRuns[place.iRun];
    const qint32 num = std::min(aNum, run.Count() - place.iOffset);
    run.Erase(place.iOffset, num);
    Count(place.iRun, -num);
    aNum -= num;
    if (aNum == 0 && run.Count() > 0) JoinNext(place.iRun);
  }
  RemoveEmpty();
}

void CVelumArrayBlocks::Spread(CVelumArrayRun& aFrom) {
  const qint32 count = aFrom.Count();
  iRuns.resize(static_cast<size_t>((count + EBlock - 1) / EBlock));
  for (size_t i = iRuns.size(); i-- > 0;) {
    CVelumArrayRun run(iKeyed);
    run.TakeTail(aFrom, static_cast<qint32>(i) * EBlock);
    iRuns[i] = std::move(run);
  }
  iCount = count;
  ShapeChanged();
}

void CVelumArrayBlocks::Gather(CVelumArrayRun& aTo) {
  aTo.Reserve(aTo.Count() + iCount);
  for (CVelumArrayRun& run : iRuns) aTo.TakeTail(run, 0);
  iRuns.clear();
  iCount = 0;
  ShapeChanged();
}

CVelumArrayBlocks::TPlace CVelumArrayBlocks::LocateFar(qint32 aIndex) const {
  if (iTree.empty()) BuildTree();
  size_t run = 0;
  qint32 left = aIndex;
  for (size_t step = std::bit_floor(iTree.size()); step > 0; step /= 2)
    if (run + step < iTree.size() && iTree[run + step] <= left) {
      run += step;
      left -= iTree[run];
    }
  iNearRun = run;
  iNearStart = aIndex - left;
  return {run, left};
}

qint32 CVelumArrayBlocks::Enter(size_t aRun) const {
  if (iTree.empty()) BuildTree();
  qint32 start = 0;
  for (size_t i = aRun; i > 0; i &= i - 1) start += iTree[i];
  iNearRun = aRun;
  iNearStart = start;
  return start;
}

void CVelumArrayBlocks::Split(size_t aRun) {
  CVelumArrayRun upper(iKeyed);
  upper.Reserve(EBlock);
  upper.TakeTail(iRuns[aRun], iRuns[aRun].Count() / 2);
  iRuns.insert(iRuns.begin() + static_cast<std::ptrdiff_t>(aRun) + 1, std::move(upper));
  ShapeChanged();
}

void CVelumArrayBlocks::RemoveEmpty() {
  if (std::erase_if(iRuns, [](const CVelumArrayRun& aRun) { return aRun.Count() == 0; }) > 0) ShapeChanged();
}

void CVelumArrayBlocks::JoinNext(size_t aRun) {
  if (aRun + 1 >= iRuns.size()) return;
  if (iRuns[aRun].Count() + iRuns[aRun + 1].Count() > EBlock / 2) return;
  iRuns[aRun].TakeTail(iRuns[aRun + 1], 0);
  iRuns.erase(iRuns.begin() + static_cast<std::ptrdiff_t>(aRun) + 1);
  ShapeChanged();
}

// Entry i (from 1) holds the elements of the last lowbit(i) runs up to run i - 1.
void CVelumArrayBlocks::BuildTree() const {
  iTree.assign(iRuns.size() + 1, 0);
  for (size_t i = 1; i < iTree.size(); ++i) {
    iTree[i] += iRuns[i - 1].Count();
    const size_t parent = i + (i & (~i + 1));
    if (parent < iTree.size()) iTree[parent] += iTree[i];
  }
}

void CVelumArrayBlocks::Count(size_t aRun, qint32 aDelta) {
  iCount += aDelta;
  for (size_t i = aRun + 1; i < iTree.size(); i += i & (~i + 1)) iTree[i] += aDelta;
  if (iNearRun > aRun) iNearStart += aDelta;
}

void CVelumArrayBlocks::ShapeChanged() {
  iTree.clear();
  iNearRun = iRuns.size();
}
