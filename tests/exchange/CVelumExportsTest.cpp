#include "exchange/CVelumExports.h"

#include "core/CVelumValue.h"
#include "exchange/ContentStack.h"
#include "support/FaultInjection.h"
#include "support/Raised.h"

#include <QDir>

namespace {

class CVelumExportsTest : public ContentStack {
protected:
  // A card with a value of each kind.
  void AddFullCard() {
    const Ref<CVelumCard> card = AddCard(iFirst, u"Ada"_s, u"a \"b\"\r\nc"_s);
    Set(card, u"Size"_s, TVelumValue::OfInt(-7));
    Set(card, u"Price"_s, TVelumValue::OfReal(1234567.5));
    Set(card, u"Since"_s, TVelumValue::OfDate(CVelumValue::IntToDate(20260122)));
    Set(card, u"Open"_s, TVelumValue::OfBoolean(true));
  }
  QByteArray Csv(const QString& aDelimiter = u","_s, qint32 aCoding = ECodLatin1) {
    EXPECT_TRUE(CVelumExports::ExportCsv(iPath, *iFirst, {aDelimiter, aCoding}));
    return iFolder.Read(u"out"_s);
  }
  QByteArray Xml() {
    EXPECT_TRUE(CVelumExports::ExportXml(*iStack, iPath));
    return iFolder.Read(u"out"_s);
  }
  [[nodiscard]] QStringList Files() const { return QDir(iFolder.Path()).entryList(QDir::Files, QDir::Name); }

  QString iPath = iFolder.Path(u"out"_s);
  const QByteArray iHeader = R"("Text","Size","Price","Since","Open","Go","Photo")"
                             "\r\n";
};

static_assert(std::is_const_v<decltype(gQuote)> && std::is_const_v<decltype(gQuoteQuote)>);

TEST_F(CVelumExportsTest, TheQuotesAreThereWithoutAStart) {
  EXPECT_EQ(gQuote, u"\""_s);
  EXPECT_EQ(gQuoteQuote, u"\"\""_s);
}

TEST_F(CVelumExportsTest, EveryCellIsQuoted) {
  EXPECT_EQ(CVelumExports::CsvQuote({}), u"\"\""_s);
  EXPECT_EQ(CVelumExports::CsvQuote(u"12"_s), u"\"12\""_s);
  EXPECT_EQ(CVelumExports::CsvQuote(u"a\"b"_s), u"\"a\"\"b\""_s);
  EXPECT_EQ(CVelumExports::CsvQuote(u"\"\""_s), u"\"\"\"\"\"\""_s);
  EXPECT_EQ(CVelumExports::CsvQuote(u"a,b;c\td"_s), u"\"a,b;c\td\""_s);
}

TEST_F(CVelumExportsTest, ALineEndIsAnEntity) {
  EXPECT_EQ(CVelumExports::CsvQuote(u"a\r\n\r\nb"_s), u"\"a&eol;&eol;b\""_s);
  EXPECT_EQ(CVelumExports::CsvQuote(u"a&eol;b & c"_s), u"\"a&eol;b & c\""_s) << "nothing else is escaped";
  EXPECT_EQ(CVelumExports::CsvQuote(u"a\rb\nc"_s), u"\"a\rb\nc\""_s) << "only the pair is a line end";
}

TEST_F(CVelumExportsTest, AValueIsItsExternalTextInQuotes) {
  Ref<CVelumControl> price;
  ASSERT_TRUE(iFirst->GetControlByName(u"Price"_s, price));
  EXPECT_EQ(CVelumExports::CsvValue(TVelumValue::OfReal(1234.5), *price), u"\"1,234.50\""_s);
  EXPECT_EQ(CVelumExports::CsvValue(TVelumValue(), *price), u"\"\""_s);
}

TEST_F(CVelumExportsTest, ABackgroundWithoutCardsGivesTheHeaderAlone) {
  AddCard(iSecond, u"other"_s);
  EXPECT_EQ(Csv(), iHeader);
}

TEST_F(CVelumExportsTest, ALineForEachCardOfTheBackground) {
  AddFullCard();
  AddCard(iSecond, u"other"_s, u"not here"_s);
  AddCard(iFirst, u"empty"_s);
  EXPECT_EQ(Csv(), iHeader + R"("a ""b""&eol;c","-7","1,234,567.50","1/22/2026","T","","")"
                             "\r\n"
                             R"("","","","","","","")"
                             "\r\n");
}

TEST_F(CVelumExportsTest, CommandsAndPicturesHaveColumns) {
  const Ref<CVelumCard> card = AddCard(iFirst, u"with picture"_s);
  const qint32 id = iStack->IdGen().NextId();
  auto blob = MakeRef<CVelumBlob>(id);
  blob->SetBytes("x");
  iStack->BlobStore()->AddBlob(blob);
  Set(card, u"Photo"_s, TVelumValue::OfBlobId(id));
  EXPECT_EQ(Csv(), iHeader + "\"\",\"\",\"\",\"\",\"\",\"\",\"(Blob " + QByteArray::number(id) + ")\"\r\n");
}

TEST_F(CVelumExportsTest, CardsComeInTheOrderOfTheStack) {
  const Ref<CVelumCard> a = AddCard(iFirst, u"a"_s, u"1"_s);
  const Ref<CVelumCard> b = AddCard(iFirst, u"b"_s, u"2"_s);
  iStack->MoveCard(b, a);
  const QByteArray csv = Csv();
  EXPECT_LT(csv.indexOf("\"2\""), csv.indexOf("\"1\""));
}

TEST_F(CVelumExportsTest, TheDelimiterIsFree) {
  EXPECT_TRUE(Csv(u";"_s).startsWith("\"Text\";\"Size\";"));
  EXPECT_TRUE(Csv(u"\t"_s).startsWith("\"Text\"\t\"Size\"\t"));
}

TEST_F(CVelumExportsTest, AFieldWithADefaultShowsIt) {
  Ref<CVelumControl> size;
  ASSERT_TRUE(iFirst->GetControlByName(u"Size"_s, size));
  size->SetDefaultVal(u"5"_s);
  AddCard(iFirst, u"a"_s);
  EXPECT_EQ(Csv(), iHeader + "\"\",\"5\",\"\",\"\",\"\",\"\",\"\"\r\n");
}

TEST_F(CVelumExportsTest, TheCodePageCountsWhatItLacks) {
  AddCard(iFirst, u"a"_s, QString::fromUtf8("é € Я 你 😀"));
  EXPECT_EQ(CVelumExports::CountLacking(*iFirst), 3);
  EXPECT_EQ(CVelumExports::CountLacking(*iSecond), 0);
  qint64 lacking = 0;
  EXPECT_TRUE(CVelumExports::ExportCsv(iPath, *iFirst, {}, {}, &lacking));
  EXPECT_EQ(lacking, 3);
  EXPECT_TRUE(CVelumExports::ExportCsv(iPath, *iFirst, {u","_s, ECodUtf8}, {}, &lacking));
  EXPECT_EQ(lacking, 0);
  EXPECT_TRUE(Csv().contains("\"\xE9 \x80 ? ? ?\""));
  const QByteArray utf8 = Csv(u","_s, ECodUtf8);
  EXPECT_TRUE(utf8.startsWith("\xEF\xBB\xBF\"Text\",")) << "so that it is told when it is read";
  EXPECT_TRUE(utf8.contains("\"é € Я 你 😀\""));
  EXPECT_EQ(utf8.count("\xEF\xBB\xBF"), 1);
}

TEST_F(CVelumExportsTest, TheNamesOfFieldsCountToo) {
  AddField(*iStack, iSecond, QString::fromUtf8("Яя"), EConText);
  EXPECT_EQ(CVelumExports::CountLacking(*iSecond), 2);
}

TEST_F(CVelumExportsTest, ContentInXml) {
  AddFullCard();
  AddCard(iSecond, u"<B&B>"_s, u"it's"_s);
  EXPECT_EQ(Xml(), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n"
                              "<orvelle version=\"1.0\">\r\n"
                              "  <card name=\"Ada\" background=\"First Background\">\r\n"
                              "    <control name=\"Text\">a &quot;b&quot;&eol;c</control>\r\n"
                              "    <control name=\"Size\">-7</control>\r\n"
                              "    <control name=\"Price\">1,234,567.50</control>\r\n"
                              "    <control name=\"Since\">1/22/2026</control>\r\n"
                              "    <control name=\"Open\">T</control>\r\n"
                              "    <control name=\"Photo\"></control>\r\n"
                              "  </card>\r\n"
                              "  <card name=\"&lt;B&amp;B&gt;\" background=\"Second\">\r\n"
                              "    <control name=\"Text\">it&apos;s</control>\r\n"
                              "  </card>\r\n"
                              "</orvelle>\r\n"));
}

TEST_F(CVelumExportsTest, AStackWithoutCardsGivesAnEmptyStructure) {
  EXPECT_EQ(Xml(), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n"
                              "<orvelle version=\"1.0\">\r\n</orvelle>\r\n"));
}

TEST_F(CVelumExportsTest, AnOldFileIsReplacedWhole) {
  iFolder.Write(u"out"_s, QByteArray(100000, 'x'));
  EXPECT_EQ(Csv(), iHeader);
  EXPECT_EQ(Files(), QStringList{u"out"_s});
}

TEST_F(CVelumExportsTest, AFailureAtAnyCallLeavesTheOldFile) {
  AddFullCard();
  for (const bool xml : {false, true}) {
    for (int at = 0;; ++at) {
      iFolder.Write(u"out"_s, "old");
      FaultInjection faults(FaultInjection::EAct::Fail, at);
      const auto work = [&] {
        static_cast<void>(xml ? CVelumExports::ExportXml(*iStack, iPath)
                              : CVelumExports::ExportCsv(iPath, *iFirst));
      };
      const qint32 raised = Raised(work);
      if (!faults.Hit()) {
        EXPECT_EQ(raised, -1);
        EXPECT_GT(at, 4) << "open, write, sync, rename at least";
        break;
      }
      const QByteArray now = iFolder.Read(u"out"_s);
      // Only the sync of the folder comes when the new file is in place.
      if (now != "old") {
        EXPECT_TRUE(now.endsWith("\r\n")) << at;
      }
    }
  }
}

TEST_F(CVelumExportsTest, ItCanBeGivenUp) {
  for (int i = 0; i < 600; ++i) AddCard(iFirst, QString::number(i));
  iFolder.Write(u"out"_s, "old");
  qint64 done = 0;
  qint64 total = 0;
  const TVelumStep stop = [&](qint64 aDone, qint64 aTotal) {
    done = aDone;
    total = aTotal;
    return false;
  };
  EXPECT_FALSE(CVelumExports::ExportCsv(iPath, *iFirst, {}, stop));
  EXPECT_EQ(done, 500);
  EXPECT_EQ(total, 600);
  EXPECT_FALSE(CVelumExports::ExportXml(*iStack, iPath, stop));
  EXPECT_EQ(iFolder.Read(u"out"_s), QByteArray("old"));
  EXPECT_EQ(Files(), QStringList{u"out"_s});
  EXPECT_TRUE(CVelumExports::ExportXml(*iStack, iPath, [](qint64, qint64) { return true; }));
}

TEST_F(CVelumExportsTest, TheStackItselfIsNoTarget) {
  iFolder.Write(u"out"_s, "the stack");
  iStack->SetFilename(iPath);
  QFile::link(iPath, iFolder.Path(u"link"_s));
  for (const QString& name : {u"out"_s, u"link"_s}) {
    EXPECT_EQ(Raised([&] { CVelumExports::ExportXml(*iStack, iFolder.Path(name)); }), EHostPermissionDenied);
    EXPECT_EQ(Raised([&] { CVelumExports::ExportCsv(iFolder.Path(name), *iFirst); }), EHostPermissionDenied);
  }
  EXPECT_EQ(iFolder.Read(u"out"_s), QByteArray("the stack"));
}

TEST_F(CVelumExportsTest, ATextThatXmlCannotHoldIsRefused) {
  AddCard(iFirst, u"a"_s, u"x\x01y"_s);
  iFolder.Write(u"out"_s, "old");
  EXPECT_EQ(Raised([&] { CVelumExports::ExportXml(*iStack, iPath); }), EHostBadCall);
  EXPECT_EQ(iFolder.Read(u"out"_s), QByteArray("old"));
  EXPECT_EQ(Files(), QStringList{u"out"_s});
}

} // namespace
