// Keys of cards: what they are built from changes.
#include "model/order/CVelumIndexCheck.h"

#include "core/text/CVelumLocale.h"
#include "model/SortedBed.h"

#include <random>

using namespace ModelTest;

namespace {

TVelumValue Str(const QString& aText) {
  return TVelumValue::OfStr(aText);
}

// Notes the kinds of what the windows are told.
class CSink final : public CVelumChangeSink {
public:
  CSink() { CVelumSeams::SetChangeSink(this); }
  ~CSink() override { CVelumSeams::SetChangeSink(nullptr); }
  void ChangeNotify(int aKind, CVelumObject*, CVelumObject*) override { iKinds.append(aKind); }
  QList<int> iKinds;
};

struct TKeysBed : TSortedBed {
  TKeysBed() {
    CVelumLocale::Init(u"en_US"_s);
    iX = AddCard(iSecond, u"x"_s);
    iC = Town(u"c"_s);
    iNone = AddCard(iFirst, u"none"_s);
    iA = Town(u"a"_s);
    iY = AddCard(iSecond, u"y"_s);
    iStack->SetChanged(false);
  }
  // An index of the first background that it is not kept sorted by.
  Ref<CVelumArray> OtherIndex(const Ref<CVelumControl>& aField) {
    const auto key = MakeRef<CVelumSortKey>(iStack->IdGen().NextId(), u"Other"_s, iFirst->Id());
    key->AddKeyPart(aField->ConType(), aField->Id(), EWayDescending, 10);
    iStack->AddSortKey(key);
    const qint32 own = iFirst->KeyIndexId();
    iStack->NewIndexForSortKey(key);
    const Ref<CVelumArray> index = iFirst->KeyIndex();
    iFirst->SetKeyIndexId(own);
    iStack->Sort(iFirst, iBy, nullptr, false);
    iStack->SetControlDynFlags();
    return index;
  }
  void ExpectKeys() const {
    ExpectSorted();
    CVelumIndexCheck check(*iStack, 5);
    EXPECT_EQ(check.Keys(*iFirst->KeyIndex(), *iBy).join(u'\n'), QString());
  }

  Ref<CVelumCard> iX, iC, iNone, iA, iY;
};

TEST(CVelumStackKeys, ANewDefaultMovesTheCardsWithoutAValue) {
  TKeysBed bed;
  EXPECT_EQ(bed.Names(), u"x none a c y"_s);
  const QList<int> nums = bed.Nums();
  CSink sink;
  bed.iStack->ResetChangeInfo();
  bed.iTown->SetDefaultVal(u"b"_s);
  EXPECT_EQ(bed.Names(), u"x a none c y"_s);
  EXPECT_EQ(bed.Nums(), nums) << "they take each other's places";
  EXPECT_EQ(sink.iKinds, QList<int>{5});
  EXPECT_TRUE(bed.iStack->ChangeInfo().iCardListChanged);
  bed.ExpectKeys();
  bed.iNone->SetControlVal(bed.iTown->Id(), Str(u"d"_s));
  EXPECT_EQ(bed.Names(), u"x a c none y"_s);
  bed.iStack->DeleteCard(bed.iNone);
  bed.ExpectKeys();
}

TEST(CVelumStackKeys, TheSameDefaultMovesNothing) {
  TKeysBed bed;
  bed.iTown->SetDefaultVal(u"b"_s);
  CSink sink;
  bed.iStack->SetChanged(false);
  const quint32 basis = bed.iStack->ListBasis();
  bed.iTown->SetDefaultVal(u"b"_s);
  EXPECT_FALSE(bed.iFirst->KeyIndex()->Changed());
  bed.iTown->SetDefaultVal(u"bb"_s);
  EXPECT_TRUE(bed.iFirst->KeyIndex()->Changed());
  EXPECT_TRUE(sink.iKinds.isEmpty()) << "the order is the same";
  EXPECT_EQ(bed.iStack->ListBasis(), basis);
  bed.iNote->SetDefaultVal(u"of no key"_s);
  bed.ExpectKeys();
}

TEST(CVelumStackKeys, ListsComputedFromTheOrderFollowANewDefault) {
  TKeysBed bed;
  const quint32 basis = bed.iStack->ListBasis();
  bed.iTown->SetDefaultVal(u"z"_s);
  EXPECT_NE(bed.iStack->ListBasis(), basis);
}

TEST(CVelumStackKeys, AnotherTypeComparesOtherwise) {
  TSortedBed bed;
  for (const QString& town : {u"9"_s, u"10"_s, u"1E999"_s, u"-1E999"_s}) bed.Town(town);
  EXPECT_EQ(bed.Names(), u"10 1E999 -1E999 9"_s) << "as texts, without the hyphen";
  bed.iTown->SetConType(EConInteger);
  EXPECT_EQ(bed.Names(), u"-1E999 9 10 1E999"_s);
  bed.iTown->SetConType(EConPicture);
  EXPECT_EQ(bed.Names(), u"-1E999 9 10 1E999"_s) << "pictures do not compare";
  bed.iTown->SetConType(EConText);
  EXPECT_EQ(bed.Names(), u"10 1E999 -1E999 9"_s);
  bed.ExpectSorted();
}

TEST(CVelumStackKeys, AValueThatIsRemovedMovesTheCard) {
  TKeysBed bed;
  bed.iC->DeleteControlVal(bed.iTown->Id());
  EXPECT_EQ(bed.Names(), u"x c none a y"_s);
  bed.ExpectKeys();
  const auto loose = MakeRef<CVelumCard>(u"l"_s, bed.iFirst);
  loose->DeleteControlVal(bed.iTown->Id());
  bed.iStack->DeleteCard(bed.iC);
  bed.ExpectKeys();
}

TEST(CVelumStackKeys, AFieldThatGoesLeavesCardsThatCanBeEditedAndDeleted) {
  TKeysBed bed;
  bed.iBy->AddKeyPart(EConInteger, bed.iSize->Id(), EWayAscending, 11);
  bed.iStack->SetControlDynFlags();
  bed.iStack->DeleteControl(bed.iTown->Id(), bed.iFirst);
  EXPECT_EQ(bed.Names(), u"x c none a y"_s) << "by their ids: no card has a value";
  EXPECT_EQ(AssertText([&] { bed.iC->SetControlVal(bed.iSize->Id(), TVelumValue::OfInt(3)); }), QString());
  EXPECT_EQ(bed.iC->GetControlVal(bed.iSize->Id(), false).Int(), 3);
  EXPECT_EQ(AssertText([&] { bed.iStack->DeleteCard(bed.iC); }), QString());
  EXPECT_EQ(bed.iFirst->KeyIndex()->Count(), 2);
  EXPECT_EQ(bed.Names(), u"x none a y"_s);
}

// As an index is that no longer holds what the cards give.
TEST(CVelumStackKeys, AnEntryThatIsNotFoundByItsKeyIsFoundByItsCard) {
  TKeysBed bed;
  const Ref<CVelumArray> index = bed.iFirst->KeyIndex();
  const auto spoil = [&](const Ref<CVelumCard>& aCard) {
    TVelumElem elem;
    qint32 next = 0;
    ASSERT_TRUE(index->ReadByStrKey(bed.iBy->BuildKey(*aCard), elem, next));
    index->DeleteAt(next - 1);
    elem.iStrKey.replace(0, 4, u"ZZZZ"_s);
    index->CreateStrKey(elem);
  };
  spoil(bed.iC);
  spoil(bed.iA);
  EXPECT_EQ(AssertText([&] { bed.iC->SetControlVal(bed.iTown->Id(), Str(u"b"_s)); }), QString());
  EXPECT_EQ(AssertText([&] { bed.iStack->DeleteCard(bed.iA); }), QString());
  EXPECT_EQ(bed.Names(), u"x none c y"_s);
  bed.ExpectKeys();
  index->DeleteStrKey(bed.iBy->BuildKey(*bed.iC));
  EXPECT_EQ(AssertText([&] { bed.iC->SetControlVal(bed.iTown->Id(), Str(u"e"_s)); }), QString());
  bed.ExpectKeys();
}

// The entry of another card with the same key stays.
TEST(CVelumStackKeys, OnlyTheOwnEntryGoes) {
  TKeysBed bed;
  const Ref<CVelumArray> index = bed.iFirst->KeyIndex();
  TVelumElem elem;
  qint32 next = 0;
  ASSERT_TRUE(index->ReadByStrKey(bed.iBy->BuildKey(*bed.iC), elem, next));
  index->SetValAt(next, TVelumValue::OfInt(bed.iA->Id()));
  ASSERT_TRUE(index->ReadByStrKey(bed.iBy->BuildKey(*bed.iA), elem, next));
  index->SetValAt(next, TVelumValue::OfInt(bed.iC->Id()));
  bed.iStack->DeleteCard(bed.iC);
  qint32 at = 0;
  EXPECT_TRUE(index->GetIntIndex(bed.iA->Id(), at));
  EXPECT_EQ(index->Count(), 2);
}

TEST(CVelumStackKeys, AnIndexThatIsNotTheOwnDoesNotMoveTheCard) {
  TKeysBed bed;
  const Ref<CVelumArray> other = bed.OtherIndex(bed.iTown);
  const QString before = bed.Names();
  CSink sink;
  // The last one by the other key, and still the last one by the own.
  bed.iC->SetControlVal(bed.iTown->Id(), Str(u"cc"_s));
  EXPECT_EQ(bed.Names(), before);
  EXPECT_EQ(sink.iKinds, QList<int>{5}) << "moved once";
  CVelumIndexCheck check(*bed.iStack, 5);
  EXPECT_EQ(check.Keys(*other, *bed.iStack->SortKey(other->SortKeyId())).join(u'\n'), QString());
  bed.ExpectKeys();
  const Ref<CVelumArray> bySize = bed.OtherIndex(bed.iSize);
  sink.iKinds.clear();
  bed.iA->SetControlVal(bed.iSize->Id(), TVelumValue::OfInt(7));
  bed.iSize->SetDefaultVal(u"8"_s);
  EXPECT_TRUE(sink.iKinds.isEmpty());
  EXPECT_EQ(bed.Names(), before);
  EXPECT_EQ(check.Keys(*bySize, *bed.iStack->SortKey(bySize->SortKeyId())).join(u'\n'), QString());
}

TEST(CVelumStackKeys, AKeyThatStaysTheSameMovesNothing) {
  TKeysBed bed;
  bed.iC->SetControlVal(bed.iTown->Id(), Str(u"ten chars c"_s));
  const QList<int> nums = bed.Nums();
  bed.iStack->SetChanged(false);
  CSink sink;
  bed.iC->SetControlVal(bed.iTown->Id(), Str(u"TEN CHARS and more"_s));
  EXPECT_FALSE(bed.iFirst->KeyIndex()->Changed());
  EXPECT_TRUE(sink.iKinds.isEmpty());
  EXPECT_EQ(bed.Nums(), nums);
}

TEST(CVelumStackKeys, CardsThatAreAddedAtOnceGetTheirKeysByTheNewDefault) {
  TKeysBed bed;
  bed.iStack->BeginBulk(2);
  const Ref<CVelumCard> late = bed.AddCard(bed.iFirst, u"late"_s);
  bed.Town(u"b"_s);
  bed.iTown->SetDefaultVal(u"d"_s);
  EXPECT_EQ(bed.iFirst->KeyIndex()->Count(), 3);
  bed.iStack->EndBulk();
  EXPECT_EQ(bed.Names(), u"x a b c none late y"_s);
  bed.ExpectKeys();
}

TEST(CVelumStackKeys, AControlKnowsTheBackgroundThatHoldsIt) {
  TKeysBed bed;
  EXPECT_EQ(bed.iTown->Owner(), bed.iFirst.Get());
  bed.iFirst->DeleteControl(bed.iNote->Id());
  EXPECT_EQ(bed.iNote->Owner(), nullptr);
  bed.iNote->SetDefaultVal(u"alone"_s);
  Ref<CVelumControl> field;
  {
    const auto set = MakeRef<CVelumControlSet>(u"Short"_s, 4711);
    field = bed.AddField(set, u"f"_s, EConText);
    EXPECT_EQ(field->Owner(), set.Get());
  }
  EXPECT_EQ(field->Owner(), nullptr);
}

// Edits, deletions, new defaults and types leave every card in its place by key.
TEST(CVelumStackKeys, RandomWorkKeepsKeysAndOrder) {
  TKeysBed bed;
  bed.iBy->AddKeyPart(EConReal, bed.AddField(bed.iFirst, u"R"_s, EConReal)->Id(), EWayDescending, 15);
  const Ref<CVelumControl> real = bed.iFirst->ControlAt(bed.iFirst->NumControls() - 1);
  bed.iStack->SetControlDynFlags();
  bed.iFirst->KeyIndex()->Clear();
  bed.iStack->Sort(bed.iFirst, bed.iBy, nullptr, true);
  std::mt19937 random(23);
  QList<Ref<CVelumCard>> cards = {bed.iA, bed.iC, bed.iNone};
  const auto town = [&] { return QString::number(random() % 20); };
  const auto any = [&] { return cards[qsizetype(random()) % cards.size()]; };
  for (int step = 0; step < 1200; ++step) {
    const size_t what = cards.isEmpty() ? 0 : random() % 10;
    if (what < 3) {
      cards.append(bed.AddCard(bed.iFirst, town()));
    } else if (what < 5) {
      any()->SetControlVal(bed.iTown->Id(), Str(town()));
    } else if (what < 6) {
      any()->SetControlVal(real->Id(), TVelumValue::OfReal(std::pow(10.0, double(random() % 60) - 30) / 3));
    } else if (what < 7) {
      any()->DeleteControlVal(random() % 2 ? bed.iTown->Id() : real->Id());
    } else if (what < 8) {
      bed.iTown->SetDefaultVal(town());
    } else if (what < 9) {
      real->SetDefaultVal(random() % 2 ? QString() : u"1E-20"_s);
    } else {
      bed.iStack->DeleteCard(cards.takeAt(qsizetype(random()) % cards.size()));
    }
    if (step % 100 == 0) bed.ExpectKeys();
  }
  bed.ExpectKeys();
}

} // namespace
