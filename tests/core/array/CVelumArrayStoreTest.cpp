#include "core/array/CVelumArrayStore.h"

#include "core/ArrayHelpers.h"

#include <random>

namespace {

// A store beside a vector of the same numbers; the string keys say the numbers again.
class CVelumArrayStoreTest : public testing::TestWithParam<bool> {
protected:
  void SetUp() override { iStore.SetKeyed(GetParam()); }

  void Insert(qint32 aIndex, qint32 aNum) {
    iStore.Insert(aIndex, TVelumCell(TVelumValue::OfStr(QString::number(aNum)), aNum),
                  QString::number(-aNum));
    iNums.insert(iNums.begin() + aIndex, aNum);
  }
  void Erase(qint32 aIndex, qint32 aNum) {
    iStore.Erase(aIndex, aNum);
    iNums.erase(iNums.begin() + aIndex, iNums.begin() + aIndex + aNum);
  }
  void Fill(qint32 aCount) {
    for (qint32 i = 0; i < aCount; ++i) Insert(static_cast<qint32>(iNums.size()), i);
  }
  void Compare() const {
    ASSERT_EQ(iStore.Count(), static_cast<qint32>(iNums.size()));
    for (qint32 i = 0; i < iStore.Count(); ++i) ExpectAt(i);
    for (qint32 i = iStore.Count(); i-- > 0;) ExpectAt(i);
  }
  void ExpectAt(qint32 aIndex) const {
    const qint32 num = iNums[static_cast<size_t>(aIndex)];
    ASSERT_EQ(iStore.Cell(aIndex).iIntKey, num) << aIndex;
    ASSERT_EQ(iStore.Cell(aIndex).Str(), QString::number(num)) << aIndex;
    if (GetParam()) {
      ASSERT_EQ(iStore.Key(aIndex), QString::number(-num)) << aIndex;
    }
  }

  CVelumArrayStore iStore;
  std::vector<qint32> iNums;
};

TEST_P(CVelumArrayStoreTest, SpreadsAndGathers) {
  for (qint32 count : {0, 1, 511, 512, 513, 1024, 1025, 5000}) {
    Fill(count);
    iStore.Spread();
    Compare();
    iStore.Gather();
    Compare();
    Erase(0, count);
    Compare();
  }
}

TEST_P(CVelumArrayStoreTest, AppendsAndInsertsInFront) {
  Fill(513);
  iStore.Spread();
  Fill(2000);
  for (qint32 i = 0; i < 2000; ++i) Insert(0, i);
  Compare();
}

TEST_P(CVelumArrayStoreTest, InsertsAndErasesAnywhere) {
  std::mt19937 random(5);
  const auto below = [&](size_t aLimit) { return static_cast<qint32>(random() % aLimit); };
  Fill(513);
  iStore.Spread();
  for (int round = 0; round < 3; ++round) {
    for (qint32 i = 0; i < 3000; ++i) Insert(below(iNums.size() + 1), i);
    Compare();
    while (iNums.size() > 700) {
      const qint32 index = below(iNums.size());
      const qint32 num = below(10) ? below(3) : below(900);
      Erase(index, std::min(num, static_cast<qint32>(iNums.size()) - index));
    }
    Compare();
  }
  Erase(0, static_cast<qint32>(iNums.size()));
  Compare();
  Fill(3);
  Compare();
}

TEST_P(CVelumArrayStoreTest, EraseTakesWholeBlocks) {
  Fill(5000);
  iStore.Spread();
  Erase(100, 4800);
  Compare();
  Insert(100, 1);
  Compare();
}

TEST_P(CVelumArrayStoreTest, Permutes) {
  for (qint32 count : {3, 2000}) {
    Fill(count);
    iStore.Spread();
    std::vector<qint32> order;
    for (qint32 i = iStore.Count(); i-- > 0;) order.push_back(i);
    iStore.Permute(order.data());
    std::reverse(iNums.begin(), iNums.end());
    Compare();
  }
}

TEST_P(CVelumArrayStoreTest, KeysComeAndGo) {
  Fill(1500);
  iStore.Spread();
  iStore.SetKeyed(!GetParam());
  EXPECT_EQ(iStore.Keyed(), !GetParam());
  if (!GetParam()) {
    EXPECT_EQ(iStore.Key(1499), QString());
  }
  EXPECT_EQ(iStore.Cell(1499).iIntKey, 1499);
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutKeys, CVelumArrayStoreTest, testing::Bool());

TEST(CVelumArrayRunTest, ReservesExactly) {
  CVelumArrayRun run(true);
  run.Reserve(3);
  for (qint32 i = 0; i < 3; ++i) run.Insert(i, TVelumCell(TVelumValue::OfInt(i), i), QString::number(i));
  const TVelumCell* first = &run.Cell(0);
  run.Reserve(2);
  EXPECT_EQ(first, &run.Cell(0));
  CVelumArrayRun moved(std::move(run));
  EXPECT_EQ(moved.Count(), 3);
  EXPECT_EQ(moved.Key(2), u"2"_s);
}

TEST(CVelumArrayRunTest, GivesUpObjectsWithItsElements) {
  Ref<MarkedObj> obj(new MarkedObj);
  {
    CVelumArrayRun run;
    for (qint32 i = 0; i < 3; ++i) run.Insert(0, TVelumCell(TVelumValue::OfObj(EValCard, obj), 0), {});
    EXPECT_EQ(obj->Refs(), 4);
    run.Erase(0, 1);
    EXPECT_EQ(obj->Refs(), 3);
  }
  EXPECT_EQ(obj->Refs(), 1);
}

TEST(CVelumArrayRunTest, TooMuchIsHostError) {
  CVelumArrayRun run;
  ExpectHostError([&] { run.Reserve(0x7FFFFFFF); }, EHostOutOfMemory);
}

} // namespace
