// The order in which a sorted display shows its lines.
#pragma once

#include "toolkit/CVelumLineSource.h"

#include <vector>

namespace CVelumListOrder {

// The lines 0 to aNumLines - 1 as they follow each other, sorted by a column: numbers before texts, as they
// differ; texts as the user's language has them, empty ones last. Lines that compare equal keep their order.
// Descending is the mirror image, with equal lines still in their order. A million lines take about a second.
[[nodiscard]] std::vector<int> Sorted(const CVelumLineSource& aSource, int aNumLines, int aColumn,
                                      bool aDescending);

} // namespace CVelumListOrder
