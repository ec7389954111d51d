// The command line: global options, the choice of the command, help, and what becomes of failures.
#pragma once

#include <QStringList>

namespace CVelumCli {

// Runs one command line (without the program's name); returns the exit status.
[[nodiscard]] int Run(const QStringList& aArguments);
// Whether that command line draws something, for which there must be a QApplication.
[[nodiscard]] bool NeedsWidgets(const QStringList& aArguments);

} // namespace CVelumCli
