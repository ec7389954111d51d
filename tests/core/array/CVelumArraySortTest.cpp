#include "core/array/CVelumArraySort.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// Elements of a hundred values, so that most orders have equal elements.
std::vector<int> RandomVals(qint32 aCount, int aRange) {
  std::mt19937 random(static_cast<unsigned>(aCount));
  std::vector<int> vals;
  for (qint32 i = 0; i < aCount; ++i) vals.push_back(std::uniform_int_distribution(0, aRange)(random));
  return vals;
}

std::function<int(qint32, qint32)> By(const std::vector<int>& aVals) {
  return [&aVals](qint32 aA, qint32 aB) {
    return aVals[static_cast<size_t>(aA)] - aVals[static_cast<size_t>(aB)];
  };
}

void ExpectSorted(const std::vector<qint32>& aOrder, const std::vector<int>& aVals) {
  std::vector<bool> seen(aVals.size());
  for (size_t i = 0; i < aOrder.size(); ++i) {
    const auto at = static_cast<size_t>(aOrder[i]);
    ASSERT_LT(at, aVals.size());
    ASSERT_FALSE(seen[at]);
    seen[at] = true;
    if (i > 0) {
      ASSERT_LE(aVals[static_cast<size_t>(aOrder[i - 1])], aVals[at]);
    }
  }
  EXPECT_EQ(aOrder.size(), aVals.size());
}

TEST(CVelumArraySortTest, SortsAllSizes) {
  for (qint32 count : {0, 1, 2, 3, 4, 5, 13, 14, 40, 41, 1000})
    for (int range : {3, 1000000}) {
      const std::vector<int> vals = RandomVals(count, range);
      ExpectSorted(CVelumArraySort::Order(count, By(vals)), vals);
      ExpectSorted(CVelumArraySort::StableOrder(count, By(vals)), vals);
    }
}

TEST(CVelumArraySortTest, StableOrderKeepsEqualElements) {
  const std::vector<int> vals = RandomVals(500, 5);
  const std::vector<qint32> order = CVelumArraySort::StableOrder(500, By(vals));
  for (size_t i = 1; i < order.size(); ++i)
    if (By(vals)(order[i - 1], order[i]) == 0) {
      EXPECT_LT(order[i - 1], order[i]);
    }
}

TEST(CVelumArraySortTest, EqualElementsComeAsTheShellSortLeavesThem) {
  // Gap 4 changes the first and the last, then gap 1 inserts one by one.
  EXPECT_EQ(CVelumArraySort::Order(5, By({2, 2, 2, 3, 1})), (std::vector<qint32>{4, 1, 2, 0, 3}));
}

TEST(CVelumArraySortTest, AnInconsistentComparisonEndsInSomeOrder) {
  const auto any = [](qint32 aA, qint32 aB) { return (aA * 7919 + aB * 104729) % 3 - 1; };
  for (qint32 count : {2, 17, 500}) {
    std::vector<qint32> order = CVelumArraySort::Order(count, any);
    std::sort(order.begin(), order.end());
    for (qint32 i = 0; i < count; ++i) ASSERT_EQ(order[static_cast<size_t>(i)], i);
  }
}

} // namespace
