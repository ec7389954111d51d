// What the options of the CSV commands mean.
#pragma once

#include "cli/CVelumCommand.h"
#include "exchange/CVelumCsvSource.h"

namespace CVelumCliCsv {

// comma, semicolon, tab or a character that cells can be parted by. Throws TVelumUsage.
[[nodiscard]] QChar Delimiter(const QString& aText);
// The ECod... of latin1 or utf8. Throws TVelumUsage.
[[nodiscard]] qint32 Coding(const QString& aText);
// The same for an exact import, which also reads utf16.
[[nodiscard]] ECsvEncoding Encoding(const QString& aText);
// The type of a field by its name, in any case. Throws TVelumUsage.
[[nodiscard]] qint32 Type(const QString& aText);
// A column by its name, or by its number from 1; the names are those of the columns. Throws TVelumUsage.
[[nodiscard]] int Column(const QString& aText, const QStringList& aNames);
// "COLUMN=REST" taken apart at the last "=". Throws TVelumUsage.
[[nodiscard]] std::pair<QString, QString> Assignment(const QString& aText, const QString& aOption);
// The types by column that the options --type say.
[[nodiscard]] QHash<int, qint32> Types(const TVelumArgs& aArgs, const QStringList& aNames);

} // namespace CVelumCliCsv
