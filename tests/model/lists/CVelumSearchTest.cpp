#include "model/lists/CVelumSearch.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"

#include <gtest/gtest.h>

namespace {

class CVelumSearchTest : public testing::Test {
protected:
  CVelumSearchTest() {
    CVelumLocale::Init(u"en_US"_s);
    CVelumMsg::InitMessages();
    CVelumModel::Install();
    iStack = MakeRef<CVelumStack>(u"Search"_s);
    gStack = iStack;
    qint32 index = 0;
    EXPECT_TRUE(iStack->GetFirstBackground(iBackground, index));
  }
  ~CVelumSearchTest() override { gStack = nullptr; }

  qint32 AddField(const QString& aName, ECon aType) {
    auto field = MakeRef<CVelumControl>(iStack->IdGen().NextId(), aName, aType);
    iBackground->AddControl(field, ENoInt);
    return field->Id();
  }

  Ref<CVelumCard> AddCard(const QString& aName) {
    auto card = MakeRef<CVelumCard>(aName, iBackground);
    iStack->AddCard(card, nullptr, false);
    return card;
  }

  // "card/field=value" of each hit.
  QStringList Find(const QString& aText) {
    CVelumSearch search(*iStack, aText);
    TVelumSearchHit hit;
    QStringList found;
    while (search.Next(hit)) found.append(hit.iCard->Name() + u'/' + hit.iControl->Name() + u'=' + hit.iText);
    return found;
  }

  // The rule as it is told: every value as it is shown, in upper case, must contain the upper-cased text.
  QStringList FindByRule(const QString& aText) {
    const QString sought = CVelumLib::ToUpperByLetter(aText);
    QStringList found;
    Ref<CVelumCard> card;
    for (bool more = iStack->OrderFirst(card); more;) {
      const Ref<CVelumControlSet> background = card->Background();
      for (qint32 i = 0; i < background->NumControls(); ++i) {
        const CVelumControl* control = background->ControlAt(i);
        const QString text =
            CVelumValue::ValToExtText(card->GetControlVal(control->Id(), false), control->FieldInfo());
        if (!CVelumLib::ToUpperByLetter(text).contains(sought)) continue;
        found.append(card->Name() + u'/' + control->Name() + u'=' + text);
        break;
      }
      const Ref<CVelumCard> current = card;
      more = iStack->OrderNext(*current, card);
    }
    return found;
  }

  Ref<CVelumStack> iStack;
  Ref<CVelumControlSet> iBackground;
};

TEST_F(CVelumSearchTest, IgnoresCaseOnBothSides) {
  const qint32 text = AddField(u"Text"_s, EConText);
  for (const QString& word : {u"Anna"_s, u"bar"_s, u"xyz"_s})
    AddCard(word)->SetControlVal(text, TVelumValue::OfStr(word));
  EXPECT_EQ(Find(u"a"_s), (QStringList{u"Anna/Text=Anna"_s, u"bar/Text=bar"_s}));
  EXPECT_EQ(Find(u"AR"_s), QStringList{u"bar/Text=bar"_s});
  EXPECT_EQ(Find(u"annas"_s), QStringList{});
}

TEST_F(CVelumSearchTest, ListsACardOnceWithItsFirstMatchingField) {
  const qint32 first = AddField(u"First"_s, EConText);
  const qint32 second = AddField(u"Second"_s, EConText);
  const qint32 third = AddField(u"Third"_s, EConText);
  const Ref<CVelumCard> card = AddCard(u"c"_s);
  card->SetControlVal(first, TVelumValue::OfStr(u"no"_s));
  card->SetControlVal(third, TVelumValue::OfStr(u"match 3"_s));
  card->SetControlVal(second, TVelumValue::OfStr(u"match 2"_s));
  EXPECT_EQ(Find(u"MATCH"_s), QStringList{u"c/Second=match 2"_s});
}

TEST_F(CVelumSearchTest, FollowsDisplayOrderAndNotTheOrderOfIds) {
  const qint32 late = AddField(u"Late"_s, EConText);
  auto early = MakeRef<CVelumControl>(iStack->IdGen().NextId(), u"Early"_s, EConText);
  iBackground->AddControl(early, late);
  const Ref<CVelumCard> card = AddCard(u"c"_s);
  card->SetControlVal(late, TVelumValue::OfStr(u"same"_s));
  card->SetControlVal(early->Id(), TVelumValue::OfStr(u"same"_s));
  EXPECT_EQ(Find(u"same"_s), QStringList{u"c/Early=same"_s});
}

TEST_F(CVelumSearchTest, WalksCardsInTheirOrder) {
  const qint32 text = AddField(u"T"_s, EConText);
  const Ref<CVelumCard> b = AddCard(u"b"_s);
  b->SetControlVal(text, TVelumValue::OfStr(u"x"_s));
  auto a = MakeRef<CVelumCard>(u"a"_s, iBackground);
  iStack->AddCard(a, b, false);
  a->SetControlVal(text, TVelumValue::OfStr(u"x"_s));
  EXPECT_EQ(Find(u"x"_s), (QStringList{u"a/T=x"_s, u"b/T=x"_s}));
}

TEST_F(CVelumSearchTest, EmptyTextListsEveryCardThatHasAField) {
  AddCard(u"no field"_s);
  EXPECT_EQ(Find(QString()), QStringList{});
  AddField(u"Command"_s, EConCommand);
  AddField(u"Text"_s, EConText);
  AddCard(u"second"_s);
  EXPECT_EQ(Find(QString()), (QStringList{u"no field/Command="_s, u"second/Command="_s}));
}

TEST_F(CVelumSearchTest, UnsetFieldsAreSearchedWithWhatTheyShow) {
  const qint32 text = AddField(u"Text"_s, EConText);
  const qint32 num = AddField(u"Number"_s, EConInteger);
  iBackground->FindControl(text)->SetDefaultVal(u"from the default"_s);
  const Ref<CVelumCard> unset = AddCard(u"unset"_s);
  AddCard(u"own"_s)->SetControlVal(text, TVelumValue::OfStr(u"own"_s));
  EXPECT_EQ(Find(u"default"_s), QStringList{u"unset/Text=from the default"_s});
  EXPECT_EQ(Find(u"0"_s), QStringList{});
  iBackground->FindControl(num)->SetDefaultVal(u"70"_s);
  EXPECT_EQ(Find(u"7"_s), (QStringList{u"unset/Number=70"_s, u"own/Number=70"_s}));
}

TEST_F(CVelumSearchTest, NumbersAndDatesAreSearchedAsShown) {
  const qint32 num = AddField(u"Int"_s, EConInteger);
  const qint32 real = AddField(u"Real"_s, EConReal);
  const qint32 date = AddField(u"Date"_s, EConDate);
  const qint32 time = AddField(u"Time"_s, EConTime);
  const qint32 flag = AddField(u"Bool"_s, EConBoolean);
  const Ref<CVelumCard> card = AddCard(u"c"_s);
  card->SetControlVal(num, TVelumValue::OfInt(-2147483647));
  card->SetControlVal(real, TVelumValue::OfReal(1234567.5));
  card->SetControlVal(date, TVelumValue::OfDate(CVelumValue::IntToDate(20240229)));
  card->SetControlVal(time, TVelumValue::OfTime(CVelumValue::IntToTime(213005)));
  card->SetControlVal(flag, TVelumValue::OfBoolean(true));
  EXPECT_EQ(Find(u"-21"_s).size(), 1);
  EXPECT_EQ(Find(u"234,567.5"_s), QStringList{u"c/Real=1,234,567.5"_s});
  EXPECT_EQ(Find(u"29/2024"_s).size(), 1);
  EXPECT_EQ(Find(u"30:05 pm"_s).size(), 1);
  EXPECT_EQ(Find(u"t"_s), QStringList{u"c/Bool=T"_s});
  EXPECT_EQ(Find(u"1234567.5"_s), QStringList{});
}

TEST_F(CVelumSearchTest, AgreesWithTheRuleForManyTextsAndLocales) {
  const qint32 text = AddField(u"Text"_s, EConText);
  const qint32 num = AddField(u"Int"_s, EConInteger);
  const qint32 real = AddField(u"Real"_s, EConReal);
  const qint32 date = AddField(u"Date"_s, EConDate);
  const qint32 time = AddField(u"Time"_s, EConTime);
  AddField(u"Picture"_s, EConPicture);
  const QStringList words{u"Straße"_s, u"STRASSE"_s, u"ſo"_s,         u"µ"_s,      u"Μ"_s,
                          u"ǆ ǅ Ǆ"_s,  u"ıİiI"_s,    u"banana"_s,     u"aabaab"_s, u"𐐨 𐐀"_s,
                          u"ﬁn"_s,     u"\u0000x"_s, u"été ÉTÉ été"_s};
  const QList<double> reals{0.0,    -0.5,    1E+15,  1.5E+300, -2E-9, 123456.789, 99999999999999.0,
                            qInf(), -qInf(), qQNaN()};
  const QList<double> days{-700000.0, -1.0, 0.0, 29221.0, 45351.0, 3000000.0};
  for (qsizetype i = 0; i < 60; ++i) {
    const Ref<CVelumCard> card = AddCard(QString::number(i));
    if (i % 4) card->SetControlVal(text, TVelumValue::OfStr(words.at(i % words.size())));
    if (i % 3) card->SetControlVal(num, TVelumValue::OfInt(static_cast<qint32>(i * 7919 - 100000)));
    if (i % 5) card->SetControlVal(real, TVelumValue::OfReal(reals.at(i % reals.size())));
    if (i % 7) card->SetControlVal(date, TVelumValue::OfDate(days.at(i % days.size()) + double(i / 10)));
    if (i % 2) card->SetControlVal(time, TVelumValue::OfTime(double(i) / 59.0));
  }
  const QStringList sought{u"s"_s,  u"S"_s,      u"ss"_s,  u"straße"_s, u"Μ"_s,  u"ǆ"_s,      u"i"_s,
                           u"ı"_s,  u"ana"_s,    u"aab"_s, u"𐐨"_s,      u"𐐀"_s,  u"\xD801"_s, u"fi"_s,
                           u"ﬁ"_s,  u"\u0000"_s, u"é"_s,   u"1"_s,      u"9"_s,  u"0"_s,      u"-"_s,
                           u"."_s,  u","_s,      u"1,"_s,  u"E"_s,      u"e+"_s, u"inf"_s,    u"nan"_s,
                           u"19"_s, u"/"_s,      u":"_s,   u"AM"_s,     u"pm"_s, u" "_s,      u"12:"_s,
                           u"."_s,  u"80"_s,     u"79"_s,  u"1E"_s,     u"00"_s};
  for (const QString& locale : {u"en_US"_s, u"de_DE"_s, u"ar_EG"_s, u"C"_s}) {
    CVelumLocale::Init(locale);
    for (const QString& each : sought)
      EXPECT_EQ(Find(each), FindByRule(each)) << locale.toStdString() << ": " << each.toStdString();
  }
}

TEST_F(CVelumSearchTest, FindsEveryPartOfATextAtEveryPlace) {
  const qint32 text = AddField(u"T"_s, EConText);
  const QString word = u"abcabdabcabe"_s;
  AddCard(u"c"_s)->SetControlVal(text, TVelumValue::OfStr(word));
  for (qsizetype from = 0; from < word.size(); ++from) {
    for (qsizetype len = 1; from + len <= word.size(); ++len) {
      EXPECT_EQ(Find(word.mid(from, len)).size(), 1);
      EXPECT_EQ(Find(word.mid(from, len) + u'x').size(), 0);
    }
  }
  EXPECT_EQ(Find(word + word).size(), 0);
}

TEST_F(CVelumSearchTest, ReadsACardListAnewWhereItIsStale) {
  const qint32 name = AddField(u"Name"_s, EConText);
  auto list = MakeRef<CVelumControl>(iStack->IdGen().NextId(), u"List"_s, EConList);
  list->SetFlag(EConCardList, true);
  list->SetSelBackgroundId(iBackground->Id());
  iBackground->AddControl(list, ENoInt);
  iStack->SetControlDynFlags();
  AddCard(u"one"_s);
  AddCard(u"needle"_s)->SetControlVal(name, TVelumValue::OfStr(u"x"_s));
  const QStringList found = Find(u"needle"_s);
  ASSERT_EQ(found.size(), 2);
  EXPECT_TRUE(found.at(0).startsWith(u"one/List="_s));
  EXPECT_EQ(found, FindByRule(u"needle"_s));
}

} // namespace
