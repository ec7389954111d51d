// The places that the card window has for fields.
#pragma once

#include "model/fields/CVelumControlSet.h"

namespace CVelumCsvPool {

// A card window shows at most so many of each kind, each with a label.
inline constexpr int ETextBoxes = 20;
inline constexpr int ELongTextBoxes = 10;
inline constexpr int ECheckBoxes = 10;
inline constexpr int ELabels = 30;

// Makes the fields invisible in the card view for which it has no place, in the order of the fields; returns
// their ids. The background has fields of the types of columns only, as an import makes them.
QList<qint32> TakeOut(const CVelumControlSet& aBackground);

} // namespace CVelumCsvPool
