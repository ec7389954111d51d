// Stacks for the tests of the order and of the keys.
#pragma once

#include "model/ModelTest.h"

namespace ModelTest {

struct TOrderBed : TSampleStack {
  Ref<CVelumCard> Before(const Ref<CVelumControlSet>& aBackground, const QString& aName,
                         const Ref<CVelumCard>& aBefore) const {
    const auto card = MakeRef<CVelumCard>(aName, aBackground);
    iStack->AddCard(card, aBefore, false);
    return card;
  }
  [[nodiscard]] QString Names() const {
    QStringList names;
    Ref<CVelumCard> card;
    for (qint32 i = 0; iStack->GetNextCard(card, i);) names.append(card->Name());
    return names.join(u' ');
  }
  [[nodiscard]] QList<int> Nums() const {
    QList<int> nums;
    Ref<CVelumCard> card;
    for (qint32 i = 0; iStack->GetNextCard(card, i);) nums.append(card->OrderNum());
    return nums;
  }
  // The index on file, and the numbers of the cards, say the same.
  void ExpectSound() const {
    const CVelumArray& index = iStack->OrderIndex();
    ASSERT_EQ(index.Count(), iStack->NumCards());
    for (qint32 i = 0; i < index.Count(); ++i) {
      const Ref<CVelumCard> card = iStack->GetCardById(index.ValRef(i).Int());
      ASSERT_TRUE(card);
      EXPECT_EQ(card->OrderNum(), index.IntKeyAt(i));
      if (i > 0) {
        EXPECT_LT(index.IntKeyAt(i - 1), index.IntKeyAt(i));
      }
    }
  }
};

// The first background is kept sorted by Town.
struct TSortedBed : TOrderBed {
  explicit TSortedBed(qint32 aWay = EWayAscending)
      : iBy(MakeRef<CVelumSortKey>(iStack->IdGen().NextId(), u"By town"_s, iFirst->Id())) {
    iBy->AddKeyPart(EConText, iTown->Id(), aWay, 10);
    iStack->AddSortKey(iBy);
    iFirst->SetFlag(ECseKeepCardsSorted, true);
    iStack->NewIndexForSortKey(iBy);
    iStack->SetControlDynFlags();
  }
  Ref<CVelumCard> Town(const QString& aTown) const {
    const Ref<CVelumCard> card = MakeRef<CVelumCard>(aTown, iFirst);
    iStack->AddCard(card, nullptr, false);
    card->SetControlVal(iTown->Id(), TVelumValue::OfStr(aTown));
    return card;
  }
  // The block of the sorted background follows its key index.
  void ExpectSorted() const {
    ExpectSound();
    const Ref<CVelumArray> index = iFirst->KeyIndex();
    ASSERT_EQ(index->Count(), iFirst->NumCards());
    Ref<CVelumCard> card;
    qint32 cursor = 0;
    for (qint32 i = 0; i < index->Count(); ++i) {
      ASSERT_TRUE(iStack->GetNextCardInBackground(iFirst->Id(), card, cursor));
      EXPECT_EQ(index->ValRef(i).Int(), card->Id());
      EXPECT_EQ(index->StrKeyAt(i), iBy->BuildKey(*card));
    }
  }
  Ref<CVelumSortKey> iBy;
};

} // namespace ModelTest
