// The commands that open a window.
#pragma once

#include "shell/frame/CVelumCommandTable.h"

class QWidget;

namespace CVelumFormCommands {

// Shows the window of the command beside the others and tells it what to show. A command about the current
// card or the focused field does nothing without one. A window that does not exist yet is excused by
// CVelumNotBuilt, over aFrame; aCaption is how the user knows the command.
void Show(const TVelumCommand& aCommand, const QString& aCaption, QWidget* aFrame);

} // namespace CVelumFormCommands
