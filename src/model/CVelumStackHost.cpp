#include "model/CVelumStackHost.h"

void CVelumStackHost::DeleteOldCardsOf(CVelumStack& aStack, qint32 aBackgroundId, qint32 aEnd) {
  Ref<CVelumCard> card;
  qint32 index = 0;
  while (aStack.GetNextCardInBackground(aBackgroundId, card, index)) {
    if (card->Id() >= aEnd) continue;
    aStack.DeleteCard(card);
    --index; // the next one stands in its place
  }
}
