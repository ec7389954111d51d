// Functions of CVelumLib that need the windows of the open stack.
#pragma once

#include "model/CVelumFont.h"

#include <QFont>

class CVelumStack;
class CVelumStackView;

namespace CVelumLib {

// Registers the windows of this room with the window manager, installs the companions of controls, and
// measures the layout metrics. Called once at start.
void InitRuntime();
// A font of the toolkit; its size is HostPointSize(aExact).
[[nodiscard]] QFont MakeToolkitFont(const CVelumFont& aFont, bool aExact);
// Opens a stack in place of the one that is open. Failures are shown, and leave the open stack and its
// windows as they were. Returns whether the new stack is open.
bool HandleLoadStack(const QString& aPath);
// Opens the windows of another stack, which becomes the open one. When that fails, the one before is the open
// one again.
void ReplaceStack(const Ref<CVelumStack>& aStack, const Ref<CVelumStackView>& aView);

} // namespace CVelumLib
