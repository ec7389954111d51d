// The cards visited last, as a browser keeps pages.
#pragma once

#include "model/CVelumCard.h"

#include <array>

class CVelumHistory {
public:
  static constexpr qint16 EMaxLen = 10;

  // Makes aCard the newest entry and drops what lay ahead of the present place. Nothing happens when it is
  // the last entry already, wherever the present place is. The eleventh entry pushes out the oldest.
  void Add(const Ref<CVelumCard>& aCard);
  // One entry back or forward, or two when the first is aCur and there is one more. False at the end.
  [[nodiscard]] bool Prev(const Ref<CVelumCard>& aCur, Ref<CVelumCard>& aCard);
  [[nodiscard]] bool Next(const Ref<CVelumCard>& aCur, Ref<CVelumCard>& aCard);
  // Whether Prev, or Next, leads to another card than aCur, at once or when called again.
  [[nodiscard]] bool HasPrev(const Ref<CVelumCard>& aCur) const;
  [[nodiscard]] bool HasNext(const Ref<CVelumCard>& aCur) const;
  // Takes out each occurrence, and keeps the present place on the same card where it can.
  void Remove(const CVelumCard& aCard);
  void RemoveBackground(qint32 aBackgroundId);
  // Forgets all; the place becomes ENoShort.
  void Empty();

  // The present place; ENoShort when the stack was emptied.
  [[nodiscard]] qint16 Index() const { return iHistIndex; }
  [[nodiscard]] qint16 Len() const { return iHistLen; }
  // Nothing outside 0 to Len() - 1.
  [[nodiscard]] Ref<CVelumCard> At(qint16 aIndex) const;

private:
  void RemoveAt(qint16 aIndex);

  std::array<Ref<CVelumCard>, EMaxLen + 1> iHistory;
  qint16 iHistIndex = 0;
  qint16 iHistLen = 0;
};
