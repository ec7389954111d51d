// The sort of keyed arrays.
#pragma once

#include <QtGlobal>
#include <functional>
#include <vector>

namespace CVelumArraySort {

// The order in which aCount elements stand when sorted: at i the number of the element that comes i-th.
// aCompare(a, b) is negative, 0 or positive. Elements that compare equal come in the order that a Shell sort
// with the gaps 1, 4, 13, 40, ... leaves, which is not stable but visible in files.
[[nodiscard]] std::vector<qint32> Order(qint32 aCount, const std::function<int(qint32, qint32)>& aCompare);
// Sorted by merging; equal elements keep their order.
[[nodiscard]] std::vector<qint32> StableOrder(qint32 aCount,
                                              const std::function<int(qint32, qint32)>& aCompare);

} // namespace CVelumArraySort
