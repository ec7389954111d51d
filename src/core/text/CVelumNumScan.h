// The lenient reading of numbers, the same in every locale.
#pragma once

#include <QStringView>

namespace CVelumNumScan {

// The number at the start of a text: blanks, a sign, digits, a point, digits, an exponent, each of them as
// far as it is there. What cannot continue the number ends it, a blank too; with aBlankGroups a blank or
// no-break space between two digits before the point is passed over. 0 when there is no digit; host error 6
// when the number is too large for a real.
[[nodiscard]] double Read(QStringView aText, bool aBlankGroups);
// The same, and whether nothing but blanks stands behind the number.
[[nodiscard]] double Read(QStringView aText, bool aBlankGroups, bool& aToTheEnd);

} // namespace CVelumNumScan
