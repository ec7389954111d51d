// What a text that comes in from outside may hold.
#pragma once

#include "core/CVelumError.h"

namespace CVelumImportLimits {

// A stack file holds texts of up to so many characters.
inline constexpr qsizetype EMaxText = 15000;

[[nodiscard]] inline bool Fits(const QString& aText) {
  return aText.size() <= EMaxText;
}
// Host error 6; aWhich ends in a blank and names the text.
[[noreturn]] inline void RaiseTooLong(const QString& aWhich) {
  CVelumError::RaiseHost(EHostOverflow, aWhich + u"has more than 15,000 characters."_s);
}

} // namespace CVelumImportLimits
