// The entities of XML documents.
#pragma once

#include <QString>

namespace CVelumLib {

// Replaces &, <, >, the double quote, ' and CR LF by their entities ("&eol;" stands for a line end, which
// other programs do not know). A lone CR or LF stays.
void EscapeXml(QString& aText);
// The reverse; any other "&..." stays as it is.
void UnescapeXml(QString& aText);

} // namespace CVelumLib
