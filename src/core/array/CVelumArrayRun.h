// A contiguous piece of the storage of CVelumArray.
#pragma once

#include "core/TVelumValue.h"

// An element as it is stored. The integer key lies in the padding at the value's end, so that both together
// take 32 bytes.
struct TVelumCell : TVelumValue {
  TVelumCell() = default;
  TVelumCell(TVelumValue aVal, qint32 aIntKey) : TVelumValue(std::move(aVal)), iIntKey(aIntKey) {}
  [[nodiscard]] TVelumValue& Val() { return *this; }
  [[nodiscard]] const TVelumValue& Val() const { return *this; }

  qint32 iIntKey = ENoInt;
};
static_assert(sizeof(TVelumCell) == 32);

// Cells and, when it is keyed, a string key for each, in one allocation: the cells first, then the keys.
// Elements are relocated by copying their bytes. Indices are the caller's to check.
class CVelumArrayRun {
public:
  CVelumArrayRun() = default;
  explicit CVelumArrayRun(bool aKeyed) : iCapAndKeyed(aKeyed ? 1 : 0) {}
  CVelumArrayRun(CVelumArrayRun&& aOther) noexcept { Swap(aOther); }
  CVelumArrayRun& operator=(CVelumArrayRun&& aOther) noexcept {
    Swap(aOther);
    return *this;
  }
  CVelumArrayRun(const CVelumArrayRun&) = delete;
  CVelumArrayRun& operator=(const CVelumArrayRun&) = delete;
  ~CVelumArrayRun();

  [[nodiscard]] qint32 Count() const { return iCount; }
  [[nodiscard]] bool Keyed() const { return (iCapAndKeyed & 1) != 0; }
  [[nodiscard]] TVelumCell& Cell(qint32 aIndex) const { return iCells[aIndex]; }
  // Only when keyed.
  [[nodiscard]] QString& Key(qint32 aIndex) const { return Keys()[aIndex]; }

  // Room for aCap elements, and for no more; never shrinks. Host error 7 when there is no memory.
  void Reserve(qint32 aCap);
  // The key is dropped when the run has no keys.
  void Insert(qint32 aIndex, TVelumCell&& aCell, QString&& aKey);
  // Insert at the end, where Reserve has made room.
  void Append(TVelumCell&& aCell, QString&& aKey) {
    new (iCells + iCount) TVelumCell(std::move(aCell));
    if (Keyed()) new (Keys() + iCount) QString(std::move(aKey));
    ++iCount;
  }
  void Erase(qint32 aIndex, qint32 aNum);
  // Moves the elements of aFrom from aFirst on to the end of this run. Both must be alike in Keyed.
  void TakeTail(CVelumArrayRun& aFrom, qint32 aFirst);
  // The same elements, the one at i being the one that was at aOrder[i]; aOrder is a permutation.
  void Permute(const qint32* aOrder);
  // Adds empty keys, or drops all keys.
  void SetKeyed(bool aKeyed);

private:
  [[nodiscard]] QString* Keys() const { return reinterpret_cast<QString*>(iCells + Cap()); }
  [[nodiscard]] qint32 Cap() const { return static_cast<qint32>(iCapAndKeyed / 2); }
  // The next capacity that holds aCount elements.
  [[nodiscard]] qint32 GrownCap(qint32 aCount) const;
  void Swap(CVelumArrayRun& aOther) noexcept;

  TVelumCell* iCells = nullptr;
  qint32 iCount = 0;
  quint32 iCapAndKeyed = 0; // twice the capacity, and 1 when keyed: every card has a run
};
