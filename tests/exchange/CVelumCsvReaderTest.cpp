#include "exchange/CVelumCsvReader.h"

#include <gtest/gtest.h>

namespace {

// All records, their cells as texts between brackets.
std::vector<std::string> Read(std::string_view aText, QChar aDelim = u',', qint64 aSkip = 0) {
  CVelumCsvReader reader(aText, aDelim, aSkip);
  std::vector<std::string> records;
  while (reader.Next()) {
    std::string record;
    std::string buffer;
    for (const TCsvCell& cell : reader.Cells()) record.append("[").append(cell.Text(buffer)).append("]");
    records.push_back(record);
  }
  return records;
}

using TRecords = std::vector<std::string>;

TEST(CVelumCsvReaderTest, CutsRecordsAtEveryLineEnd) {
  EXPECT_EQ(Read("a,b\n1,2\n"), TRecords({"[a][b]", "[1][2]"}));
  EXPECT_EQ(Read("a,b\r\n1,2\r\n"), TRecords({"[a][b]", "[1][2]"}));
  EXPECT_EQ(Read("a,b\r1,2\r"), TRecords({"[a][b]", "[1][2]"}));
  EXPECT_EQ(Read("a,b\n1,2"), TRecords({"[a][b]", "[1][2]"})) << "the last line need not end";
  EXPECT_EQ(Read(""), TRecords());
  EXPECT_EQ(Read("\n\na\n"), TRecords({"[]", "[]", "[a]"}));
}

TEST(CVelumCsvReaderTest, KeepsCellsAsTheyAre) {
  EXPECT_EQ(Read(" a , b\t,\n"), TRecords({"[ a ][ b\t][]"})) << "blanks, and the cell behind the last comma";
  EXPECT_EQ(Read("\"a\"\"b\",\"c,d\",\"e\r\nf\",\"\"\n"), TRecords({"[a\"b][c,d][e\r\nf][]"}));
  EXPECT_EQ(Read("1,\"a\n\"\n2,b\n3,\"c \"\"d\"\" e\"\n"), TRecords({"[1][a\n]", "[2][b]", "[3][c \"d\" e]"}))
      << "a cell that ends with a line end";
  EXPECT_EQ(Read("\"\"\"\"\n"), TRecords({"[\"]"}));
}

TEST(CVelumCsvReaderTest, TakesAnyDelimiter) {
  EXPECT_EQ(Read("a;b,c\n", u';'), TRecords({"[a][b,c]"}));
  EXPECT_EQ(Read("a|\"b|\"|c\n", u'|'), TRecords({"[a][b|][c]"}));
  EXPECT_EQ(Read("a\xC2\xA6\xC2\xA7\xC2\xA6\"b\"\xC2\xA6\n", QChar(0xA6)), TRecords({"[a][\xC2\xA7][b][]"}));
}

TEST(CVelumCsvReaderTest, SkipsLines) {
  EXPECT_EQ(Read("title \"of\nthe table\r\na,b\n", u',', 2), TRecords({"[a][b]"}));
  EXPECT_EQ(Read("a\n", u',', 7), TRecords());
}

TEST(CVelumCsvReaderTest, TellsOfQuotesThatDoNotClose) {
  CVelumCsvReader reader("a,b\n1,\"x\ny\n", u',');
  ASSERT_TRUE(reader.Next());
  EXPECT_FALSE(reader.IsUnclosed());
  ASSERT_TRUE(reader.Next());
  EXPECT_TRUE(reader.IsUnclosed());
  EXPECT_EQ(reader.LineOf(reader.Cells()[1]), 2);
  EXPECT_FALSE(reader.Next());
}

TEST(CVelumCsvReaderTest, TellsOfQuotesInTheMiddleAndKeepsThem) {
  CVelumCsvReader reader("a\"b,\"c\"d,\"e\"\n", u',');
  ASSERT_TRUE(reader.Next());
  EXPECT_TRUE(reader.Cells()[0].iStrayQuote);
  EXPECT_EQ(reader.Cells()[0].iRaw, "a\"b");
  EXPECT_TRUE(reader.Cells()[1].iStrayQuote);
  EXPECT_EQ(reader.Cells()[1].iRaw, "\"c\"d");
  EXPECT_FALSE(reader.Cells()[2].iStrayQuote);
}

TEST(CVelumCsvReaderTest, CountsLinesInsideOfCells) {
  CVelumCsvReader reader("\"a\r\nb\rc\nd\",x\n2,\"y\n\",z\n", u',');
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Line(), 1);
  EXPECT_EQ(reader.LineOf(reader.Cells()[1]), 4);
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.Line(), 5);
  EXPECT_EQ(reader.LineOf(reader.Cells()[2]), 6);
}

TEST(CVelumCsvReaderTest, CountsCellsBeyondAllMeasureWithoutKeepingThem) {
  const std::string many(3000000, ',');
  CVelumCsvReader reader(many, u',');
  ASSERT_TRUE(reader.Next());
  EXPECT_EQ(reader.NumCells(), 3000001);
  EXPECT_EQ(reader.Cells().size(), size_t{CVelumCsvReader::EMaxCells});
}

} // namespace
