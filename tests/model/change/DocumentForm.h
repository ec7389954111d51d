// The whole of a stack as bytes that two moments of it can be compared by.
#pragma once

#include "model/CVelumStack.h"

namespace DocumentForm {

// The stored form, with all computed lists made anew and without the dates that this moves, then the pictures
// with their counts. Records nothing.
[[nodiscard]] QByteArray Of(CVelumStack& aStack);
// Where two forms differ, with the bytes around; empty if they don't.
[[nodiscard]] QString Difference(const QByteArray& aA, const QByteArray& aB);

} // namespace DocumentForm
