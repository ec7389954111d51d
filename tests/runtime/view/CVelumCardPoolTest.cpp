// What is more than the card window can hold.
#include "core/CVelumMsg.h"
#include "runtime/RuntimeFixture.h"

namespace {

using CVelumCardPoolTest = RuntimeTest;

TEST_F(CVelumCardPoolTest, AnEleventhComboIsMoreThanThePoolHolds) {
  Ref<CVelumControl> last;
  for (int i = 0; i < 11; ++i) {
    last = AddField(iSet, u"Town"_s, EConText, EConComboText);
    const auto list = AddField(iSet, u"Towns"_s, EConList, EConComboList);
    last->SetPartnerId(list->Id());
    list->SetPartnerId(last->Id());
  }
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(last->BaseControl(), nullptr);
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostObjectNotSet);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
}

struct TPoolCase {
  qint32 iType;
  qint32 iFlags;
  int iSize;
};

class CVelumPoolTest : public RuntimeTest, public testing::WithParamInterface<TPoolCase> {};

TEST_P(CVelumPoolTest, OneFieldMoreThanThePoolHoldsIsAnErrorThatIsToldOnce) {
  Ref<CVelumControl> last;
  for (int i = 0; i <= GetParam().iSize; ++i)
    last = AddField(iSet, QString::number(i), GetParam().iType, GetParam().iFlags);
  AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  Open();
  EXPECT_EQ(last->BaseControl(), nullptr);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
  EXPECT_EQ(CVelumError::GetErrorRecord().iProc, u"ShowCurCard"_s);
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostObjectNotSet);
  View().GoToCard(second);
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(Form().Caption(), u"b - 2 of 2"_s);
}

TEST_P(CVelumPoolTest, AFullPoolIsNoError) {
  Ref<CVelumControl> last;
  for (int i = 0; i < GetParam().iSize; ++i)
    last = AddField(iSet, QString::number(i), GetParam().iType, GetParam().iFlags);
  AddCard(u"a"_s);
  Open();
  EXPECT_NE(last->BaseControl(), nullptr);
  EXPECT_EQ(iPresenter.Count(), 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, CVelumPoolTest,
                         testing::Values(TPoolCase{EConText, 0, 20}, TPoolCase{EConDate, EConMaxHeight, 10},
                                         TPoolCase{EConBoolean, 0, 10}, TPoolCase{EConList, 0, 10},
                                         TPoolCase{EConPicture, 0, 10},
                                         TPoolCase{EConCommand, EConAsButton, 10}));

TEST_F(CVelumCardPoolTest, ThirtyLabelsAreEnoughForThirtyFields) {
  for (int i = 0; i < 20; ++i) AddField(iSet, u"t"_s, EConText);
  for (int i = 0; i < 10; ++i) AddField(iSet, u"b"_s, EConBoolean);
  const auto last = AddField(iSet, u"l"_s, EConList);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(last->BaseControl(), nullptr);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
}

TEST_F(CVelumCardPoolTest, AHalfBuiltLayoutShowsTheValuesOfItsOwnCard) {
  QList<Ref<CVelumControl>> fields;
  for (int i = 0; i <= 20; ++i) fields.append(AddField(iSet, QString::number(i), EConText));
  const auto first = AddCard(u"a"_s);
  const auto second = AddCard(u"b"_s);
  for (const auto& card : {first, second})
    card->SetControlVal(fields[3]->Id(), TVelumValue::OfStr(u"value of "_s + card->Name()));
  Open();
  EXPECT_EQ(Base(fields[3]).Text(), u"value of a"_s);
  View().GoToCard(second);
  EXPECT_EQ(Base(fields[3]).Text(), u"value of b"_s);
}

TEST_F(CVelumCardPoolTest, MoreThanAHundredAndOneControlsAreABoundsFailure) {
  for (int i = 0; i < 102; ++i) AddField(iSet, QString::number(i), EConCommand, EConInMenu);
  AddCard(u"a"_s);
  Open();
  EXPECT_EQ(CVelumError::GetErrorCode(), EHostIndex);
  EXPECT_EQ(iPresenter.CountOf(EMsgSystemError), 1);
}

} // namespace
