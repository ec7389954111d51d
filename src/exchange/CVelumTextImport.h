// Import of plain text: cards of 50 lines.
#pragma once

#include "exchange/CVelumStep.h"
#include "model/CVelumStackHost.h"

namespace CVelumImports {

// Replaces the cards of a background by the lines of a file, 50 to a card, in its field "Text"; shows
// EMsgControlMissing when there is no such field. A file whose lines fill the last card,
// as an empty one, gives one more card without a text. The file is read to its end before a card goes: a
// failure leaves the stack as it was, and so do a missing field and aStep giving up (false is returned). 50
// lines of more than 15,000 characters are host error 6 that names them.
bool ImportTextFile(const QString& aPath, const Ref<CVelumControlSet>& aBackground, CVelumStackHost& aHost,
                    const TVelumStep& aStep = {});

} // namespace CVelumImports
