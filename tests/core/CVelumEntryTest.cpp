#include "core/CVelumEntry.h"

#include "core/CVelumConst.h"
#include "core/text/CVelumLocale.h"
#include "support/PrintQt.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

bool Whole(qint32 aType, const QString& aText) {
  return CVelumEntry::IsWhole(aText, {aType});
}

class CVelumEntryTest : public testing::Test {
protected:
  CVelumEntryTest() { CVelumLocale::Init(u"en_US"_s); }
};

TEST_F(CVelumEntryTest, AWholeNumberIsReadToItsEnd) {
  for (const auto& text : {u"12"_s, u" 12 "_s, u"-7"_s, u"+7"_s, u"70000"_s, u"1,234"_s, u"2.6"_s, u"1e3"_s})
    EXPECT_TRUE(Whole(EConInteger, text)) << text.toStdString();
  for (const auto& text : {u"12x"_s, u"1,5"_s, u"12 34"_s, u"x"_s, u"-"_s, u"1e"_s, u"70,000"_s, u"."_s})
    EXPECT_FALSE(Whole(EConInteger, text)) << text.toStdString();
}

TEST_F(CVelumEntryTest, ANumberThatDoesNotFitIsNone) {
  EXPECT_TRUE(Whole(EConInteger, u"2147483647"_s));
  EXPECT_FALSE(Whole(EConInteger, u"2147483648"_s));
  EXPECT_TRUE(Whole(EConReal, u"1e300"_s));
  EXPECT_FALSE(Whole(EConReal, u"1e400"_s));
}

TEST_F(CVelumEntryTest, ARealIsReadByTheLocaleOrWithAPoint) {
  for (const auto& text : {u"1.5"_s, u"1,234.5"_s, u".5"_s, u"5."_s, u"-1e-3"_s, u"1,234,567"_s})
    EXPECT_TRUE(Whole(EConReal, text)) << text.toStdString();
  for (const auto& text : {u"1,5"_s, u"1.5 m"_s, u"1.5.2"_s, u"one"_s, u"1,23"_s})
    EXPECT_FALSE(Whole(EConReal, text)) << text.toStdString();
  CVelumLocale::Init(u"de_DE"_s);
  for (const auto& text : {u"1,5"_s, u"1.5"_s, u"1.234,5"_s})
    EXPECT_TRUE(Whole(EConReal, text)) << text.toStdString();
}

TEST_F(CVelumEntryTest, BlanksPartGroupsOnlyWhereTheLocaleHasThemSo) {
  EXPECT_FALSE(Whole(EConInteger, u"70 000"_s));
  CVelumLocale::Init(u"fr_FR"_s);
  for (const auto& text : {u"70 000"_s, u"70\u00a0000"_s, u"70\u202f000"_s, u"1 234,5"_s})
    EXPECT_TRUE(Whole(EConReal, text)) << text.toStdString();
  EXPECT_TRUE(Whole(EConInteger, u"70 000"_s));
  EXPECT_FALSE(Whole(EConInteger, u"70 000 m"_s));
  EXPECT_FALSE(Whole(EConReal, u"1.5 5"_s)) << "groups stand before the point";
}

TEST_F(CVelumEntryTest, DatesAndTimesHaveToBeSome) {
  for (const auto& text : {u"12/31/1999"_s, u"1/2/03"_s, u"1999-12-31"_s, u" 12/31/1999 "_s})
    EXPECT_TRUE(Whole(EConDate, text)) << text.toStdString();
  for (const auto& text : {u"30/02/1999"_s, u"2/30/1999"_s, u"today"_s, u"12/31/1999 x"_s, u"\t"_s})
    EXPECT_FALSE(Whole(EConDate, text)) << text.toStdString();
  EXPECT_TRUE(Whole(EConTime, u"13:05"_s));
  EXPECT_TRUE(Whole(EConTime, u"1:05:09 PM"_s));
  EXPECT_FALSE(Whole(EConTime, u"25:99"_s));
  EXPECT_FALSE(Whole(EConTime, u"13:05 Uhr"_s));
}

TEST_F(CVelumEntryTest, BlankEntriesAndTextsAreTakenAsTheyStand) {
  for (const int type : {EConText, EConInteger, EConReal, EConDate, EConTime, EConBoolean, EConList})
    for (const auto& text : {QString(), u"  "_s}) EXPECT_TRUE(Whole(type, text)) << type;
  EXPECT_TRUE(Whole(EConText, u"12x"_s));
  EXPECT_TRUE(Whole(EConList, u"a\r\nb"_s));
}

} // namespace
