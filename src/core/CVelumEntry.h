// Whether what was typed into a field is a value of the field from end to end.
#pragma once

#include "core/CVelumSeams.h"

#include <QString>

namespace CVelumEntry {

// Whether CVelumValue::ExtTextToVal reads aText to its last character, blanks at the ends aside, so that the
// value it gives is what was meant. Blank texts are, and so is every text of a field that takes texts as they
// stand. A number that is too large for its field is not.
[[nodiscard]] bool IsWhole(const QString& aText, const TVelumFieldInfo& aField);

} // namespace CVelumEntry
