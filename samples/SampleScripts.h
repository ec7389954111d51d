// What the sample stack does by itself.
#pragma once

#include "model/CVelumStack.h"

namespace SampleScripts {

// Puts a counter that reacts to a change, a report over all countries and a leap to any card on a
// background.
void AddTo(CVelumStack& aStack, CVelumControlSet& aBackground);
// Gives a wiki field the script that leads to any card of a background which a link names.
void AddLeap(CVelumControl& aField);

} // namespace SampleScripts
