// The keyed array as it is described, word by word, over a vector of whole elements: what CVelumArray is
// compared with.
#pragma once

#include "core/array/CVelumArray.h"
#include "core/text/CVelumCollation.h"

#include <vector>

class NaiveArray {
public:
  NaiveArray(qint32 aFlags, qint32 aType, const CVelumKeyOrder* aOrder)
      : iFlags(aFlags), iType(aType), iOrder(aOrder), iElem(11) {}

  [[nodiscard]] bool WithKey() const { return (iFlags & (EArrStrKey | EArrIntKey)) != 0; }
  [[nodiscard]] bool WithObj() const { return iType >= EValCard || (iFlags & EArrMixed) != 0; }

  void Create(const TVelumElem& aElem, qint32 aIndex) {
    qint32 index = aIndex;
    if (WithKey())
      static_cast<void>(Locate(aElem, index));
    else if (index == ENoInt)
      index = iMax;
    MakeRoomAt(index, 1);
    At(index) = aElem;
  }

  bool Locate(const TVelumElem& aKey, qint32& aIndex) const {
    aIndex = 0;
    if (iMax == 0) return false;
    qint32 lo = 0;
    qint32 hi = iMax - 1;
    bool found = false;
    bool greater = false;
    for (;;) {
      const qint32 mid = (lo + hi) / 2;
      aIndex = mid;
      const int order = Compare(aKey, At(mid));
      greater = order > 0;
      if (order == 0) {
        found = true;
        break;
      }
      if (lo >= hi) break;
      if (greater) {
        if (mid >= iMax - 1) break;
        lo = mid + 1;
      } else {
        if (mid == 0) break;
        hi = mid - 1;
      }
    }
    if (!found && greater) ++aIndex;
    return found;
  }

  void MakeRoomAt(qint32 aIndex, qint32 aNum) {
    if (iMax + aNum > iAlloc) {
      iAlloc = iMax + aNum + 50;
      if (static_cast<size_t>(iAlloc) + 1 > iElem.size()) iElem.resize(static_cast<size_t>(iAlloc) + 1);
    }
    for (qint32 i = iMax; i-- > aIndex;) At(i + aNum) = At(i);
    iMax += aNum;
  }

  void DeleteAt(qint32 aIndex, qint32 aNum) {
    for (qint32 i = aIndex; i < iMax - aNum; ++i) At(i) = At(i + aNum);
    iMax -= aNum;
  }

  void Move(qint32 aFrom, qint32 aNum, qint32 aTo, qint32 aStep) {
    if (aNum == 0 || aTo == aFrom || aTo == aFrom + aNum) return;
    MakeRoomAt(aTo, aNum);
    const qint32 from = aTo < aFrom ? aFrom + aNum : aFrom;
    for (qint32 i = 0; i < aNum; ++i) At(aTo + i) = At(from + i);
    DeleteAt(from, aNum);
    if (aStep == 0) return;
    for (qint32 i = 0; i < iMax; ++i) At(i).iIntKey = aStep * (i + 1);
  }

  void SetToLastObj() {
    while (iMax > 0 && !At(iMax - 1).iVal.Obj()) --iMax;
    if (iAlloc > iMax + 50) iAlloc = iMax + 50;
  }

  [[nodiscard]] bool ReadObjByNum(qint32 aNum, qint32& aIndex) const {
    qint32 num = 0;
    for (aIndex = 0; aIndex <= iAlloc; ++aIndex)
      if (At(aIndex).iVal.Obj() && num++ == aNum) return true;
    return false;
  }

  // The Shell sort by a comparison of elements.
  template <class TGreater> void Sort(const TGreater& aGreater) {
    qint32 gap = 1;
    while (gap <= iMax - 1) gap = 3 * gap + 1;
    do {
      gap /= 3;
      for (qint32 i = gap; gap > 0 && i < iMax; ++i) {
        const TVelumElem elem = At(i);
        qint32 j = i;
        for (; j >= gap && aGreater(At(j - gap), elem); j -= gap) At(j) = At(j - gap);
        At(j) = elem;
      }
    } while (gap > 0);
  }

  [[nodiscard]] int Compare(const TVelumElem& aA, const TVelumElem& aB) const {
    if (!(iFlags & EArrStrKey)) return (aA.iIntKey > aB.iIntKey) - (aA.iIntKey < aB.iIntKey);
    if (iFlags & EArrSortKey) return iOrder->Compare(aA.iStrKey, aB.iStrKey) - 1;
    if (iFlags & EArrExactCase) return CVelumCollation::CompareBin(aA.iStrKey, aB.iStrKey);
    return CVelumCollation::Compare(CVelumCollation::CollationKey(aA.iStrKey),
                                    CVelumCollation::CollationKey(aB.iStrKey));
  }

  [[nodiscard]] TVelumElem& At(qint32 aIndex) { return iElem.at(static_cast<size_t>(aIndex)); }
  [[nodiscard]] const TVelumElem& At(qint32 aIndex) const { return iElem.at(static_cast<size_t>(aIndex)); }

  qint32 iFlags;
  qint32 iType;
  const CVelumKeyOrder* iOrder;
  qint32 iAlloc = 10;
  qint32 iMax = 0;
  std::vector<TVelumElem> iElem;
};
