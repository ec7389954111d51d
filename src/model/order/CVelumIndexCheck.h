// Compares the indexes of a stack with its cards, entry by entry.
#pragma once

#include "model/CVelumStack.h"

#include <QBitArray>
#include <QStringList>

// A line of text for each entry that differs, and for each card that has none. Changes nothing.
class CVelumIndexCheck {
public:
  // The stack must live as long as the check. More lines than aMost are not made.
  explicit CVelumIndexCheck(const CVelumStack& aStack, qsizetype aMost) : iStack(aStack), iMost(aMost) {}

  [[nodiscard]] QStringList Order();
  [[nodiscard]] QStringList Names();
  // aIndex has the order of aKey.
  [[nodiscard]] QStringList Keys(const CVelumArray& aIndex, const CVelumSortKey& aKey);
  // The card's id in an entry; ENoInt if there is none, as damage leaves it.
  [[nodiscard]] static qint32 IdAt(const CVelumArray& aIndex, qint32 aAt) {
    const TVelumValue& val = aIndex.ValRef(aAt);
    return val.Type() == EValInt ? val.Int() : ENoInt;
  }
  // "card 3 'Ann'"
  [[nodiscard]] static QString CardText(const CVelumCard& aCard);

private:
  void Begin();
  void Add(const QString& aProblem) {
    if (iProblems.size() < iMost) iProblems.append(aProblem);
  }
  // The card that an entry stands for, or nothing.
  [[nodiscard]] Ref<CVelumCard> IndexedCard(const QString& aEntry, qint32 aId);
  void CheckAllSeen(const QString& aIndex, qint32 aBackgroundId);

  const CVelumStack& iStack;
  qsizetype iMost;
  QStringList iProblems;
  QBitArray iSeen; // cards that an entry stands for
};
