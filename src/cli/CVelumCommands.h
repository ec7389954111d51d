// The table of the commands.
#pragma once

#include "cli/CVelumCommand.h"

// A new command: a file CVelum…Command.cpp beside these, its line here, and one in the table.
namespace CVelumCommands {

[[nodiscard]] const TVelumCommand& Info();
[[nodiscard]] const TVelumCommand& Check();
[[nodiscard]] const TVelumCommand& Convert();
[[nodiscard]] const TVelumCommand& Search();
[[nodiscard]] const TVelumCommand& Cards();
[[nodiscard]] const TVelumCommand& Compile();
[[nodiscard]] const TVelumCommand& RunMessage();
[[nodiscard]] const TVelumCommand& Render();
[[nodiscard]] const TVelumCommand& Wiki();
[[nodiscard]] const TVelumCommand& ImportPicture();
[[nodiscard]] const TVelumCommand& ImportCsv();
[[nodiscard]] const TVelumCommand& ImportXml();
[[nodiscard]] const TVelumCommand& ImportText();
[[nodiscard]] const TVelumCommand& ExportCsv();
[[nodiscard]] const TVelumCommand& ExportXml();

// All, in the order in which the help lists them.
[[nodiscard]] const QList<const TVelumCommand*>& All();
// Null when there is no command of this name.
[[nodiscard]] const TVelumCommand* Find(const QString& aName);

} // namespace CVelumCommands
