// Reading and replacing what an array holds.
#include "core/array/CVelumArray.h"

#include "core/ArrayHelpers.h"

namespace {

class CVelumArrayValueTest : public testing::Test {
protected:
  void SetUp() override { CVelumCollation::Init(u"en_US"_s); }
};

TEST_F(CVelumArrayValueTest, StrReadsAndWrites) {
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

TEST_F(CVelumArrayValueTest, IntNumReadsAndWrites) {
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

TEST_F(CVelumArrayValueTest, ObjReadsAndWrites) {
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

TEST_F(CVelumArrayValueTest, ChangedAsksTheObjectsUntilOneIs) {
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

TEST_F(CVelumArrayValueTest, LinearScans) {
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

TEST_F(CVelumArrayValueTest, WalksForwardAndBackward) {
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

TEST_F(CVelumArrayValueTest, SetValAtReplacesWhatWasReadLast) {
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

TEST_F(CVelumArrayValueTest, ReadsByKeyAndIndex) {
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

TEST_F(CVelumArrayValueTest, ViewsAreBounded) {
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

TEST_F(CVelumArrayValueTest, ObjectsByNumberSkipEmptySlots) {
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

TEST_F(CVelumArrayValueTest, RememberedPositionIsForgottenWithAChange) {
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

TEST_F(CVelumArrayValueTest, ObjectsByNumberInArraysWithoutObjects) {
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

} // namespace
