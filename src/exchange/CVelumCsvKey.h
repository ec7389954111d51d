// Guesses about an imported background: whether a column can name the cards, and whether they are in order.
#pragma once

#include "exchange/CVelumCsvRows.h"
#include "model/CVelumStack.h"

namespace CVelumImports {

// Whether the items of a column can be names of cards: none is empty or missing, the header line's included,
// and at most one in 25 occurs before. Equal means exactly equal.
[[nodiscard]] bool TryCardName(const CVelumCsvRows& aRows, int aColumn);
// A sort key with the next id and the name of aControl1; aControl2 may be nothing. It is not yet the stack's.
[[nodiscard]] Ref<CVelumSortKey> MakeKey(const CVelumStack& aStack, qint32 aBackgroundId,
                                         const CVelumControl& aControl1, const CVelumControl* aControl2);
// Whether at most one card in 25 sorts below the one before it.
[[nodiscard]] bool CheckKeyOrder(const CVelumStack& aStack, qint32 aBackgroundId, const CVelumSortKey& aKey);
// Keeps the cards sorted by the first field, or the first two, if that is about the order in which they are.
// Nothing for a background that is kept sorted or has no field.
void GuessKey(CVelumStack& aStack, qint32 aBackgroundId);

} // namespace CVelumImports
