// The lines of cards, made as they are seen.
#pragma once

#include "model/CVelumStack.h"
#include "runtime/lists/CVelumListBox.h"

#include <vector>

// Holds references to its cards. A card that has left its stack is skipped: its line is empty, it is no
// object and never read.
class CVelumCardLines final : public CVelumLineProvider {
public:
  enum class EShow {
    Name,      // the name alone
    Fields,    // the fields that stand in the card list
    NameFields // both
  };

  // All cards in the order of the stack, or those of aBackground, but aExclude (may be null).
  CVelumCardLines(const CVelumStack& aStack, const CVelumControlSet* aBackground, EShow aShow,
                  const CVelumObject* aExclude = nullptr);

  [[nodiscard]] int NumLines() const override { return static_cast<int>(iCards.size()); }
  [[nodiscard]] QString Line(int aIndex) const override;
  [[nodiscard]] Ref<CVelumObject> Obj(int aIndex) const override { return CardAt(aIndex); }
  [[nodiscard]] int IndexOf(const CVelumObject* aObj) const override;
  [[nodiscard]] QString Part(int aLine, int aColumn) const override;
  [[nodiscard]] TVelumLineKey SortKey(int aLine, int aColumn) const override;

private:
  [[nodiscard]] CVelumCard* CardAt(int aIndex) const;
  // The line of a card by its place in the stack, which is quick; -1 where the stack has another order than
  // the lines.
  [[nodiscard]] int FindByOrder(const CVelumCard& aCard) const;
  // The field of a column, or null for none.
  [[nodiscard]] const CVelumControl* ControlAt(const CVelumCard& aCard, int aColumn) const;
  [[nodiscard]] bool IsName(int aColumn) const { return aColumn == 0 && iShow != EShow::Fields; }

  std::vector<Ref<CVelumCard>> iCards;
  qint32 iBackgroundId; // ENoInt for all
  EShow iShow;
};
