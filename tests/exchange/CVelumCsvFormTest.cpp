#include "exchange/CVelumCsvForm.h"

#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "support/PrintQt.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

class CVelumCsvFormTest : public testing::Test {
protected:
  CVelumCsvFormTest() { CVelumLocale::Init(u"en_US"_s); }

  ECsvFit Read(std::string_view aText, const TCsvForm& aForm) {
    iValue = {};
    return CVelumCsvForms::Read(aText, aForm, iValue);
  }
  // The value that was read, written for other programs.
  [[nodiscard]] QString Plain() const { return CVelumCsvForms::PlainText(iValue); }

  TVelumValue iValue;
};

TEST_F(CVelumCsvFormTest, ReadsWholeNumbers) {
  const TCsvForm form{EConInteger, '.', ',', ECsvOrder::DayMonth};
  EXPECT_EQ(Read("1,234,567", form), ECsvFit::Same);
  EXPECT_EQ(iValue.Int(), 1234567);
  EXPECT_EQ(Read("+7", form), ECsvFit::Same);
  EXPECT_EQ(Read("12.00", form), ECsvFit::Same) << "zeros at the end";
  EXPECT_EQ(iValue.Int(), 12);
  EXPECT_EQ(Read("12.5", form), ECsvFit::Refused);
  EXPECT_EQ(Read("007", form), ECsvFit::Changed);
  EXPECT_EQ(iValue.Int(), 7);
  EXPECT_EQ(Read(" 7 ", form), ECsvFit::Changed);
  EXPECT_EQ(Read("3000000000", form), ECsvFit::Refused);
  EXPECT_EQ(Read("12%", form), ECsvFit::Refused);
  EXPECT_EQ(Read(" ", form), ECsvFit::Refused);
}

TEST_F(CVelumCsvFormTest, ReadsReals) {
  const TCsvForm form{EConReal, ',', '.', ECsvOrder::DayMonth};
  EXPECT_EQ(Read("1.234,50", form), ECsvFit::Same);
  EXPECT_EQ(Plain(), u"1234.5");
  EXPECT_EQ(Read(",5", form), ECsvFit::Changed);
  EXPECT_EQ(Plain(), u"0.5");
  EXPECT_EQ(Read("1e3", form), ECsvFit::Changed);
  EXPECT_EQ(Plain(), u"1000");
  EXPECT_EQ(Read("1E+20", {EConReal, '.', '\0', ECsvOrder::DayMonth}), ECsvFit::Same)
      << "its own shortest text";
  EXPECT_EQ(Read("1234567890123456789", form), ECsvFit::Changed) << "more digits than there is room for";
  EXPECT_EQ(Read("1e999", form), ECsvFit::Refused);
  EXPECT_EQ(Read("inf", form), ECsvFit::Refused);
  EXPECT_EQ(Read("-", form), ECsvFit::Refused);
}

TEST_F(CVelumCsvFormTest, ReadsDatesAndTimes) {
  const TCsvForm date{EConDate, '.', '\0', ECsvOrder::DayMonth};
  EXPECT_EQ(Read("16/07/2010", date), ECsvFit::Same);
  EXPECT_EQ(Plain(), u"2010-07-16");
  EXPECT_EQ(Read("2010-07-16", date), ECsvFit::Same);
  EXPECT_EQ(Read("2010-07-16 10:30", date), ECsvFit::Changed) << "the time goes";
  EXPECT_EQ(Plain(), u"2010-07-16");
  EXPECT_EQ(Read("7/16/10", date), ECsvFit::Changed) << "as the locale reads it";
  EXPECT_EQ(Plain(), u"2010-07-16");
  EXPECT_EQ(Read("soon", date), ECsvFit::Refused);
  const TCsvForm time{EConTime, '.', '\0', ECsvOrder::DayMonth};
  EXPECT_EQ(Read("9:30", time), ECsvFit::Same);
  EXPECT_EQ(Plain(), u"09:30:00");
  EXPECT_EQ(Read("9:30 PM", time), ECsvFit::Changed);
  EXPECT_EQ(Plain(), u"21:30:00");
  EXPECT_EQ(Read("2010-07-16", time), ECsvFit::Refused);
}

TEST_F(CVelumCsvFormTest, ReadsBooleans) {
  const TCsvForm form{EConBoolean, '.', '\0', ECsvOrder::DayMonth};
  EXPECT_EQ(Read("true", form), ECsvFit::Same);
  EXPECT_TRUE(iValue.Boolean());
  EXPECT_EQ(Read("No", form), ECsvFit::Changed);
  EXPECT_FALSE(iValue.Boolean());
  EXPECT_EQ(Read("2", form), ECsvFit::Refused);
}

TEST_F(CVelumCsvFormTest, WritesValuesThatReadBack) {
  using TLimits = std::numeric_limits<double>;
  for (const double real : {0.0, -1.5, 0.1, 1.0 / 3, 1e15, 123456789012345678.0, 1e-5, 1e-20, TLimits::max(),
                            TLimits::denorm_min(), 0.00001, -2147483649.0}) {
    const QString text = CVelumCsvForms::PlainText(TVelumValue::OfReal(real));
    EXPECT_EQ(Read(text.toStdString(), {EConReal, '.', '\0', ECsvOrder::DayMonth}), ECsvFit::Same)
        << text.toStdString();
    EXPECT_EQ(iValue.Real(), real) << text.toStdString();
  }
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue::OfReal(0.123456789012)), u"0.123456789012");
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue::OfReal(2000)), u"2000");
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue::OfReal(-0.0)), u"0");
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue::OfReal(0.00001)), u"0.00001");
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue::OfInt(-2000)), u"-2000");
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue::OfBoolean(true)), u"true");
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue()), u"");
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue::OfBlobId(7)), u"");
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue::OfStr(u"\u00E9\U0001F600"_s)), u"\u00E9\U0001F600");
  EXPECT_EQ(CVelumCsvForms::PlainText(TVelumValue::OfStr(QString(QChar(0xD800)))), QString(QChar(0xFFFD)));
}

TEST_F(CVelumCsvFormTest, WritesEveryWholeNumberThatFits) {
  for (const qint32 whole : {0, 1, -1, 2147483647, std::numeric_limits<qint32>::min()}) {
    EXPECT_EQ(Read(CVelumCsvForms::PlainText(TVelumValue::OfInt(whole)).toStdString(),
                   {EConInteger, '.', '\0', ECsvOrder::DayMonth}),
              ECsvFit::Same);
    EXPECT_EQ(iValue.Int(), whole);
  }
}

} // namespace
