#include "core/CVelumArray.h"

#include "core/ArrayHelpers.h"

namespace {

class CVelumArrayTest : public testing::Test {
protected:
  void SetUp() override { CVelumCollation::Init(u"en_US"_s); }
};

TEST_F(CVelumArrayTest, IsSmallBecauseEveryCardHasOne) {
  EXPECT_LE(sizeof(CVelumArray), 72U);
}

TEST_F(CVelumArrayTest, ConstructsEmptyAndChanged) {
  CVelumArray array(EArrIntKey, EValInt);
  EXPECT_EQ(array.Id(), ENoInt);
  EXPECT_EQ(array.Flags(), EArrIntKey);
  EXPECT_EQ(array.Type(), EValInt);
  EXPECT_EQ(array.Count(), 0);
  EXPECT_EQ(array.Alloc(), 10);
  EXPECT_EQ(array.AllocStep(), 50);
  EXPECT_EQ(array.SortKeyId(), ENoInt);
  EXPECT_TRUE(array.Changed());
  EXPECT_EQ(array.ObjDescr(), u"CVelumArray max=0, alloc=10"_s);
}

TEST_F(CVelumArrayTest, BlankElementHasNothingSet) {
  TVelumElem elem = StrKeyElem(u"x"_s, 5);
  CVelumArray(0, EValInt).InitElem(elem);
  EXPECT_EQ(elem.iStrKey, QString());
  EXPECT_EQ(elem.iIntKey, ENoInt);
  EXPECT_EQ(elem.iVal.Type(), EValInt);
  EXPECT_EQ(elem.iVal.Int(), ENoInt);
  CVelumArray(0, EValIntPair).InitElem(elem);
  EXPECT_EQ(elem.iVal.Int0(), ENoInt);
  EXPECT_EQ(elem.iVal.Int1(), ENoInt);
  CVelumArray(0, EValBlobId).InitElem(elem);
  EXPECT_EQ(elem.iVal.Type(), EValBlobId);
  EXPECT_EQ(elem.iVal.Int(), ENoInt);
  CVelumArray(0, EValCard).InitElem(elem);
  EXPECT_EQ(elem.iVal.Type(), EValCard);
  EXPECT_EQ(elem.iVal.Obj(), nullptr);
  CVelumArray(EArrMixed, EValInt).InitElem(elem);
  EXPECT_EQ(elem.iVal.Type(), EValUndef);
}

TEST_F(CVelumArrayTest, EmptyArrayFindsNothingAndInsertsAtZero) {
  for (qint32 flags : {EArrStrKey | 0, EArrStrKey | EArrExactCase, EArrStrKey | EArrSortKey}) {
    CVelumArray array(flags, EValInt);
    if (flags & EArrSortKey) array.SetSortKey(new ReverseOrder);
    TVelumElem elem = StrKeyElem(u"old"_s, 1);
    qint32 next = 99;
    EXPECT_FALSE(array.ReadByStrKey(u"a"_s, elem, next));
    EXPECT_EQ(next, 99);
    EXPECT_EQ(elem.iStrKey, QString());
    array.CreateStrKey(StrKeyElem(u"a"_s, 3));
    EXPECT_TRUE(array.ReadByStrKey(u"a"_s, elem, next));
    EXPECT_EQ(next, 1);
    EXPECT_EQ(elem.iVal.Int(), 3);
  }
  CVelumArray array(EArrIntKey, EValInt);
  TVelumElem elem;
  qint32 next = 99;
  EXPECT_FALSE(array.ReadByIntKey(1, elem, next));
  EXPECT_EQ(next, 99);
  EXPECT_EQ(array.FindIntKey(1), -1);
}

TEST_F(CVelumArrayTest, KeepsKeysInCollationOrder) {
  CVelumArray array(EArrStrKey, EValInt);
  FillKeys(array, {u"b"_s, u"a"_s, u"C"_s});
  EXPECT_EQ(KeysOf(array), (QList<QString>{u"a"_s, u"b"_s, u"C"_s}));
}

TEST_F(CVelumArrayTest, ExactOrderIsByCodeUnits) {
  CVelumArray array(EArrStrKey | EArrExactCase, EValInt);
  FillKeys(array, {u"b"_s, u"a"_s, u"C"_s, u"B"_s, u" b"_s});
  EXPECT_EQ(KeysOf(array), (QList<QString>{u" b"_s, u"B"_s, u"C"_s, u"a"_s, u"b"_s}));
}

TEST_F(CVelumArrayTest, PunctuationAndCaseMakeNoOtherKey) {
  CVelumArray array(EArrStrKey, EValInt);
  FillKeys(array, {u"Dr. Who"_s});
  TVelumElem elem;
  qint32 next = 0;
  EXPECT_TRUE(array.ReadByStrKey(u"DR WHO"_s, elem, next));
  EXPECT_TRUE(array.ReadByStrKey(u"dr-who"_s, elem, next));
  EXPECT_EQ(elem.iStrKey, u"Dr. Who"_s);
  ExpectAssert([&] { array.CreateStrKey(StrKeyElem(u"dr-who"_s)); }, u"Create duplicate"_s);
  EXPECT_EQ(array.Count(), 1);
}

TEST_F(CVelumArrayTest, KeysOfSkippedCharactersAloneSortFirstAndAreEqual) {
  CVelumArray array(EArrStrKey, EValInt);
  FillKeys(array, {u"a"_s, u"0"_s, u"-.-"_s});
  EXPECT_EQ(KeysOf(array), (QList<QString>{u"-.-"_s, u"0"_s, u"a"_s}));
  ExpectAssert([&] { array.CreateStrKey(StrKeyElem(u"(!)"_s)); }, u"Create duplicate"_s);
}

TEST_F(CVelumArrayTest, SortKeyDecidesTheOrder) {
  CVelumArray array(EArrStrKey | EArrSortKey, EValInt);
  const Ref<CVelumKeyOrder> key(new ReverseOrder);
  array.SetSortKey(key);
  EXPECT_EQ(array.SortKeyId(), 77);
  EXPECT_EQ(array.SortKey(), key.Get());
  FillKeys(array, {u"b"_s, u"d"_s, u"a"_s});
  EXPECT_EQ(KeysOf(array), (QList<QString>{u"d"_s, u"b"_s, u"a"_s}));
  array.SetChanged(false);
  array.SetSortKeyId(5);
  EXPECT_TRUE(array.Changed());
  EXPECT_FALSE(array.SortKey()); // set, but nobody has looked it up
  array.SetChanged(false);
  array.ResolveSortKey(key);
  EXPECT_FALSE(array.Changed());
  EXPECT_EQ(array.SortKey(), key.Get());
  EXPECT_EQ(array.SortKeyId(), 5);
}

TEST_F(CVelumArrayTest, SortKeyMustBeSet) {
  CVelumArray array(EArrStrKey | EArrSortKey, EValInt);
  ExpectAssert([&] { static_cast<void>(array.SortKey()); }, u"GetSortKey"_s, u"id set"_s);
  Overruled([&] { EXPECT_FALSE(array.SortKey()); });
  ExpectHostError([&] { array.SetSortKey(nullptr); }, EHostObjectNotSet);
  TVelumElem elem;
  qint32 next = 0;
  ExpectHostError([&] { static_cast<void>(array.ReadByStrKey(u"a"_s, elem, next)); }, EHostObjectNotSet);
  EXPECT_FALSE(CVelumArray(EArrStrKey, EValInt).SortKey());
}

TEST_F(CVelumArrayTest, DuplicatesStandTogetherInTheOrderOfTheSearch) {
  CVelumArray array(EArrIntKey | EArrDuplicates, EValInt);
  // Each search finds the first middle that it tries: 0, 0, and then 1; the new element comes there.
  for (qint32 val : {0, 1, 2, 3}) array.CreateIntKey(IntKeyElem(7, val));
  EXPECT_EQ(IntsOf(array), (QList<qint32>{2, 3, 1, 0}));
  EXPECT_EQ(array.FindIntKey(7), 1);
}

TEST_F(CVelumArrayTest, IntegerKeysMayBeNegative) {
  CVelumArray array(EArrIntKey, EValInt);
  for (qint32 key : {5, -2147483647 - 1, 0, 2147483647, -1}) array.CreateIntKey(IntKeyElem(key, key));
  EXPECT_EQ(IntKeysOf(array), (QList<qint32>{-2147483647 - 1, -1, 0, 5, 2147483647}));
}

TEST_F(CVelumArrayTest, CapacityGrowsByTheNeedAndFifty) {
  CVelumArray array(0, EValInt);
  for (qint32 i = 0; i < 10; ++i) array.CreateAtEnd(IntElem(i));
  EXPECT_EQ(array.Alloc(), 10);
  array.CreateAtEnd(IntElem(10));
  EXPECT_EQ(array.Alloc(), 61);
  for (qint32 i = 0; i < 50; ++i) array.CreateAtEnd(IntElem(i));
  EXPECT_EQ(array.Alloc(), 61);
  array.CreateAtEnd(IntElem(0));
  EXPECT_EQ(array.Alloc(), 112);
  array.Clear();
  EXPECT_EQ(array.Alloc(), 112);
  EXPECT_EQ(array.ObjDescr(), u"CVelumArray max=0, alloc=112"_s);
}

TEST_F(CVelumArrayTest, CreateAtPutsBetween) {
  CVelumArray array(0, EValInt);
  FillInt(array, {1, 2});
  array.CreateAt(IntElem(9), 1);
  array.CreateAt(IntElem(8), 0);
  array.CreateAt(IntElem(7), ENoInt);
  EXPECT_EQ(IntsOf(array), (QList<qint32>{8, 1, 9, 2, 7}));
  EXPECT_EQ(array.CreateAtEnd(IntElem(6)), 5);
}

TEST_F(CVelumArrayTest, CreateChecksTheElement) {
  CVelumArray array(0, EValInt);
  ExpectAssert([&] { array.CreateAtEnd({}); }, u"Create"_s, u"aElem.iVal.iType"_s);
  ExpectAssert([&] { array.CreateAtEnd(StrElem({})); }, u"Create"_s, u"iType"_s);
  ExpectAssert([&] { array.CreateAtEnd(StrKeyElem(u"k"_s)); }, u"Create key"_s);
  ExpectAssert([&] { array.CreateAt(IntElem(1), 1); }, u"MakeRoomAt index"_s);
  ExpectHostError([&] { array.CreateAt(IntElem(1), 1); }, EHostIndex);
  ExpectHostError([&] { array.CreateAt(IntElem(1), -1); }, EHostIndex);
  ExpectAssert([&] { array.CreateStrKey(StrKeyElem(u"k"_s)); }, u"CreateStrKey"_s, u"with StrKey"_s);
  ExpectAssert([&] { array.CreateIntKey(IntKeyElem(1, 1)); }, u"CreateIntKey"_s, u"with IntKey"_s);
  CVelumArray keyed(EArrIntKey, EValInt);
  ExpectAssert([&] { keyed.CreateIntKey({u"k"_s, 1, TVelumValue::OfInt(1)}); }, u"Create key"_s);
  EXPECT_EQ(array.Count() + keyed.Count(), 0);
}

TEST_F(CVelumArrayTest, CreateChecksSlotsThatTheTypeDoesNotHave) {
  ScriptedPresenter presenter;
  presenter.Answer(true); // goes on past the wrong type
  CVelumArray array(0, EValInt);
  EXPECT_THROW(array.CreateAtEnd(StrElem(u"x"_s)), CVelumException);
  EXPECT_EQ(gLastError.iP1, u"Create str"_s);
  presenter.Answer(true);
  EXPECT_THROW(array.CreateAtEnd(ObjElem(new MarkedObj)), CVelumException);
  EXPECT_EQ(gLastError.iP1, u"Create obj"_s);
  EXPECT_EQ(array.Count(), 0);
}

TEST_F(CVelumArrayTest, OverruledElementsAreStoredAsTheyAre) {
  CVelumArray array(0, EValInt);
  Overruled([&] { array.CreateAtEnd(StrElem(u"x"_s)); });
  EXPECT_EQ(array.ValRef(0).Str(), u"x"_s);
  EXPECT_EQ(array.IntNum(0), 0); // another slot reads as its zero
  Ref<MarkedObj> obj(new MarkedObj);
  Overruled([&] { array.CreateAtEnd(ObjElem(obj)); });
  EXPECT_EQ(obj->Refs(), 2);
  array.Clear();
  EXPECT_EQ(obj->Refs(), 1);
  CVelumArray keyed(EArrIntKey, EValInt);
  keyed.CreateIntKey(IntKeyElem(1, 1));
  Overruled([&] { keyed.CreateIntKey(IntKeyElem(1, 2)); });
  EXPECT_EQ(IntsOf(keyed), (QList<qint32>{2, 1}));
}

TEST_F(CVelumArrayTest, MixedArraysTakeAllTypes) {
  CVelumArray array(EArrMixed | EArrIntKey, EValUndef);
  Ref<MarkedObj> obj(new MarkedObj);
  array.CreateIntKey({{}, 1, TVelumValue::OfStr(u"t"_s)});
  array.CreateIntKey({{}, 2, TVelumValue::OfReal(2.5)});
  array.CreateIntKey({{}, 3, TVelumValue::OfObj(EValControl, obj)});
  EXPECT_EQ(array.ValRef(0).Str(), u"t"_s);
  EXPECT_EQ(array.ValRef(1).Real(), 2.5);
  EXPECT_EQ(array.Obj(2), obj.Get());
  ExpectAssert([&] { array.CreateIntKey({{}, 4, {}}); }, u"Create"_s, u"aElem.iVal.iType"_s);
}

TEST_F(CVelumArrayTest, StrReadsAndWrites) {
  CVelumArray array(0, EValStr);
  FillStr(array, {u"a"_s, u"b"_s});
  array.SetChanged(false);
  EXPECT_EQ(array.Str(1), u"b"_s);
  EXPECT_FALSE(array.Changed());
  array.SetStr(1, u"c"_s);
  EXPECT_TRUE(array.Changed());
  EXPECT_EQ(array.Str(1), u"c"_s);
  ExpectAssert([&] { static_cast<void>(array.Str(2)); }, u"GetStr Index"_s);
  ExpectAssert([&] { array.SetStr(2, {}); }, u"LetStr Index"_s);
  ExpectHostError([&] { static_cast<void>(array.Str(2)); }, EHostIndex);
  ExpectHostError([&] { array.SetStr(2, {}); }, EHostIndex);
  ExpectHostError([&] { static_cast<void>(array.Str(-1)); }, EHostIndex);
  CVelumArray ints(EArrIntKey, EValInt);
  ints.CreateIntKey(IntKeyElem(1, 1));
  ExpectAssert([&] { static_cast<void>(ints.Str(0)); }, u"With Str"_s);
  ExpectAssert([&] { ints.SetStr(0, {}); }, u"With Str"_s);
  CVelumArray keyed(EArrIntKey, EValStr);
  keyed.CreateIntKey({{}, 1, TVelumValue::OfStr(u"a"_s)});
  ExpectAssert([&] { static_cast<void>(keyed.Str(0)); }, u"Without key"_s);
  ExpectAssert([&] { keyed.SetStr(0, {}); }, u"Without key"_s);
  Overruled([&] { EXPECT_EQ(keyed.Str(0), u"a"_s); });
}

TEST_F(CVelumArrayTest, IntNumReadsAndWrites) {
  CVelumArray array(0, EValInt);
  FillInt(array, {4, 5});
  array.SetChanged(false);
  EXPECT_EQ(array.IntNum(1), 5);
  array.SetIntNum(1, 6);
  EXPECT_EQ(array.IntNum(1), 6);
  EXPECT_TRUE(array.Changed());
  ExpectAssert([&] { static_cast<void>(array.IntNum(2)); }, u"GetIntNum Index"_s);
  ExpectAssert([&] { array.SetIntNum(2, 0); }, u"LetIntNum Index"_s);
  ExpectHostError([&] { static_cast<void>(array.IntNum(-1)); }, EHostIndex);
  ExpectHostError([&] { array.SetIntNum(2, 0); }, EHostIndex);
  CVelumArray keyed(EArrIntKey, EValInt);
  keyed.CreateIntKey(IntKeyElem(1, 1));
  ExpectAssert([&] { static_cast<void>(keyed.IntNum(0)); }, u"Without key"_s);
  ExpectAssert([&] { keyed.SetIntNum(0, 1); }, u"Without key"_s);
  CVelumArray strs(0, EValStr);
  FillStr(strs, {u"a"_s});
  ExpectAssert([&] { static_cast<void>(strs.IntNum(0)); }, u"With Int"_s);
  ExpectAssert([&] { strs.SetIntNum(0, 1); }, u"With Int"_s);
}

TEST_F(CVelumArrayTest, ObjReadsAndWrites) {
  CVelumArray array(0, EValCard);
  Ref<MarkedObj> obj(new MarkedObj);
  array.CreateAtEnd(ObjElem(obj));
  array.SetChanged(false);
  EXPECT_EQ(array.Obj(0), obj.Get());
  EXPECT_FALSE(array.Changed());
  array.SetObj(0, nullptr);
  EXPECT_TRUE(array.Changed());
  EXPECT_FALSE(array.Obj(0));
  EXPECT_EQ(obj->Refs(), 1);
  ExpectAssert([&] { static_cast<void>(array.Obj(1)); }, u"GetObj Index"_s);
  ExpectAssert([&] { array.SetObj(1, nullptr); }, u"LetObj Index"_s);
  ExpectHostError([&] { static_cast<void>(array.Obj(1)); }, EHostIndex);
  CVelumArray ints(0, EValInt);
  FillInt(ints, {1});
  ExpectAssert([&] { static_cast<void>(ints.Obj(0)); }, u"With Obj"_s);
  ExpectAssert([&] { ints.SetObj(0, nullptr); }, u"With Obj"_s);
  ExpectHostError([&] { ints.SetObj(0, nullptr); }, EHostTypeMismatch);
  CVelumArray keyed(EArrIntKey, EValCard);
  keyed.CreateIntKey({{}, 1, TVelumValue::OfObj(EValCard, obj)});
  EXPECT_EQ(keyed.Obj(0), obj.Get()); // reading does not ask for an array without key
  ExpectAssert([&] { keyed.SetObj(0, nullptr); }, u"Without key"_s);
}

TEST_F(CVelumArrayTest, ChangedAsksTheObjectsUntilOneIs) {
  CVelumArray array(0, EValCard);
  Ref<MarkedObj> objs[3] = {new MarkedObj, new MarkedObj, new MarkedObj};
  array.CreateAtEnd(ObjElem(nullptr));
  for (const auto& obj : objs) array.CreateAtEnd(ObjElem(obj));
  array.SetChanged(false);
  EXPECT_FALSE(array.Changed());
  objs[1]->iChanged = true;
  for (const auto& obj : objs) obj->iAsked = 0;
  EXPECT_TRUE(array.Changed());
  EXPECT_FALSE(array.OwnChanged());
  EXPECT_EQ(objs[0]->iAsked, 1);
  EXPECT_EQ(objs[2]->iAsked, 0);
  array.SetChanged(false);
  EXPECT_FALSE(objs[1]->iChanged);
  array.SetChanged(true);
  EXPECT_FALSE(objs[1]->iChanged);
  EXPECT_TRUE(array.Changed());
}

TEST_F(CVelumArrayTest, LinearScans) {
  CVelumArray strs(0, EValStr);
  FillStr(strs, {u"x"_s, u"Straße-1"_s, u"b"_s, u"B"_s});
  qint32 index = -1;
  EXPECT_TRUE(strs.GetStrIndex(u"B"_s, index));
  EXPECT_EQ(index, 2);
  EXPECT_FALSE(strs.GetStrIndex(u"Straße1"_s, index)); // punctuation counts here
  EXPECT_EQ(index, 4);
  CVelumArray ints(0, EValInt);
  FillInt(ints, {5, 7, 7});
  EXPECT_TRUE(ints.GetIntIndex(7, index));
  EXPECT_EQ(index, 1);
  EXPECT_FALSE(ints.GetIntIndex(8, index));
  EXPECT_EQ(index, 3);
  CVelumArray objs(0, EValCard);
  Ref<MarkedObj> a(new MarkedObj);
  Ref<MarkedObj> b(new MarkedObj);
  objs.CreateAtEnd(ObjElem(a));
  objs.CreateAtEnd(ObjElem(b));
  EXPECT_TRUE(objs.GetObjIndex(b.Get(), index));
  EXPECT_EQ(index, 1);
  EXPECT_FALSE(objs.GetObjIndex(Ref<MarkedObj>(new MarkedObj).Get(), index));
  EXPECT_EQ(index, 2);
}

TEST_F(CVelumArrayTest, DeleteAtMovesTheTailDown) {
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

TEST_F(CVelumArrayTest, DeletesByKey) {
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

TEST_F(CVelumArrayTest, MovesBlocks) {
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

TEST_F(CVelumArrayTest, MoveChecks) {
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

TEST_F(CVelumArrayTest, MoveGrowsTheCapacityByItsGap) {
  CVelumArray array(0, EValInt);
  FillInt(array, {0, 1, 2, 3, 4, 5, 6, 7, 8});
  array.Move(0, 1, 9, false, 0);
  EXPECT_EQ(array.Alloc(), 10);
  array.Move(0, 3, 9, false, 0);
  EXPECT_EQ(array.Alloc(), 62);
  EXPECT_EQ(array.Count(), 9);
}

TEST_F(CVelumArrayTest, RenumbersIntegerKeys) {
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

TEST_F(CVelumArrayTest, RenumberedStringKeysKeepTheirWidth) {
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

TEST_F(CVelumArrayTest, AdjustIntIsTheOneChangeThatLeavesNoMark) {
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

TEST_F(CVelumArrayTest, AllOtherMutatorsLeaveAMark) {
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

TEST_F(CVelumArrayTest, WalksForwardAndBackward) {
  CVelumArray array(0, EValInt);
  FillInt(array, {1, 2, 3});
  TVelumElem elem;
  qint32 index = 7;
  QList<qint32> seen;
  array.SetFirst(index);
  while (array.ReadNext(elem, index)) seen.append(elem.iVal.Int());
  EXPECT_EQ(index, 3);
  EXPECT_EQ(elem.iVal.Int(), ENoInt); // a blank one at the end
  array.SetLast(index);
  while (array.ReadPrev(elem, index)) seen.append(elem.iVal.Int());
  EXPECT_EQ(index, 0);
  EXPECT_EQ(seen, (QList<qint32>{1, 2, 3, 3, 2, 1}));
  index = -1;
  ExpectHostError([&] { static_cast<void>(array.ReadNext(elem, index)); }, EHostIndex);
  index = 5;
  ExpectHostError([&] { static_cast<void>(array.ReadPrev(elem, index)); }, EHostIndex);
}

TEST_F(CVelumArrayTest, SetValAtReplacesWhatWasReadLast) {
  CVelumArray array(EArrStrKey, EValInt);
  FillKeys(array, {u"a"_s, u"b"_s, u"c"_s});
  TVelumElem elem;
  qint32 next = 0;
  ASSERT_TRUE(array.ReadByStrKey(u"b"_s, elem, next));
  array.SetValAt(next, TVelumValue::OfInt(42));
  EXPECT_EQ(IntsOf(array), (QList<qint32>{0, 42, 2}));
  EXPECT_EQ(KeysOf(array).at(1), u"b"_s);
  ExpectHostError([&] { array.SetValAt(0, {}); }, EHostIndex);
  ExpectHostError([&] { array.SetValAt(4, {}); }, EHostIndex);
}

TEST_F(CVelumArrayTest, ReadsByKeyAndIndex) {
  CVelumArray strs(EArrStrKey, EValStr);
  strs.CreateStrKey({u"k"_s, ENoInt, TVelumValue::OfStr(u"v"_s)});
  QString str;
  qint32 next = 0;
  EXPECT_TRUE(strs.ReadStr(u"K"_s, str, next));
  EXPECT_EQ(str, u"v"_s);
  EXPECT_EQ(next, 1);
  EXPECT_FALSE(strs.ReadStr(u"x"_s, str, next));
  EXPECT_EQ(str, QString());
  TVelumElem elem;
  ExpectAssert([&] { strs.ReadByIndex(0, elem); }, u"ReadByIndex"_s, u"key"_s);
  ExpectAssert([&] { static_cast<void>(strs.ReadByIntKey(0, elem, next)); }, u"ReadByIntKey withKey"_s);
  CVelumArray ints(0, EValInt);
  FillInt(ints, {8});
  ints.ReadByIndex(0, elem);
  EXPECT_EQ(elem.iVal.Int(), 8);
  ExpectAssert([&] { ints.ReadByIndex(1, elem); }, u"ReadByIndex"_s, u"iMax"_s);
  ExpectHostError([&] { ints.ReadByIndex(1, elem); }, EHostIndex);
  ExpectHostError([&] { ints.ReadByIndex(-1, elem); }, EHostIndex);
  ExpectAssert([&] { static_cast<void>(ints.ReadByStrKey(u"k"_s, elem, next)); }, u"ReadByStrKey withKey"_s);
  Overruled([&] { EXPECT_FALSE(ints.ReadByStrKey(u"k"_s, elem, next)); });
}

TEST_F(CVelumArrayTest, ViewsAreBounded) {
  CVelumArray array(EArrStrKey | EArrIntKey, EValInt);
  array.CreateStrKey({u"k"_s, 4, TVelumValue::OfInt(9)});
  EXPECT_EQ(array.ValRef(0).Int(), 9);
  EXPECT_EQ(array.StrKeyAt(0), u"k"_s);
  EXPECT_EQ(array.IntKeyAt(0), 4);
  for (qint32 i : {-1, 1, 2147483647}) {
    ExpectHostError([&] { static_cast<void>(array.ValRef(i)); }, EHostIndex);
    ExpectHostError([&] { static_cast<void>(array.StrKeyAt(i)); }, EHostIndex);
    ExpectHostError([&] { static_cast<void>(array.IntKeyAt(i)); }, EHostIndex);
  }
}

TEST_F(CVelumArrayTest, ObjectsByNumberSkipEmptySlots) {
  CVelumArray array(0, EValCard);
  Ref<MarkedObj> a(new MarkedObj);
  Ref<MarkedObj> b(new MarkedObj);
  for (const Ref<CVelumStored>& obj :
       {Ref<CVelumStored>(), Ref<CVelumStored>(a), Ref<CVelumStored>(), Ref<CVelumStored>(b)})
    array.CreateAtEnd(ObjElem(obj));
  TVelumElem elem;
  for (bool changed : {true, false}) { // without and with the remembered position
    array.SetChanged(changed);
    qint32 index = 99;
    EXPECT_TRUE(array.ReadObjByNum(0, elem, index));
    EXPECT_EQ(index, 1);
    EXPECT_EQ(elem.iVal.Obj(), a.Get());
    EXPECT_TRUE(array.ReadObjByNum(1, elem, index));
    EXPECT_EQ(index, 3);
    EXPECT_EQ(elem.iVal.Obj(), b.Get());
    EXPECT_TRUE(array.ReadObjByNum(1, elem, index));
    EXPECT_EQ(index, 3);
    EXPECT_FALSE(array.ReadObjByNum(2, elem, index));
    EXPECT_EQ(elem.iVal.Obj(), b.Get());
    EXPECT_TRUE(array.ReadObjByNum(0, elem, index));
    EXPECT_EQ(index, 1);
    EXPECT_FALSE(array.ReadObjByNum(-1, elem, index));
  }
}

TEST_F(CVelumArrayTest, RememberedPositionIsForgottenWithAChange) {
  CVelumArray array(0, EValCard);
  Ref<MarkedObj> objs[3] = {new MarkedObj, new MarkedObj, new MarkedObj};
  for (const auto& obj : objs) array.CreateAtEnd(ObjElem(obj));
  array.SetChanged(false);
  TVelumElem elem;
  qint32 index = 0;
  EXPECT_TRUE(array.ReadObjByNum(1, elem, index));
  array.SetObj(0, nullptr);
  array.SetChanged(false);
  EXPECT_TRUE(array.ReadObjByNum(1, elem, index));
  EXPECT_EQ(elem.iVal.Obj(), objs[2].Get());
}

TEST_F(CVelumArrayTest, ObjectsByNumberInArraysWithoutObjects) {
  CVelumArray array(0, EValInt);
  FillInt(array, {4, 5});
  TVelumElem elem;
  qint32 index = 0;
  EXPECT_TRUE(array.ReadObjByNum(1, elem, index));
  EXPECT_EQ(index, 1);
  EXPECT_EQ(elem.iVal.Int(), 5);
  EXPECT_FALSE(array.ReadObjByNum(2, elem, index));
  EXPECT_FALSE(array.ReadObjByNum(-1, elem, index));
}

TEST_F(CVelumArrayTest, ClearedObjectsAreStillSeenByNumber) {
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

TEST_F(CVelumArrayTest, DeletedObjectsStayInTheSlotsBehindTheEnd) {
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

TEST_F(CVelumArrayTest, KeyedArraysLeaveNothingBehind) {
  CVelumArray array(EArrIntKey, EValCard);
  Ref<MarkedObj> obj(new MarkedObj);
  array.CreateIntKey({{}, 1, TVelumValue::OfObj(EValCard, obj)});
  array.Clear();
  EXPECT_EQ(obj->Refs(), 1);
  array.CreateIntKey({{}, 1, TVelumValue::OfObj(EValCard, obj)});
  array.DeleteAt(0);
  EXPECT_EQ(obj->Refs(), 1);
}

TEST_F(CVelumArrayTest, SetToLastObjCutsEmptySlots) {
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

TEST_F(CVelumArrayTest, SortsTextsByCollation) {
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

TEST_F(CVelumArrayTest, SortLeavesEqualTextsAsTheShellSortDoes) {
  // Five elements: a round with gap 4 swaps the first and the last, then one with gap 1.
  CVelumArray array(0, EValStr);
  FillStr(array, {u"B"_s, u"b"_s, u"b."_s, u"c"_s, u"a"_s});
  array.Sort();
  QList<QString> texts;
  for (qint32 i = 0; i < array.Count(); ++i) texts.append(array.Str(i));
  EXPECT_EQ(texts, (QList<QString>{u"a"_s, u"b"_s, u"b."_s, u"B"_s, u"c"_s}));
}

TEST_F(CVelumArrayTest, SortIsForTextsWithoutKey) {
  ExpectAssert([] { CVelumArray(EArrStrKey, EValStr).Sort(); }, u"Sort"_s, u"not withKey"_s);
  ExpectAssert([] { CVelumArray(0, EValInt).Sort(); }, u"Sort"_s, u"EValStr"_s);
}

TEST_F(CVelumArrayTest, FlagsMayChangeUnderTheElements) {
  CVelumArray array(0, EValInt);
  for (qint32 i = 0; i < 2000; ++i) array.CreateAtEnd(IntElem(i));
  array.SetFlags(EArrStrKey | EArrDuplicates);
  EXPECT_EQ(array.StrKeyAt(1999), QString());
  array.CreateStrKey(StrKeyElem(u"z"_s, 2000));
  EXPECT_EQ(array.ValRef(2000).Int(), 2000);
  array.SetFlags(0);
  array.CreateAt(IntElem(-1), 0);
  EXPECT_EQ(array.IntNum(0), -1);
  EXPECT_EQ(array.IntNum(2001), 2000);
  CVelumArray objs(0, EValCard);
  Ref<MarkedObj> obj(new MarkedObj);
  objs.CreateAtEnd(ObjElem(obj));
  objs.Clear();
  objs.SetFlags(EArrIntKey); // no place for what was left behind
  EXPECT_EQ(obj->Refs(), 1);
}

TEST_F(CVelumArrayTest, BulkSortsOnceAtTheEnd) {
  CVelumArray array(EArrStrKey | EArrExactCase | EArrDuplicates, EValInt);
  array.CreateStrKey(StrKeyElem(u"00500"_s, -1));
  array.SetChanged(false);
  array.BeginBulk(2000);
  for (qint32 i = 0; i < 2000; ++i) {
    const qint32 val = i * 997 % 2000;
    array.AppendBulk(StrKeyElem(QString::number(val).rightJustified(5, u'0'), val));
  }
  array.EndBulk();
  EXPECT_TRUE(array.Changed());
  EXPECT_EQ(array.Count(), 2001);
  EXPECT_EQ(array.Alloc(), 2050); // it grows at the elements 11, 62, 113, ..., 2000
  QList<QString> keys = KeysOf(array);
  EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
  TVelumElem elem;
  qint32 next = 0;
  EXPECT_TRUE(array.ReadByStrKey(u"01234"_s, elem, next));
  EXPECT_EQ(elem.iVal.Int(), 1234);
}

TEST_F(CVelumArrayTest, BulkGrowsTheCapacityLikeSingleInserts) {
  CVelumArray bulk(EArrIntKey, EValInt);
  CVelumArray single(EArrIntKey, EValInt);
  bulk.BeginBulk(777);
  for (qint32 i = 777; i-- > 0;) {
    bulk.AppendBulk(IntKeyElem(i, i));
    single.CreateIntKey(IntKeyElem(i, i));
  }
  bulk.EndBulk();
  EXPECT_EQ(bulk.Alloc(), single.Alloc());
  EXPECT_EQ(IntKeysOf(bulk), IntKeysOf(single));
}

TEST_F(CVelumArrayTest, BulkChecksElementsAndDuplicates) {
  CVelumArray array(EArrIntKey, EValInt);
  array.BeginBulk(0);
  ExpectAssert([&] { array.AppendBulk(StrElem({})); }, u"Create"_s, u"iType"_s);
  for (qint32 i : {2, 1, 2}) array.AppendBulk(IntKeyElem(i, i));
  ExpectAssert([&] { array.EndBulk(); }, u"Create duplicate"_s);
  EXPECT_EQ(IntKeysOf(array), (QList<qint32>{1, 2, 2}));
}

TEST_F(CVelumArrayTest, IsTheArrayElementInXml) {
  EXPECT_TRUE(CVelumArray::IsInXml(u"Array"_s));
  EXPECT_FALSE(CVelumArray::IsInXml(u"array"_s));
}

} // namespace
