// Functions of CVelumLib that need the model.
#pragma once

#include "model/CVelumStack.h"

namespace CVelumLib {

// The default width of a part of a sort key; asserts "SortKeyLen type".
[[nodiscard]] qint16 SortKeyLen(const CVelumControl& aControl);
// The effective font of a field on a card: stack, background, card, control (or null), defaults.
[[nodiscard]] Ref<CVelumFont> EvalFont(const CVelumCard& aCard, const CVelumControl* aControl);
// The font of lists: the stack's list font (stack may be null), defaults.
[[nodiscard]] Ref<CVelumFont> EvalListFont(const CVelumStack* aStack);
// False for nothing.
[[nodiscard]] bool ObjChanged(const CVelumObject* aObj);
// "Stack", "Background", "Card", "Control" for the levels 0 to 3 of fonts and colours.
[[nodiscard]] QString LevelToStr(int aLevel);
// A card's line in the card list: the name if aWithName, then the values of the fields shown there, parted
// by tabs.
[[nodiscard]] QString LineOfCard(CVelumCard& aCard, bool aWithName);

} // namespace CVelumLib
