#include "model/order/CVelumCardOrder.h"

#include "core/CVelumChecked.h"
#include "model/ModelTest.h"

#include <random>

using namespace ModelTest;

namespace {

// The order as it is described: every number is stored, and renumbering touches all.
class CPlainOrder {
public:
  std::vector<std::pair<qint32, qint32>> iElems; // id, number

  void Renumber(qint32 aStep) {
    for (size_t i = 0; i < iElems.size(); ++i) iElems[i].second = aStep * (static_cast<qint32>(i) + 1);
  }
  // Inserts before a position by the gap numbering; returns the number.
  qint32 Insert(size_t aPos, qint32 aId) {
    if (aPos == iElems.size()) {
      iElems.emplace_back(aId, iElems.empty() ? 100 : iElems.back().second + 100);
      return iElems.back().second;
    }
    for (;;) {
      const qint32 prev = aPos > 0 ? iElems[aPos - 1].second : 0;
      const qint32 gap = iElems[aPos].second - prev;
      if (gap > 1) {
        iElems.insert(iElems.begin() + static_cast<std::ptrdiff_t>(aPos), {aId, prev + gap / 2});
        return prev + gap / 2;
      }
      Renumber(100);
    }
  }
};

void ExpectSame(const CVelumCardOrder& aOrder, const CPlainOrder& aPlain) {
  ASSERT_EQ(size_t(aOrder.Count()), aPlain.iElems.size());
  for (qint32 i = 0; i < aOrder.Count(); ++i) {
    const auto [id, num] = aPlain.iElems[size_t(i)];
    ASSERT_EQ(aOrder.IdAt(i), id) << i;
    ASSERT_EQ(aOrder.NumAt(i), num) << i;
    ASSERT_EQ(aOrder.PosOf(id), i);
    ASSERT_EQ(aOrder.NumOf(id), num);
  }
}

TEST(CVelumCardOrder, EmptyHasNothing) {
  const CVelumCardOrder order;
  EXPECT_EQ(order.Count(), 0);
  EXPECT_EQ(order.PosOf(0), -1);
  EXPECT_EQ(order.NumOf(0), ENoInt);
  EXPECT_EQ(Raised([&] { static_cast<void>(order.IdAt(0)); }), EHostIndex);
  EXPECT_EQ(Raised([&] { static_cast<void>(order.NumAt(-1)); }), EHostIndex);
}

TEST(CVelumCardOrder, BoundsAreChecked) {
  CVelumCardOrder order;
  order.InsertAt(0, 0, 100, 1);
  EXPECT_EQ(Raised([&] { order.InsertAt(2, 1, 100, 1); }), EHostIndex);
  EXPECT_EQ(Raised([&] { order.RemoveAt(1); }), EHostIndex);
  EXPECT_EQ(Raised([&] { order.SetIdAt(-1, 1); }), EHostIndex);
  EXPECT_EQ(Raised([&] { order.Move(0, 2, 1, 100); }), EHostIndex);
  EXPECT_EQ(Raised([&] { order.Renumber(2000000000); }), -1);
  order.InsertAt(1, 1, 200, 1);
  EXPECT_EQ(Raised([&] { order.Renumber(2000000000); }), EHostOverflow);
}

// Thousands of random steps, over many blocks, beside the plain form.
TEST(CVelumCardOrder, DoesWhatThePlainFormDoes) {
  std::mt19937 random(7);
  CVelumCardOrder order;
  CPlainOrder plain;
  qint32 nextId = 0;
  const auto position = [&](size_t aCount) { return aCount == 0 ? 0 : random() % aCount; };
  for (int step = 0; step < 12000; ++step) {
    const size_t count = plain.iElems.size();
    const size_t what = random() % 100;
    if (what < 75 || count == 0) {
      const size_t pos = what < 40 ? position(count + 1) : std::min<size_t>(count, 700);
      if (pos < count && plain.iElems[pos].second - (pos ? plain.iElems[pos - 1].second : 0) <= 1)
        order.Renumber(100);
      const qint32 num = plain.Insert(pos, nextId);
      order.InsertAt(static_cast<qint32>(pos), nextId++, num, 1);
    } else if (what < 98) {
      const size_t pos = position(count);
      plain.iElems.erase(plain.iElems.begin() + static_cast<std::ptrdiff_t>(pos));
      order.RemoveAt(static_cast<qint32>(pos));
    } else if (what == 98) {
      plain.Renumber(100);
      order.Renumber(100);
    } else {
      const size_t from = position(count);
      const size_t num = position(count - from) + 1;
      const size_t to = position(from + 1);
      const auto begin = plain.iElems.begin();
      std::rotate(begin + std::ptrdiff_t(to), begin + std::ptrdiff_t(from),
                  begin + std::ptrdiff_t(from + num));
      plain.Renumber(100);
      order.Move(qint32(from), qint32(num), qint32(to), 100);
    }
    if (step % 500 == 0) ExpectSame(order, plain);
  }
  ExpectSame(order, plain);
}

TEST(CVelumCardOrder, RemovingFromTheFrontEmptiesIt) {
  CVelumCardOrder order;
  for (qint32 id = 0; id < 2000; ++id) order.InsertAt(id, id, 100 * (id + 1), 1);
  for (qint32 id = 0; id < 2000; ++id) {
    ASSERT_EQ(order.IdAt(0), id);
    ASSERT_EQ(order.PosOf(1999), 1999 - id);
    order.RemoveAt(0);
    ASSERT_EQ(order.PosOf(id), -1);
  }
  EXPECT_EQ(order.Count(), 0);
  order.InsertAt(0, 5, 100, 1);
  EXPECT_EQ(order.NumOf(5), 100);
}

TEST(CVelumCardOrder, MovesABlockBothWays) {
  CVelumCardOrder order;
  for (qint32 id = 0; id < 6; ++id) order.InsertAt(id, id, id + 1, 1);
  const auto ids = [&] {
    QString text;
    for (qint32 i = 0; i < order.Count(); ++i) text += QString::number(order.IdAt(i));
    return text;
  };
  order.Move(1, 2, 5, 100);
  EXPECT_EQ(ids(), u"034125"_s);
  EXPECT_EQ(order.NumOf(5), 600);
  order.Move(3, 2, 0, 100);
  EXPECT_EQ(ids(), u"120345"_s);
  order.Move(0, 3, 6, 100);
  EXPECT_EQ(ids(), u"345120"_s);
}

// Blocks without cards of a background are passed.
TEST(CVelumCardOrder, SkipsToABackground) {
  CVelumCardOrder order;
  const quint64 one = CVelumCardOrder::BackgroundBit(1);
  const quint64 two = CVelumCardOrder::BackgroundBit(2);
  for (qint32 id = 0; id < 3000; ++id) order.InsertAt(id, id, id + 1, id == 1700 ? two : one);
  EXPECT_LE(order.SkipForward(0, two), 1700);
  EXPECT_GT(order.SkipForward(0, two), 1700 - 512);
  EXPECT_EQ(order.SkipForward(1700, two), 1700);
  EXPECT_EQ(order.SkipForward(2900, two), 3000);
  EXPECT_EQ(order.SkipForward(-5, one), 0);
  EXPECT_GE(order.SkipBackward(2999, two), 1700);
  EXPECT_LT(order.SkipBackward(2999, two), 1700 + 512);
  EXPECT_EQ(order.SkipBackward(100, two), -1);
  EXPECT_EQ(order.SkipBackward(9999, one), 2999);
  order.AddBit(10, two);
  EXPECT_EQ(order.SkipForward(0, two), 0);
  order.ClearBits();
  EXPECT_EQ(order.SkipForward(0, one), 3000);
}

// The same beside a plain search, with more blocks than a group of them holds.
TEST(CVelumCardOrder, SkipsOverGroupsOfBlocks) {
  CVelumCardOrder order;
  const quint64 one = CVelumCardOrder::BackgroundBit(1);
  const quint64 rare = CVelumCardOrder::BackgroundBit(5);
  const std::vector<qint32> rares = {3, 40000, 40001, 90000, 119999};
  constexpr qint32 num = 120000;
  for (qint32 id = 0; id < num; ++id)
    order.InsertAt(id, id, id + 1, std::binary_search(rares.begin(), rares.end(), id) ? rare : one);
  for (qint32 pos = 0; pos < num; pos += 331) {
    const auto next = std::lower_bound(rares.begin(), rares.end(), pos);
    const qint32 to = order.SkipForward(pos, rare);
    ASSERT_GE(to, pos);
    ASSERT_LE(to, *next) << "none is passed";
    const qint32 back = order.SkipBackward(pos, rare);
    ASSERT_LE(back, pos);
    if (pos > 3) {
      ASSERT_GE(back, *(next - 1)) << "none is passed";
    }
  }
  qint32 visited = 0;
  for (qint32 pos = 0; (pos = order.SkipForward(pos, rare)) < num; ++pos) ++visited;
  EXPECT_LE(visited, 5 * 512);
  for (qint32 pos = num; (pos = order.SkipBackward(pos, rare)) >= 0; --pos) --visited;
  EXPECT_EQ(visited, 0) << "the way back visits as many";
  for (qint32 i = 0; i < 50000; ++i) order.RemoveAt(0);
  EXPECT_GT(order.SkipForward(0, rare), 40000 - 1024);
  EXPECT_LE(order.SkipForward(0, rare), 40000);
}

// The bytes are those of an array, its growth figures included.
TEST(CVelumCardOrder, WritesWhatAnArrayWrites) {
  CVelumCardOrder order;
  const auto array = MakeRef<CVelumArray>(EArrIntKey, EValInt);
  for (qint32 i = 0; i < 100; ++i) {
    TVelumElem elem;
    array->InitElem(elem);
    elem.iIntKey = 100 * (i + 1);
    elem.iVal = TVelumValue::OfInt(i);
    array->CreateIntKey(elem);
    order.InsertAt(i, i, elem.iIntKey, 1);
    ASSERT_EQ(order.ObjDescr(), array->ObjDescr());
  }
  const QByteArray bytes = Stored(order);
  EXPECT_EQ(bytes, Stored(*array));
  EXPECT_EQ(order.ExtLen(), bytes.size());

  CVelumCardOrder read;
  Load(read, bytes);
  EXPECT_FALSE(read.Changed());
  EXPECT_EQ(Stored(read), bytes);
  EXPECT_EQ(read.NumOf(99), 10000);
  EXPECT_EQ(read.ToArray()->Count(), 100);
  EXPECT_EQ(read.ToArray()->FindIntKey(500), 4);
}

TEST(CVelumCardOrder, RefusesOtherArrays) {
  const QByteArray byName = Stored(*MakeRef<CVelumArray>(EArrStrKey, EValInt));
  EXPECT_EQ(Raised([&] {
              CVelumCardOrder order;
              Load(order, byName);
            }),
            1006);
  const QByteArray ofTexts = Stored(*MakeRef<CVelumArray>(EArrIntKey, EValStr));
  EXPECT_EQ(Raised([&] {
              CVelumCardOrder order;
              Load(order, ofTexts);
            }),
            1006);
}

// Ids of a damaged file: huge, negative, repeated.
TEST(CVelumCardOrder, SurvivesAnyId) {
  Bytes bytes;
  bytes.Array(EArrIntKey, EValInt, 5);
  for (const qint32 id : {7, -1, 2147483647, 7, ENoInt}) bytes.Int(100).Short(EValInt).Int(id);
  CVelumCardOrder order;
  Load(order, bytes);
  ASSERT_EQ(order.Count(), 5);
  EXPECT_EQ(order.IdAt(2), 2147483647);
  EXPECT_EQ(order.PosOf(-1), -1);
  EXPECT_EQ(order.PosOf(2147483647), -1);
  while (order.Count() > 0) order.RemoveAt(order.Count() - 1);
  EXPECT_EQ(order.PosOf(7), -1);
}

TEST(CVelumCardOrder, ACardThatStoodTwiceIsFoundWhereItIsLeft) {
  constexpr qint32 num = 1200; // more than two blocks
  const quint64 bit = CVelumCardOrder::BackgroundBit(3);
  Bytes bytes;
  bytes.Array(EArrIntKey, EValInt, num);
  for (qint32 i = 0; i < num; ++i) bytes.Int(100 * (i + 1)).Short(EValInt).Int(i + 1 < num ? i : 5);
  CVelumCardOrder order;
  Load(order, bytes);
  order.ClearBits();
  order.AddBit(5, bit);
  order.RemoveAt(num - 1);
  order.RenewPlaces();
  EXPECT_EQ(order.PosOf(5), 5);
  EXPECT_EQ(order.NumOf(5), 600);
  EXPECT_EQ(order.PosOf(num - 2), num - 2);
  EXPECT_LE(order.SkipForward(0, bit), 5);
}

TEST(CVelumCardOrder, IdsBeyondTheBoundHaveNoPlace) {
  CVelumCardOrder order;
  order.SetIdBound(10);
  order.InsertAt(0, 9, 100, 1);
  order.InsertAt(1, 40'000'000, 200, 1);
  EXPECT_EQ(order.PosOf(9), 0);
  EXPECT_EQ(order.PosOf(40'000'000), -1);
  EXPECT_EQ(order.IdAt(1), 40'000'000);
  order.LiftIdBound();
  order.InsertAt(2, 11, 300, 1);
  EXPECT_EQ(order.PosOf(11), 2);
}

} // namespace
