// Start-up.
#pragma once

#include "core/CVelumSeams.h"

namespace CVelumMain {

// The path of the stack that a command line names: trimmed, and without the double quotes around it. A path
// of a file that exists is made absolute. Empty for an empty line; host error 5 for a single double quote.
[[nodiscard]] QString StackPath(const QString& aCommandLine);

// Brings the program up in its fixed order: libraries, settings, window manager, main window; then opens the
// stack of the command line, or the one that is to be opened at start. Needs a QApplication. The main window
// lives until End. Tests give a presenter of their own in place of message boxes.
void Main(const QString& aCommandLine, CVelumPresenter* aPresenter = nullptr);
// Takes back what Main installed, for tests.
void End();

} // namespace CVelumMain
