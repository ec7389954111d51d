// Lists that are computed from cards, through card, control and stack together.
#include "model/ModelTest.h"

using namespace ModelTest;

namespace {

struct CVelumCardLists : testing::Test {
  CVelumCardLists() {
    iAnn = iSample.AddCard(iSample.iFirst, u"Ann"_s);
    iBob = iSample.AddCard(iSample.iFirst, u"Bob"_s);
    iX = iSample.AddCard(iSample.iSecond, u"X"_s);
    iY = iSample.AddCard(iSample.iSecond, u"Y"_s);
    for (const Ref<CVelumCard>& card : {iX, iY})
      card->SetControlVal(iSample.iKey->Id(), TVelumValue::OfStr(u"Bern"_s));
  }
  QString All(CVelumCard& aCard) const { return aCard.GetControlVal(iSample.iAll->Id(), true).Str(); }
  QString Some(CVelumCard& aCard) const { return aCard.GetControlVal(iSample.iSome->Id(), true).Str(); }

  TSampleStack iSample;
  Ref<CVelumCard> iAnn;
  Ref<CVelumCard> iBob;
  Ref<CVelumCard> iX;
  Ref<CVelumCard> iY;
};

TEST_F(CVelumCardLists, FollowTheCards) {
  EXPECT_EQ(All(*iX), u"0\tAnn\r\n1\tBob"_s);
  EXPECT_EQ(Some(*iX), QString());
  iAnn->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
  EXPECT_EQ(Some(*iX), u"0\t\t"_s);
  iAnn->SetControlVal(iSample.iNote->Id(), TVelumValue::OfStr(u"n"_s));
  EXPECT_EQ(Some(*iX), u"0\tn\t"_s);
  iX->SetControlVal(iSample.iKey->Id(), TVelumValue::OfStr(u"Graz"_s));
  EXPECT_EQ(Some(*iX), QString());
  EXPECT_EQ(Some(*iY), u"0\tn\t"_s);
  iSample.iStack->RenameCard(iBob, u"Rob"_s);
  EXPECT_EQ(All(*iX), u"0\tAnn\r\n1\tRob"_s);
  iSample.iStack->DeleteCard(iAnn);
  EXPECT_EQ(All(*iY), u"1\tRob"_s);
  EXPECT_EQ(Some(*iY), QString());
}

TEST_F(CVelumCardLists, TheListOfAllCardsIsComputedOnceForThem) {
  static_cast<void>(All(*iX));
  const QString first = iSample.iAll->DefaultVal();
  static_cast<void>(All(*iY));
  EXPECT_EQ(iSample.iAll->DefaultVal().constData(), first.constData()) << "computed a second time";
  iSample.iStack->RenameCard(iBob, u"Rob"_s);
  EXPECT_EQ(All(*iY), u"0\tAnn\r\n1\tRob"_s);
  EXPECT_EQ(iSample.iAll->DefaultVal(), u"0\tAnn\r\n1\tRob"_s);
}

TEST_F(CVelumCardLists, AnOverwrittenDefaultIsComputedAnewWhenDirty) {
  static_cast<void>(All(*iX));
  iSample.iAll->SetDefaultVal(u"mine"_s);
  iY->SetDirty(true);
  EXPECT_EQ(All(*iY), u"0\tAnn\r\n1\tBob"_s);
}

TEST_F(CVelumCardLists, AnotherOrderShowsWhenComputedAnew) {
  EXPECT_EQ(All(*iX), u"0\tAnn\r\n1\tBob"_s);
  iSample.iStack->MoveCard(iBob, iAnn);
  EXPECT_EQ(All(*iX), u"0\tAnn\r\n1\tBob"_s);
  iX->SetDirty(true);
  EXPECT_EQ(All(*iX), u"1\tBob\r\n0\tAnn"_s);
}

TEST_F(CVelumCardLists, PrepareForSaveComputesWhatIsDirty) {
  iAnn->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
  EXPECT_TRUE(iX->Dirty());
  iSample.iStack->PrepareForSave();
  EXPECT_FALSE(iX->Dirty());
  EXPECT_FALSE(iY->Dirty());
  EXPECT_EQ(iSample.iAll->DefaultVal(), u"0\tAnn\r\n1\tBob"_s);
  EXPECT_TRUE(iX->ControlValDef(iSample.iSome->Id()));
}

TEST_F(CVelumCardLists, ShortListsStayCleanAfterALoad) {
  iSample.iStack->PrepareForSave();
  CVelumModel::Install();
  const Ref<CVelumStack> read = MakeRef<CVelumStack>();
  Load(*read, Stored(*iSample.iStack));
  EXPECT_FALSE(read->Changed());
  EXPECT_FALSE(read->GetCardById(iX->Id())->Dirty());
}

// Each list changes what the others select: every card is computed once, and then it is enough.
TEST(CVelumCardListsOfMany, ThatSelectEachOtherEnd) {
  TSampleStack sample;
  sample.iSome->SetSelBackgroundId(sample.iSecond->Id());
  sample.iSome->SetSelControlId(sample.iSome->Id());
  sample.iSome->SetListCol(nullptr);
  sample.iStack->SetControlDynFlags();
  Ref<CVelumCard> card;
  for (int i = 0; i < 60; ++i) {
    card = sample.AddCard(sample.iSecond, QString::number(i));
    card->SetControlVal(sample.iKey->Id(), TVelumValue::OfStr({}));
  }
  EXPECT_FALSE(card->GetControlVal(sample.iSome->Id(), true).Str().isEmpty());
  EXPECT_FALSE(card->Dirty());
  sample.iStack->PrepareForSave();
  EXPECT_FALSE(card->Dirty());
}

// A list that selects by the lists of other cards is stale when one of them has become another.
TEST_F(CVelumCardLists, ThatSelectByListsFollowThem) {
  const auto set = MakeRef<CVelumControlSet>(u"Third"_s, iSample.iStack->IdGen().NextId());
  iSample.iStack->AddBackground(set);
  const Ref<CVelumControl> key = iSample.AddField(set, u"Key"_s, EConText);
  const Ref<CVelumControl> lists = iSample.AddField(set, u"Lists"_s, EConList);
  lists->SetFlag(EConCardList, true);
  lists->SetSelBackgroundId(iSample.iSecond->Id());
  lists->SetSelControlId(iSample.iSome->Id());
  lists->SetRefControlId(key->Id());
  iSample.iStack->SetControlDynFlags();
  const Ref<CVelumCard> third = iSample.AddCard(set, u"third"_s);
  third->SetControlVal(key->Id(), TVelumValue::OfStr(u"0\tn\t"_s));
  const auto text = [&] { return third->GetControlVal(lists->Id(), true).Str(); };
  EXPECT_EQ(text(), QString());
  iAnn->SetControlVal(iSample.iNote->Id(), TVelumValue::OfStr(u"n"_s));
  iAnn->SetControlVal(iSample.iTown->Id(), TVelumValue::OfStr(u"Bern"_s));
  EXPECT_EQ(text(), u"2\tX\r\n3\tY"_s);
  iX->SetControlVal(iSample.iKey->Id(), TVelumValue::OfStr(u"Graz"_s));
  EXPECT_EQ(Some(*iX), QString());
  EXPECT_TRUE(third->Dirty()) << "the list of another card has changed";
  EXPECT_EQ(text(), u"3\tY"_s);
}

TEST(CVelumCardListsOfMany, AreComputedTogetherInLinearTime) {
  TSampleStack sample;
  constexpr int many = 3000;
  for (int i = 0; i < many; ++i) {
    const Ref<CVelumCard> card = sample.AddCard(sample.iFirst, QString::number(i));
    card->SetControlVal(sample.iTown->Id(), TVelumValue::OfStr(QString::number(i)));
    const Ref<CVelumCard> other = sample.AddCard(sample.iSecond, QString::number(i));
    other->SetControlVal(sample.iKey->Id(), TVelumValue::OfStr(QString::number(i)));
  }
  sample.iStack->PrepareForSave();
  Ref<CVelumCard> last;
  ASSERT_TRUE(sample.iStack->OrderLast(last));
  EXPECT_FALSE(last->Dirty());
  EXPECT_EQ(last->GetControlVal(sample.iSome->Id(), true).Str(), u"%1\t\t"_s.arg(2 * (many - 1)));
}

} // namespace
