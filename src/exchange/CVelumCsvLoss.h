// Whether a value still says what its cell said.
#pragma once

#include "core/TVelumValue.h"

#include <QStringView>

namespace CVelumCsvLoss {

// Whether aValue gives the text of a cell back, but for separators of thousands that can be nothing else, a
// plus in front, zeros at the end of decimals, and the form of dates and times. Line ends don't count;
// doubled quotes are one quote too many.
[[nodiscard]] bool GivesBack(QStringView aItem, const TVelumValue& aValue);

} // namespace CVelumCsvLoss
