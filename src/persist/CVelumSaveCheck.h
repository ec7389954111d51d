// What a save looks at before it writes anything.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

namespace CVelumSaveCheck {

// The bytes that stack and view take on file. Refuses (message EMsgCouldNotSave, with the card or background
// that is to blame) when there is something that could not be read back: a text over 15,000 characters, a
// block over 10,000,000 bytes or of none.
[[nodiscard]] qint64 Measure(CVelumStack& aStack, CVelumViewState& aView);

// Raises EMsgCouldNotSave with a reason.
[[noreturn]] void Refuse(const QString& aReason);

} // namespace CVelumSaveCheck
