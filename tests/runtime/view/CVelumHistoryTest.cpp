#include "runtime/view/CVelumHistory.h"

#include "core/CVelumMsg.h"
#include "model/CVelumModel.h"
#include "model/CVelumStack.h"
#include "support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

class CVelumHistoryTest : public testing::Test {
protected:
  CVelumHistoryTest() {
    CVelumMsg::InitMessages();
    CVelumModel::Install();
    qint32 index = 0;
    EXPECT_TRUE(iStack.GetFirstBackground(iSet, index));
    for (int i = 0; i < 12; ++i) iCards.append(MakeRef<CVelumCard>(QString::number(i), iSet));
  }
  void Add(std::initializer_list<int> aCards) {
    for (const int card : aCards) iHistory.Add(iCards[card]);
  }
  // The names of all entries, the present one in brackets.
  [[nodiscard]] QString Shown() const {
    QStringList names;
    for (qint16 i = 0; i < iHistory.Len(); ++i) {
      const QString name = iHistory.At(i)->Name();
      names.append(i == iHistory.Index() ? u'[' + name + u']' : name);
    }
    return names.join(u' ');
  }
  // Goes back or forward as a view does; the name of the card, or "-".
  QString Prev() { return Step(iHistory.Prev(iCur, iFound)); }
  QString Next() { return Step(iHistory.Next(iCur, iFound)); }
  QString Step(bool aFound) {
    if (!aFound) return u"-"_s;
    iCur = iFound;
    return iCur->Name();
  }

  CVelumStack iStack{u"Test"_s};
  Ref<CVelumControlSet> iSet;
  QList<Ref<CVelumCard>> iCards;
  CVelumHistory iHistory;
  Ref<CVelumCard> iCur;
  Ref<CVelumCard> iFound;
};

TEST_F(CVelumHistoryTest, GoesBackAndForward) {
  Add({0, 1, 2});
  iCur = iCards[2];
  EXPECT_EQ(Prev(), u"1"_s);
  EXPECT_EQ(Prev(), u"0"_s);
  EXPECT_EQ(Prev(), u"-"_s);
  EXPECT_EQ(iFound, nullptr);
  EXPECT_EQ(Next(), u"1"_s);
  EXPECT_EQ(Next(), u"2"_s);
  EXPECT_EQ(Next(), u"-"_s);
}

TEST_F(CVelumHistoryTest, OneEntryIsNoWayBack) {
  EXPECT_EQ(Prev(), u"-"_s);
  EXPECT_EQ(Next(), u"-"_s);
  Add({0});
  EXPECT_EQ(Prev(), u"-"_s);
  EXPECT_EQ(Next(), u"-"_s);
}

TEST_F(CVelumHistoryTest, TheEleventhCardDropsTheOldest) {
  Add({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_EQ(Shown(), u"0 1 2 3 4 5 6 7 8 [9]"_s);
  Add({10});
  EXPECT_EQ(iHistory.Len(), 10);
  EXPECT_EQ(Shown(), u"1 2 3 4 5 6 7 8 9 [10]"_s);
}

TEST_F(CVelumHistoryTest, ANewCardAfterGoingBackDropsTheForwardPart) {
  Add({0, 1, 2});
  iCur = iCards[2];
  Prev();
  Add({3});
  EXPECT_EQ(Shown(), u"0 1 [3]"_s);
}

TEST_F(CVelumHistoryTest, TheLastEntryIsNotAddedAgainEvenFromFurtherBack) {
  Add({0, 1, 2, 2});
  EXPECT_EQ(Shown(), u"0 1 [2]"_s);
  iCur = iCards[2];
  Prev();
  Add({2});
  EXPECT_EQ(Shown(), u"0 [1] 2"_s);
}

TEST_F(CVelumHistoryTest, TheCurrentCardIsStepped0ver) {
  Add({0, 1, 2});
  iCur = iCards[1];
  EXPECT_EQ(Prev(), u"0"_s);
  Add({1, 2});
  EXPECT_EQ(Shown(), u"0 1 [2]"_s);
  iCur = iCards[2];
  Prev();
  Prev();
  iCur = iCards[1];
  EXPECT_EQ(Next(), u"2"_s);
  iCur = iCards[0];
  iHistory.Empty();
  Add({0, 1});
  EXPECT_EQ(Prev(), u"0"_s) << "the first entry is taken even if it is the current card";
}

TEST_F(CVelumHistoryTest, ADeletedCardGoesAtEachPlace) {
  Add({0, 1, 0, 2, 0, 3});
  iCur = iCards[3];
  Prev();
  Prev();
  EXPECT_EQ(Shown(), u"0 1 0 [2] 0 3"_s);
  iHistory.Remove(*iCards[0]);
  EXPECT_EQ(Shown(), u"1 [2] 3"_s) << "the place stays on its card";
  iHistory.Remove(*iCards[2]);
  EXPECT_EQ(Shown(), u"[1] 3"_s);
  iHistory.Remove(*iCards[1]);
  iHistory.Remove(*iCards[3]);
  EXPECT_EQ(iHistory.Len(), 0);
  Add({4});
  EXPECT_EQ(Shown(), u"[4]"_s);
}

TEST_F(CVelumHistoryTest, CardsOfADeletedBackgroundGo) {
  const auto other = MakeRef<CVelumControlSet>(u"Other"_s, iStack.IdGen().NextId());
  Add({0});
  iHistory.Add(MakeRef<CVelumCard>(u"x"_s, other));
  Add({1});
  iHistory.RemoveBackground(iSet->Id());
  EXPECT_EQ(Shown(), u"[x]"_s);
}

TEST_F(CVelumHistoryTest, AnEmptiedHistoryHasNoPlaceAndTakesCardsAnew) {
  Add({0, 1, 2});
  iHistory.Empty();
  EXPECT_EQ(iHistory.Index(), ENoShort);
  EXPECT_EQ(Prev(), u"-"_s);
  EXPECT_EQ(Next(), u"-"_s);
  Add({3});
  EXPECT_EQ(Shown(), u"[3]"_s);
}

TEST_F(CVelumHistoryTest, PlacesOutsideHoldNothing) {
  Add({0});
  EXPECT_EQ(iHistory.At(-1), nullptr);
  EXPECT_EQ(iHistory.At(1), nullptr);
  EXPECT_EQ(iHistory.At(ENoShort), nullptr);
}

TEST_F(CVelumHistoryTest, TellsWhetherItLeadsToAnotherCard) {
  EXPECT_FALSE(iHistory.HasPrev(nullptr));
  EXPECT_FALSE(iHistory.HasNext(nullptr));
  Add({0});
  iCur = iCards[0];
  EXPECT_FALSE(iHistory.HasPrev(iCur));
  Add({1, 2});
  iCur = iCards[2];
  EXPECT_TRUE(iHistory.HasPrev(iCur));
  EXPECT_FALSE(iHistory.HasNext(iCur));
  EXPECT_EQ(Prev(), u"1"_s);
  EXPECT_TRUE(iHistory.HasPrev(iCur));
  EXPECT_TRUE(iHistory.HasNext(iCur));
  EXPECT_EQ(Prev(), u"0"_s);
  EXPECT_FALSE(iHistory.HasPrev(iCur));
  EXPECT_TRUE(iHistory.HasNext(iCur));
  iHistory.Empty();
  EXPECT_FALSE(iHistory.HasPrev(nullptr));
  EXPECT_FALSE(iHistory.HasNext(nullptr));
}

TEST_F(CVelumHistoryTest, TheSameCardTwiceLeadsNowhere) {
  Add({0, 1, 0});
  iHistory.Remove(*iCards[1]);
  iCur = iCards[0];
  ASSERT_EQ(Shown(), u"0 [0]"_s);
  EXPECT_FALSE(iHistory.HasPrev(iCur));
}

} // namespace
