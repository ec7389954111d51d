#include "runtime/lists/CVelumCardLines.h"

#include "core/CVelumMsg.h"
#include "model/CVelumModel.h"
#include "support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

// Cards "0" to "9" of two backgrounds in turn.
class CVelumCardLinesTest : public testing::Test {
protected:
  CVelumCardLinesTest() {
    CVelumMsg::InitMessages();
    CVelumModel::Install();
    qint32 index = 0;
    EXPECT_TRUE(iStack->GetFirstBackground(iFirst, index));
    iSecond = MakeRef<CVelumControlSet>(u"Second"_s, iStack->IdGen().NextId());
    iStack->AddBackground(iSecond);
    for (int i = 0; i < 10; ++i) {
      iCards.append(MakeRef<CVelumCard>(QString::number(i), i % 2 ? iSecond : iFirst));
      iStack->AddCard(iCards.last(), nullptr, false);
    }
  }
  [[nodiscard]] CVelumCardLines Lines(const CVelumControlSet* aBackground) const {
    return {*iStack, aBackground, CVelumCardLines::EShow::Name};
  }

  Ref<CVelumStack> iStack = MakeRef<CVelumStack>(u"s"_s);
  Ref<CVelumControlSet> iFirst;
  Ref<CVelumControlSet> iSecond;
  QList<Ref<CVelumCard>> iCards;
};

} // namespace

TEST_F(CVelumCardLinesTest, FindsEachCard) {
  const CVelumCardLines all = Lines(nullptr);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(all.IndexOf(iCards[i].Get()), i);
  const CVelumCardLines second = Lines(iSecond.Get());
  for (int i = 0; i < 10; ++i) EXPECT_EQ(second.IndexOf(iCards[i].Get()), i % 2 ? i / 2 : -1);
  EXPECT_EQ(all.IndexOf(nullptr), -1);
  EXPECT_EQ(all.IndexOf(iFirst.Get()), -1) << "no card";
}

TEST_F(CVelumCardLinesTest, FindsThemWhereTheStackHasAnotherOrderSince) {
  const CVelumCardLines all = Lines(nullptr);
  iStack->MoveCard(iCards[9], iCards[0]);
  iStack->MoveCard(iCards[3], nullptr);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(all.IndexOf(iCards[i].Get()), i);
}

TEST_F(CVelumCardLinesTest, CardsThatLeftAndCardsThatCameAreNoTrouble) {
  const CVelumCardLines all = Lines(nullptr);
  for (const int gone : {4, 5, 6}) iStack->DeleteCard(iCards[gone]);
  const auto come = MakeRef<CVelumCard>(u"new"_s, iFirst);
  iStack->AddCard(come, iCards[0], false);
  EXPECT_EQ(all.IndexOf(come.Get()), -1);
  for (const int left : {0, 1, 2, 3, 7, 8, 9}) EXPECT_EQ(all.IndexOf(iCards[left].Get()), left);
}

TEST_F(CVelumCardLinesTest, TheColumnOfNamesIsSortedByThem) {
  using EShow = CVelumCardLines::EShow;
  for (const EShow show : {EShow::Name, EShow::NameFields})
    EXPECT_EQ(CVelumCardLines(*iStack, nullptr, show).SortKey(3, 0).iText, u"3"_s);
  EXPECT_EQ(CVelumCardLines(*iStack, nullptr, EShow::Fields).SortKey(3, 0).iText, QString())
      << "there is no field, and no name";
}
