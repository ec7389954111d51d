// The binary form of CVelumArray.
#include "core/ArrayHelpers.h"
#include "core/CVelumLib.h"
#include "support/TempFolder.h"

#include <random>

namespace {

class CVelumArrayExtTest : public testing::Test {
protected:
  void SetUp() override {
    CVelumCollation::Init(u"en_US"_s);
    CVelumSeams::SetObjectFactory([](int aTag) -> Ref<CVelumStored> {
      if (aTag == EValCard || aTag == EValBlob) return new MarkedObj;
      return nullptr;
    });
  }
  void TearDown() override { CVelumSeams::SetObjectFactory(nullptr); }

  QByteArray Bytes(CVelumArray& aArray) {
    CVelumLib::KillFile(iFolder.Path(u"a"_s));
    CVelumFile file(iFolder.Path(u"a"_s), EFilWrite);
    file.OpenFile();
    aArray.Externalize(file);
    file.CloseFile();
    return iFolder.Read(u"a"_s);
  }

  // Reads an array from bytes; aUsed is where it ended.
  Ref<CVelumArray> Load(const QByteArray& aBytes, qint64* aUsed = nullptr) {
    CVelumFile file(iFolder.Write(u"b"_s, aBytes), EFilRead);
    file.OpenFile();
    auto array = MakeRef<CVelumArray>();
    array->Internalize(file);
    if (aUsed) *aUsed = file.CurrentPos();
    return array;
  }

  // The head of an array on file, without its elements.
  static QByteArray Head(qint32 aFlags, qint16 aType, qint32 aAlloc, qint32 aCount) {
    QByteArray head = QByteArray::fromHex("05000300"
                                          "ff933577");
    AddInt(head, aFlags);
    head.append(static_cast<char>(aType)).append('\0');
    for (qint32 num : {50, aAlloc, aCount, ENoInt}) AddInt(head, num);
    return head;
  }
  static void AddInt(QByteArray& aBytes, qint32 aNum) {
    for (int shift = 0; shift < 32; shift += 8) aBytes.append(static_cast<char>(aNum >> shift));
  }

  void ExpectRefused(const QByteArray& aBytes, qint32 aNumber) {
    try {
      static_cast<void>(Load(aBytes));
      ADD_FAILURE() << "loaded";
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), aNumber);
    }
  }

  TempFolder iFolder;
};

TEST_F(CVelumArrayExtTest, WritesHeadAndElements) {
  CVelumArray array(EArrStrKey | EArrIntKey, EValInt);
  array.SetId(7);
  array.SetSortKeyId(9);
  array.CreateStrKey({u"k\u00e9"_s, 258, TVelumValue::OfInt(-2)});
  EXPECT_EQ(Bytes(array), QByteArray::fromHex("05000300" // type id, generation
                                              "07000000"
                                              "03000000"
                                              "0c00" // id, flags, type
                                              "32000000"
                                              "0a000000" // growth step, capacity
                                              "01000000"
                                              "09000000" // count, sort key id
                                              "0400"
                                              "6b00e900"
                                              "02010000" // the keys
                                              "0c00"
                                              "feffffff"));
  EXPECT_EQ(array.ExtLen(), 46);
}

TEST_F(CVelumArrayExtTest, WritesNoKeysThatTheFlagsDoNotHave) {
  CVelumArray array(0, EValInt);
  array.CreateAtEnd(IntElem(3));
  EXPECT_EQ(Bytes(array), Head(0, EValInt, 10, 1) + QByteArray::fromHex("0c0003000000"));
  EXPECT_EQ(array.ExtLen(), 36);
}

TEST_F(CVelumArrayExtTest, AllTypesOfValuesComeBack) {
  CVelumArray array(EArrMixed, EValUndef);
  const Ref<CVelumArray> inner(new CVelumArray(EArrIntKey, EValInt));
  inner->CreateIntKey(IntKeyElem(5, 6));
  for (const TVelumValue& val :
       {TVelumValue::OfStr(u"text"_s), TVelumValue::OfInt(-5), TVelumValue::OfReal(1.25),
        TVelumValue::OfDate(40000), TVelumValue::OfTime(0.5), TVelumValue::OfBoolean(true),
        TVelumValue::OfBoolean(false), TVelumValue::OfBlobId(12), TVelumValue::OfPair(3, -4),
        TVelumValue::OfObj(EValCard, new MarkedObj(42)), TVelumValue::OfObj(EValCard, nullptr),
        TVelumValue::OfObj(EValArray, inner)})
    array.CreateAtEnd({{}, ENoInt, val});
  array.CreateAtEnd(IntElem(0));
  array.SetValAt(array.Count(), {}); // an element may lose its value
  const QByteArray bytes = Bytes(array);
  EXPECT_EQ(array.ExtLen(), bytes.size());
  qint64 used = 0;
  const Ref<CVelumArray> back = Load(bytes, &used);
  EXPECT_EQ(used, bytes.size());
  EXPECT_FALSE(back->Changed());
  ASSERT_EQ(back->Count(), 13);
  for (qint32 i = 0; i < 13; ++i) EXPECT_EQ(back->ValRef(i).Type(), array.ValRef(i).Type()) << i;
  EXPECT_EQ(back->ValRef(0).Str(), u"text"_s);
  EXPECT_EQ(back->ValRef(1).Int(), -5);
  EXPECT_EQ(back->ValRef(2).Real(), 1.25);
  EXPECT_EQ(back->ValRef(3).Date(), 40000);
  EXPECT_EQ(back->ValRef(4).Time(), 0.5);
  EXPECT_TRUE(back->ValRef(5).Boolean());
  EXPECT_FALSE(back->ValRef(6).Boolean());
  EXPECT_EQ(back->ValRef(7).Int(), 12);
  EXPECT_EQ(back->ValRef(8).Int0(), 3);
  EXPECT_EQ(back->ValRef(8).Int1(), -4);
  EXPECT_EQ(static_cast<const MarkedObj*>(back->ValRef(9).Obj())->iNum, 42);
  EXPECT_EQ(back->ValRef(10).Obj(), nullptr);
  EXPECT_EQ(static_cast<const CVelumArray*>(back->ValRef(11).Obj())->IntKeyAt(0), 5);
  EXPECT_EQ(Bytes(*back), bytes);
}

TEST_F(CVelumArrayExtTest, UndefinedDatesOnFileReadAsTheNoDate) {
  QByteArray bytes = Head(EArrMixed, EValUndef, 10, 2);
  for (char tag : {EValDate, EValTime}) {
    bytes.append(tag).append('\0');
    AddInt(bytes, ENoInt);
  }
  const Ref<CVelumArray> array = Load(bytes);
  EXPECT_EQ(array->ValRef(0).Date(), ENoDate);
  EXPECT_EQ(array->ValRef(1).Time(), 0);
  EXPECT_EQ(Bytes(*array).mid(Head(0, 0, 0, 0).size() + 2, 4).toHex(), QByteArray("25202e01")); // 19800101
}

TEST_F(CVelumArrayExtTest, LargeArraysComeBackInBlocks) {
  CVelumArray array(EArrStrKey | EArrExactCase, EValInt);
  for (qint32 i = 0; i < 3000; ++i) array.CreateStrKey(StrKeyElem(QString::number(i * 7 % 3000), i));
  const QByteArray bytes = Bytes(array);
  const Ref<CVelumArray> back = Load(bytes);
  EXPECT_EQ(KeysOf(*back), KeysOf(array));
  EXPECT_EQ(IntsOf(*back), IntsOf(array));
  EXPECT_EQ(back->Alloc(), array.Alloc());
  back->CreateStrKey(StrKeyElem(u"2500a"_s, -1));
  TVelumElem elem;
  qint32 next = 0;
  EXPECT_TRUE(back->ReadByStrKey(u"2500a"_s, elem, next));
  EXPECT_EQ(elem.iVal.Int(), -1);
}

TEST_F(CVelumArrayExtTest, ReadingReplacesWhatWasThere) {
  CVelumArray array(0, EValInt);
  const QByteArray bytes = Bytes(array);
  CVelumArray keyed(EArrIntKey, EValCard);
  keyed.CreateIntKey({{}, 1, TVelumValue::OfObj(EValCard, new MarkedObj)});
  CVelumFile file(iFolder.Write(u"b"_s, bytes), EFilRead);
  file.OpenFile();
  keyed.Internalize(file);
  EXPECT_EQ(keyed.Count(), 0);
  EXPECT_EQ(keyed.Flags(), 0);
  EXPECT_EQ(keyed.Type(), EValInt);
}

TEST_F(CVelumArrayExtTest, StringKeysOutOfOrderAreSortedAndLeaveNoMark) {
  CVelumArray exact(EArrStrKey | EArrExactCase, EValInt);
  FillKeys(exact, {u"B"_s, u"a"_s, u"C"_s, u"Ä"_s});
  QByteArray bytes = Bytes(exact);
  bytes[8] = EArrStrKey; // flags: now in collation order
  const Ref<CVelumArray> back = Load(bytes);
  EXPECT_EQ(KeysOf(*back), (QList<QString>{u"a"_s, u"Ä"_s, u"B"_s, u"C"_s}));
  EXPECT_FALSE(back->Changed());
}

TEST_F(CVelumArrayExtTest, SortKeyArraysWaitForTheirOwner) {
  CVelumArray exact(EArrStrKey | EArrExactCase, EValInt);
  FillKeys(exact, {u"a"_s, u"b"_s, u"c"_s});
  QByteArray bytes = Bytes(exact);
  bytes[8] = EArrStrKey | EArrSortKey;
  const Ref<CVelumArray> back = Load(bytes);
  EXPECT_EQ(KeysOf(*back), (QList<QString>{u"a"_s, u"b"_s, u"c"_s}));
  back->ResolveSortKey(new ReverseOrder);
  back->EnsureSorted();
  EXPECT_EQ(KeysOf(*back), (QList<QString>{u"c"_s, u"b"_s, u"a"_s}));
  EXPECT_FALSE(back->Changed());
}

TEST_F(CVelumArrayExtTest, SetFlagsOfObjects) {
  QByteArray none = Head(0, EValCard, 10, 1) + QByteArray::fromHex("64000000");
  EXPECT_EQ(Load(none)->ValRef(0).Obj(), nullptr);
  EXPECT_EQ(Load(none)->ValRef(0).Type(), EValCard);
  QByteArray one = Head(0, EValCard, 10, 1) + QByteArray::fromHex("6400010007000000");
  EXPECT_EQ(static_cast<const MarkedObj*>(Load(one)->ValRef(0).Obj())->iNum, 7);
}

TEST_F(CVelumArrayExtTest, UnknownTagsAndClassesAssert) {
  const QByteArray tag = Head(EArrMixed, 0, 10, 2) + QByteArray::fromHex("6300"
                                                                         "0c0005000000");
  ExpectAssert([&] { Load(tag); }, u"Internalize"_s, u"iElem.iVal.iType"_s);
  Overruled([&] {
    const Ref<CVelumArray> array = Load(tag);
    EXPECT_EQ(array->ValRef(0).Type(), 99);
    EXPECT_EQ(array->ValRef(1).Int(), 5);
    ExpectAssert([&] { Bytes(*array); }, u"Externalize"_s, u"iElem.iVal.iType"_s);
    ExpectAssert([&] { static_cast<void>(array->ExtLen()); }, u"ExtLen"_s, u"iElem.iVal.iType"_s);
  });
  const QByteArray unknown = Head(0, EValSortKey, 10, 1) + QByteArray::fromHex("67000100");
  ExpectAssert([&] { Load(unknown); }, u"Internalize class"_s);
  Overruled([&] { EXPECT_EQ(Load(unknown)->ValRef(0).Obj(), nullptr); });
}

TEST_F(CVelumArrayExtTest, ArraysOfBlobsAreWrittenButNotMeasured) {
  CVelumArray array(0, EValBlob);
  array.CreateAtEnd({{}, ENoInt, TVelumValue::OfObj(EValBlob, new MarkedObj(1))});
  const QByteArray bytes = Bytes(array);
  EXPECT_EQ(Load(bytes)->Count(), 1);
  ExpectAssert([&] { static_cast<void>(array.ExtLen()); }, u"ExtLen"_s, u"iElem.iVal.iType"_s);
  Overruled([&] { EXPECT_EQ(array.ExtLen(), bytes.size()); });
}

TEST_F(CVelumArrayExtTest, OtherFramesAreRefused) {
  QByteArray bytes = Head(0, EValInt, 10, 0);
  bytes[0] = 4;
  ExpectRefused(bytes, EMsgBadStruct);
  EXPECT_TRUE(gLastError.iP1.endsWith(u"typeId expected= 5, got= 4"_s)) << gLastError.iP1.toStdString();
  bytes[0] = 5;
  bytes[2] = 2;
  ExpectRefused(bytes, EMsgGenTooLow);
  bytes[2] = 4;
  ExpectRefused(bytes, EMsgGenTooHigh);
}

TEST_F(CVelumArrayExtTest, CapacityIsANumberUpToFiftyMillion) {
  const Ref<CVelumArray> array = Load(Head(0, EValInt, 50000000, 0));
  EXPECT_EQ(array->Alloc(), 50000000);
  EXPECT_EQ(Bytes(*array), Head(0, EValInt, 50000000, 0));
  ExpectRefused(Head(0, EValInt, 50000001, 0), EHostOutOfMemory);
  ExpectRefused(Head(0, EValInt, 2147483647, 0), EHostOutOfMemory);
  // One that is too small is only a number, too.
  const Ref<CVelumArray> small = Load(Head(0, EValInt, -3, 1) + QByteArray::fromHex("0c0001000000"));
  EXPECT_EQ(small->IntNum(0), 1);
  small->CreateAtEnd(IntElem(2));
  EXPECT_EQ(small->Alloc(), 52);
}

TEST_F(CVelumArrayExtTest, CountsAreCheckedAgainstTheFile) {
  const auto elems = [](qint32 aNum) { return QByteArray(2 * aNum, '\0'); };
  EXPECT_EQ(Load(Head(EArrMixed, 0, 10, 500) + elems(500))->Count(), 500);
  ExpectRefused(Head(EArrMixed, 0, 10, 501) + elems(500), EMsgBadStruct);
  EXPECT_EQ(gLastError.iP1, u"CVelumArray.Internalize: count=501"_s);
  ExpectRefused(Head(EArrMixed | EArrStrKey, 0, 10, 500) + elems(999), EMsgBadStruct);
  ExpectRefused(Head(EArrMixed | EArrIntKey, 0, 10, 500) + elems(1499), EMsgBadStruct);
  ExpectRefused(Head(EArrMixed, 0, 10, 2147483647) + elems(500), EMsgBadStruct);
  ExpectRefused(Head(EArrMixed, 0, 10, -1), EMsgBadStruct);
  ExpectRefused(Head(EArrMixed, 0, 10, -2147483647 - 1), EMsgBadStruct);
}

TEST_F(CVelumArrayExtTest, NestingIsLimited) {
  const auto nested = [](int aDepth) {
    QByteArray bytes;
    for (int i = 1; i < aDepth; ++i) bytes += Head(0, EValArray, 10, 1) + QByteArray::fromHex("68000100");
    return bytes + Head(0, EValInt, 10, 0);
  };
  EXPECT_EQ(Load(nested(20))->Count(), 1);
  ExpectRefused(nested(21), EMsgBadStruct);
  EXPECT_EQ(gLastError.iP1, u"CVelumArray.Internalize: nesting"_s);
  ExpectRefused(nested(100000), EMsgBadStruct);
  EXPECT_EQ(Load(nested(20))->Count(), 1); // the depth is counted back after a failure
}

TEST_F(CVelumArrayExtTest, GrowthStepsFromFilesDoNotOverflow) {
  QByteArray bytes = Head(0, EValInt, 0, 0);
  bytes.replace(14, 4, QByteArray::fromHex("ffffff7f"));
  const Ref<CVelumArray> array = Load(bytes);
  ExpectHostError([&] { array->CreateAtEnd(IntElem(1)); }, EHostOverflow);
  EXPECT_EQ(array->Count(), 0);
  QByteArray objs = Head(0, EValCard, 10, 1) + QByteArray::fromHex("64000000");
  objs.replace(14, 4, QByteArray::fromHex("00000080"));
  const Ref<CVelumArray> lowered = Load(objs);
  lowered->SetToLastObj();
  EXPECT_EQ(lowered->Count(), 0);
  TVelumElem elem;
  qint32 index = 0;
  EXPECT_FALSE(lowered->ReadObjByNum(0, elem, index));
}

// Whatever a file holds, there is a clean failure or an array that can be walked, written and changed.
TEST_F(CVelumArrayExtTest, DamagedBytesAreRefusedOrGiveASoundArray) {
  CVelumArray array(EArrMixed | EArrStrKey | EArrIntKey | EArrDuplicates, EValUndef);
  array.CreateStrKey({u"b"_s, 3, TVelumValue::OfStr(u"text"_s)});
  array.CreateStrKey({u"a"_s, 4, TVelumValue::OfReal(1.5)});
  array.CreateStrKey({u"c"_s, 5, TVelumValue::OfObj(EValCard, new MarkedObj(9))});
  const Ref<CVelumArray> inner(new CVelumArray(EArrIntKey, EValInt));
  inner->CreateIntKey(IntKeyElem(1, 2));
  array.CreateStrKey({u"d"_s, 5, TVelumValue::OfObj(EValArray, inner)});
  const QByteArray bytes = Bytes(array);
  ScriptedPresenter presenter;
  int loaded = 0;
  const auto tryIt = [&](const QByteArray& aBytes) {
    for (bool goOn : {false, true}) {
      presenter.SetDefaultAnswer(goOn);
      try {
        const Ref<CVelumArray> back = Load(aBytes);
        ++loaded;
        TVelumElem elem;
        qint32 index = 0;
        while (back->ReadNext(elem, index)) continue;
        static_cast<void>(back->ReadObjByNum(2, elem, index));
        Bytes(*back);
        back->CreateAt({u"b"_s, 4, TVelumValue::OfInt(1)}, ENoInt);
        if (back->Count() > 1) back->DeleteAt(0);
      } catch (const CVelumException&) {
      }
    }
  };
  for (qsizetype len = 0; len < bytes.size(); ++len) tryIt(bytes.left(len));
  for (qsizetype i = 0; i < bytes.size(); ++i) {
    for (int change : {0, 255, bytes[i] ^ 128, bytes[i] + 1}) {
      QByteArray changed = bytes;
      changed[i] = static_cast<char>(change);
      tryIt(changed);
    }
  }
  EXPECT_GT(loaded, 100);
}

} // namespace
