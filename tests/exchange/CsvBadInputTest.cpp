// What files get that nobody should have written, in both ways, on their way into a background with cards.
#include "CsvImportTest.h"

#include "persist/CVelumStackCheck.h"
#include "support/Raised.h"

#include <QFile>
#include <random>

namespace {

class CsvBadInputTest : public CsvImportTest {
protected:
  CsvBadInputTest() {
    EXPECT_EQ(Import("a,b\n1,x\n2,y\n"), ECsvOutcome::Done);
    iBefore = Cards();
  }
  ECsvOutcome FillClassic(const QByteArray& aBytes) {
    CVelumPlainStackHost host(iNew.iStack);
    iTold = {};
    return CVelumImports::ImportCsv1(iFolder.Write(u"a.csv"_s, aBytes), iOptions, iWatch, Set(), host,
                                     &iTold);
  }
  void ExpectUntouched(const char* aWhat) {
    EXPECT_EQ(Cards(), iBefore) << aWhat;
    EXPECT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty()) << aWhat;
  }
  // Cards that are as they were, and a stop at a place.
  void ExpectStop(const char* aWhat, const QByteArray& aBytes, const QString& aPlace) {
    EXPECT_EQ(Fill(aBytes), ECsvOutcome::Faulty) << aWhat;
    EXPECT_TRUE(Faults().join(u'\n').contains(aPlace)) << aWhat << ": " << Faults().join(u'\n').toStdString();
    ExpectUntouched(aWhat);
  }

  QStringList iBefore;
  TCsvOptions iOptions;
  TCsvReport iTold;
};

TEST_F(CsvBadInputTest, BinaryJunk) {
  std::mt19937 random(3);
  QByteArray junk("a,b\n");
  for (int i = 0; i < 20000; ++i) junk += static_cast<char>(random());
  ExpectStop("junk", junk, u"line "_s);
  iOptions.iTryCardName = false;
  try {
    if (FillClassic(junk) != ECsvOutcome::Done) ExpectUntouched("junk, the older rules");
  } catch (const CVelumException&) {
    ExpectUntouched("junk, the older rules");
  }
  EXPECT_TRUE(CVelumStackCheck(*iNew.iStack).Run().isEmpty());
}

TEST_F(CsvBadInputTest, ZeroBytes) {
  ExpectStop("zero", QByteArray("a,b\n1,x\0y\n", 10), u"line 2, column 2: a zero byte"_s);
  ExpectStop("only zeros", QByteArray("a,b\n") + QByteArray(1 << 20, '\0'), u"line 2, column 1: "_s);
  ASSERT_EQ(FillClassic(QByteArray("a,b\n1,x\0y\n", 10)), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"1|1|x"_s + QChar(0) + u"y"_s})) << "a character of its cell";
}

TEST_F(CsvBadInputTest, ALineBeyondAllMeasure) {
  const QByteArray line = "a,b\n1,\"" + QByteArray(40 << 20, 'x') + "\"\n";
  ExpectStop("a long cell", line, u"line 2, column 2: a cell of more than 15,000 characters"_s);
  EXPECT_EQ(Raised([&] { static_cast<void>(FillClassic(line)); }), EHostOverflow);
  EXPECT_TRUE(CVelumError::GetErrorRecord().iSysDescr.contains(u"line 2"_s));
  ExpectUntouched("a long line");
  ExpectStop("a long line of cells", "a,b\n1" + QByteArray(4 << 20, ',') + "\n",
             u"line 2, column 3: more cells than columns; 4,194,303 cells left out"_s);
}

TEST_F(CsvBadInputTest, MixedEncodings) {
  ASSERT_EQ(Fill("a,b\n3,\xC3\xA9\n4,\xE9\n"), ECsvOutcome::Done);
  EXPECT_TRUE(Report().contains(u"line 3: bytes that are not UTF-8"_s)) << Report().toStdString();
  EXPECT_EQ(Cards(), QStringList({u"3|3|\u00C3\u00A9"_s, u"4|4|\u00E9"_s}));
  iBefore = Cards();
  ExpectStop("UTF-16 that breaks off", QByteArray("\xFF\xFE\x61\0,\0b\0\n\0\x31\0,\0\0\xD8\n\0", 18),
             u"line 2: bytes that the encoding does not have"_s);
  ASSERT_EQ(FillClassic("a,b\n5,\xC3\xA9\n6,\xE9\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"5|5|\u00C3\u00A9"_s, u"6|6|\u00E9"_s}));
}

TEST_F(CsvBadInputTest, RecordsThatEndWithCarriageReturns) {
  ASSERT_EQ(Fill("a,b\r3,z\r4,\"u\rv\"\r"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"3|3|z"_s, u"4|4|u\rv"_s}));
  ASSERT_EQ(FillClassic("a,b\r5,z\r6,v\r"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"5|5|z"_s, u"6|6|v"_s}));
}

TEST_F(CsvBadInputTest, ColumnsBeyondTheLimits) {
  QByteArray header;
  for (int i = 0; i < 10001; ++i) header += (i > 0 ? ",c" : "c") + QByteArray::number(i);
  ExpectStop("columns", header + "\n1\n", u"line 1, column 1001: more than 1,000 columns"_s);
  EXPECT_TRUE(Faults().join(u'\n').contains(u"9,001 cells beyond column 1,000 left out"_s))
      << Faults().join(u'\n').toStdString();
  ASSERT_EQ(FillClassic("a,b" + QByteArray(",c").repeated(20) + "\n5,z\n"), ECsvOutcome::Done);
  EXPECT_EQ(iPresenter.CountOf(EMsgTooManyItems), 1) << "more than 20";
  EXPECT_EQ(Raised([&] { static_cast<void>(FillClassic(header + "\n1\n")); }), EHostOverflow)
      << "a line may not be that long";
  EXPECT_EQ(Cards(), QStringList({u"5|5|z"_s}));
}

TEST_F(CsvBadInputTest, AQuoteInTheMiddleOfACell) {
  ExpectStop("a quote", "a,b\n3,x\"y\n", u"line 2, column 2: a quote in the middle of a cell: x\"y"_s);
  ASSERT_EQ(FillClassic("a,b\n3,x\"y\n"), ECsvOutcome::Done);
  EXPECT_EQ(Cards(), QStringList({u"3|3|x\"y"_s}));
}

TEST_F(CsvBadInputTest, AnEmptyFile) {
  EXPECT_EQ(Fill(""), ECsvOutcome::Empty);
  ExpectUntouched("empty");
  EXPECT_EQ(FillClassic(""), ECsvOutcome::Empty);
  ExpectUntouched("empty, the older rules");
  EXPECT_EQ(iPresenter.CountOf(EMsgEmptyFile), 2);
}

// Cuts a file short as soon as a part of it has been read.
class CCuts final : public CVelumImportWatch {
public:
  explicit CCuts(QString aPath) : iPath(std::move(aPath)) {}
  [[nodiscard]] bool Progress(int) override {
    if (std::exchange(iDone, true)) return true;
    EXPECT_TRUE(QFile::resize(iPath, QFile(iPath).size() / 2));
    return true;
  }

private:
  QString iPath;
  bool iDone = false;
};

TEST_F(CsvBadInputTest, AFileThatShrinksWhileItIsRead) {
  const QByteArray bytes = "a,b\n" + QByteArray("3,z\n").repeated(4 << 20);
  const QString path = iFolder.Write(u"a.csv"_s, bytes);
  CVelumPlainStackHost host(iNew.iStack);
  CCuts exact(path);
  EXPECT_EQ(Raised([&] { static_cast<void>(Run(bytes, Set()).Into(exact, host)); }), EHostDeviceIo);
  EXPECT_TRUE(CVelumError::GetErrorRecord().iSysDescr.contains(u"line "_s));
  ExpectUntouched("shorter");
  iFolder.Write(u"a.csv"_s, bytes);
  CCuts classic(path);
  EXPECT_EQ(Raised([&] {
              static_cast<void>(CVelumImports::ImportCsv1(path, iOptions, classic, Set(), host, &iTold));
            }),
            EHostDeviceIo);
  EXPECT_TRUE(CVelumError::GetErrorRecord().iSysDescr.contains(u"has changed while it was read"_s));
  ExpectUntouched("shorter, the older rules");
}

} // namespace
