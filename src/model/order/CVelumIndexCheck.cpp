#include "model/order/CVelumIndexCheck.h"

#include "core/text/CVelumCollation.h"

QString CVelumIndexCheck::CardText(const CVelumCard& aCard) {
  return u"card %1 '%2'"_s.arg(aCard.Id()).arg(aCard.Name());
}

void CVelumIndexCheck::Begin() {
  iProblems.clear();
  iSeen = QBitArray(iStack.Cards().Count());
}

Ref<CVelumCard> CVelumIndexCheck::IndexedCard(const QString& aEntry, qint32 aId) {
  Ref<CVelumCard> card = iStack.GetCardById(aId);
  if (!card) {
    Add(u"%1 stands for card %2, which does not exist"_s.arg(aEntry).arg(aId));
    return nullptr;
  }
  if (iSeen.testBit(aId)) Add(u"%1 stands for %2, which was there before"_s.arg(aEntry, CardText(*card)));
  iSeen.setBit(aId);
  return card;
}

// Of a background, or, with ENoInt, of all.
void CVelumIndexCheck::CheckAllSeen(const QString& aIndex, qint32 aBackgroundId) {
  for (qint32 i = 0; i < iStack.Cards().Count(); ++i) {
    const CVelumCard* card = iStack.FindCard(i);
    const bool wanted = card && (aBackgroundId == ENoInt || card->BackgroundId() == aBackgroundId);
    if (wanted && !iSeen.testBit(i)) Add(u"%1: is missing in the %2"_s.arg(CardText(*card), aIndex));
  }
}

QStringList CVelumIndexCheck::Order() {
  Begin();
  const CVelumArray& order = iStack.OrderIndex();
  for (qint32 i = 0; i < order.Count(); ++i) {
    const qint32 num = order.IntKeyAt(i);
    const QString entry = u"order index: number %1"_s.arg(num);
    if (i > 0 && num <= order.IntKeyAt(i - 1))
      Add(u"%1 stands behind %2"_s.arg(entry).arg(order.IntKeyAt(i - 1)));
    const Ref<CVelumCard> card = IndexedCard(entry, IdAt(order, i));
    if (card && card->OrderNum() != num)
      Add(u"%1 stands for %2, which has the number %3"_s.arg(entry, CardText(*card)).arg(card->OrderNum()));
  }
  CheckAllSeen(u"order index"_s, ENoInt);
  return iProblems;
}

QStringList CVelumIndexCheck::Names() {
  Begin();
  const CVelumArray& names = iStack.NameIndex();
  for (qint32 i = 0; i < names.Count(); ++i) {
    const QString& name = names.StrKeyAt(i);
    const QString entry = u"name index: '%1'"_s.arg(name);
    if (i > 0 && CVelumCollation::CompareBin(names.StrKeyAt(i - 1), name) > 0)
      Add(u"%1 stands behind '%2'"_s.arg(entry, names.StrKeyAt(i - 1)));
    const Ref<CVelumCard> card = IndexedCard(entry, IdAt(names, i));
    if (card && card->Name() != name) Add(u"%1 stands for %2"_s.arg(entry, CardText(*card)));
  }
  CheckAllSeen(u"name index"_s, ENoInt);
  return iProblems;
}

QStringList CVelumIndexCheck::Keys(const CVelumArray& aIndex, const CVelumSortKey& aKey) {
  Begin();
  const QString name = u"key index %1 of sort key '%2'"_s.arg(aIndex.Id()).arg(aKey.Name());
  const bool canBuild = aKey.CanBuild(iStack.FindBackground(aKey.BackgroundId()));
  for (qint32 i = 0; i < aIndex.Count(); ++i) {
    const QString& str = aIndex.StrKeyAt(i);
    const QString entry = u"%1: '%2'"_s.arg(name, str);
    if (i > 0 && aKey.Compare(aIndex.StrKeyAt(i - 1), str) != 0)
      Add(u"%1 stands behind '%2'"_s.arg(entry, aIndex.StrKeyAt(i - 1)));
    const Ref<CVelumCard> card = IndexedCard(entry, IdAt(aIndex, i));
    if (!card) continue;
    if (card->BackgroundId() != aKey.BackgroundId())
      Add(u"%1 stands for %2 of another background"_s.arg(entry, CardText(*card)));
    else if (canBuild && aKey.BuildKey(*card) != str)
      Add(u"%1 is not the key of %2"_s.arg(entry, CardText(*card)));
  }
  CheckAllSeen(name, aKey.BackgroundId());
  return iProblems;
}
