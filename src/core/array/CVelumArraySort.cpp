#include "core/array/CVelumArraySort.h"

#include <algorithm>
#include <numeric>

namespace {

using TCompare = std::function<int(qint32, qint32)>;

std::vector<qint32> Numbers(qint32 aCount) {
  std::vector<qint32> order(static_cast<size_t>(aCount));
  std::iota(order.begin(), order.end(), 0);
  return order;
}

void InsertionRound(std::vector<qint32>& aOrder, size_t aGap, const TCompare& aCompare) {
  for (size_t i = aGap; i < aOrder.size(); ++i) {
    const qint32 elem = aOrder[i];
    size_t to = i;
    for (; to >= aGap && aCompare(aOrder[to - aGap], elem) > 0; to -= aGap) aOrder[to] = aOrder[to - aGap];
    aOrder[to] = elem;
  }
}

std::vector<qint32> ShellOrder(qint32 aCount, const TCompare& aCompare) {
  std::vector<qint32> order = Numbers(aCount);
  size_t gap = 1;
  while (gap + 1 <= order.size()) gap = 3 * gap + 1; // the first that exceeds the last index
  for (gap /= 3; gap > 0; gap /= 3) InsertionRound(order, gap, aCompare);
  return order;
}

bool AnyEqual(const std::vector<qint32>& aOrder, const TCompare& aCompare) {
  return std::adjacent_find(aOrder.begin(), aOrder.end(),
                            [&](qint32 aA, qint32 aB) { return aCompare(aA, aB) == 0; }) != aOrder.end();
}

} // namespace

std::vector<qint32> CVelumArraySort::Order(qint32 aCount, const TCompare& aCompare) {
  // Without equal elements every sort gives the same; the Shell sort is several times slower.
  std::vector<qint32> order = StableOrder(aCount, aCompare);
  return AnyEqual(order, aCompare) ? ShellOrder(aCount, aCompare) : order;
}

std::vector<qint32> CVelumArraySort::StableOrder(qint32 aCount, const TCompare& aCompare) {
  std::vector<qint32> order = Numbers(aCount);
  std::stable_sort(order.begin(), order.end(), [&](qint32 aA, qint32 aB) { return aCompare(aA, aB) < 0; });
  return order;
}
