// Where a key stands in a CVelumArray, or would stand.
#include "core/CVelumChecked.h"
#include "core/array/CVelumArray.h"
#include "core/text/CVelumCollation.h"

// Which of several equal elements is found, and where among them one is inserted, shows in files; so the
// middles are tried in just this sequence.
template <class TCompare> bool CVelumArray::Locate(const TCompare& aCompare, qint32& aIndex) const {
  aIndex = 0;
  if (iMax == 0) return false;
  int order = 0;
  for (qint32 lo = 0, hi = iMax - 1;;) {
    const qint32 mid = (lo + hi) / 2;
    aIndex = mid;
    order = aCompare(mid);
    if (order == 0) return true;
    if (lo >= hi || mid == (order > 0 ? iMax - 1 : 0)) break;
    if (order > 0)
      lo = mid + 1;
    else
      hi = mid - 1;
  }
  if (order > 0) ++aIndex;
  return false;
}

// Large arrays are searched run by run. Only where the key occurs more than once does it matter which middles
// are tried.
template <class TCompare> bool CVelumArray::LocateKey(const TCompare& aCompare, qint32& aIndex) const {
  const auto compare = [&](qint32 aMid) { return aCompare(StrKeyAt(aMid)); };
  if (!iStore.Blocks() || !iStore.Keyed()) return Locate(compare, aIndex);
  qint32 lo = 0;
  qint32 hi = 0;
  iStore.Blocks()->Narrow(aCompare, lo, hi);
  while (lo < hi) {
    aIndex = (lo + hi) / 2;
    const int order = compare(aIndex);
    if (order == 0) {
      const bool twice =
          (aIndex > 0 && compare(aIndex - 1) == 0) || (aIndex + 1 < iMax && compare(aIndex + 1) == 0);
      return twice ? Locate(compare, aIndex) : true;
    }
    if (order > 0)
      lo = aIndex + 1;
    else
      hi = aIndex;
  }
  aIndex = lo;
  return false;
}

bool CVelumArray::LocateStr(const QString& aKey, qint32& aIndex) const {
  if (WithSortKey()) {
    const Ref<CVelumKeyOrder> key = SortKey();
    const CVelumKeyOrder& order = CVelumChecked::Deref(key);
    return LocateKey([&](const QString& aOther) { return order.Compare(aKey, aOther) - 1; }, aIndex);
  }
  if (iFlags & EArrExactCase)
    return LocateKey([&](const QString& aOther) { return CVelumCollation::CompareBin(aKey, aOther); },
                     aIndex);
  const CVelumCollation::CSought sought(aKey);
  return LocateKey([&](const QString& aOther) { return sought.CompareTo(aOther); }, aIndex);
}

bool CVelumArray::LocateInt(qint32 aKey, qint32& aIndex) const {
  return Locate(
      [&](qint32 aMid) {
        const qint32 key = iStore.Cell(aMid).iIntKey;
        return (aKey > key) - (aKey < key);
      },
      aIndex);
}

int CVelumArray::CompareKeys(const QString& aA, const QString& aB) const {
  if (WithSortKey()) return CVelumChecked::Deref(SortKey()).Compare(aA, aB) - 1;
  if (iFlags & EArrExactCase) return CVelumCollation::CompareBin(aA, aB);
  return CVelumCollation::CompareKeys(aA, aB);
}

int CVelumArray::CompareElems(qint32 aA, qint32 aB) const {
  if (WithStrKey()) return CompareKeys(StrKeyAt(aA), StrKeyAt(aB));
  const qint32 a = iStore.Cell(aA).iIntKey;
  const qint32 b = iStore.Cell(aB).iIntKey;
  return (a > b) - (a < b);
}
