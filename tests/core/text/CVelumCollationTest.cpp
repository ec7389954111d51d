#include "core/text/CVelumCollation.h"
#include "support/PrintQt.h"

#include "core/CVelumObject.h"

#include <gtest/gtest.h>

namespace {

using namespace CVelumCollation;

class CVelumCollationTest : public testing::TestWithParam<const char*> {
protected:
  void SetUp() override { Init(QString::fromLatin1(GetParam())); }
  void TearDown() override { Init(u"en_US"_s); }
};

INSTANTIATE_TEST_SUITE_P(Locales, CVelumCollationTest,
                         testing::Values("en_US", "de_DE", "C", "POSIX", "C.UTF-8"));

int Sign(int aOrder) {
  return (aOrder > 0) - (aOrder < 0);
}

TEST(CVelumCollation, KeyLeavesOutExactlyTheseCharacters) {
  const QString skipped = u" \"`§+|¦@*#%&/()=?^~'¨![]{},.-;:_<>\\"_s;
  for (char16_t c = 1; c < 0xD800; ++c) {
    const QString text = u"a"_s + QChar(c) + u"b"_s;
    EXPECT_EQ(CollationKey(text), skipped.contains(QChar(c)) ? u"ab"_s : text) << static_cast<int>(c);
  }
}

TEST(CVelumCollation, KeyKeepsTheOrderAndDropsBlanks) {
  EXPECT_EQ(CollationKey(u"Dr. Who   "), u"DrWho"_s);
  EXPECT_EQ(CollationKey(u""), QString());
  EXPECT_EQ(CollationKey(u" - "), QString());
  EXPECT_EQ(CollationKey(u"100 $ / 90 €"), u"100$90€"_s);
  const QString tab = u"a\tb\u00A0"_s;
  EXPECT_EQ(CollationKey(tab), tab);
}

TEST(CVelumCollation, LongTextsAreReducedWhole) {
  const QString text = u"a-b "_s.repeated(5000);
  EXPECT_EQ(CollationKey(text), u"ab"_s.repeated(5000));
  EXPECT_EQ(CompareKeys(text, u"AB"_s.repeated(5000)), 0);
  EXPECT_EQ(Sign(CompareKeys(text, u"AB"_s.repeated(5000) + u"!c"_s)), -1);
}

TEST_P(CVelumCollationTest, OneKeyInManySpellings) {
  EXPECT_EQ(CompareKeys(u"Dr. Who", u"DR WHO"), 0);
  EXPECT_EQ(CompareKeys(u"DR WHO", u"dr-who"), 0);
  EXPECT_EQ(CompareKeys(u"", u" - "), 0);
  EXPECT_EQ(CompareKeys(u"Ä", u"ä"), 0);
}

TEST_P(CVelumCollationTest, LettersAndDigitsDecide) {
  EXPECT_EQ(Sign(CompareKeys(u"a", u"B")), -1);
  EXPECT_EQ(Sign(CompareKeys(u"B", u"a")), 1);
  EXPECT_EQ(Sign(CompareKeys(u"9", u"a")), -1);
  EXPECT_EQ(Sign(CompareKeys(u"Zoo", u"Äpfel")), 1);
  EXPECT_EQ(Sign(CompareKeys(u"Äpfel", u"Apfel")), 1);
  EXPECT_EQ(Sign(CompareKeys(u"card 10", u"card 9")), -1);
}

TEST_P(CVelumCollationTest, CompareCountsPunctuationButNotCase) {
  EXPECT_EQ(Compare(u"dr who", u"DR WHO"), 0);
  EXPECT_NE(Compare(u"dr who", u"drwho"), 0);
  EXPECT_NE(Compare(u"dr-who", u"drwho"), 0);
  // Blank-padded card ids must keep their order as texts.
  EXPECT_EQ(Sign(Compare(u"         9", u"        10")), -1);
}

// The signs that a key keeps stand ahead of the digits, letters with an accent behind those without.
TEST_P(CVelumCollationTest, SignsStandAheadOfDigitsAndLetters) {
  const QString texts[] = {u"'. "_s, u"\u00B0"_s, u"$"_s, u"\u20AC"_s, u"1"_s, u"e"_s, u"\u00E9"_s, u"X"_s};
  for (std::size_t i = 1; i < std::size(texts); ++i)
    EXPECT_EQ(Sign(CompareKeys(texts[i - 1], texts[i])), -1) << texts[i].toStdString();
}

TEST_P(CVelumCollationTest, SoughtKeyComparesLikeBothKeys) {
  const QString texts[] = {u""_s, u"a"_s, u"A b"_s, u"ab"_s, u"ä-b"_s, u"Zoo"_s, u"10"_s, u"9"_s};
  for (const QString& a : texts) {
    const CSought sought(a);
    for (const QString& b : texts) {
      EXPECT_EQ(Sign(sought.CompareTo(b)), Sign(CompareKeys(a, b)));
      EXPECT_EQ(Sign(CompareKeys(a, b)), Sign(Compare(CollationKey(a), CollationKey(b))));
      EXPECT_EQ(Sign(CompareKeys(a, b)), -Sign(CompareKeys(b, a)));
    }
  }
}

TEST(CVelumCollation, LocaleHasItsOwnOrder) {
  Init(u"sv_SE"_s);
  EXPECT_EQ(Sign(Compare(u"ä", u"z")), 1);
  Init(u"de_DE"_s);
  EXPECT_EQ(Sign(Compare(u"ä", u"z")), -1);
  Init(u"th_TH"_s);
  EXPECT_NE(Compare(u"a-b", u"ab"), 0);
  Init(u"en_US"_s);
}

TEST(CVelumCollation, CompareBinIsByCodeUnits) {
  EXPECT_EQ(CompareBin(u"a", u"a"), 0);
  EXPECT_EQ(CompareBin(u"Z", u"a"), -1);
  EXPECT_EQ(CompareBin(u"ä", u"z"), 1);
  EXPECT_EQ(CompareBin(u"ab", u"a"), 1);
  EXPECT_EQ(CompareBin(u"", u"a"), -1);
  EXPECT_EQ(CompareBin(u"\uFFFD", u"\U0001F600"), 1);
}

} // namespace
