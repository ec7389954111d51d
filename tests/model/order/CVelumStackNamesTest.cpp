// Names of cards and the index that finds them.
#include "model/order/CVelumIndexCheck.h"

#include "core/text/CVelumLocale.h"
#include "model/ModelTest.h"

#include <algorithm>
#include <random>

using namespace ModelTest;

namespace {

struct TNamesBed : TSampleStack {
  TNamesBed() { CVelumLocale::Init(u"en_US"_s); }
  // Whether the index has an entry for each card, and no other.
  void ExpectSound() const {
    EXPECT_EQ(CVelumIndexCheck(*iStack, 5).Names().join(u'\n'), QString());
    EXPECT_EQ(iStack->NameIndex().Count(), iStack->NumCards());
  }
  [[nodiscard]] Ref<CVelumCard> Found(const QString& aName) const {
    Ref<CVelumCard> card;
    static_cast<void>(iStack->GetCard(aName, card));
    return card;
  }
};

TEST(CVelumStackNames, OfTwoCardsOfANameTheOtherOneStaysFound) {
  for (const bool first : {true, false}) {
    const TNamesBed bed;
    const Ref<CVelumCard> a = bed.AddCard(bed.iFirst, u"Meyer"_s);
    const Ref<CVelumCard> b = bed.AddCard(bed.iFirst, u"Meyer"_s);
    bed.iStack->DeleteCard(first ? a : b);
    EXPECT_EQ(bed.Found(u"Meyer"_s), first ? b : a);
    bed.ExpectSound();
    bed.iStack->DeleteCard(first ? b : a);
    EXPECT_FALSE(bed.Found(u"Meyer"_s));
    bed.ExpectSound();
  }
}

// More than are looked through one by one.
TEST(CVelumStackNames, EachOfManyCardsOfANameHasItsEntry) {
  const TNamesBed bed;
  std::vector<Ref<CVelumCard>> cards;
  bed.AddCard(bed.iFirst, u"a"_s);
  for (int i = 0; i < 1500; ++i) cards.push_back(bed.AddCard(bed.iFirst, u"m"_s));
  bed.AddCard(bed.iFirst, u"z"_s);
  std::shuffle(cards.begin(), cards.end(), std::mt19937(5));
  for (size_t i = 0; i < cards.size(); ++i) {
    if (i % 3 == 0)
      bed.iStack->RenameCard(cards[i], u"other"_s);
    else
      bed.iStack->DeleteCard(cards[i]);
    if (i % 100 == 0) bed.AddCard(bed.iFirst, u"m"_s);
    if (i % 50 == 0) bed.ExpectSound();
  }
  bed.ExpectSound();
  EXPECT_EQ(bed.Found(u"m"_s)->Name(), u"m"_s);
  EXPECT_EQ(bed.iStack->NumCards(), 2 + 500 + 15);
}

// Past the index, as SetName of a card does it.
TEST(CVelumStackNames, ACardThatIsNotFoundByItsNameIsFoundByItself) {
  const TNamesBed bed;
  const Ref<CVelumCard> renamed = bed.AddCard(bed.iFirst, u"Ann"_s);
  const Ref<CVelumCard> gone = bed.AddCard(bed.iFirst, u"Bob"_s);
  bed.AddCard(bed.iFirst, u"Cat"_s);
  renamed->SetName(u"Cat"_s);
  gone->SetName(u"Dan"_s);
  bed.iStack->RenameCard(renamed, u"Eve"_s);
  bed.iStack->DeleteCard(gone);
  EXPECT_EQ(bed.Found(u"Eve"_s), renamed);
  EXPECT_FALSE(bed.Found(u"Ann"_s));
  EXPECT_FALSE(bed.Found(u"Bob"_s));
  bed.ExpectSound();
}

TEST(CVelumStackNames, CardsWithoutAnEntryCanGo) {
  const TNamesBed bed;
  const Ref<CVelumCard> ann = bed.AddCard(bed.iFirst, u"Ann"_s);
  bed.AddCard(bed.iFirst, u"Bob"_s);
  const_cast<CVelumArray&>(bed.iStack->NameIndex()).DeleteStrKey(u"Ann"_s);
  EXPECT_EQ(AssertText([&] { bed.iStack->DeleteCard(ann); }), QString());
  bed.ExpectSound();
}

// The text of a name can be less than the value.
TEST(CVelumStackNames, ANameFieldKeepsTheValueThatGivesTheName) {
  const TNamesBed bed;
  const Ref<CVelumControl> real = bed.AddField(bed.iFirst, u"R"_s, EConReal);
  real->SetFlag(EConCardName, true);
  real->SetDigits(2);
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"Ann"_s);
  const auto value = [&] { return card->GetControlVal(real->Id(), false).Real(); };
  card->SetControlVal(real->Id(), TVelumValue::OfReal(1234.567));
  EXPECT_EQ(card->Name(), u"1,234.57"_s);
  EXPECT_EQ(value(), 1234.567);
  EXPECT_EQ(bed.Found(u"1,234.57"_s), card);
  bed.iStack->RenameCard(card, u"1,234.57"_s);
  EXPECT_EQ(value(), 1234.567) << "the same name";
  bed.iStack->RenameCard(card, u"3.5"_s);
  EXPECT_EQ(value(), 3.5);
  EXPECT_EQ(card->Name(), u"3.50"_s) << "what the value shows";
  bed.iStack->RenameCard(card, u"Ann"_s);
  EXPECT_EQ(value(), 0);
  EXPECT_EQ(card->Name(), u"0.00"_s);
  bed.ExpectSound();
}

TEST(CVelumStackNames, ANameThatEqualsTheDefaultBecomesTheValue) {
  const TNamesBed bed;
  bed.iTown->SetFlag(EConCardName, true);
  bed.iTown->SetDefaultVal(u"Bern"_s);
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"Ann"_s);
  bed.iStack->RenameCard(card, u"Bern"_s);
  EXPECT_TRUE(card->ControlValDef(bed.iTown->Id()));
  bed.iTown->SetDefaultVal(u"Graz"_s);
  EXPECT_EQ(card->GetControlVal(bed.iTown->Id(), false).Str(), u"Bern"_s);
}

TEST(CVelumStackNames, AnEmptyNameFieldStaysEmpty) {
  const TNamesBed bed;
  bed.iSize->SetFlag(EConCardName, true);
  const Ref<CVelumCard> card = bed.AddCard(bed.iFirst, u"Ann"_s);
  card->SetControlVal(bed.iSize->Id(), TVelumValue::OfInt(7));
  EXPECT_EQ(card->Name(), u"7"_s);
  card->SetControlVal(bed.iSize->Id(), TVelumValue());
  EXPECT_EQ(card->Name(), QString());
  EXPECT_EQ(card->GetControlVal(bed.iSize->Id(), false).Type(), EValUndef);
}

// Adds, deletes and renames among few names.
TEST(CVelumStackNames, RandomWorkLeavesEveryCardFound) {
  const TNamesBed bed;
  std::mt19937 random(11);
  std::vector<Ref<CVelumCard>> cards;
  const auto name = [&] { return u"name "_s + QString::number(random() % 40); };
  for (int step = 0; step < 3000; ++step) {
    const size_t at = cards.empty() ? 0 : random() % cards.size();
    switch (cards.empty() ? 0 : random() % 4) {
    case 0:
    case 1:
      cards.push_back(bed.AddCard(random() % 2 ? bed.iFirst : bed.iSecond, name()));
      break;
    case 2:
      bed.iStack->RenameCard(cards[at], name());
      break;
    default:
      bed.iStack->DeleteCard(cards[at]);
      cards.erase(cards.begin() + qsizetype(at));
    }
  }
  bed.ExpectSound();
  for (const Ref<CVelumCard>& card : cards) {
    const Ref<CVelumCard> found = bed.Found(card->Name());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->Name(), card->Name());
  }
}

} // namespace
