#include "runtime/lists/CVelumCardLines.h"

#include "core/CVelumValue.h"
#include "model/CVelumModelLib.h"

#include <algorithm>

namespace {

// What a value sorts by; undefined ones as the empty text.
TVelumLineKey KeyOf(const TVelumValue& aVal, const CVelumControl& aControl) {
  switch (aVal.Type()) {
  case EValInt:
    return {true, static_cast<double>(aVal.Int()), {}};
  case EValReal:
    return {true, aVal.Real(), {}};
  case EValDate:
    return {true, aVal.Date(), {}};
  case EValTime:
    return {true, aVal.Time(), {}};
  default:
    return {false, 0, CVelumValue::ValToExtText(aVal, aControl.FieldInfo())};
  }
}

} // namespace

CVelumCardLines::CVelumCardLines(const CVelumStack& aStack, const CVelumControlSet* aBackground, EShow aShow,
                                 const CVelumObject* aExclude)
    : iBackgroundId(aBackground ? aBackground->Id() : ENoInt), iShow(aShow) {
  iCards.reserve(static_cast<size_t>(aBackground ? aBackground->NumCards() : aStack.NumCards()));
  Ref<CVelumCard> card;
  qint32 index = 0;
  const auto next = [&] {
    return aBackground ? aStack.GetNextCardInBackground(aBackground->Id(), card, index)
                       : aStack.GetNextCard(card, index);
  };
  while (next())
    if (card.Get() != aExclude) iCards.push_back(std::move(card));
}

CVelumCard* CVelumCardLines::CardAt(int aIndex) const {
  if (aIndex < 0 || aIndex >= NumLines()) return nullptr;
  CVelumCard* card = iCards[static_cast<size_t>(aIndex)].Get();
  const CVelumStack* stack = card->Stack();
  return stack && stack->FindCard(card->Id()) == card ? card : nullptr;
}

int CVelumCardLines::FindByOrder(const CVelumCard& aCard) const {
  const CVelumStack* stack = aCard.Stack();
  if (!stack || stack->FindCard(aCard.Id()) != &aCard) return -1;
  qint32 num = 0;
  const qint32 place = stack->GetCardIndex(aCard, num);
  int low = 0;
  int high = NumLines();
  while (low < high) {
    const int middle = low + (high - low) / 2;
    const CVelumCard* card = CardAt(middle);
    if (!card || card == &aCard) return card ? middle : -1;
    if (stack->GetCardIndex(*card, num) < place)
      low = middle + 1;
    else
      high = middle;
  }
  return -1;
}

int CVelumCardLines::IndexOf(const CVelumObject* aObj) const {
  const auto* card = dynamic_cast<const CVelumCard*>(aObj);
  if (!card || (iBackgroundId != ENoInt && card->BackgroundId() != iBackgroundId)) return -1;
  if (const int index = FindByOrder(*card); index >= 0) return index;
  const auto at = std::find_if(iCards.begin(), iCards.end(),
                               [aObj](const Ref<CVelumCard>& aCard) { return aCard.Get() == aObj; });
  return at == iCards.end() ? -1 : static_cast<int>(at - iCards.begin());
}

QString CVelumCardLines::Line(int aIndex) const {
  CVelumCard* card = CardAt(aIndex);
  if (!card) return {};
  if (iShow == EShow::Name) return card->Name();
  return CVelumLib::LineOfCard(*card, iShow == EShow::NameFields);
}

const CVelumControl* CVelumCardLines::ControlAt(const CVelumCard& aCard, int aColumn) const {
  if (iShow == EShow::Name) return nullptr;
  int left = iShow == EShow::NameFields ? aColumn - 1 : aColumn;
  const CVelumStack* stack = aCard.Stack();
  const CVelumControlSet* set = stack ? stack->FindBackground(aCard.BackgroundId()) : nullptr;
  for (qint32 i = 0; set && i < set->NumControls(); ++i) {
    const CVelumControl* control = set->ControlAt(i);
    if (control && control->InCardList() && left-- == 0) return control;
  }
  return nullptr;
}

QString CVelumCardLines::Part(int aLine, int aColumn) const {
  CVelumCard* card = CardAt(aLine);
  if (!card) return {};
  if (IsName(aColumn)) return card->Name();
  const CVelumControl* control = ControlAt(*card, aColumn);
  if (!control) return {};
  return CVelumValue::ValToExtText(card->GetControlVal(control->Id(), false), control->FieldInfo());
}

TVelumLineKey CVelumCardLines::SortKey(int aLine, int aColumn) const {
  CVelumCard* card = CardAt(aLine);
  if (!card) return {};
  if (IsName(aColumn)) return {false, 0, card->Name()};
  const CVelumControl* control = ControlAt(*card, aColumn);
  return control ? KeyOf(card->GetControlVal(control->Id(), false), *control) : TVelumLineKey();
}
