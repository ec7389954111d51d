// The table of the commands.
#pragma once

#include "cli/CVelumCommand.h"

// A new command: a file CVelum…Command.cpp beside these, its line here, and one in the table.
namespace CVelumCommands {

[[nodiscard]] const TVelumCliCommand& Info();
[[nodiscard]] const TVelumCliCommand& Check();
[[nodiscard]] const TVelumCliCommand& Convert();
[[nodiscard]] const TVelumCliCommand& Search();
[[nodiscard]] const TVelumCliCommand& Cards();
[[nodiscard]] const TVelumCliCommand& Compile();
[[nodiscard]] const TVelumCliCommand& RunMessage();
[[nodiscard]] const TVelumCliCommand& Render();
[[nodiscard]] const TVelumCliCommand& Wiki();
[[nodiscard]] const TVelumCliCommand& ImportPicture();
[[nodiscard]] const TVelumCliCommand& ImportCsv();
[[nodiscard]] const TVelumCliCommand& ImportXml();
[[nodiscard]] const TVelumCliCommand& ImportText();
[[nodiscard]] const TVelumCliCommand& ExportCsv();
[[nodiscard]] const TVelumCliCommand& ExportXml();

// All, in the order in which the help lists them.
[[nodiscard]] const QList<const TVelumCliCommand*>& All();
// Null when there is no command of this name.
[[nodiscard]] const TVelumCliCommand* Find(const QString& aName);

} // namespace CVelumCommands
