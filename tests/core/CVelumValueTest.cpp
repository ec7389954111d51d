#include "core/CVelumValue.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include "core/CVelumMsg.h"
#include "core/text/CVelumDays.h"
#include "core/text/CVelumLocale.h"
#include "support/Raised.h"

#include "support/FakeStored.h"
#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace CVelumValue;

// The text of the assertion in which aAction ends; empty when it ends well.
template <class F> QString Asserted(F aAction) {
  return Raised(aAction) == EMsgAssertFailed ? gLastError.iP1 : QString();
}

TVelumFieldInfo Field(int aConType, qint16 aDigits = ENoShort) {
  return {aConType, aDigits};
}

class CThing final : public FakeStored {
public:
  [[nodiscard]] QString ObjDescr() const override { return u"CThing"_s; }
};

class CVelumValueTest : public testing::Test {
protected:
  void SetUp() override { CVelumLocale::Init(u"en_US"_s); }
  void TearDown() override { CVelumLocale::Init(u"en_US"_s); }
  ScriptedPresenter iPresenter;
};

const TVelumValue EThing() {
  return TVelumValue::OfObj(EValCard, MakeRef<CThing>());
}

// One value of each type that assigns to every slot.
QList<TVelumValue> Samples() {
  return {TVelumValue::OfStr(u"text"_s),
          TVelumValue::OfInt(3),
          TVelumValue::OfReal(2.5),
          TVelumValue::OfDate(29221),
          TVelumValue::OfTime(0.5),
          TVelumValue::OfBoolean(true),
          TVelumValue::OfBlobId(7),
          TVelumValue::OfPair(1, 2),
          EThing(),
          TVelumValue()};
}

TEST_F(CVelumValueTest, TypeTexts) {
  const std::pair<int, const char*> expected[] = {
      {0, "Undefined"}, {11, "String"},       {12, "Integer"},   {13, "Real"},         {14, "Date"},
      {15, "Time"},     {16, "Boolean"},      {17, "Blob id"},   {50, "Integer pair"}, {100, "Card"},
      {101, "Control"}, {102, "Control set"}, {103, "Sort key"}, {104, "Array"},       {105, "Blob"}};
  for (const auto& [tag, text] : expected) EXPECT_EQ(TypeStr(tag), QString::fromLatin1(text));
  EXPECT_EQ(TypeStr(TVelumValue::OfBlobId(1)), u"Blob id"_s);
  EXPECT_EQ(TypeStr(99), QString());
}

TEST_F(CVelumValueTest, DatesAndTimesAsIntegers) {
  EXPECT_EQ(IntToDate(19800101), 29221);
  EXPECT_EQ(IntToDate(20071231), IntToDate(20080101) - 1);
  EXPECT_EQ(IntToDate(20071301), IntToDate(20080101));
  EXPECT_EQ(IntToDate(20080230), IntToDate(20080301));
  EXPECT_EQ(IntToDate(18991230), 0);
  EXPECT_EQ(Raised([] { (void)IntToDate(2147483647); }), EHostBadCall);
  EXPECT_EQ(Raised([] { (void)IntToDate(-20071231); }), EHostBadCall);
  EXPECT_EQ(DateToInt(29221), 19800101);
  EXPECT_EQ(DateToInt(-1), 18991229);
  EXPECT_EQ(IntToTime(180000), 0.75);
  EXPECT_EQ(IntToTime(235959), CVelumDays::Join(0, 86399));
  EXPECT_EQ(IntToTime(6000), CVelumDays::Join(0, 3600));
  EXPECT_EQ(TimeToInt(0.75), 180000);
  EXPECT_EQ(TimeToInt(0), 0);
  EXPECT_EQ(TimeToInt(29221.75), 180000);
}

TEST_F(CVelumValueTest, NoDateAndNoTime) {
  EXPECT_EQ(IntToDate(ENoInt), 29221);
  EXPECT_EQ(DateToInt(IntToDate(ENoInt)), 19800101);
  EXPECT_EQ(IntToTime(ENoInt), 0);
}

TEST_F(CVelumValueTest, EveryDateAndSecondSurvivesAsInteger) {
  for (double day = -36522; day < 73050; day += 1) ASSERT_EQ(IntToDate(DateToInt(day)), day);
  for (int second = 0; second < 86400; ++second) {
    const double time = CVelumDays::Join(0, second);
    ASSERT_EQ(IntToTime(TimeToInt(time)), time);
  }
}

TEST_F(CVelumValueTest, ExternalTextOfReals) {
  const TVelumValue real = TVelumValue::OfReal(1234567.5);
  EXPECT_EQ(ValToExtText(real, Field(EConReal)), u"1,234,567.5"_s);
  EXPECT_EQ(ValToExtText(real, Field(EConReal, 2)), u"1,234,567.50"_s);
  EXPECT_EQ(ValToExtText(real, Field(EConReal, 0)), u"1,234,568."_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfReal(5), Field(EConReal)), u"5."_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfReal(0.1234567891), Field(EConReal)), u"0.12345679"_s)
      << "up to 8 decimals";
  EXPECT_EQ(ValToExtText(TVelumValue::OfReal(1e14), Field(EConReal, 2)), u"100000000000000"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfReal(-1e15), Field(EConReal, 2)), u"-1E+15"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfReal(HUGE_VAL), Field(EConReal)), u"INF"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfReal(std::nan("")), Field(EConReal)), u"NAN"_s);
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(ValToExtText(real, Field(EConReal)), u"1.234.567,5"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfReal(1.5e20), Field(EConReal)), u"1,5E+20"_s);
}

TEST_F(CVelumValueTest, ExternalTextOfTheOthers) {
  const TVelumFieldInfo field = Field(EConText);
  EXPECT_EQ(ValToExtText(TVelumValue(), field), QString());
  EXPECT_EQ(ValToExtText(TVelumValue::OfStr(u" a "_s), field), u" a "_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfInt(-1234567), field), u"-1234567"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfDate(29221), field), u"1/1/1980"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfTime(0.75), field), u"6:00:00 PM"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfBoolean(true), field), u"T"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfBoolean(false), field), u"F"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfBlobId(7), field), u"(Blob 7)"_s);
  for (int tag = EValCard; tag <= EValBlob; ++tag)
    EXPECT_EQ(ValToExtText(TVelumValue::OfType(tag), field), u"(Object)"_s);
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfDate(29221), field), u"01.01.1980"_s);
  EXPECT_EQ(ValToExtText(TVelumValue::OfTime(0.75), field), u"18:00:00"_s);
}

TEST_F(CVelumValueTest, ExternalTextOfOtherTypesAsserts) {
  for (const int tag : {50, 99, 1}) {
    const TVelumValue val = TVelumValue::OfType(tag);
    EXPECT_EQ(Asserted([&] { (void)ValToExtText(val, Field(0)); }), u"ValToExtText type"_s);
    iPresenter.Answer(true);
    EXPECT_EQ(ValToExtText(val, Field(0)), QString());
  }
}

TEST_F(CVelumValueTest, InternalText) {
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(ValToIntText(TVelumValue()), QString());
  EXPECT_EQ(ValToIntText(TVelumValue::OfStr(u" a "_s)), u" a "_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfInt(-1234567)), u"-1234567"_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfReal(-1234567.5)), u"-1234567.5"_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfReal(1e16)), u"1E+16"_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfReal(0.00001)), u"1E-05"_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfDate(29221)), u"19800101"_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfTime(0.25)), u"60000"_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfTime(0)), u"0"_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfBoolean(true)), u"-1"_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfBoolean(false)), u"0"_s);
  EXPECT_EQ(ValToIntText(TVelumValue::OfBlobId(7)), u"(Blob 7)"_s);
  EXPECT_EQ(ValToIntText(EThing()), u"(Object)"_s);
}

TEST_F(CVelumValueTest, InternalTextOfOtherTypesAsserts) {
  for (const int tag : {50, 99}) {
    const TVelumValue val = TVelumValue::OfType(tag);
    EXPECT_EQ(Asserted([&] { (void)ValToIntText(val); }), u"ValToIntText type"_s);
    iPresenter.Answer(true);
    EXPECT_EQ(ValToIntText(val), QString());
  }
}

TEST_F(CVelumValueTest, TypeOfEachControl) {
  const int expected[] = {11, 12, 13, 14, 15, 16, 11, -1, 17};
  for (int con = 0; con <= 8; ++con) {
    if (con != EConCommand) {
      EXPECT_EQ(ConToValType(con), expected[con]);
    }
  }
  for (const int con : {7, 9, -1}) {
    EXPECT_EQ(Asserted([=] { (void)ConToValType(con); }), u"ConToValType type"_s);
    iPresenter.Answer(true);
    EXPECT_EQ(ConToValType(con), EValUndef);
  }
}

TEST_F(CVelumValueTest, BlankTextIsTheZeroOfTheType) {
  for (const QString& text : {QString(), u"   "_s}) {
    for (const int con : {0, 1, 2, 3, 4, 5, 6, 8}) {
      for (const TVelumValue& val : {ExtTextToVal(text, Field(con)), IntTextToVal(text, Field(con))}) {
        EXPECT_EQ(val.Type(), ConToValType(con));
        EXPECT_EQ(val.Str(), QString());
        EXPECT_EQ(val.Int(), 0);
        EXPECT_EQ(val.Real(), 0.0);
        EXPECT_EQ(val.Date(), 0.0);
        EXPECT_EQ(val.Time(), 0.0);
        EXPECT_FALSE(val.Boolean());
      }
    }
  }
}

TEST_F(CVelumValueTest, ExternalTextToText) {
  EXPECT_EQ(ExtTextToVal(u" a\r\n"_s, Field(EConText)).Str(), u" a\r\n"_s);
  EXPECT_EQ(ExtTextToVal(u"a"_s, Field(EConList)).Type(), EValStr);
}

TEST_F(CVelumValueTest, ExternalTextToInteger) {
  const auto number = [](const QString& aText) { return ExtTextToVal(aText, Field(EConInteger)).Int(); };
  EXPECT_EQ(number(u"42"_s), 42);
  EXPECT_EQ(number(u"1,234"_s), 1234);
  EXPECT_EQ(number(u"70000"_s), 70000);
  // The strict step fails, and the scan has stopped at the separator.
  EXPECT_EQ(number(u"70,000"_s), 70);
  EXPECT_EQ(number(u"12abc"_s), 12);
  EXPECT_EQ(number(u"abc"_s), 0);
  EXPECT_EQ(number(u"2.5"_s), 2);
  EXPECT_EQ(number(u"3.5"_s), 4);
  EXPECT_EQ(number(u"-2147483648"_s), -2147483647 - 1);
  EXPECT_EQ(number(u"2147483648"_s), 0);
  EXPECT_EQ(number(u"1e999"_s), 0);
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(number(u"1.234"_s), 1234);
  EXPECT_EQ(number(u"3,5"_s), 4);
  EXPECT_EQ(number(u"70000"_s), 70000);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumValueTest, ExternalTextToReal) {
  const auto number = [](const QString& aText, qint16 aDigits = ENoShort) {
    return ExtTextToVal(aText, Field(EConReal, aDigits)).Real();
  };
  EXPECT_EQ(number(u"1,234.5678"_s), 1234.5678);
  EXPECT_EQ(number(u"1,234.5678"_s, 2), 1234.57);
  EXPECT_EQ(number(u"1234.5"_s, 0), 1235);
  EXPECT_EQ(number(u"1.5E+300"_s), 1.5e300);
  // What fails the strict step stays as it was scanned, not rounded.
  EXPECT_EQ(number(u"1.2345 kg"_s, 2), 1.2345);
  EXPECT_EQ(number(u"1e999"_s), 0);
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(number(u"1.234,5"_s), 1234.5);
  EXPECT_EQ(number(u"1.5"_s), 1.5);
  EXPECT_EQ(number(u"1,5E+20"_s), 1.5e20);
}

TEST_F(CVelumValueTest, ExternalTextToDate) {
  const auto date = [](const QString& aText) { return ExtTextToVal(aText, Field(EConDate)); };
  EXPECT_EQ(date(u"1/31/2007"_s).Date(), IntToDate(20070131));
  EXPECT_EQ(date(u"nonsense"_s).Date(), 29221);
  EXPECT_EQ(date(u"31.1.2007"_s).Date(), 29221);
  EXPECT_EQ(ValToExtText(date(u"nonsense"_s), Field(EConDate)), u"1/1/1980"_s);
  // Whole days only.
  EXPECT_EQ(date(u"1/31/2007 18:00"_s).Date(), IntToDate(20070131));
  EXPECT_EQ(date(u"18:00"_s).Date(), 0);
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(date(u"31.1.07"_s).Date(), IntToDate(20070131));
}

TEST_F(CVelumValueTest, ExternalTextToTime) {
  const auto time = [](const QString& aText) { return ExtTextToVal(aText, Field(EConTime)); };
  EXPECT_EQ(time(u"6:00 PM"_s).Time(), 0.75);
  EXPECT_EQ(time(u"18:00:00"_s).Time(), 0.75);
  EXPECT_EQ(time(u"nonsense"_s).Time(), 0);
  EXPECT_EQ(time(u"1/1/1980 18:00"_s).Time(), 29221.75);
  EXPECT_EQ(time(u"1/1/1980"_s).Time(), 29221);
}

TEST_F(CVelumValueTest, ExternalTextToBoolean) {
  EXPECT_TRUE(ExtTextToVal(u"T"_s, Field(EConBoolean)).Boolean());
  for (const QString& text : {u"-1"_s, u"t"_s, u" T"_s, u"F"_s, u"True"_s})
    EXPECT_FALSE(ExtTextToVal(text, Field(EConBoolean)).Boolean());
}

TEST_F(CVelumValueTest, TextForOtherTypesAsserts) {
  EXPECT_EQ(Asserted([] { (void)ExtTextToVal(u"x"_s, Field(EConPicture)); }), u"ExtTextToVal type"_s);
  EXPECT_EQ(Asserted([] { (void)IntTextToVal(u"x"_s, Field(EConPicture)); }), u"IntTextToVal type"_s);
  EXPECT_EQ(Asserted([] { (void)ExtTextToVal(u"x"_s, Field(EConCommand)); }), u"ConToValType type"_s);
  EXPECT_EQ(Asserted([] { (void)IntTextToVal({}, Field(EConCommand)); }), u"ConToValType type"_s);
  iPresenter.Answer(true).Answer(true);
  EXPECT_EQ(ExtTextToVal(u"x"_s, Field(EConCommand)).Type(), EValUndef);
}

TEST_F(CVelumValueTest, InternalTextToValue) {
  CVelumLocale::Init(u"de_DE"_s);
  const auto val = [](const QString& aText, int aCon) { return IntTextToVal(aText, Field(aCon)); };
  EXPECT_EQ(val(u" a "_s, EConText).Str(), u" a "_s);
  EXPECT_EQ(val(u"1.234"_s, EConReal).Real(), 1.234);
  EXPECT_EQ(val(u"1E-05"_s, EConReal).Real(), 1e-5);
  EXPECT_EQ(val(u"2.5"_s, EConInteger).Int(), 2);
  EXPECT_EQ(val(u"70000x"_s, EConInteger).Int(), 70000);
  EXPECT_EQ(val(u"19800101"_s, EConDate).Date(), 29221);
  EXPECT_EQ(val(u"20071301"_s, EConDate).Date(), IntToDate(20080101));
  EXPECT_EQ(val(u"1999999999"_s, EConDate).Date(), 29221);
  EXPECT_EQ(val(u"60000"_s, EConTime).Time(), 0.25);
  EXPECT_TRUE(val(u"-1"_s, EConBoolean).Boolean());
  for (const QString& text : {u"T"_s, u"1"_s, u" -1"_s, u"0"_s})
    EXPECT_FALSE(val(text, EConBoolean).Boolean());
  // Failures leave the zero.
  EXPECT_EQ(val(u"99999999999"_s, EConInteger).Int(), 0);
  EXPECT_EQ(val(u"1e999"_s, EConReal).Real(), 0);
  EXPECT_EQ(val(u"1234567890"_s, EConDate).Date(), 0);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumValueTest, InternalTextReadsBack) {
  const std::pair<int, TVelumValue> samples[] = {
      {EConText, TVelumValue::OfStr(u"text"_s)},  {EConInteger, TVelumValue::OfInt(-2147483647)},
      {EConReal, TVelumValue::OfReal(0.1 + 0.2)}, {EConReal, TVelumValue::OfReal(-1.7e308)},
      {EConDate, TVelumValue::OfDate(39000)},     {EConTime, TVelumValue::OfTime(CVelumDays::Join(0, 61))},
      {EConBoolean, TVelumValue::OfBoolean(true)}};
  for (const auto& [con, val] : samples)
    EXPECT_TRUE(Equal(IntTextToVal(ValToIntText(val), Field(con)), val)) << con;
}

TEST_F(CVelumValueTest, StringsAndUndefined) {
  EXPECT_EQ(StrToVal({}).Type(), EValUndef);
  EXPECT_EQ(StrToVal(u" "_s).Str(), u" "_s);
  TVelumValue val;
  UndefToStr(val);
  EXPECT_EQ(val.Type(), EValStr);
  EXPECT_EQ(val.Str(), QString());
  val = TVelumValue::OfInt(3);
  UndefToStr(val);
  EXPECT_EQ(val.Int(), 3);
}

TEST_F(CVelumValueTest, Equality) {
  const QList<TVelumValue> samples = Samples();
  for (const TVelumValue& val : samples) {
    if (val.Type() == EValIntPair) continue;
    EXPECT_TRUE(Equal(val, val)) << val.Type();
  }
  EXPECT_FALSE(Equal(TVelumValue(), TVelumValue::OfStr({})));
  EXPECT_FALSE(Equal(TVelumValue::OfStr({}), TVelumValue()));
  EXPECT_TRUE(Equal(TVelumValue(), TVelumValue()));
  EXPECT_FALSE(Equal(TVelumValue::OfStr(u"a"_s), TVelumValue::OfStr(u"A"_s)));
  EXPECT_FALSE(Equal(TVelumValue::OfInt(1), TVelumValue::OfInt(2)));
  EXPECT_FALSE(Equal(TVelumValue::OfReal(1), TVelumValue::OfReal(1.5)));
  EXPECT_FALSE(Equal(TVelumValue::OfDate(1), TVelumValue::OfDate(2)));
  EXPECT_FALSE(Equal(TVelumValue::OfTime(0.1), TVelumValue::OfTime(0.2)));
  EXPECT_FALSE(Equal(TVelumValue::OfBoolean(true), TVelumValue::OfBoolean(false)));
  EXPECT_FALSE(Equal(TVelumValue::OfBlobId(1), TVelumValue::OfBlobId(2)));
  EXPECT_FALSE(Equal(EThing(), EThing()));
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumValueTest, EqualityOfUnlikeTypesAsserts) {
  EXPECT_EQ(Asserted([] { (void)Equal(TVelumValue::OfInt(1), TVelumValue::OfBlobId(1)); }), u"Equal type"_s);
  EXPECT_EQ(Asserted([] { (void)Equal(TVelumValue::OfPair(1, 2), TVelumValue::OfPair(1, 2)); }),
            u"Equal type"_s);
  iPresenter.SetDefaultAnswer(true);
  EXPECT_FALSE(Equal(TVelumValue::OfInt(1), TVelumValue::OfStr(u"1"_s)));
  EXPECT_FALSE(Equal(TVelumValue::OfPair(1, 2), TVelumValue::OfPair(1, 2)));
}

TEST_F(CVelumValueTest, ToIntAndToReal) {
  EXPECT_EQ(ToInt(TVelumValue::OfStr(u"70,000"_s)), 70000);
  EXPECT_EQ(ToInt(TVelumValue::OfStr(u"2.5"_s)), 2);
  EXPECT_EQ(ToInt(TVelumValue::OfInt(-3)), -3);
  EXPECT_EQ(ToInt(TVelumValue::OfReal(3.5)), 4);
  EXPECT_EQ(ToReal(TVelumValue::OfStr(u"1,234.5"_s)), 1234.5);
  EXPECT_EQ(ToReal(TVelumValue::OfInt(-3)), -3.0);
  EXPECT_EQ(ToReal(TVelumValue::OfReal(0.1)), 0.1);
  EXPECT_EQ(Raised([] { (void)ToInt(TVelumValue::OfStr(u"12abc"_s)); }), EHostTypeMismatch);
  EXPECT_EQ(Raised([] { (void)ToInt(TVelumValue::OfStr({})); }), EHostTypeMismatch);
  EXPECT_EQ(Raised([] { (void)ToInt(TVelumValue::OfStr(u"2147483648"_s)); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)ToReal(TVelumValue::OfStr(u"x"_s)); }), EHostTypeMismatch);
  EXPECT_EQ(Raised([] { (void)ToInt(TVelumValue::OfReal(1e10)); }), EHostOverflow);
  EXPECT_EQ(Asserted([] { (void)ToInt(TVelumValue()); }), u"ToInt aVal.iType"_s);
  EXPECT_EQ(Asserted([] { (void)ToInt(TVelumValue::OfBlobId(1)); }), u"ToInt aVal.iType"_s);
  EXPECT_EQ(Asserted([] { (void)ToReal(TVelumValue::OfDate(1)); }), u"ToReal aVal.iType"_s);
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(ToInt(TVelumValue()), 0);
  EXPECT_EQ(ToReal(TVelumValue()), 0.0);
}

TEST_F(CVelumValueTest, ConvertGoesByTheTarget) {
  const TVelumFieldInfo field = Field(EConReal, 1);
  TVelumValue to = TVelumValue::OfStr({});
  Convert(TVelumValue::OfReal(1.25), field, to);
  EXPECT_EQ(to.Str(), u"1.3"_s);
  Convert(TVelumValue(), field, to);
  EXPECT_EQ(to.Str(), QString());
  to = TVelumValue::OfInt(0);
  Convert(TVelumValue::OfStr(u"12"_s), field, to);
  EXPECT_EQ(to.Int(), 12);
  to = TVelumValue::OfReal(0);
  Convert(TVelumValue::OfInt(12), field, to);
  EXPECT_EQ(to.Real(), 12.0);
  to = TVelumValue::OfBoolean(false);
  Convert(TVelumValue::OfStr(u"T"_s), field, to);
  EXPECT_TRUE(to.Boolean());
  Convert(TVelumValue::OfStr(u"true"_s), field, to);
  EXPECT_FALSE(to.Boolean());
}

TEST_F(CVelumValueTest, ConvertAsserts) {
  const TVelumFieldInfo field = Field(EConText);
  TVelumValue to = TVelumValue::OfBoolean(true);
  EXPECT_EQ(Asserted([&] { Convert(TVelumValue::OfInt(1), field, to); }), u"Convert FromType Str"_s);
  for (const int tag : {0, 14, 15, 17, 50, 100}) {
    to = TVelumValue::OfType(tag);
    EXPECT_EQ(Asserted([&] { Convert(TVelumValue::OfStr(u"1"_s), field, to); }), u"Convert aTo.iType"_s);
  }
  to = TVelumValue::OfInt(5);
  EXPECT_EQ(Raised([&] { Convert(TVelumValue::OfStr(u"x"_s), field, to); }), EHostTypeMismatch);
  EXPECT_EQ(to.Int(), 5);
  iPresenter.SetDefaultAnswer(true);
  to = TVelumValue::OfBoolean(true);
  Convert(TVelumValue::OfInt(1), field, to);
  EXPECT_FALSE(to.Boolean());
}

TEST_F(CVelumValueTest, SetZero) {
  TVelumValue val = TVelumValue::OfInt(9);
  SetZero(val, EValStr, 1, 2);
  EXPECT_EQ(val.Type(), EValStr);
  EXPECT_EQ(val.Str(), QString());
  SetZero(val, EValInt, 1, 2);
  EXPECT_EQ(val.Type(), EValInt);
  EXPECT_EQ(val.Int(), 0);
  SetZero(val, EValReal, 1, 2);
  EXPECT_EQ(val.Type(), EValReal);
  SetZero(val, EValDate, 39000, 0.5);
  EXPECT_EQ(val.Date(), 39000);
  SetZero(val, EValTime, 39000, 0.5);
  EXPECT_EQ(val.Time(), 0.5);
  SetZero(val, EValBoolean, 1, 2);
  EXPECT_EQ(val.Type(), EValBoolean);
  EXPECT_FALSE(val.Boolean());
  for (const int tag : {0, 17, 50, 100, 99})
    EXPECT_EQ(Asserted([&] { SetZero(val, tag, 1, 2); }), u"SetZero type"_s);
}

TEST_F(CVelumValueTest, CopyTakesTheMeaningfulSlot) {
  for (const TVelumValue& from : Samples()) {
    TVelumValue to = TVelumValue::OfStr(u"old"_s);
    Copy(from, to);
    EXPECT_EQ(to.Type(), from.Type());
    EXPECT_EQ(to.Str(), from.Str());
    EXPECT_EQ(to.Int(), from.Int());
    EXPECT_EQ(to.Real(), from.Real());
    EXPECT_EQ(to.Date(), from.Date());
    EXPECT_EQ(to.Time(), from.Time());
    EXPECT_EQ(to.Boolean(), from.Boolean());
    EXPECT_EQ(to.Int1(), from.Int1());
    EXPECT_EQ(to.Obj(), from.Obj());
  }
  TVelumValue to;
  EXPECT_EQ(Asserted([&] { Copy(TVelumValue::OfType(99), to); }), u"Copy type"_s);
}

TEST_F(CVelumValueTest, LenientScan) {
  EXPECT_EQ(LenientNum(u"12abc"), 12);
  EXPECT_EQ(LenientNum(u"  -12.5"), -12.5);
  EXPECT_EQ(LenientNum(u"+7"), 7);
  EXPECT_EQ(LenientNum(u"-42   "), -42);
  EXPECT_EQ(LenientNum(u"\t\r\n 7"), 7);
  EXPECT_EQ(LenientNum(u"999999999999999"), 999999999999999.0);
  EXPECT_EQ(LenientNum(u"9007199254740993"), 9007199254740992.0);
  EXPECT_EQ(LenientNum(u"123456789012345678"), 123456789012345680.0);
  EXPECT_EQ(LenientNum(u".5"), 0.5);
  EXPECT_EQ(LenientNum(u"5."), 5);
  EXPECT_EQ(LenientNum(u"1,234"), 1);
  EXPECT_EQ(LenientNum(u"1.2.3"), 1.2);
  EXPECT_EQ(LenientNum(u"1e3x"), 1000);
  EXPECT_EQ(LenientNum(u"1E-05"), 1e-5);
  EXPECT_EQ(LenientNum(u"1e+2"), 100);
  EXPECT_EQ(LenientNum(u"1e"), 1);
  EXPECT_EQ(LenientNum(u"1e+"), 1);
  EXPECT_EQ(LenientNum(u"2 e"), 2);
  for (const auto* text : {u"", u" ", u"-", u"+", u".", u"-.", u"e5", u"abc", u"--1", u"inf", u"nan", u"٣"})
    EXPECT_EQ(LenientNum(text), 0.0);
  EXPECT_EQ(LenientNum(u"0x10"), 0);
  EXPECT_EQ(LenientNum(u"1e-999"), 0);
  EXPECT_EQ(LenientNum(u"0.30000000000000004"), 0.1 + 0.2);
  EXPECT_EQ(LenientNum(QString(u"1"_s + u"0"_s.repeated(300))), 1e300);
  EXPECT_EQ(Raised([] { (void)LenientNum(u"1e999"); }), EHostOverflow);
}

TEST_F(CVelumValueTest, ABlankInsideANumberEndsIt) {
  EXPECT_EQ(LenientNum(u"12 34"), 12);
  EXPECT_EQ(LenientNum(u"12\t34"), 12);
  EXPECT_EQ(LenientNum(u"70\u00a0000"), 70);
  EXPECT_EQ(LenientNum(u"- 5"), 0);
  EXPECT_EQ(LenientNum(u"1 .5"), 1);
  EXPECT_EQ(LenientNum(u"1. 5"), 1);
  EXPECT_EQ(LenientNum(u"1.5 e2"), 1.5);
  EXPECT_EQ(LenientNum(u"1.5e 2"), 1.5);
  EXPECT_EQ(ExtTextToVal(u"12 34"_s, Field(EConInteger)).Int(), 12);
  EXPECT_EQ(ExtTextToVal(u"12 34.5"_s, Field(EConReal)).Real(), 12);
  EXPECT_EQ(IntTextToVal(u"12 34"_s, Field(EConInteger)).Int(), 12);
}

// Too large for the strict conversion to whole numbers, or followed by what is no number.
TEST_F(CVelumValueTest, ABlankThatGroupsDigitsIsPassedOver) {
  const auto whole = [](const QString& aText) { return ExtTextToVal(aText, Field(EConInteger)).Int(); };
  const auto real = [](const QString& aText) { return ExtTextToVal(aText, Field(EConReal)).Real(); };
  for (const char* locale : {"fr_FR", "cs_CZ"}) {
    CVelumLocale::Init(QString::fromLatin1(locale));
    for (const char16_t blank : {u' ', u'\u00a0', u'\u202f'}) {
      const QChar gap(blank);
      EXPECT_EQ(whole(u"70"_s + gap + u"000"_s), 70000) << locale;
      EXPECT_EQ(whole(u"-1"_s + gap + u"234"_s + gap + u"567"_s), -1234567) << locale;
      EXPECT_EQ(real(u"1"_s + gap + u"234 km"_s), 1234) << locale;
      EXPECT_EQ(real(u"1"_s + gap + u"234.5"_s + gap + u"6"_s), 1234.5) << "only before the point";
    }
    EXPECT_EQ(whole(u"70  000"_s), 70) << "one blank";
    EXPECT_EQ(whole(u" - 5"_s), 0);
    EXPECT_EQ(IntTextToVal(u"70 000"_s, Field(EConInteger)).Int(), 70) << "no locale in files";
  }
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(whole(u"70 000"_s), 70);
}

// A comma that groups is followed by three digits.
TEST_F(CVelumValueTest, GroupsOfDigitsAreWhole) {
  EXPECT_EQ(ExtTextToVal(u"1,5"_s, Field(EConInteger)).Int(), 1);
  EXPECT_EQ(ExtTextToVal(u"1,5"_s, Field(EConReal)).Real(), 1);
  EXPECT_EQ(ExtTextToVal(u"1,500"_s, Field(EConReal)).Real(), 1500);
}

TEST_F(CVelumValueTest, DigitsRoundHalfAwayFromZero) {
  const auto rounded = [](const QString& aText, qint16 aDigits) {
    return ExtTextToVal(aText, Field(EConReal, aDigits)).Real();
  };
  EXPECT_EQ(rounded(u"0.125"_s, 2), 0.13);
  EXPECT_EQ(rounded(u"2.665"_s, 2), 2.67);
  EXPECT_EQ(rounded(u"2.5"_s, 0), 3);
  EXPECT_EQ(rounded(u"-0.005"_s, 2), -0.01);
}

TEST_F(CVelumValueTest, RoundingToInt) {
  EXPECT_EQ(RoundToInt(0.5), 0);
  EXPECT_EQ(RoundToInt(1.5), 2);
  EXPECT_EQ(RoundToInt(-0.5), 0);
  EXPECT_EQ(RoundToInt(-2.5), -2);
  EXPECT_EQ(RoundToInt(2147483647.4), 2147483647);
  EXPECT_EQ(Raised([] { (void)RoundToInt(2147483647.5); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)RoundToInt(-2147483649.0); }), EHostOverflow);
  EXPECT_EQ(Raised([] { (void)RoundToInt(std::nan("")); }), EHostOverflow);
}

TEST_F(CVelumValueTest, TodayAndNow) {
  const double today = Today();
  EXPECT_EQ(today, std::floor(today));
  EXPECT_GT(today, 45000);
  const double now = Now();
  EXPECT_GE(now, 0);
  EXPECT_LT(now, 1);
  EXPECT_EQ(now, IntToTime(TimeToInt(now)));
}

} // namespace
