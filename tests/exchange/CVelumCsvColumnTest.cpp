// Types of columns: found only where every cell comes back from its value.
#include "exchange/CVelumCsvColumn.h"

#include "core/text/CVelumLocale.h"
#include "support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

using TCells = std::vector<std::string>;

CVelumCsvColumn ColumnOf(const TCells& aCells) {
  CVelumCsvColumn column;
  for (const std::string& cell : aCells) column.Take(cell);
  return column;
}

qint32 TypeOf(const TCells& aCells) {
  return ColumnOf(aCells).Found().iType;
}

class CVelumCsvColumnTest : public testing::Test {
protected:
  CVelumCsvColumnTest() { CVelumLocale::Init(u"en_US"_s); }
  ~CVelumCsvColumnTest() override { CVelumLocale::Init(u"en_US"_s); }
};

TEST_F(CVelumCsvColumnTest, FindsWholeNumbers) {
  EXPECT_EQ(TypeOf({"1", "-2", "+3", "0"}), EConInteger);
  EXPECT_EQ(TypeOf({"2147483647", "-2147483648"}), EConInteger);
  EXPECT_EQ(TypeOf({"2147483648"}), EConText) << "beyond 32 bits";
  EXPECT_EQ(TypeOf({"-2147483649"}), EConText);
  EXPECT_EQ(TypeOf({"01234", "1"}), EConText) << "a zero in front";
  EXPECT_EQ(TypeOf({"00"}), EConText);
  EXPECT_EQ(TypeOf({"-0"}), EConText);
  EXPECT_EQ(TypeOf({"1", "", "2"}), EConInteger) << "an empty cell says nothing";
  EXPECT_EQ(TypeOf({"1 ", "2"}), EConText) << "blanks are part of a cell";
  EXPECT_EQ(TypeOf({"", ""}), EConText);
  EXPECT_EQ(TypeOf({}), EConText);
}

TEST_F(CVelumCsvColumnTest, FindsReals) {
  EXPECT_EQ(TypeOf({"1.5", "2", "-0.25", "3.50"}), EConReal);
  EXPECT_EQ(TypeOf({"1,5", "2,25"}), EConReal) << "with commas no other reading is possible";
  EXPECT_EQ(ColumnOf({"1,5"}).Found().iDecimal, ',');
  EXPECT_EQ(TypeOf({"12345678901.5", "99999999999"}), EConReal) << "beyond 32 bits, with decimals elsewhere";
  EXPECT_EQ(TypeOf({"123456789.1234567"}), EConText) << "16 digits";
  EXPECT_EQ(TypeOf({"123456789.123456"}), EConReal) << "15 digits";
  EXPECT_EQ(TypeOf({".5"}), EConText);
  EXPECT_EQ(TypeOf({"5."}), EConText);
  EXPECT_EQ(TypeOf({"1e7"}), EConText);
  EXPECT_EQ(TypeOf({"1.5", "1,5"}), EConText) << "two separators for decimals";
  EXPECT_EQ(TypeOf({"01.5"}), EConText);
}

TEST_F(CVelumCsvColumnTest, TakesASeparatorForGroupingOnlyWhereThatIsProven) {
  EXPECT_EQ(TypeOf({"1,234,567", "1,234"}), EConInteger) << "twice in one cell";
  EXPECT_EQ(TypeOf({"1,234.5", "7,000"}), EConReal) << "beside the other separator";
  EXPECT_EQ(TypeOf({"1.234,50"}), EConReal);
  EXPECT_EQ(ColumnOf({"1.234,50"}).Found().iGroup, '.');
  EXPECT_EQ(TypeOf({"1,234", "5,678"}), EConText) << "decimals elsewhere, thousands here";
  EXPECT_TRUE(ColumnOf({"1,234", "5,678"}).IsAmbiguous());
  EXPECT_EQ(TypeOf({"52.123", "48.856"}), EConReal) << "the locale's decimal separator";
  EXPECT_EQ(TypeOf({"1.234.567"}), EConInteger);
  EXPECT_EQ(TypeOf({"10.0.0.100"}), EConText);
  EXPECT_EQ(TypeOf({"1,23,456"}), EConText);
  EXPECT_EQ(TypeOf({"4,123,456,789"}), EConText) << "beyond 32 bits";
}

TEST_F(CVelumCsvColumnTest, ReadsAnAmbiguousColumnAsTheTypeThatIsChosen) {
  const CVelumCsvColumn column = ColumnOf({"1,234", "5,678"});
  EXPECT_EQ(column.FormFor(EConInteger).iGroup, ',');
  EXPECT_EQ(column.FormFor(EConReal).iDecimal, ',');
  EXPECT_EQ(column.FormFor(EConReal).iGroup, '\0');
}

TEST_F(CVelumCsvColumnTest, LetsTheLocaleTellWhatIsItsOwn) {
  CVelumLocale::Init(u"de_DE"_s);
  EXPECT_EQ(TypeOf({"52.123", "48.856"}), EConText);
  EXPECT_TRUE(ColumnOf({"52.123", "48.856"}).IsAmbiguous());
  EXPECT_EQ(TypeOf({"52,123", "48,856"}), EConReal);
  EXPECT_EQ(TypeOf({"1.5", "1.12345"}), EConReal);
  EXPECT_EQ(ColumnOf({"1/2/2003"}).Found().iOrder, ECsvOrder::DayMonth);
}

TEST_F(CVelumCsvColumnTest, FindsDates) {
  EXPECT_EQ(TypeOf({"2017-12-27", "2018-01-02"}), EConDate);
  EXPECT_EQ(ColumnOf({"16/07/2010", "1/2/2010"}).Found().iOrder, ECsvOrder::DayMonth);
  EXPECT_FALSE(ColumnOf({"16/07/2010"}).IsOrderAssumed());
  EXPECT_EQ(ColumnOf({"12/27/2017"}).Found().iOrder, ECsvOrder::MonthDay);
  EXPECT_EQ(TypeOf({"16/07/2010", "07/16/2010"}), EConText) << "mixed orders";
  EXPECT_EQ(ColumnOf({"1/2/2003", "3/4/2003"}).Found().iOrder, ECsvOrder::MonthDay) << "the locale's";
  EXPECT_TRUE(ColumnOf({"1/2/2003"}).IsOrderAssumed());
  EXPECT_EQ(TypeOf({"07.12.2020", "31.12.2020"}), EConDate);
  EXPECT_EQ(TypeOf({"07.12.2020", "31/12/2020"}), EConText) << "two separators";
  EXPECT_EQ(TypeOf({"30/02/2003"}), EConText) << "no such day";
  EXPECT_EQ(TypeOf({"0100-03-01", "9999-12-31"}), EConDate);
  EXPECT_EQ(TypeOf({"0100-02-28"}), EConText) << "before what a stack keeps";
  EXPECT_EQ(TypeOf({"16/07/10"}), EConText) << "a year of two digits";
  EXPECT_EQ(TypeOf({"2017-12-27", "27/12/2017"}), EConText);
  EXPECT_EQ(TypeOf({"2017-12-27 10:00"}), EConText) << "a date with a time";
}

TEST_F(CVelumCsvColumnTest, FindsTimesAndBooleans) {
  EXPECT_EQ(TypeOf({"9:30", "10:15"}), EConTime);
  EXPECT_EQ(TypeOf({"12:30:00", "00:00:00"}), EConTime);
  EXPECT_EQ(TypeOf({"24:00"}), EConText);
  EXPECT_EQ(TypeOf({"true", "false", ""}), EConBoolean);
  EXPECT_EQ(TypeOf({"yes", "no"}), EConText);
  EXPECT_EQ(TypeOf({"TRUE", "FALSE"}), EConText) << "would come back in small letters";
  EXPECT_EQ(TypeOf({"true", "1"}), EConText);
}

TEST_F(CVelumCsvColumnTest, LeavesEverythingElseText) {
  for (const char* const cell : {"24h/24", "1/4", "-1/2", "a-12", "tt0012349", "16a", "12%", "($3.50)",
                                 "$3.50", "1'234.50", "--5", "+", "-", "5-", "1 234", "0x10", "NaN"})
    EXPECT_EQ(TypeOf({cell, cell}), EConText) << cell;
  EXPECT_EQ(TypeOf({"5", "abc"}), EConText);
  EXPECT_EQ(TypeOf({std::string(5000, '1')}), EConText);
}

} // namespace
