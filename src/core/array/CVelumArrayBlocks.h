// The storage of large keyed arrays.
#pragma once

#include "core/array/CVelumArrayRun.h"

#include <vector>

// A sequence of runs of at most EBlock elements, with a tree of their counts (a binary indexed tree) that
// finds the run of an index. Inserting and erasing move at most a run; an access costs some ten steps among
// a million elements, and one when it is near the last one. Indices are the caller's to check.
class CVelumArrayBlocks {
public:
  static constexpr qint32 EBlock = 512;

  explicit CVelumArrayBlocks(bool aKeyed) : iKeyed(aKeyed) {}

  [[nodiscard]] qint32 Count() const { return iCount; }
  [[nodiscard]] TVelumCell& Cell(qint32 aIndex) const {
    const TPlace place = Locate(aIndex);
    return iRuns[place.iRun].Cell(place.iOffset);
  }
  [[nodiscard]] QString& Key(qint32 aIndex) const {
    const TPlace place = Locate(aIndex);
    return iRuns[place.iRun].Key(place.iOffset);
  }
  // The run in which a key is, or is to be, as a range of indices. aCompare(key) compares the sought key with
  // another one; the keys are ascending, and there are some. Only the first keys of runs are looked at, which
  // stay in the processor's cache from one search to the next.
  template <class TCompare> void Narrow(const TCompare& aCompare, qint32& aFirst, qint32& aEnd) const {
    size_t run = 0;
    for (size_t end = iRuns.size(); end - run > 1;) {
      const size_t mid = (run + end) / 2;
      (aCompare(iRuns[mid].Key(0)) >= 0 ? run : end) = mid;
    }
    aFirst = Enter(run);
    aEnd = aFirst + iRuns[run].Count();
  }
  void Insert(qint32 aIndex, TVelumCell&& aCell, QString&& aKey);
  void Erase(qint32 aIndex, qint32 aNum);
  // Takes all elements of a run; only into an empty object.
  void Spread(CVelumArrayRun& aFrom);
  // Appends all elements to a run, and is empty then.
  void Gather(CVelumArrayRun& aTo);

private:
  struct TPlace {
    size_t iRun;
    qint32 iOffset;
  };
  [[nodiscard]] TPlace Locate(qint32 aIndex) const {
    const qint32 offset = aIndex - iNearStart;
    if (iNearRun < iRuns.size() && offset >= 0 && offset < iRuns[iNearRun].Count()) return {iNearRun, offset};
    return LocateFar(aIndex);
  }
  [[nodiscard]] TPlace LocateFar(qint32 aIndex) const;
  // The index of a run's first element; the next accesses are near it.
  qint32 Enter(size_t aRun) const;
  void Append(TVelumCell&& aCell, QString&& aKey);
  void InsertInto(TPlace aPlace, TVelumCell&& aCell, QString&& aKey);
  void Split(size_t aRun);
  void RemoveEmpty();
  // Joins a run that has become small to the one behind it.
  void JoinNext(size_t aRun);
  void BuildTree() const;
  void Count(size_t aRun, qint32 aDelta);
  void ShapeChanged();

  std::vector<CVelumArrayRun> iRuns;
  qint32 iCount = 0;
  bool iKeyed;
  mutable std::vector<qint32> iTree; // empty when the runs have changed in number
  mutable size_t iNearRun = 0;       // the run of the last access ...
  mutable qint32 iNearStart = 0;     // ... and the index of its first element
};
