// Values of a card behind the card's back, for documents that no program of ours would make.
#pragma once

#include "model/CVelumCard.h"

[[nodiscard]] inline CVelumArray& RawValues(CVelumCard& aCard) {
  return const_cast<CVelumArray&>(aCard.Value()); // NOLINT(cppcoreguidelines-pro-type-const-cast)
}
