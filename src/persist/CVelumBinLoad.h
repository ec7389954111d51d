// Reading a binary stack file.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

namespace CVelumBinLoad {

// Reads the stack and the state of its windows. The stack's blob store keeps the file open. Throws.
void Load(const QString& aFilename, Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);

// Whether the file can be loaded and its blobs stand where its table says. Asks nobody.
[[nodiscard]] bool IsWhole(const QString& aFilename);

} // namespace CVelumBinLoad
