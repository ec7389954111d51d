// Start-up.
#pragma once

#include "core/CVelumSeams.h"

#include <QStringList>
#include <functional>

namespace CVelumMain {

// The path of the stack that a command line names: without blanks around it, and without the double quotes
// around what remains. A path of a file that exists is made absolute. Empty for an empty line; host error 5
// for a single double quote.
[[nodiscard]] QString StackPath(const QString& aCommandLine);

// The arguments of the process as one command line. A single one that is a file is put into quotes, so that
// blanks and quotes at the ends of its name count.
[[nodiscard]] QString CommandLine(const QStringList& aArguments);

// Brings the program up in its fixed order: libraries, messages, options, window manager, scripts, main
// window; then opens the stack of the command line, or the one that the options name. The welcome box greets
// whoever named no stack, if the options say so. Needs a QApplication. The main window lives until End; when
// the user has closed it, aEndProcess ends the process (by default QCoreApplication::exit). Tests give a
// presenter of their own in place of message boxes.
void Main(const QString& aCommandLine, CVelumPresenter* aPresenter = nullptr,
          std::function<void()> aEndProcess = {});
// Takes back what Main installed, for tests.
void End();

} // namespace CVelumMain
