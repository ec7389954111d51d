// Verifies where the parts of a binary stack file stand.
#pragma once

#include "model/CVelumStack.h"

#include <QStringList>

namespace CVelumLayoutCheck {

// A line of text per problem; none for a stack that was not loaded from a binary file.
[[nodiscard]] QStringList Run(const CVelumStack& aStack);

} // namespace CVelumLayoutCheck
