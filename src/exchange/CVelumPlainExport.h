// The cards of a background as CSV for other programs, and for an exact import.
#pragma once

#include "exchange/CVelumStep.h"
#include "model/fields/CVelumControlSet.h"

#include <QStringList>

namespace CVelumPlainExport {

// A line with the names of the fields, and a line for each card in the order of the stack: UTF-8 without a
// mark, lines that end with CR LF, quotes only where a cell needs them, values as CVelumCsvForms::AppendPlain
// writes them, and nothing for a field without a value of its own. Line ends inside of values stay as they
// are. Commands have no values; pictures and computed lists, whose names aLeftOut gets, are left out.
// A failure, or aStep giving up (then the result is false), leaves what was at aPath.
bool Write(const QString& aPath, const CVelumControlSet& aBackground, QChar aDelim = u',',
           const TVelumStep& aStep = {}, QStringList* aLeftOut = nullptr);

} // namespace CVelumPlainExport
