// What the import commands print of what they have made.
#pragma once

#include "cli/CVelumCommand.h"
#include "model/CVelumStack.h"

#include <QJsonArray>
#include <QJsonObject>

namespace CVelumImportFacts {

// A background into which an import has brought aCards cards.
[[nodiscard]] QJsonObject Of(const CVelumControlSet& aBackground, qint32 aCards);
// The same with its fields, and what names and sorts the cards.
[[nodiscard]] QJsonObject WithFields(CVelumControlSet& aBackground, qint32 aCards);
// Facts of the whole: the file that was read, the stack as it was saved, the backgrounds.
[[nodiscard]] QJsonObject Of(const QString& aFile, const QString& aOut, const QJsonArray& aBackgrounds);
// A line for each background.
[[nodiscard]] QString AsText(const QJsonObject& aFacts);
// Prints the facts, as JSON if that was wanted. Beside a stack that goes to standard output they go to
// standard error.
void Print(const QJsonObject& aFacts, const TVelumArgs& aArgs, CVelumTerminal& aTerminal);
// Throws TVelumUsage where stack and JSON would both go to standard output.
void CheckOutput(const QString& aOut, const TVelumArgs& aArgs);

} // namespace CVelumImportFacts
