// The stack on file, and what loading puts right.
#include "core/text/CVelumLocale.h"
#include "model/order/CVelumIndexCheck.h"

#include "model/ModelTest.h"

using namespace ModelTest;

namespace {

struct TFileBed : TSampleStack {
  TFileBed() {
    CVelumModel::Install();
    iBy = MakeRef<CVelumSortKey>(iStack->IdGen().NextId(), u"By town"_s, iFirst->Id());
    iBy->AddKeyPart(EConText, iTown->Id(), EWayAscending, 10);
    iStack->AddSortKey(iBy);
    iFirst->SetFlag(ECseKeepCardsSorted, true);
    iStack->NewIndexForSortKey(iBy);
    iStack->SetControlDynFlags();
    for (const QString& town : {u"Graz"_s, u"Bern"_s, u"Wien"_s}) {
      const Ref<CVelumCard> card = AddCard(iFirst, u"in "_s + town);
      card->SetControlVal(iTown->Id(), TVelumValue::OfStr(town));
    }
    iList = AddCard(iSecond, u"list"_s);
    iStack->SetDescr(u"described"_s);
    iStack->SetListFont(MakeRef<CVelumFont>(u"Arial"_s, qint16(200), 0));
    iStack->PrepareForSave();
  }
  Ref<CVelumSortKey> iBy;
  Ref<CVelumCard> iList;
};

Ref<CVelumStack> LoadStack(const QByteArray& aBytes) {
  auto stack = MakeRef<CVelumStack>();
  Load(*stack, aBytes);
  return stack;
}

QString Names(const CVelumStack& aStack) {
  QStringList names;
  Ref<CVelumCard> card;
  for (qint32 i = 0; aStack.GetNextCard(card, i);) names.append(card->Name());
  return names.join(u',');
}

// Replaces the only occurrence of aFrom.
QByteArray Replaced(QByteArray aBytes, const QByteArray& aFrom, const QByteArray& aTo) {
  EXPECT_EQ(aBytes.count(aFrom), 1);
  return aBytes.replace(aFrom, aTo);
}

QByteArray OrderElem(qint32 aNum, qint32 aId) {
  return Bytes().Int(aNum).Short(EValInt).Int(aId);
}

QByteArray NameElem(const QString& aName, qint32 aId) {
  return Bytes().Str(aName).Short(EValInt).Int(aId);
}

TEST(CVelumStackFileForm, RoundTripKeepsEveryByte) {
  const TFileBed bed;
  const QByteArray bytes = Stored(*bed.iStack);
  EXPECT_EQ(bed.iStack->ExtLen(), bytes.size());
  const Ref<CVelumStack> read = LoadStack(bytes);
  EXPECT_FALSE(read->Changed());
  EXPECT_EQ(read->OrderCorrections(), 0);
  EXPECT_TRUE(read->LoadProblems().isEmpty());
  EXPECT_EQ(Stored(*read), bytes);
  EXPECT_EQ(Names(*read), u"in Bern,in Graz,in Wien,list"_s);
  EXPECT_FALSE(read->BlobStore());
  Ref<CVelumCard> card;
  ASSERT_TRUE(read->GetCard(u"list"_s, card));
  EXPECT_EQ(card->Stack(), read.Get());
  EXPECT_FALSE(card->Dirty());
  EXPECT_EQ(read->NumBackgroundCards(bed.iFirst->Id()), 3);
  EXPECT_EQ(card->Background()->ControlAt(0)->DynFlags(), EDynRefControl);
}

TEST(CVelumStackFileForm, ALoadedStackCanBeEdited) {
  const TFileBed bed;
  const Ref<CVelumStack> read = LoadStack(Stored(*bed.iStack));
  Ref<CVelumCard> card;
  ASSERT_TRUE(read->GetCard(u"in Bern"_s, card));
  card->SetControlVal(bed.iTown->Id(), TVelumValue::OfStr(u"Zug"_s));
  EXPECT_EQ(Names(*read), u"in Graz,in Wien,in Bern,list"_s);
  read->RenameCard(card, u"in Zug"_s);
  read->DeleteCard(card);
  read->AddCard(MakeRef<CVelumCard>(u"new"_s, read->Background(bed.iFirst->Id())), nullptr, false);
  EXPECT_EQ(Names(*read), u"new,in Graz,in Wien,list"_s);
}

TEST(CVelumStackFileForm, NamesAndTheirIndexAgree) {
  const TFileBed bed;
  const Ref<CVelumStack> read = LoadStack(Stored(*bed.iStack));
  EXPECT_EQ(read->NameIndex().Count(), read->NumCards());
  for (qint32 i = 0; i < read->NameIndex().Count(); ++i)
    EXPECT_EQ(read->GetCardById(read->NameIndex().ValRef(i).Int())->Name(), read->NameIndex().StrKeyAt(i));
}

TEST(CVelumStackFileForm, AnOldNameIndexIsUpgraded) {
  TFileBed bed;
  bed.iStack->DeleteAllCards();
  for (const QString& name : {u"a"_s, u"B"_s, u"c"_s}) bed.AddCard(bed.iSecond, name);
  QByteArray bytes = Stored(*bed.iStack);
  const QByteArray exact = Bytes().Array(41, EValInt, 3);
  const QByteArray old = Bytes().Array(9, EValInt, 3);
  bytes = Replaced(bytes, exact + NameElem(u"B"_s, 1) + NameElem(u"a"_s, 0) + NameElem(u"c"_s, 2),
                   old + NameElem(u"a"_s, 0) + NameElem(u"B"_s, 1) + NameElem(u"c"_s, 2));
  const Ref<CVelumStack> read = LoadStack(bytes);
  EXPECT_EQ(read->NameIndex().Flags(), 41);
  EXPECT_TRUE(read->Changed());
  read->ResetChanged();
  EXPECT_TRUE(read->Changed()) << "the mark stands on the index";
  EXPECT_EQ(read->NameIndex().StrKeyAt(0), u"B"_s);
  Ref<CVelumCard> card;
  for (const QString& name : {u"a"_s, u"B"_s, u"c"_s}) EXPECT_TRUE(read->GetCard(name, card));
  EXPECT_FALSE(read->GetCard(u"b"_s, card));
}

// With the flags of other arrays cards could not be added, or not be found.
TEST(CVelumStackFileForm, OtherFlagsOfTheNameIndexArePutRight) {
  TFileBed bed;
  bed.iStack->DeleteAllCards();
  for (const QString& name : {u"a"_s, u"B"_s}) bed.AddCard(bed.iSecond, name);
  const QByteArray bytes = Stored(*bed.iStack);
  for (const qint32 flags : {41 - EArrDuplicates, 41 | EArrSortKey, 41 | EArrMixed}) {
    const Ref<CVelumStack> read =
        LoadStack(Replaced(bytes, Bytes().Array(41, EValInt, 2), Bytes().Array(flags, EValInt, 2)));
    EXPECT_EQ(read->NameIndex().Flags(), 41);
    EXPECT_EQ(read->LoadProblems(), QStringList{u"The name index had the flags %1"_s.arg(flags)});
    Ref<CVelumCard> card;
    EXPECT_TRUE(read->GetCard(u"a"_s, card));
    read->AddCard(MakeRef<CVelumCard>(u"a"_s, read->Background(bed.iSecond->Id())), nullptr, false);
    EXPECT_EQ(read->NumCards(), 3);
  }
}

TEST(CVelumStackFileForm, AKeyIndexOfASortKeyIsInItsOrder) {
  const TFileBed bed;
  const Ref<CVelumArray> keys = bed.iFirst->KeyIndex();
  const auto head = [&](qint32 aFlags) {
    return QByteArray(Bytes().Short(5).Short(3).Int(keys->Id()).Int(aFlags));
  };
  const qint32 flags = EArrStrKey | EArrSortKey;
  const Ref<CVelumStack> read = LoadStack(Replaced(Stored(*bed.iStack), head(flags), head(EArrStrKey)));
  EXPECT_EQ(read->KeyIndex(keys->Id())->Flags(), flags);
  EXPECT_EQ(read->LoadProblems(), QStringList{u"Key index %1 had the flags 1"_s.arg(keys->Id())});
  EXPECT_EQ(Names(*read), u"in Bern,in Graz,in Wien,list"_s);
}

// A file of another locale: the key index is in the local order first, then the order follows it.
TEST(CVelumStackFileForm, OrderIsCorrectedByTheKeyIndex) {
  const TFileBed bed;
  // ids 0 Graz, 1 Bern, 2 Wien; the file says Wien, Bern, Graz
  QByteArray bytes = Stored(*bed.iStack);
  const Ref<CVelumArray> keys = bed.iFirst->KeyIndex();
  QByteArray sorted;
  QByteArray turned;
  for (qint32 i = 0; i < 3; ++i) {
    const QByteArray elem = NameElem(keys->StrKeyAt(i), keys->ValRef(i).Int());
    sorted += elem;
    turned.prepend(elem);
  }
  bytes = Replaced(bytes, sorted, turned);
  const Ref<CVelumStack> sameOrder = LoadStack(bytes);
  EXPECT_EQ(sameOrder->OrderCorrections(), 0) << "only the index was out of order";
  EXPECT_FALSE(sameOrder->Changed());

  const Ref<CVelumStack> stack = LoadStack(Stored(*bed.iStack));
  QByteArray swapped = Stored(*stack);
  qint32 nums[3];
  for (qint32 id = 0; id < 3; ++id) nums[id] = stack->GetCardById(id)->OrderNum();
  // slots Bern(1) Graz(0) Wien(2) become Wien Bern Graz
  const QByteArray from = OrderElem(nums[1], 1) + OrderElem(nums[0], 0) + OrderElem(nums[2], 2);
  const QByteArray to = OrderElem(nums[1], 2) + OrderElem(nums[0], 1) + OrderElem(nums[2], 0);
  swapped = Replaced(swapped, from, to);
  const Ref<CVelumStack> read = LoadStack(swapped);
  EXPECT_EQ(read->OrderCorrections(), 2);
  EXPECT_EQ(Names(*read), u"in Bern,in Graz,in Wien,list"_s);
  EXPECT_EQ(read->GetCardById(1)->OrderNum(), nums[1]);
  EXPECT_EQ(read->GetCardById(0)->OrderNum(), nums[0]);
  EXPECT_FALSE(read->Changed()) << "saving is up to the user";
}

// Damaged content: the stack is sound after the load, or the load has failed.

TEST(CVelumStackFileForm, OrderOfCardsThatAreNotThere) {
  const TFileBed bed;
  const QByteArray bytes = Stored(*bed.iStack);
  const qint32 num = bed.iList->OrderNum();
  for (const qint32 id : {-1, 4, 77, 2147483647, 0}) {
    const Ref<CVelumStack> read = LoadStack(Replaced(bytes, OrderElem(num, 3), OrderElem(num, id)));
    EXPECT_EQ(Names(*read), u"in Bern,in Graz,in Wien,list"_s) << id;
    EXPECT_EQ(read->NumCards(), 4);
    EXPECT_EQ(read->LoadProblems().size(), 2) << "one entry too many, one card lacking";
    read->DeleteAllCards();
    EXPECT_EQ(read->NumCards(), 0);
  }
}

TEST(CVelumStackFileForm, ACardThatStandsTwiceFarApartKeepsItsFirstPlace) {
  const TSampleStack bed;
  CVelumModel::Install();
  const Ref<CVelumCard> lone = bed.AddCard(bed.iSecond, u"lone"_s);
  for (int i = 0; i < 1200; ++i) bed.AddCard(bed.iFirst, u"card"_s);
  const qint32 last = 1200;
  const QByteArray bytes = Stored(*bed.iStack);
  const Ref<CVelumStack> read =
      LoadStack(Replaced(bytes, OrderElem(100 * (last + 1), last), OrderElem(100 * (last + 1), lone->Id())));
  EXPECT_EQ(read->LoadProblems().size(), 2);
  EXPECT_EQ(read->NumCards(), last + 1);
  Ref<CVelumCard> card;
  qint32 cursor = 0;
  ASSERT_TRUE(read->GetFirstCardInBackground(bed.iSecond->Id(), card, cursor));
  EXPECT_EQ(card->Name(), u"lone"_s);
  qint32 num = 0;
  EXPECT_EQ(read->GetCardIndex(*card, num), 0);
  EXPECT_EQ(RaisedOverruled([&] { read->DeleteAllCards(); }), -1);
  EXPECT_EQ(read->NumCards(), 0);
}

TEST(CVelumStackFileForm, ANumberThatDiffersIsNoted) {
  const TFileBed bed;
  const qint32 num = bed.iList->OrderNum();
  const Ref<CVelumStack> read =
      LoadStack(Replaced(Stored(*bed.iStack), OrderElem(num, 3), OrderElem(num + 7, 3)));
  EXPECT_EQ(read->GetCardById(3)->OrderNum(), num + 7);
  ASSERT_EQ(read->LoadProblems().size(), 1);
  EXPECT_TRUE(read->LoadProblems()[0].contains(QString::number(num)));
}

// Entries that differ from the cards are made anew: no change, no correction of the order, but noted.

// As after the load of a sound file.
void ExpectRenewed(const CVelumStack& aStack, const QStringList& aProblems) {
  EXPECT_EQ(aStack.LoadProblems(), aProblems);
  EXPECT_FALSE(aStack.Changed());
  EXPECT_EQ(aStack.OrderCorrections(), 0);
  CVelumIndexCheck check(aStack, 5);
  EXPECT_EQ(check.Names() + check.Order(), QStringList());
  Ref<CVelumArray> index;
  for (qint32 i = 0; aStack.GetNextKeyIndex(index, i);)
    EXPECT_EQ(check.Keys(*index, *aStack.SortKey(index->SortKeyId())), QStringList());
}

TEST(CVelumStackFileForm, NamesThatDifferAreMadeAnew) {
  const TFileBed bed;
  const QByteArray bytes = Stored(*bed.iStack);
  const auto load = [&](const QString& aName, qint32 aId) {
    return LoadStack(Replaced(bytes, NameElem(u"list"_s, 3), NameElem(aName, aId)));
  };
  const QString missing = u"card 3 'list': is missing in the name index"_s;
  ExpectRenewed(*load(u"list"_s, 99),
                {u"name index: 'list' stands for card 99, which does not exist"_s, missing});
  ExpectRenewed(*load(u"LIST"_s, 3), {u"name index: 'LIST' stands for card 3 'list'"_s});
  ExpectRenewed(*load(u"list"_s, 0),
                {u"name index: 'list' stands for card 0 'in Graz', which was there before"_s,
                 u"name index: 'list' stands for card 0 'in Graz'"_s, missing});
  Ref<CVelumCard> card;
  EXPECT_TRUE(load(u"list"_s, 99)->GetCard(u"list"_s, card));
  EXPECT_EQ(card->Name(), u"list"_s);
}

// What a program leaves that takes out any entry of the name.
TEST(CVelumStackFileForm, TheOtherCardOfANameIsFoundAgain) {
  const TFileBed bed;
  const Ref<CVelumCard> gone = bed.AddCard(bed.iSecond, u"Meyer"_s);
  const Ref<CVelumCard> left = bed.AddCard(bed.iSecond, u"Meyer"_s);
  bed.iStack->DeleteCard(gone);
  const Ref<CVelumStack> read = LoadStack(
      Replaced(Stored(*bed.iStack), NameElem(u"Meyer"_s, left->Id()), NameElem(u"Meyer"_s, gone->Id())));
  ExpectRenewed(*read, {u"name index: 'Meyer' stands for card 4, which does not exist"_s,
                        u"card 5 'Meyer': is missing in the name index"_s});
  Ref<CVelumCard> card;
  ASSERT_TRUE(read->GetCard(u"Meyer"_s, card));
  EXPECT_EQ(card->Id(), left->Id());
}

TEST(CVelumStackFileForm, KeysThatDifferAreMadeAnewAndTheOrderFollows) {
  const TFileBed bed;
  const Ref<CVelumArray> keys = bed.iFirst->KeyIndex();
  const QString name = u"key index %1 of sort key 'By town'"_s.arg(keys->Id());
  const QByteArray bytes = Stored(*bed.iStack);
  const auto load = [&](const QString& aKey, qint32 aId) {
    const auto stack = LoadStack(Replaced(bytes, NameElem(keys->StrKeyAt(1), 0), NameElem(aKey, aId)));
    EXPECT_EQ(Names(*stack), u"in Bern,in Graz,in Wien,list"_s);
    return stack;
  };
  const QString graz = keys->StrKeyAt(1);
  const QString entry = name + u": '"_s + graz + u'\'';
  const QString missing = u"card 0 'in Graz': is missing in the "_s + name;
  QString other = graz;
  other.replace(0, 4, u"ZUG "_s);
  ExpectRenewed(*load(other, 0), {name + u": '"_s + other + u"' is not the key of card 0 'in Graz'"_s});
  ExpectRenewed(*load(graz, 99), {entry + u" stands for card 99, which does not exist"_s, missing});
  ExpectRenewed(*load(graz, 3), {entry + u" stands for card 3 'list' of another background"_s, missing});
  ExpectRenewed(*load(graz, 1), {entry + u" stands for card 1 'in Bern', which was there before"_s,
                                 entry + u" is not the key of card 1 'in Bern'"_s, missing});
}

// The order agrees with the stale keys, as it does where a default was changed and the keys were left.
TEST(CVelumStackFileForm, AnOrderByStaleKeysIsPutRightUncounted) {
  TFileBed bed;
  bed.AddCard(bed.iFirst, u"none"_s);
  bed.iStack->PrepareForSave();
  const QByteArray before = Stored(*bed.iStack);
  EXPECT_EQ(Names(*bed.iStack), u"none,in Bern,in Graz,in Wien,list"_s);
  bed.iTown->SetDefaultVal(u"Linz"_s);
  EXPECT_EQ(Names(*bed.iStack), u"in Bern,in Graz,none,in Wien,list"_s);
  const QByteArray after = Stored(*bed.iStack);
  // The first field with the new default, all behind it as it was.
  const QByteArray second = Bytes().Str(u"Size"_s);
  const QByteArray bytes = after.left(after.indexOf(second)) + before.mid(before.indexOf(second));
  const Ref<CVelumStack> read = LoadStack(bytes);
  EXPECT_EQ(Names(*read), u"in Bern,in Graz,none,in Wien,list"_s);
  EXPECT_EQ(read->LoadProblems().size(), 1);
  ExpectRenewed(*read, read->LoadProblems());
}

TEST(CVelumStackFileForm, NotMoreThanAHundredProblemsAreNoted) {
  const TSampleStack bed;
  CVelumModel::Install();
  for (int i = 0; i < 300; ++i) bed.AddCard(bed.iFirst, u"card"_s);
  const QByteArray bytes = Stored(*bed.iStack);
  QByteArray names;
  for (qint32 i = 0; i < 300; ++i) names += NameElem(u"card"_s, bed.iStack->NameIndex().ValRef(i).Int());
  QByteArray other;
  for (qint32 i = 0; i < 300; ++i) other += NameElem(u"carp"_s, i);
  const Ref<CVelumStack> read = LoadStack(Replaced(bytes, names, other));
  EXPECT_EQ(read->LoadProblems().size(), 101);
  EXPECT_EQ(read->LoadProblems().last(), u"There are more such problems"_s);
  ExpectRenewed(*read, read->LoadProblems());
}

// Keys cannot be built without the field; the index stays as it is.
TEST(CVelumStackFileForm, AnIndexWithoutItsFieldIsLeft) {
  TFileBed bed;
  bed.iBy->AddKeyPart(EConText, 4711, EWayAscending, 3);
  const QByteArray bytes = Stored(*bed.iStack);
  const auto read = MakeRef<CVelumStack>();
  EXPECT_EQ(AssertText([&] { Load(*read, bytes); }), u"key part control found"_s);
  EXPECT_EQ(RaisedOverruled([&] { Load(*read, bytes); }), -1);
  EXPECT_EQ(read->LoadProblems(), QStringList());
  EXPECT_EQ(read->KeyIndex(bed.iFirst->KeyIndexId())->StrKeyAt(0), bed.iFirst->KeyIndex()->StrKeyAt(0));
}

// Also where its background has no card that an entry could stand for.
TEST(CVelumStackFileForm, AnIndexWithoutItsFieldAndCardsIsLeft) {
  TFileBed bed;
  const Ref<CVelumArray> keys = bed.iFirst->KeyIndex();
  TVelumElem elem;
  qint32 next = 0;
  ASSERT_TRUE(keys->ReadByStrKey(keys->StrKeyAt(0), elem, next));
  bed.iStack->DeleteBackground(bed.iFirst, true);
  elem.iVal = TVelumValue::OfInt(77);
  keys->CreateStrKey(elem);
  bed.iBy->AddKeyPart(EConText, 4711, EWayAscending, 3);
  const QByteArray bytes = Stored(*bed.iStack);
  const auto read = MakeRef<CVelumStack>();
  EXPECT_EQ(RaisedOverruled([&] { Load(*read, bytes); }), -1);
  EXPECT_EQ(read->KeyIndex(bed.iFirst->KeyIndexId())->ValRef(0).Int(), 77);
  EXPECT_EQ(Names(*read), u"list"_s);
}

TEST(CVelumStackFileForm, ACardWithoutBackgroundFailsCleanly) {
  TFileBed bed;
  bed.iList->SetCreDate(36526);
  bed.iList->SetCreTime(0);
  const QByteArray dates = Bytes().Int(20000101).Int(0);
  const QByteArray bytes = Replaced(Stored(*bed.iStack), QByteArray(Bytes().Int(bed.iSecond->Id())) + dates,
                                    QByteArray(Bytes().Int(4711)) + dates);
  EXPECT_EQ(Raised([&] { LoadStack(bytes); }), 1006);
}

TEST(CVelumStackFileForm, AMissingSortKeyFailsCleanly) {
  const TFileBed bed;
  const QByteArray name = Bytes().Str(u"By town"_s);
  const qint32 keyId = bed.iBy->Id();
  const QByteArray start = Bytes().Int(keyId).Short(EValSortKey).Short(1).Short(9).Short(0).Int(keyId);
  const QByteArray other = Bytes().Int(4711).Short(EValSortKey).Short(1).Short(9).Short(0).Int(4711);
  const QByteArray bytes = Replaced(Stored(*bed.iStack), start + name, other + name);
  EXPECT_EQ(AssertText([&] { LoadStack(bytes); }), u"SortKey found %1"_s.arg(keyId));
  EXPECT_EQ(RaisedOverruled([&] { LoadStack(bytes); }), 1006);
}

TEST(CVelumStackFileForm, OtherObjectsInPlaceOfCardsFailCleanly) {
  const TFileBed bed;
  const QByteArray cards = Bytes().Array(0, EValCard, 4);
  const QByteArray asSets = Bytes().Array(0, EValControlSet, 4);
  EXPECT_EQ(Raised([&] { LoadStack(Replaced(Stored(*bed.iStack), cards, asSets)); }), 1006);
}

// Whatever byte is changed: a load fails with a message, or gives a stack that can be used.
class CDamaged {
public:
  // Whether the bytes load; then all work on the stack must be safe, assertions overruled.
  bool Try(const QByteArray& aBytes) const {
    CVelumFile file(iFolder.Write(u"stack"_s, aBytes), EFilRead);
    file.OpenFile();
    const auto stack = MakeRef<CVelumStack>();
    if (Raised([&] { stack->Internalize(file); }) >= 0) return false;
    CVelumFile copy(iFolder.Path(u"copy"_s), EFilWrite);
    RaisedOverruled([&] {
      stack->PrepareForSave();
      stack->AdjustVisChar();
      copy.OpenFile();
      stack->Externalize(copy);
    });
    RaisedOverruled([&] { stack->DeleteAllCards(); });
    return true;
  }

private:
  TempFolder iFolder;
};

TEST(CVelumStackFileForm, AnyChangedByteIsSafe) {
  const TFileBed bed;
  const QByteArray bytes = Stored(*bed.iStack);
  const CDamaged damaged;
  int loaded = 0;
  for (qsizetype pos = 0; pos < bytes.size(); ++pos) {
    const int old = static_cast<unsigned char>(bytes[pos]);
    for (const int value : {255, old + 1}) {
      QByteArray changed = bytes;
      changed[pos] = static_cast<char>(value);
      loaded += damaged.Try(changed);
    }
  }
  EXPECT_GT(loaded, 0);
}

TEST(CVelumStackFileForm, EveryPrefixIsSafe) {
  const TFileBed bed;
  const QByteArray bytes = Stored(*bed.iStack);
  const CDamaged damaged;
  for (qsizetype len = 0; len < bytes.size(); ++len) static_cast<void>(damaged.Try(bytes.left(len)));
  EXPECT_TRUE(damaged.Try(bytes));
}

// What is missing shows in the first frame that is not there, whatever is wrong with what was read as zeros.
TEST(CVelumStackFileForm, APrefixFailsAtAFrame) {
  TFileBed bed;
  const Ref<CVelumArray> script = MakeRef<CVelumArray>(EArrStrKey, EValStr);
  TVelumElem elem;
  script->InitElem(elem);
  elem.iStrKey = u"openCard"_s;
  elem.iVal = TVelumValue::OfStr(u"0A"_s);
  script->CreateStrKey(elem);
  bed.iTown->SetScript(script);
  const QByteArray bytes = Stored(*bed.iStack);
  for (qsizetype len = 0; len < bytes.size(); ++len) {
    const qint32 number = Raised([&] { static_cast<void>(LoadStack(bytes.left(len))); });
    const bool generation = number == 1001 && gLastError.iP1 == u"got= 0"_s;
    const bool frame = number == 1006 && gLastError.iP1.startsWith(u"CVelumLib.ReadBinObjStart: typeId"_s);
    EXPECT_TRUE(generation || frame) << len << ": " << number << ' ' << gLastError.iP1.toStdString();
  }
}

TEST(CVelumStackFileForm, ValuesOutOfOrderAreSorted) {
  const TFileBed bed;
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"both"_s);
  card->SetControlVal(bed.iSize->Id(), TVelumValue::OfInt(5));
  card->SetControlVal(bed.iNote->Id(), TVelumValue::OfStr(u"noted"_s));
  const QByteArray size = Bytes().Int(bed.iSize->Id()).Short(EValInt).Int(5);
  const QByteArray note = Bytes().Int(bed.iNote->Id()).Short(EValStr).Str(u"noted"_s);
  const Ref<CVelumStack> read = LoadStack(Replaced(Stored(*bed.iStack), size + note, note + size));
  EXPECT_EQ(read->LoadProblems(),
            QStringList({u"The values of card %1 were out of order"_s.arg(card->Id())}));
  const Ref<CVelumCard> again = read->GetCardById(card->Id());
  EXPECT_EQ(again->GetControlVal(bed.iSize->Id(), false).Int(), 5);
  EXPECT_EQ(again->GetControlVal(bed.iNote->Id(), false).Str(), u"noted"_s);
  EXPECT_FALSE(read->Changed());

  const QByteArray twice = Bytes().Int(bed.iSize->Id()).Short(EValStr).Str(u"noted"_s);
  const Ref<CVelumStack> first = LoadStack(Replaced(Stored(*bed.iStack), note, twice));
  EXPECT_EQ(first->GetCardById(card->Id())->GetControlVal(bed.iSize->Id(), false).Int(), 5);
  EXPECT_EQ(first->GetCardById(card->Id())->Value().Count(), 1);
}

TEST(CVelumStackFileForm, OrderNumbersThatDoNotAscendAreNoted) {
  const TFileBed bed;
  const qint32 num = bed.iList->OrderNum();
  const QByteArray elem = OrderElem(num, bed.iList->Id());
  const Ref<CVelumStack> read = LoadStack(Replaced(Stored(*bed.iStack), elem, OrderElem(1, bed.iList->Id())));
  EXPECT_EQ(read->LoadProblems().size(), 2);
  EXPECT_EQ(read->LoadProblems().value(0),
            u"The order number 1 of card %1 does not ascend"_s.arg(bed.iList->Id()));
}

TEST(CVelumStackFileForm, BackgroundsOutOfOrderFailCleanly) {
  const TFileBed bed;
  const QByteArray bytes = Stored(*bed.iStack);
  const QByteArray second = Bytes().Int(bed.iSecond->Id()).Short(EValControlSet).Short(1);
  const QByteArray other = Bytes().Int(-1).Short(EValControlSet).Short(1);
  EXPECT_EQ(Raised([&] { static_cast<void>(LoadStack(Replaced(bytes, second, other))); }), 1006);
}

} // namespace
