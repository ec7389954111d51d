// Where CVelumArray keeps its elements.
#pragma once

#include "core/array/CVelumArrayBlocks.h"

#include <memory>

// One run of elements, or, once spread, blocks of them. Small, since every card has an array. Indices are the
// caller's to check.
class CVelumArrayStore {
public:
  [[nodiscard]] qint32 Count() const { return iBlocks ? iBlocks->Count() : iRun.Count(); }
  [[nodiscard]] TVelumCell& Cell(qint32 aIndex) const {
    return iBlocks ? iBlocks->Cell(aIndex) : iRun.Cell(aIndex);
  }
  // Whether there are string keys.
  [[nodiscard]] bool Keyed() const { return iRun.Keyed(); }
  // Only when keyed.
  [[nodiscard]] QString& Key(qint32 aIndex) const {
    return iBlocks ? iBlocks->Key(aIndex) : iRun.Key(aIndex);
  }

  // The blocks, when there are some.
  [[nodiscard]] const CVelumArrayBlocks* Blocks() const { return iBlocks.get(); }

  // Room for exactly aCount elements in one run.
  void Reserve(qint32 aCount) { iRun.Reserve(aCount); }
  void Insert(qint32 aIndex, TVelumCell&& aCell, QString&& aKey);
  void Append(TVelumCell&& aCell, QString&& aKey) { Insert(Count(), std::move(aCell), std::move(aKey)); }
  // The same for elements that have been reserved.
  void AppendReserved(TVelumCell&& aCell, QString&& aKey) { iRun.Append(std::move(aCell), std::move(aKey)); }
  void Erase(qint32 aIndex, qint32 aNum);
  // The element at i becomes the one that was at aOrder[i]; aOrder is a permutation.
  void Permute(const qint32* aOrder);
  void SetKeyed(bool aKeyed);
  // Puts more elements than one block holds into blocks.
  void Spread();
  // Puts all elements into one run.
  void Gather();

private:
  CVelumArrayRun iRun; // empty while there are blocks
  std::unique_ptr<CVelumArrayBlocks> iBlocks;
};
