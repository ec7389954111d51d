#include "model/lists/CVelumCardFinder.h"

#include "model/ModelTest.h"

#include <random>

using namespace ModelTest;

namespace {

struct CVelumCardFinderTest : testing::Test {
  CVelumCardFinderTest() {
    for (int i = 0; i < 30; ++i) {
      const Ref<CVelumCard> card = iSample.AddCard(iSample.iFirst, QString::number(i));
      if (i % 3 != 0) card->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"t%1"_s.arg(i % 3)));
      if (i % 4 != 0) card->SetControlVal(iSample.iSize->Id(), TVelumValue::OfInt(i % 4));
    }
  }
  // The names of the cards found.
  QString Found(const Ref<CVelumControl>& aControl, const TVelumValue& aVal) {
    return Names(aControl ? aControl->Id() : ENoInt, aVal);
  }
  QString Names(qint32 aControlId, const TVelumValue& aVal) {
    QStringList names;
    for (const CVelumCard* card : iSample.iStack->FindCards(iSample.iFirst->Id(), aControlId, aVal))
      names.append(card->Name());
    return names.join(u' ');
  }

  TSampleStack iSample;
};

TEST_F(CVelumCardFinderTest, AllCardsWithoutAControl) {
  EXPECT_EQ(Found(nullptr, TVelumValue()).count(u' '), 29);
}

TEST_F(CVelumCardFinderTest, TheSameAnswersEachTime) {
  for (int pass = 0; pass < 3; ++pass) {
    EXPECT_EQ(Found(iSample.iTown, TVelumValue::OfStr(u"t1"_s)), u"1 4 7 10 13 16 19 22 25 28"_s);
    EXPECT_EQ(Found(iSample.iTown, TVelumValue::OfStr(u"T1"_s)), QString());
    EXPECT_EQ(Found(iSample.iTown, TVelumValue::OfStr(QString())), u"0 3 6 9 12 15 18 21 24 27"_s);
    EXPECT_EQ(Found(iSample.iTown, TVelumValue()), QString());
    EXPECT_EQ(Found(iSample.iSize, TVelumValue::OfInt(0)), u"0 4 8 12 16 20 24 28"_s);
    EXPECT_EQ(Found(iSample.iSize, TVelumValue::OfInt(3)), u"3 7 11 15 19 23 27"_s);
  }
}

TEST_F(CVelumCardFinderTest, AnotherTypeAsserts) {
  for (int pass = 0; pass < 3; ++pass)
    EXPECT_EQ(AssertText([&] { static_cast<void>(Found(iSample.iTown, TVelumValue::OfInt(1))); }),
              u"Equal type"_s);
}

TEST_F(CVelumCardFinderTest, RealsAndDates) {
  const Ref<CVelumControl> real = iSample.AddField(iSample.iFirst, u"Real"_s, EConReal);
  Ref<CVelumCard> card;
  ASSERT_TRUE(iSample.iStack->GetCard(u"5"_s, card));
  card->SetControlVal(real->Id(), TVelumValue::OfReal(-0.0));
  card->SetControlVal(iSample.iSince->Id(), TVelumValue::OfDate(40000));
  iSample.iStack->SetCardListsDirty(nullptr);
  for (int pass = 0; pass < 3; ++pass) {
    EXPECT_EQ(Found(real, TVelumValue::OfReal(0)).count(u' '), 29);
    EXPECT_EQ(Found(iSample.iSince, TVelumValue::OfDate(40000)), u"5"_s);
  }
}

TEST_F(CVelumCardFinderTest, FollowsACardToAnotherBackgroundAndBack) {
  const TVelumValue sought = TVelumValue::OfStr(u"t1"_s);
  EXPECT_EQ(Found(iSample.iTown, sought), u"1 4 7 10 13 16 19 22 25 28"_s);
  Ref<CVelumCard> card;
  ASSERT_TRUE(iSample.iStack->GetCard(u"4"_s, card));
  card->SetBackground(iSample.iSecond);
  EXPECT_EQ(Found(iSample.iTown, sought), u"1 7 10 13 16 19 22 25 28"_s);
  card->SetBackground(iSample.iFirst);
  EXPECT_EQ(Found(iSample.iTown, sought), u"1 4 7 10 13 16 19 22 25 28"_s);
}

TEST_F(CVelumCardFinderTest, FollowsTheDefaultAndTheZeroValues) {
  EXPECT_EQ(Found(iSample.iTown, TVelumValue::OfStr(u"t2"_s)), u"2 5 8 11 14 17 20 23 26 29"_s);
  iSample.iTown->SetDefaultVal(u"t2"_s);
  EXPECT_EQ(Found(iSample.iTown, TVelumValue::OfStr(u"t2"_s)).count(u' '), 19);
  Ref<CVelumCard> card;
  ASSERT_TRUE(iSample.iStack->GetCard(u"4"_s, card));
  EXPECT_EQ(Found(iSample.iSince, TVelumValue::OfDate(30000)), QString());
  card->SetCreDate(30000);
  EXPECT_EQ(Found(iSample.iSince, TVelumValue::OfDate(30000)), u"4"_s);
}

TEST_F(CVelumCardFinderTest, UndefinedOnlyEqualsUndefined) {
  Ref<CVelumCard> card;
  ASSERT_TRUE(iSample.iStack->GetCard(u"4"_s, card));
  card->SetControlVal(iSample.iTown->Id(), TVelumValue());
  for (int pass = 0; pass < 2; ++pass) {
    EXPECT_EQ(Found(iSample.iTown, TVelumValue()), u"4"_s);
    EXPECT_EQ(Found(iSample.iTown, TVelumValue::OfStr(u"t1"_s)), u"1 7 10 13 16 19 22 25 28"_s);
  }
}

TEST_F(CVelumCardFinderTest, FollowsVeryManyNewCards) {
  EXPECT_EQ(Found(iSample.iTown, TVelumValue::OfStr(u"new"_s)), QString());
  QStringList names;
  for (int i = 0; i < 10000; ++i) {
    const Ref<CVelumCard> card = iSample.AddCard(iSample.iFirst, u"n%1"_s.arg(i));
    card->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(i % 1000 ? u"x%1"_s.arg(i) : u"new"_s));
    if (i % 1000 == 0) names.append(card->Name());
  }
  EXPECT_EQ(Found(iSample.iTown, TVelumValue::OfStr(u"new"_s)), names.join(u' '));
  EXPECT_EQ(Found(iSample.iTown, TVelumValue::OfStr(u"x7"_s)), u"n7"_s);
}

// Whatever happens to the cards, the finder and a walk agree.
TEST_F(CVelumCardFinderTest, FollowsAllChanges) {
  iSample.iStack->SetControlDynFlags();
  std::mt19937 random(1);
  const auto pick = [&random](int aBelow) {
    return static_cast<qint32>(random() % static_cast<unsigned>(aBelow));
  };
  for (int step = 0; step < 400; ++step) {
    Ref<CVelumCard> card;
    Ref<CVelumCard> other;
    ASSERT_TRUE(iSample.iStack->GetCardByNum(pick(iSample.iStack->NumCards()), card));
    ASSERT_TRUE(iSample.iStack->GetCardByNum(pick(iSample.iStack->NumCards()), other));
    switch (pick(6)) {
    case 0:
      card->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"t%1"_s.arg(pick(3))));
      break;
    case 1:
      card->DeleteControlVal(iSample.iTown->Id());
      break;
    case 2:
      iSample.AddCard(iSample.iFirst, u"n%1"_s.arg(step));
      break;
    case 3:
      if (iSample.iStack->NumCards() > 5) iSample.iStack->DeleteCard(card);
      break;
    case 4:
      if (!(card == other)) iSample.iStack->MoveCard(card, other);
      break;
    default:
      break;
    }
    const TVelumValue sought = TVelumValue::OfStr(u"t1"_s);
    QStringList expected;
    for (qint32 i = 0; iSample.iStack->GetNextCardInBackground(iSample.iFirst->Id(), card, i);)
      if (card->GetControlVal(iSample.iTown->Id(), true).Str() == u"t1"_s) expected.append(card->Name());
    ASSERT_EQ(Found(iSample.iTown, sought), expected.join(u' ')) << step;
  }
}

} // namespace
