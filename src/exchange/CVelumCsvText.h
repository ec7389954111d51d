// Texts of CSV files: UTF-8 in the file, UTF-16 in a stack.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace CVelumCsvText {

// Every character counts, also a byte order mark at the start.
[[nodiscard]] QString Wide(std::string_view aText);
// A lone half of a surrogate pair becomes U+FFFD.
void AppendUtf8(const QString& aText, std::string& aTo);

} // namespace CVelumCsvText
