// Order of the cards, walks, kept-sorted backgrounds, sorting.
#include "model/CVelumStack.h"

#include "model/SortedBed.h"

#include <random>

using namespace ModelTest;

namespace {

TEST(CVelumStackOrder, EmptyStackHasNoFirstNorLast) {
  const TOrderBed bed;
  Ref<CVelumCard> card = MakeRef<CVelumCard>(u"x"_s, bed.iFirst);
  EXPECT_FALSE(bed.iStack->OrderFirst(card));
  EXPECT_FALSE(card);
  card = MakeRef<CVelumCard>(u"x"_s, bed.iFirst);
  EXPECT_FALSE(bed.iStack->OrderLast(card));
  EXPECT_FALSE(card);
  qint32 index = 0;
  EXPECT_FALSE(bed.iStack->GetFirstCard(card, index));
  EXPECT_FALSE(bed.iStack->GetCardByNum(0, card));
  EXPECT_FALSE(bed.iStack->GetLastCardInBackground(0, card));
}

TEST(CVelumStackOrder, AppendedCardsAreAHundredApart) {
  const TOrderBed bed;
  for (int i = 0; i < 5; ++i) bed.AddCard(bed.iFirst, QString::number(i));
  EXPECT_EQ(bed.Nums(), (QList<int>{100, 200, 300, 400, 500}));
}

TEST(CVelumStackOrder, InsertingHalvesTheGap) {
  const TOrderBed bed;
  Ref<CVelumCard> first = bed.AddCard(bed.iFirst, u"a"_s);
  QList<int> nums;
  for (int i = 0; i < 6; ++i) {
    first = bed.Before(bed.iFirst, u"b"_s, first);
    nums.append(first->OrderNum());
  }
  EXPECT_EQ(nums, (QList<int>{50, 25, 12, 6, 3, 1}));
  first = bed.Before(bed.iFirst, u"c"_s, first);
  EXPECT_EQ(first->OrderNum(), 50);
  EXPECT_EQ(bed.Nums(), (QList<int>{50, 100, 200, 300, 400, 500, 600, 700}));
  bed.ExpectSound();
}

TEST(CVelumStackOrder, NoGapRenumbersAll) {
  const TOrderBed bed;
  const Ref<CVelumCard> a = bed.AddCard(bed.iFirst, u"a"_s);
  const Ref<CVelumCard> b = bed.AddCard(bed.iFirst, u"b"_s);
  // between 100 and 200: 150, 175, 187, 193, 196, 198, 199
  for (int i = 0; i < 7; ++i) bed.Before(bed.iFirst, u"m"_s, b);
  EXPECT_EQ(bed.Nums(), (QList<int>{100, 150, 175, 187, 193, 196, 198, 199, 200}));
  const Ref<CVelumCard> next = bed.Before(bed.iFirst, u"n"_s, b);
  EXPECT_EQ(next->OrderNum(), 850);
  EXPECT_EQ(bed.Nums(), (QList<int>{100, 200, 300, 400, 500, 600, 700, 800, 850, 900}));
  bed.ExpectSound();
}

// The numbers are those of renumbering all cards each time that a gap is used up.
TEST(CVelumStackOrder, ManyBeforeOneGiveTheDescribedNumbers) {
  const TOrderBed bed;
  std::vector<qint32> plain;
  for (int i = 0; i < 20; ++i) {
    bed.AddCard(bed.iFirst, u"a"_s);
    plain.push_back(100 * (i + 1));
  }
  const Ref<CVelumCard> before = bed.AddCard(bed.iSecond, u"z"_s);
  plain.push_back(2100);
  for (int i = 0; i < 3000; ++i) {
    bed.Before(bed.iFirst, u"b"_s, before);
    qint32 prev = plain[plain.size() - 2];
    if (plain.back() - prev <= 1) {
      for (size_t k = 0; k < plain.size(); ++k) plain[k] = 100 * (static_cast<qint32>(k) + 1);
      prev = plain[plain.size() - 2];
    }
    plain.insert(plain.end() - 1, prev + (plain.back() - prev) / 2);
  }
  EXPECT_EQ(bed.Nums(), QList<int>(plain.begin(), plain.end()));
  bed.ExpectSound();
}

TEST(CVelumStackOrder, BeforeACardThatIsNotThereAsserts) {
  const TOrderBed bed;
  const Ref<CVelumCard> a = bed.AddCard(bed.iFirst, u"a"_s);
  const Ref<CVelumCard> gone = bed.AddCard(bed.iFirst, u"b"_s);
  bed.iStack->DeleteCard(gone);
  const QString text = u"AddCard aBeforeCard OrderNum found"_s;
  EXPECT_EQ(AssertText([&] { bed.iStack->MoveCard(a, gone); }), text);
  EXPECT_EQ(AssertText([&] { bed.iStack->MoveCard(a, a); }), text);
  qint32 num = 0;
  EXPECT_EQ(bed.iStack->GetCardIndex(*a, num), 0) << "the card keeps its place";
  const auto late = MakeRef<CVelumCard>(u"late"_s, bed.iFirst);
  EXPECT_EQ(AssertText([&] { bed.iStack->AddCard(late, gone, false); }), text);
  EXPECT_EQ(bed.iStack->Cards().Count(), 1);
  EXPECT_EQ(late->Stack(), nullptr);
  EXPECT_EQ(RaisedOverruled([&] { bed.iStack->AddCard(late, gone, false); }), -1);
  EXPECT_EQ(bed.iStack->GetCardIndex(*late, num), 1);
}

TEST(CVelumStackOrder, WalksStepByStep) {
  const TOrderBed bed;
  const Ref<CVelumCard> a = bed.AddCard(bed.iFirst, u"a"_s);
  const Ref<CVelumCard> b = bed.AddCard(bed.iSecond, u"b"_s);
  const Ref<CVelumCard> c = bed.AddCard(bed.iFirst, u"c"_s);
  Ref<CVelumCard> card;
  EXPECT_TRUE(bed.iStack->OrderFirst(card));
  EXPECT_EQ(card, a);
  EXPECT_TRUE(bed.iStack->OrderLast(card));
  EXPECT_EQ(card, c);
  EXPECT_TRUE(bed.iStack->OrderNext(*a, card));
  EXPECT_EQ(card, b);
  EXPECT_TRUE(bed.iStack->OrderPrev(*b, card));
  EXPECT_EQ(card, a);
  EXPECT_FALSE(bed.iStack->OrderNext(*c, card));
  EXPECT_FALSE(card);
  EXPECT_FALSE(bed.iStack->OrderPrev(*a, card));
  EXPECT_FALSE(card);
  EXPECT_TRUE(bed.iStack->GetCardByNum(1, card));
  EXPECT_EQ(card, b);
  EXPECT_FALSE(bed.iStack->GetCardByNum(-1, card));
  EXPECT_FALSE(bed.iStack->GetCardByNum(3, card)) << "beyond the last is not found";
  qint32 num = 0;
  EXPECT_EQ(bed.iStack->GetCardIndex(*c, num), 2);
  EXPECT_EQ(num, 3);
  EXPECT_FALSE(bed.iStack->GetCardById(3));
  EXPECT_FALSE(bed.iStack->GetCardById(-1));
  EXPECT_FALSE(bed.iStack->GetCardById(ENoInt));
}

TEST(CVelumStackOrder, CardsThatAreNotInTheOrderAssert) {
  const TOrderBed bed;
  const Ref<CVelumCard> a = bed.AddCard(bed.iFirst, u"a"_s);
  bed.AddCard(bed.iFirst, u"b"_s);
  bed.iStack->DeleteCard(a);
  Ref<CVelumCard> card;
  qint32 num = 0;
  EXPECT_EQ(AssertText([&] { static_cast<void>(bed.iStack->OrderNext(*a, card)); }), u"found curCard"_s);
  EXPECT_EQ(gLastError.iProc, u"OrderNext"_s);
  EXPECT_EQ(AssertText([&] { static_cast<void>(bed.iStack->OrderPrev(*a, card)); }), u"found curCard"_s);
  EXPECT_EQ(gLastError.iProc, u"OrderPrev"_s);
  EXPECT_EQ(AssertText([&] { static_cast<void>(bed.iStack->GetCardIndex(*a, num)); }),
            u"GetCardIndex OrderIndex found"_s);
  EXPECT_EQ(RaisedOverruled([&] { EXPECT_FALSE(bed.iStack->OrderNext(*a, card)); }), -1);
  EXPECT_EQ(RaisedOverruled([&] { EXPECT_FALSE(bed.iStack->OrderPrev(*a, card)); }), -1);
  EXPECT_EQ(RaisedOverruled([&] { EXPECT_EQ(bed.iStack->GetCardIndex(*a, num), 1); }), -1);
}

TEST(CVelumStackOrder, WalksOfABackgroundSkipTheOthers) {
  const TOrderBed bed;
  for (int i = 0; i < 3000; ++i) bed.AddCard(i % 1000 == 7 ? bed.iSecond : bed.iFirst, QString::number(i));
  QStringList names;
  Ref<CVelumCard> card;
  qint32 index = 0;
  const qint32 id = bed.iSecond->Id();
  for (bool found = bed.iStack->GetFirstCardInBackground(id, card, index); found;
       found = bed.iStack->GetNextCardInBackground(id, card, index))
    names.append(card->Name());
  EXPECT_EQ(names.join(u' '), u"7 1007 2007"_s);
  EXPECT_TRUE(bed.iStack->GetLastCardInBackground(id, card));
  EXPECT_EQ(card->Name(), u"2007"_s);
  EXPECT_EQ(bed.iStack->NumBackgroundCards(id), 3);
  EXPECT_EQ(bed.iStack->NumBackgroundCards(bed.iFirst->Id()), 2997);
  EXPECT_EQ(bed.iStack->NumBackgroundCards(4711), 0);
  EXPECT_FALSE(bed.iStack->GetFirstCardInBackground(4711, card, index));
}

TEST(CVelumStackOrder, ACardThatChangesItsBackgroundIsCountedThere) {
  const TOrderBed bed;
  for (int i = 0; i < 2000; ++i) bed.AddCard(bed.iFirst, QString::number(i));
  const Ref<CVelumCard> card = bed.iStack->GetCardById(1234);
  card->SetBackground(bed.iSecond);
  EXPECT_EQ(bed.iFirst->NumCards(), 1999);
  EXPECT_EQ(bed.iSecond->NumCards(), 1);
  Ref<CVelumCard> found;
  qint32 index = 0;
  EXPECT_TRUE(bed.iStack->GetFirstCardInBackground(bed.iSecond->Id(), found, index));
  EXPECT_EQ(found, card);
}

TEST(CVelumStackOrder, MoveCardTakesANewNumber) {
  const TOrderBed bed;
  const Ref<CVelumCard> a = bed.AddCard(bed.iFirst, u"a"_s);
  const Ref<CVelumCard> b = bed.AddCard(bed.iFirst, u"b"_s);
  const Ref<CVelumCard> c = bed.AddCard(bed.iFirst, u"c"_s);
  bed.iStack->ResetChangeInfo();
  bed.iStack->MoveCard(c, a);
  EXPECT_EQ(bed.Names(), u"c a b"_s);
  EXPECT_EQ(c->OrderNum(), 50);
  EXPECT_TRUE(bed.iStack->ChangeInfo().iCardListChanged);
  bed.iStack->MoveCard(c, nullptr);
  EXPECT_EQ(bed.Names(), u"a b c"_s);
  EXPECT_EQ(c->OrderNum(), 300);
  EXPECT_EQ(bed.iFirst->NumCards(), 3);
}

TEST(CVelumStackOrder, MoveAllCardsOfBackgroundMovesTheRun) {
  TSortedBed bed;
  const Ref<CVelumCard> x = bed.AddCard(bed.iSecond, u"x"_s);
  bed.Town(u"b"_s);
  bed.Town(u"a"_s);
  const Ref<CVelumCard> y = bed.AddCard(bed.iSecond, u"y"_s);
  EXPECT_EQ(bed.Names(), u"x a b y"_s);
  bed.iStack->MoveAllCardsOfBackground(bed.iFirst, x);
  EXPECT_EQ(bed.Names(), u"a b x y"_s);
  EXPECT_EQ(bed.Nums(), (QList<int>{100, 200, 300, 400}));
  bed.iStack->MoveAllCardsOfBackground(bed.iFirst, nullptr);
  EXPECT_EQ(bed.Names(), u"x y a b"_s);
  bed.iStack->ResetChangeInfo();
  bed.iStack->MoveAllCardsOfBackground(bed.iFirst, nullptr);
  EXPECT_EQ(bed.Names(), u"x y a b"_s);
  EXPECT_TRUE(bed.iStack->ChangeInfo().iCardListChanged);
  EXPECT_EQ(AssertText([&] { bed.iStack->MoveAllCardsOfBackground(bed.iSecond, nullptr); }), u"sorted"_s);
  EXPECT_EQ(gLastError.iProc, u"MoveAllCardsOfBackground"_s);
  Ref<CVelumCard> last;
  ASSERT_TRUE(bed.iStack->OrderLast(last));
  EXPECT_EQ(AssertText([&] { bed.iStack->MoveAllCardsOfBackground(bed.iFirst, last); }), u"aToIndex"_s);
  EXPECT_EQ(RaisedOverruled([&] { bed.iStack->MoveAllCardsOfBackground(bed.iFirst, last); }), -1);
  const auto loose = MakeRef<CVelumCard>(u"l"_s, bed.iFirst);
  EXPECT_EQ(AssertText([&] { bed.iStack->MoveAllCardsOfBackground(bed.iFirst, loose); }),
            u"beforeCard order"_s);
  bed.ExpectSorted();
}

TEST(CVelumStackOrder, MoveAllCardsOfAnEmptyBackgroundDoesNothing) {
  TSortedBed bed;
  bed.AddCard(bed.iSecond, u"x"_s);
  bed.iStack->MoveAllCardsOfBackground(bed.iFirst, nullptr);
  EXPECT_EQ(bed.Names(), u"x"_s);
}

TEST(CVelumStackOrder, KeptSortedCardsFindTheirPlace) {
  TSortedBed bed;
  const Ref<CVelumCard> x = bed.AddCard(bed.iSecond, u"x"_s);
  bed.Town(u"m"_s);
  const Ref<CVelumCard> y = bed.AddCard(bed.iSecond, u"y"_s);
  bed.Town(u"a"_s);
  bed.Town(u"z"_s);
  bed.Town(u"n"_s);
  EXPECT_EQ(bed.Names(), u"x a m n z y"_s) << "the last by key stands behind its predecessor";
  bed.ExpectSorted();
  Ref<CVelumCard> card;
  ASSERT_TRUE(bed.iStack->GetCard(u"n"_s, card));
  card->SetControlVal(bed.iTown->Id(), TVelumValue::OfStr(u"zz"_s));
  bed.ExpectSorted();
  EXPECT_EQ(bed.Names(), u"x a m z n y"_s);
  card->SetControlVal(bed.iTown->Id(), TVelumValue::OfStr(u"0"_s));
  EXPECT_EQ(bed.Names(), u"x n a m z y"_s);
  bed.iStack->DeleteCard(card);
  bed.ExpectSorted();
}

TEST(CVelumStackOrder, MovingByKeyTellsTheWindows) {
  class CSink final : public CVelumChangeSink {
  public:
    void ChangeNotify(int aKind, CVelumObject* aObj1, CVelumObject* aObj2) override {
      iKinds.append(aKind);
      EXPECT_EQ(aObj1, nullptr);
      EXPECT_EQ(aObj2, nullptr);
    }
    QList<int> iKinds;
  } sink;
  TSortedBed bed;
  const Ref<CVelumCard> card = bed.Town(u"a"_s);
  CVelumSeams::SetChangeSink(&sink);
  bed.iStack->ResetChangeInfo();
  card->SetControlVal(bed.iTown->Id(), TVelumValue::OfStr(u"b"_s));
  CVelumSeams::SetChangeSink(nullptr);
  EXPECT_EQ(sink.iKinds, QList<int>{5});
  EXPECT_TRUE(bed.iStack->ChangeInfo().iCardListChanged);
}

TEST(CVelumStackOrder, UnsortedCardBeforeASortedOneGoesBeforeTheBlock) {
  TSortedBed bed;
  bed.Town(u"a"_s);
  const Ref<CVelumCard> b = bed.Town(u"b"_s);
  bed.Before(bed.iSecond, u"x"_s, b);
  EXPECT_EQ(bed.Names(), u"x a b"_s);
}

// Random work on a kept-sorted background leaves its block in the order of its keys.
TEST(CVelumStackOrder, RandomEditsKeepTheOrder) {
  TSortedBed bed(EWayDescending);
  std::mt19937 random(3);
  QList<Ref<CVelumCard>> cards;
  for (int i = 0; i < 10; ++i) bed.AddCard(bed.iSecond, u"other"_s);
  for (int step = 0; step < 800; ++step) {
    const size_t what = random() % 10;
    if (what < 5 || cards.isEmpty()) {
      cards.append(bed.Town(QString::number(random() % 50)));
    } else if (what < 8) {
      cards[qsizetype(random()) % cards.size()]->SetControlVal(
          bed.iTown->Id(), TVelumValue::OfStr(QString::number(random() % 50)));
    } else {
      bed.iStack->DeleteCard(cards.takeAt(qsizetype(random()) % cards.size()));
    }
  }
  bed.ExpectSorted();
  bed.iStack->DeleteBackground(bed.iFirst, true);
  bed.ExpectSorted();
  EXPECT_EQ(bed.iStack->NumCards(), 10);
}

TEST(CVelumStackOrder, SortMakesOneBlock) {
  TOrderBed bed;
  const auto by = MakeRef<CVelumSortKey>(bed.iStack->IdGen().NextId(), u"By"_s, bed.iFirst->Id());
  by->AddKeyPart(EConText, bed.iTown->Id(), EWayAscending, 5);
  bed.iStack->AddSortKey(by);
  Ref<CVelumCard> before;
  for (const QChar c : u"c1a2b3"_s) {
    const Ref<CVelumCard> card = bed.AddCard(c.isDigit() ? bed.iSecond : bed.iFirst, c);
    if (c.isLetter()) card->SetControlVal(bed.iTown->Id(), TVelumValue::OfStr(c));
    if (c == u'2') before = card;
  }
  bed.iStack->ResetChangeInfo();
  bed.iStack->Sort(bed.iFirst, by, before, false);
  EXPECT_EQ(bed.Names(), u"1 a b c 2 3"_s);
  EXPECT_EQ(bed.Nums(), (QList<int>{100, 200, 300, 400, 500, 600}));
  EXPECT_TRUE(bed.iStack->ChangeInfo().iCardListChanged);
  bed.iStack->Sort(bed.iFirst, by, nullptr, false);
  EXPECT_EQ(bed.Names(), u"1 2 3 a b c"_s);
  Ref<CVelumCard> b;
  ASSERT_TRUE(bed.iStack->GetCard(u"b"_s, b));
  bed.iStack->Sort(bed.iFirst, by, b, false);
  EXPECT_EQ(bed.Names(), u"1 2 3 a b c"_s) << "a card of the block is a place too";
  bed.ExpectSound();
}

TEST(CVelumStackOrder, NewIndexHoldsAllCardsOfItsBackground) {
  TOrderBed bed;
  for (const QChar c : u"c1a2b3"_s) {
    const Ref<CVelumCard> card = bed.AddCard(c.isDigit() ? bed.iSecond : bed.iFirst, c);
    if (c.isLetter()) card->SetControlVal(bed.iTown->Id(), TVelumValue::OfStr(c));
  }
  const auto by = MakeRef<CVelumSortKey>(bed.iStack->IdGen().NextId(), u"By"_s, bed.iFirst->Id());
  by->AddKeyPart(EConText, bed.iTown->Id(), EWayAscending, 5);
  bed.iStack->AddSortKey(by);
  bed.iFirst->SetFlag(ECseKeepCardsSorted, true);
  const qint32 nextId = bed.iStack->IdGen().PeekId();
  bed.iStack->NewIndexForSortKey(by);
  EXPECT_EQ(bed.iFirst->KeyIndexId(), nextId);
  EXPECT_EQ(bed.Names(), u"1 2 3 a b c"_s);
  const Ref<CVelumArray> index = bed.iFirst->KeyIndex();
  EXPECT_EQ(index->Flags(), EArrStrKey | EArrSortKey);
  EXPECT_EQ(index->Type(), EValInt);
  EXPECT_EQ(index->SortKeyId(), by->Id());
  EXPECT_EQ(index->Count(), 3);
}

// What bulk adding leaves is what adding one by one leaves, but for the numbers.
TEST(CVelumStackOrder, BulkAddingGivesTheSameOrder) {
  const auto fill = [](TSortedBed& aBed, bool aBulk) {
    aBed.AddCard(aBed.iSecond, u"x"_s);
    for (int i = 0; i < 40; i += 7) aBed.Town(u"t%1"_s.arg(i, 3));
    aBed.AddCard(aBed.iSecond, u"y"_s);
    if (aBulk) aBed.iStack->BeginBulk(100);
    for (int i = 0; i < 60; ++i) {
      const int n = i * 37 % 61;
      if (i % 5 == 0) aBed.AddCard(aBed.iSecond, u"z%1"_s.arg(i));
      const Ref<CVelumCard> card = aBed.Town(u"t%1"_s.arg(n, 3));
      if (i % 9 == 0) aBed.iStack->RenameCard(card, u"renamed%1"_s.arg(i));
      if (i % 11 == 0) aBed.iStack->DeleteCard(card);
    }
    if (aBulk) aBed.iStack->EndBulk();
  };
  TSortedBed single;
  TSortedBed bulk;
  fill(single, false);
  fill(bulk, true);
  EXPECT_EQ(bulk.Names(), single.Names());
  bulk.ExpectSorted();
  ASSERT_EQ(bulk.iStack->NameIndex().Count(), single.iStack->NameIndex().Count());
  for (qint32 i = 0; i < bulk.iStack->NameIndex().Count(); ++i)
    EXPECT_EQ(bulk.iStack->NameIndex().StrKeyAt(i), single.iStack->NameIndex().StrKeyAt(i));
  bulk.iStack->EndBulk(); // without a begin: nothing
  bulk.Town(u"t30x"_s);
  bulk.ExpectSorted();
}

TEST(CVelumStackOrder, BulkIntoAnEmptySortedBackground) {
  TSortedBed bed;
  bed.AddCard(bed.iSecond, u"x"_s);
  bed.iStack->BeginBulk(3);
  bed.Town(u"c"_s);
  bed.Town(u"a"_s);
  bed.AddCard(bed.iSecond, u"y"_s);
  bed.Town(u"b"_s);
  bed.iStack->EndBulk();
  EXPECT_EQ(bed.Names(), u"x y a b c"_s);
  bed.ExpectSorted();
  Ref<CVelumCard> card;
  EXPECT_TRUE(bed.iStack->GetCard(u"b"_s, card));
}

} // namespace
