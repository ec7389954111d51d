// Finds the cards that a computed list of cards is made of.
#pragma once

#include "core/TVelumValue.h"

#include <vector>

class CVelumCard;
class CVelumStack;

// Finds cards by the value of a field. The first question about a field walks the cards; a second one, while
// nothing has changed, sorts them by their values, so that the lists of all cards of a background together
// cost little more than one of them. Part of a stack.
class CVelumCardFinder {
public:
  using TCards = std::vector<CVelumCard*>;

  // The cards of a background in the order of the stack, whose value of the control (with zero values)
  // equals aVal; all of them for the control id ENoInt. aBasis is the stack's ListBasis.
  [[nodiscard]] TCards Find(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                            const TVelumValue& aVal, quint32 aBasis);

private:
  struct TEntry {
    size_t iHash; // of the value
    qint32 iId;   // of the card
  };
  [[nodiscard]] static bool ByHash(const TEntry& aA, const TEntry& aB) { return aA.iHash < aB.iHash; }
  struct TIndex {
    qint32 iBackgroundId;
    qint32 iControlId;
    quint32 iBasis;
    bool iBuilt = false;
    int iType = EValUndef; // of all values; EValUndef when they differ
    std::vector<TEntry> iEntries = {};
  };

  [[nodiscard]] TIndex& IndexOf(qint32 aBackgroundId, qint32 aControlId);
  void Build(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId, quint32 aBasis);
  [[nodiscard]] static TCards Walk(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                                   const TVelumValue& aVal);
  [[nodiscard]] static TCards LookUp(const TIndex& aIndex, const CVelumStack& aStack,
                                     const TVelumValue& aVal);

  std::vector<TIndex> iIndexes;
};
