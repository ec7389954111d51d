// Finds the cards that a computed list of cards is made of.
#pragma once

#include "core/TVelumValue.h"

#include <set>
#include <vector>

class CVelumCard;
class CVelumControl;
class CVelumStack;

// Finds cards by the value of a field, through an index of the values that is made at the first question
// about the field and then follows every change of a card: an edit costs the same in a stack of any size.
// Part of a stack.
class CVelumCardFinder {
public:
  using TCards = std::vector<CVelumCard*>;

  // The cards of a background in the order of the stack, whose value of the control (with zero values)
  // equals aVal; all of them for the control id ENoInt. aBasis is the stack's ListBasis.
  [[nodiscard]] TCards Find(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                            const TVelumValue& aVal, quint32 aBasis);
  // Makes the index of a field, which Find does by itself when there is none.
  void Build(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId, quint32 aBasis);
  // A card has got another value of a field, or lost its own; ENoInt: of any field, as a card that came to
  // its background has.
  void Note(CVelumCard& aCard, qint32 aControlId) {
    if (!iIndexes.empty()) NoteIn(aCard, aControlId);
  }
  // Fields have changed.
  void Clear() { iIndexes.clear(); }

private:
  // The hash of a value, and in the lower half the id of a card that has it, or had it once.
  using TEntry = quint64;
  struct TIndex {
    qint32 iBackgroundId;
    qint32 iControlId;
    quint32 iBasis = 0;                // when it was made
    QString iDefault = {};             // default value of the field
    int iType = EValUndef;             // of the values; EValUndef before the first one
    bool iMixed = false;               // there are values of several types
    std::vector<TEntry> iEntries = {}; // ascending
    std::set<TEntry> iLater = {};      // those that came since
  };

  [[nodiscard]] TIndex* IndexOf(qint32 aBackgroundId, qint32 aControlId);
  [[nodiscard]] static bool IsFresh(const TIndex& aIndex, const CVelumControl& aControl, quint32 aBasis);
  void NoteIn(CVelumCard& aCard, qint32 aControlId);
  [[nodiscard]] static TEntry EntryOf(TIndex& aIndex, CVelumCard& aCard);
  [[nodiscard]] static TCards Walk(const CVelumStack& aStack, qint32 aBackgroundId, qint32 aControlId,
                                   const TVelumValue& aVal);
  [[nodiscard]] static TCards LookUp(const TIndex& aIndex, const CVelumStack& aStack,
                                     const TVelumValue& aVal);

  std::vector<TIndex> iIndexes;
};
