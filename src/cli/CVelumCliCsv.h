// What the options of the CSV commands mean.
#pragma once

#include "cli/CVelumCommand.h"

namespace CVelumCliCsv {

// comma, semicolon, tab or a character that cells can be parted by. Throws TVelumUsage.
[[nodiscard]] QChar Delimiter(const QString& aText);
// The ECod... of latin1 or utf8. Throws TVelumUsage.
[[nodiscard]] qint32 Coding(const QString& aText);

} // namespace CVelumCliCsv
