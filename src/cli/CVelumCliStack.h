// The open stack of a command: what HandleLoadStack is to the desktop program.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

struct TVelumOpenStack {
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};

namespace CVelumCliStack {

// Loads a stack file and makes it gStack. Throws as the loader does; order corrections are told.
[[nodiscard]] TVelumOpenStack Open(const QString& aPath);
// Throws EMsgBackgroundNotFound when the stack has no background of that name.
[[nodiscard]] Ref<CVelumControlSet> BackgroundByName(const CVelumStack& aStack, const QString& aName);
// aText with a blank for each line end, so that it stays on one line of output.
[[nodiscard]] QString OneLine(QString aText);

} // namespace CVelumCliStack
