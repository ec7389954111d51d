// Elements of an array that go, move, or get other keys.
#include "core/array/CVelumArray.h"

#include "core/ArrayHelpers.h"

namespace {

class CVelumArrayChangeTest : public testing::Test {
protected:
  void SetUp() override { CVelumCollation::Init(u"en_US"_s); }
};

TEST_F(CVelumArrayChangeTest, DeleteAtMovesTheTailDown) {
  CVelumArray array(0, EValInt);
  FillInt(array, {0, 1, 2, 3, 4});
  array.SetChanged(false);
  array.DeleteAt(1, 2);
  EXPECT_TRUE(array.Changed());
  EXPECT_EQ(IntsOf(array), (QList<qint32>{0, 3, 4}));
  ExpectAssert([&] { array.DeleteAt(3); }, u"DeleteAt max"_s);
  ExpectAssert([&] { array.DeleteAt(1, 3); }, u"DeleteAt aNum"_s);
  ExpectHostError([&] { array.DeleteAt(3); }, EHostIndex);
  ExpectHostError([&] { array.DeleteAt(1, 3); }, EHostIndex);
  ExpectHostError([&] { array.DeleteAt(-1, 1); }, EHostIndex);
  ExpectHostError([&] { array.DeleteAt(1, -1); }, EHostIndex);
  EXPECT_EQ(array.Count(), 3);
}

TEST_F(CVelumArrayChangeTest, DeletesByKey) {
  CVelumArray strs(EArrStrKey, EValInt);
  FillKeys(strs, {u"a"_s, u"b"_s, u"c"_s});
  strs.DeleteStrKey(u"B."_s);
  EXPECT_EQ(KeysOf(strs), (QList<QString>{u"a"_s, u"c"_s}));
  ExpectAssert([&] { strs.DeleteStrKey(u"b"_s); }, u"DeleteStrKey found"_s);
  ExpectHostError([&] { strs.DeleteStrKey(u"b"_s); }, EHostIndex);
  CVelumArray ints(EArrIntKey, EValInt);
  ints.CreateIntKey(IntKeyElem(3, 1));
  ExpectAssert([&] { ints.DeleteIntKey(4); }, u"DeleteIntKey found"_s);
  ExpectHostError([&] { ints.DeleteIntKey(4); }, EHostIndex);
  ExpectAssert([&] { ints.DeleteStrKey(u"b"_s); }, u"DeleteStrKey withKey"_s);
  ExpectHostError([&] { ints.DeleteStrKey(u"b"_s); }, EHostIndex);
  ExpectAssert([&] { strs.DeleteIntKey(1); }, u"DeleteIntKey withKey"_s);
  ints.DeleteIntKey(3);
  EXPECT_EQ(ints.Count(), 0);
  EXPECT_EQ(strs.Count(), 2);
}

TEST_F(CVelumArrayChangeTest, MovesBlocks) {
  const auto moved = [](qint32 aFrom, qint32 aNum, qint32 aTo) {
    CVelumArray array(0, EValInt);
    FillInt(array, {0, 1, 2, 3, 4});
    array.SetChanged(false);
    array.Move(aFrom, aNum, aTo, false, 0);
    return std::pair(IntsOf(array), array.Changed());
  };
  EXPECT_EQ(moved(1, 2, 5), std::pair(QList<qint32>({0, 3, 4, 1, 2}), true));
  EXPECT_EQ(moved(3, 2, 0), std::pair(QList<qint32>({3, 4, 0, 1, 2}), true));
  EXPECT_EQ(moved(1, 1, 4), std::pair(QList<qint32>({0, 2, 3, 1, 4}), true));
  const std::pair same(QList<qint32>({0, 1, 2, 3, 4}), false);
  EXPECT_EQ(moved(1, 0, 4), same);
  EXPECT_EQ(moved(1, 2, 1), same);
  EXPECT_EQ(moved(1, 2, 3), same);
}

TEST_F(CVelumArrayChangeTest, MoveChecks) {
  CVelumArray array(0, EValInt);
  FillInt(array, {0, 1, 2, 3, 4});
  ExpectAssert([&] { array.Move(3, 3, 0, false, 0); }, u"Move"_s, u"max"_s);
  ExpectAssert([&] { array.Move(1, 3, 2, false, 0); }, u"Move"_s, u"aToIndex"_s);
  ExpectAssert([&] { array.Move(1, 1, 6, false, 0); }, u"MakeRoomAt index"_s);
  ExpectHostError([&] { array.Move(3, 3, 0, false, 0); }, EHostIndex);
  ExpectHostError([&] { array.Move(1, 3, 2, false, 0); }, EHostIndex);
  ExpectHostError([&] { array.Move(1, 1, 6, false, 0); }, EHostIndex);
  ExpectHostError([&] { array.Move(-1, 1, 3, false, 0); }, EHostIndex);
  ExpectHostError([&] { array.Move(2147483647, 2147483647, 0, false, 0); }, EHostIndex);
  EXPECT_EQ(IntsOf(array), (QList<qint32>{0, 1, 2, 3, 4}));
  CVelumArray keyed(EArrIntKey, EValInt);
  for (qint32 i : {0, 1, 2}) keyed.CreateIntKey(IntKeyElem(i, i));
  ExpectAssert([&] { keyed.Move(0, 1, 2, false, 0); }, u"Move"_s, u"key"_s);
  keyed.Move(0, 1, 2, true, 100);
  EXPECT_EQ(IntsOf(keyed), (QList<qint32>{1, 0, 2}));
  EXPECT_EQ(IntKeysOf(keyed), (QList<qint32>{100, 200, 300}));
}

TEST_F(CVelumArrayChangeTest, MoveGrowsTheCapacityByItsGap) {
  CVelumArray array(0, EValInt);
  FillInt(array, {0, 1, 2, 3, 4, 5, 6, 7, 8});
  array.Move(0, 1, 9, false, 0);
  EXPECT_EQ(array.Alloc(), 10);
  array.Move(0, 3, 9, false, 0);
  EXPECT_EQ(array.Alloc(), 62);
  EXPECT_EQ(array.Count(), 9);
}

TEST_F(CVelumArrayChangeTest, RenumbersIntegerKeys) {
  CVelumArray array(EArrIntKey, EValInt);
  for (qint32 i : {3, 9, 70}) array.CreateIntKey(IntKeyElem(i, i));
  array.SetChanged(false);
  array.RenumberIntKey(100);
  EXPECT_TRUE(array.Changed());
  EXPECT_EQ(IntKeysOf(array), (QList<qint32>{100, 200, 300}));
  ExpectHostError([&] { array.RenumberIntKey(1000000000); }, EHostOverflow);
  EXPECT_EQ(IntKeysOf(array), (QList<qint32>{100, 200, 300}));
  CVelumArray empty(EArrIntKey, EValInt);
  empty.SetChanged(false);
  empty.RenumberIntKey(1);
  EXPECT_TRUE(empty.Changed());
  ExpectAssert([&] { CVelumArray(0, EValInt).RenumberIntKey(1); }, u"RenumberIntKey"_s, u"with IntKey"_s);
}

TEST_F(CVelumArrayChangeTest, RenumberedStringKeysKeepTheirWidth) {
  CVelumArray array(EArrStrKey, EValInt);
  FillKeys(array, {u"aaa"_s, u"b"_s, u"ccccc"_s});
  array.SetChanged(false);
  array.RenumberStrKey(500);
  EXPECT_TRUE(array.Changed());
  EXPECT_EQ(KeysOf(array), (QList<QString>{u"500"_s, u"000"_s, u"500"_s}));
  array.RenumberStrKey(1);
  EXPECT_EQ(KeysOf(array), (QList<QString>{u"  1"_s, u"  2"_s, u"  3"_s}));
  CVelumArray empty(EArrStrKey, EValInt);
  empty.SetChanged(false);
  empty.RenumberStrKey(1);
  EXPECT_FALSE(empty.Changed());
  ExpectAssert([&] { CVelumArray(0, EValInt).RenumberStrKey(1); }, u"RenumberStrKey"_s, u"with StrKey"_s);
}

TEST_F(CVelumArrayChangeTest, AdjustIntIsTheOneChangeThatLeavesNoMark) {
  CVelumArray array(EArrIntKey, EValInt);
  for (qint32 i : {0, 1, 2, 3}) array.CreateIntKey(IntKeyElem(i, i * 10));
  array.CreateIntKey(IntKeyElem(4, ENoInt));
  array.SetChanged(false);
  array.AdjustInt(20, -5);
  EXPECT_EQ(IntsOf(array), (QList<qint32>{0, 10, 15, 25, ENoInt}));
  EXPECT_FALSE(array.Changed());
  ExpectHostError([&] { array.AdjustInt(25, 2147483647); }, EHostOverflow);
  ExpectAssert([&] { CVelumArray(0, EValStr).AdjustInt(0, 1); }, u"AdjustInt"_s, u"iType"_s);
}

TEST_F(CVelumArrayChangeTest, AllOtherMutatorsLeaveAMark) {
  const auto marks = [](qint32 aFlags, qint32 aType, const auto& aFill, const auto& aCall) {
    CVelumArray array(aFlags, aType);
    aFill(array);
    array.SetChanged(false);
    aCall(array);
    EXPECT_TRUE(array.Changed());
  };
  const auto ints = [](CVelumArray& a) { FillInt(a, {3, 1, 2}); };
  const auto strs = [](CVelumArray& a) { FillStr(a, {u"b"_s, u"a"_s}); };
  const auto keys = [](CVelumArray& a) { FillKeys(a, {u"b"_s, u"a"_s}); };
  const auto none = [](CVelumArray&) {};
  marks(0, EValInt, none, [](CVelumArray& a) { a.SetId(1); });
  marks(0, EValInt, none, [](CVelumArray& a) { a.SetFlags(1); });
  marks(0, EValInt, none, [](CVelumArray& a) { a.Clear(); });
  marks(0, EValInt, ints, [](CVelumArray& a) { a.DeleteAt(0); });
  marks(0, EValInt, ints, [](CVelumArray& a) { a.CreateAt(IntElem(1), 0); });
  marks(0, EValInt, ints, [](CVelumArray& a) { a.CreateAtEnd(IntElem(1)); });
  marks(0, EValInt, ints, [](CVelumArray& a) { a.SetValAt(1, TVelumValue::OfInt(1)); });
  marks(0, EValInt, ints, [](CVelumArray& a) { a.Move(0, 1, 2, false, 0); });
  marks(0, EValCard, none, [](CVelumArray& a) { a.SetToLastObj(); });
  marks(0, EValStr, strs, [](CVelumArray& a) { a.Sort(); });
  marks(EArrStrKey, EValInt, keys, [](CVelumArray& a) { a.CreateStrKey(StrKeyElem(u"c"_s)); });
  marks(EArrStrKey, EValInt, keys, [](CVelumArray& a) { a.DeleteStrKey(u"a"_s); });
}

TEST_F(CVelumArrayChangeTest, ClearedObjectsAreStillSeenByNumber) {
  CVelumArray array(0, EValCard);
  Ref<MarkedObj> a(new MarkedObj);
  array.CreateAtEnd(ObjElem(a));
  array.CreateAtEnd(ObjElem(new MarkedObj));
  array.Clear();
  TVelumElem elem;
  qint32 index = 9;
  EXPECT_TRUE(array.ReadObjByNum(0, elem, index));
  EXPECT_EQ(index, 0);
  EXPECT_EQ(elem.iVal.Obj(), a.Get());
  EXPECT_TRUE(array.ReadObjByNum(1, elem, index));
  EXPECT_FALSE(array.ReadObjByNum(2, elem, index));
  EXPECT_EQ(array.Count(), 0);
  EXPECT_EQ(a->Refs(), 2);             // here and in the slot
  array.CreateAtEnd(ObjElem(nullptr)); // overwrites the first slot
  EXPECT_EQ(a->Refs(), 1);
}

TEST_F(CVelumArrayChangeTest, DeletedObjectsStayInTheSlotsBehindTheEnd) {
  CVelumArray array(0, EValCard);
  Ref<MarkedObj> objs[3] = {new MarkedObj, new MarkedObj, new MarkedObj};
  for (const auto& obj : objs) array.CreateAtEnd(ObjElem(obj));
  array.DeleteAt(0);
  TVelumElem elem;
  qint32 index = 0;
  EXPECT_TRUE(array.ReadObjByNum(2, elem, index)); // the last one stands twice
  EXPECT_EQ(elem.iVal.Obj(), objs[2].Get());
  EXPECT_FALSE(array.ReadObjByNum(3, elem, index));
}

TEST_F(CVelumArrayChangeTest, KeyedArraysLeaveNothingBehind) {
  CVelumArray array(EArrIntKey, EValCard);
  Ref<MarkedObj> obj(new MarkedObj);
  array.CreateIntKey({{}, 1, TVelumValue::OfObj(EValCard, obj)});
  array.Clear();
  EXPECT_EQ(obj->Refs(), 1);
  array.CreateIntKey({{}, 1, TVelumValue::OfObj(EValCard, obj)});
  array.DeleteAt(0);
  EXPECT_EQ(obj->Refs(), 1);
}

TEST_F(CVelumArrayChangeTest, SetToLastObjCutsEmptySlots) {
  CVelumArray array(0, EValCard);
  for (int i = 0; i < 70; ++i) array.CreateAtEnd(ObjElem(i == 2 ? new MarkedObj : nullptr));
  EXPECT_EQ(array.Alloc(), 112);
  array.SetToLastObj();
  EXPECT_EQ(array.Count(), 3);
  EXPECT_EQ(array.Alloc(), 53);
  array.SetObj(2, nullptr);
  array.SetToLastObj();
  EXPECT_EQ(array.Count(), 0);
  EXPECT_EQ(array.Alloc(), 50);
  array.SetToLastObj(); // never raises it
  EXPECT_EQ(array.Alloc(), 50);
  CVelumArray small(0, EValCard);
  small.CreateAtEnd(ObjElem(new MarkedObj));
  small.SetToLastObj();
  EXPECT_EQ(small.Alloc(), 10);
}

TEST_F(CVelumArrayChangeTest, SortsTextsByCollation) {
  CVelumArray array(0, EValStr);
  FillStr(array, {u"pear"_s, u"Apple"_s, u"(fig)"_s, u"apricot"_s, u"Äpfel"_s});
  array.SetChanged(false);
  array.Sort();
  QList<QString> texts;
  for (qint32 i = 0; i < array.Count(); ++i) texts.append(array.Str(i));
  EXPECT_EQ(texts, (QList<QString>{u"Äpfel"_s, u"Apple"_s, u"apricot"_s, u"(fig)"_s, u"pear"_s}));
  EXPECT_TRUE(array.Changed());
  for (int num : {0, 1}) {
    CVelumArray few(0, EValStr);
    if (num) FillStr(few, {u"a"_s});
    few.SetChanged(false);
    few.Sort();
    EXPECT_TRUE(few.Changed());
    EXPECT_EQ(few.Count(), num);
  }
}

TEST_F(CVelumArrayChangeTest, SortLeavesEqualTextsAsTheShellSortDoes) {
  // Five elements: a round with gap 4 swaps the first and the last, then one with gap 1.
  CVelumArray array(0, EValStr);
  FillStr(array, {u"B"_s, u"b"_s, u"b."_s, u"c"_s, u"a"_s});
  array.Sort();
  QList<QString> texts;
  for (qint32 i = 0; i < array.Count(); ++i) texts.append(array.Str(i));
  EXPECT_EQ(texts, (QList<QString>{u"a"_s, u"b"_s, u"b."_s, u"B"_s, u"c"_s}));
}

TEST_F(CVelumArrayChangeTest, SortIsForTextsWithoutKey) {
  ExpectAssert([] { CVelumArray(EArrStrKey, EValStr).Sort(); }, u"Sort"_s, u"not withKey"_s);
  ExpectAssert([] { CVelumArray(0, EValInt).Sort(); }, u"Sort"_s, u"EValStr"_s);
}

} // namespace
