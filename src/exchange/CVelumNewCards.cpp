#include "exchange/CVelumNewCards.h"

#include "core/CVelumChecked.h"
#include "exchange/CVelumImports.h"

void CVelumNewCards::TakeBack(CVelumStack& aStack) const {
  for (auto card = iCards.rbegin(); card != iCards.rend(); ++card)
    if ((*card)->Stack() == &aStack) aStack.DeleteCard(*card);
  aStack.EndBulk();
}

void CVelumNewCards::Add(CVelumStack& aStack, const Ref<CVelumCard>& aNextCard) const {
  aStack.BeginBulk(Count());
  try {
    for (const Ref<CVelumCard>& card : iCards) aStack.AddCard(card, aNextCard, false);
    aStack.EndBulk();
  } catch (...) {
    TakeBack(aStack);
    throw;
  }
}

void CVelumNewCards::Replace(CVelumStackHost& aHost, const Ref<CVelumControlSet>& aBackground) const {
  const Ref<CVelumStack> held = aHost.Stack();
  CVelumStack& stack = CVelumChecked::Deref(held);
  const qint32 firstNew = stack.Cards().Count();
  Add(stack, CVelumImports::FindNextCard(stack, CVelumChecked::Deref(aBackground).Id()));
  aHost.DeleteOldCards(aBackground, firstNew);
  stack.CloseGap(firstNew);
}
