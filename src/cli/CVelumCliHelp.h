// The texts of --help.
#pragma once

#include "cli/CVelumCommand.h"

namespace CVelumCliHelp {

// The options that every command takes, before or behind its name.
[[nodiscard]] const QList<TVelumOption>& GlobalOptions();
// Without a line end at the end.
[[nodiscard]] QString Overview();
[[nodiscard]] QString OfCommand(const TVelumCliCommand& aCommand);

} // namespace CVelumCliHelp
