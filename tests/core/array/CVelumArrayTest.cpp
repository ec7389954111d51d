// What an array is made of, its keys and their order, and what may enter.
#include "core/array/CVelumArray.h"

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
  EXPECT_TRUE(CVelumArray().IsInXml(u"Array"_s));
  EXPECT_FALSE(CVelumArray().IsInXml(u"array"_s));
}

} // namespace
