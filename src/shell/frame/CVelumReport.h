// What the program says of its own doing.
#pragma once

#include "model/CVelumStack.h"

namespace CVelumReport {

// Says in the status bar of the main window what was done last. Stands there until the next report, or until
// the stack is closed.
void Done(const QString& aText);
// The same for cards that were imported from a file.
void Imported(const QString& aPath, qint64 aNumCards);
// "1 card", "1,234 cards".
[[nodiscard]] QString Cards(qint64 aNum);
// How many cards a stack has, and of which backgrounds: "12 cards: 5 of “People”, 7 of “Books”". Of very many
// backgrounds only the first are named.
[[nodiscard]] QString CardsOf(const CVelumStack& aStack);

} // namespace CVelumReport
