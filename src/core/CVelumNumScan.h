// The lenient reading of numbers, the same in every locale.
#pragma once

#include <QStringView>

namespace CVelumNumScan {

// The number at the start of a text: a sign, digits, a point, digits, an exponent, each of them as far as it
// is there. Blanks are skipped; what cannot continue the number ends it. 0 when there is no digit; host
// error 6 when the number is too large for a real.
[[nodiscard]] double Read(QStringView aText);

} // namespace CVelumNumScan
