// Cards that an import has made, on their way into a stack.
#pragma once

#include "model/CVelumStackHost.h"

#include <vector>

class CVelumNewCards {
public:
  void Reserve(qint64 aCount) { iCards.reserve(static_cast<size_t>(aCount)); }
  void Append(Ref<CVelumCard> aCard) { iCards.push_back(std::move(aCard)); }
  [[nodiscard]] qint32 Count() const { return static_cast<qint32>(iCards.size()); }
  [[nodiscard]] const Ref<CVelumCard>& At(qint32 aIndex) const { return iCards[static_cast<size_t>(aIndex)]; }

  // Adds the cards in front of aNextCard (nothing: at the end): all, or none when that fails.
  void Add(CVelumStack& aStack, const Ref<CVelumCard>& aNextCard) const;
  // The same behind the cards of a background of aHost's stack, which then go: a failure leaves them there.
  void Replace(CVelumStackHost& aHost, const Ref<CVelumControlSet>& aBackground) const;

private:
  void TakeBack(CVelumStack& aStack) const;

  std::vector<Ref<CVelumCard>> iCards;
};
