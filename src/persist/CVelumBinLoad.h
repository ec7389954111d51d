// Reading a binary stack file.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

namespace CVelumBinLoad {

// Reads the stack and the state of its windows from aFile, which is open (EFilReadWrite) and named as the
// stack is to be. The stack's blob store keeps the file. Throws; the out-arguments are only set when all went
// well.
void Load(const Ref<CVelumFile>& aFile, Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);

} // namespace CVelumBinLoad
