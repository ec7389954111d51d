// Cards that take over the ids of those that they replace.
#include "model/CVelumStack.h"

#include "support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

class CVelumStackGapTest : public testing::Test {
protected:
  CVelumStackGapTest() {
    CVelumModel::Install();
    iStack = MakeRef<CVelumStack>(u"s"_s);
    qint32 index = 0;
    static_cast<void>(iStack->GetFirstBackground(iSet, index));
    for (const QString& name : {u"a"_s, u"b"_s, u"c"_s, u"d"_s}) Add(name);
  }
  Ref<CVelumCard> Add(const QString& aName, const Ref<CVelumCard>& aBefore = nullptr) {
    auto card = MakeRef<CVelumCard>(aName, iSet);
    iStack->AddCard(card, aBefore, false);
    return card;
  }
  // Name and id of each card, in order.
  [[nodiscard]] QStringList Cards() const {
    QStringList cards;
    Ref<CVelumCard> card;
    for (qint32 i = 0; iStack->GetNextCard(card, i);)
      cards.append(card->Name() + QString::number(card->Id()));
    return cards;
  }

  Ref<CVelumStack> iStack;
  Ref<CVelumControlSet> iSet;
};

TEST_F(CVelumStackGapTest, ClosesTheGapInFrontOfNewCards) {
  const Ref<CVelumCard> first = iStack->GetCardById(0);
  const Ref<CVelumCard> y = Add(u"y"_s, first);
  Add(u"x"_s, first);
  for (const qint32 id : {2, 3}) iStack->DeleteCard(iStack->GetCardById(id));
  iStack->CloseGap(4);
  EXPECT_EQ(Cards(), QStringList({u"y2"_s, u"x3"_s, u"a0"_s, u"b1"_s}));
  EXPECT_EQ(iStack->Cards().Count(), 4);
  Ref<CVelumCard> found;
  ASSERT_TRUE(iStack->GetCard(u"y"_s, found));
  EXPECT_EQ(found, y);
  qint32 cards = 0;
  EXPECT_EQ(iStack->GetCardIndex(*y, cards), 0);
}

TEST_F(CVelumStackGapTest, LeavesCardsBehindOthersWhereTheyAre) {
  Add(u"x"_s);
  iStack->DeleteCard(iStack->GetCardById(1));
  iStack->CloseGap(4);
  EXPECT_EQ(Cards(), QStringList({u"a0"_s, u"c2"_s, u"d3"_s, u"x4"_s}));
  iStack->CloseGap(9);
  EXPECT_EQ(Cards().size(), 4);
}

} // namespace
