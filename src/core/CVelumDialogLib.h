// What dialogs have in common and needs no window: the counted wait cursor, and checks of entries.
#pragma once

#include "core/CVelumConst.h"

#include <QString>

namespace CVelumDialogLib {

void BeginWait();
// Safe to call in surplus: the count never goes below 0.
void EndWait();
[[nodiscard]] int WaitCount();

// These two say what is wrong with an entry and set aBad, which they never clear. Blanks at both ends of
// aText don't count; aFieldName is what the message calls the entry.
void CheckNotEmpty(const QString& aFieldName, const QString& aText, bool& aBad);
// Digits and signs of a number of 16 bits, from aMin to aMax (ENoShort: no limit), or with aEmptyOk nothing.
void CheckInt(const QString& aFieldName, const QString& aText, bool aEmptyOk, bool& aBad, qint16 aMin,
              qint16 aMax);

} // namespace CVelumDialogLib
