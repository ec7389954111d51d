#include "exchange/CVelumCsvRows.h"

#include "core/text/CVelumScanner.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <random>

namespace {

using TTable = QList<QStringList>;

// Notes what it hears, and cancels at the aCancelAt-th report of the progress (from 1; 0: never).
class CNotingWatch final : public CVelumImportWatch {
public:
  explicit CNotingWatch(int aCancelAt = 0) : iCancelAt(aCancelAt) {}
  void Message(qint32 aMsg, const QString&) override { iMessages.append(aMsg); }
  [[nodiscard]] bool Progress(int aDone) override {
    iDone.append(aDone);
    return iDone.size() != iCancelAt;
  }

  QList<qint32> iMessages;
  QList<int> iDone;

private:
  int iCancelAt;
};

TTable TableOf(const CVelumCsvRows& aRows) {
  TTable table;
  for (qint32 row = 0; row < aRows.NumRows(); ++row) {
    QStringList items;
    for (int i = 0; i < aRows.NumItems(row); ++i) items.append(aRows.Item(row, i).toString());
    table.append(items);
  }
  return table;
}

// The same by the scanner, cell by cell.
TTable ScannedTable(const QString& aPath, QChar aDelim, int& aTooMany) {
  CVelumFile file(aPath, EFilSeqRead);
  file.OpenFile();
  CVelumScanner scanner;
  scanner.SetCsvDelim(QString(aDelim));
  TTable table;
  QString line;
  while (file.ReadLine(line)) {
    scanner.SetLine(line);
    QStringList items;
    qint32 sym = ESymString;
    QString item;
    for (;;) {
      scanner.GetCsvSym(file, sym, item);
      if (sym != ESymString) break;
      if (items.size() == 20) {
        ++aTooMany;
        break;
      }
      items.append(item);
    }
    if (sym == ESymEof) break;
    table.append(items);
  }
  return table;
}

class CVelumCsvRowsTest : public testing::Test {
protected:
  CVelumCsvRowsTest() { CVelumMsg::InitMessages(); }

  [[nodiscard]] bool Read(CVelumCsvRows& aRows, CVelumImportWatch& aWatch,
                          qint32 aCoding = ECodLatin1) const {
    CVelumFile file(iPath, EFilSeqRead);
    file.SetCoding(aCoding);
    file.OpenFile();
    return aRows.Read(file, iSize, 100, aWatch);
  }
  void Write(const QByteArray& aBytes) {
    iSize = aBytes.size();
    iFolder.Write(u"a.csv"_s, aBytes);
  }
  TTable Table(const QByteArray& aBytes, QChar aDelim = u',', qint32 aCoding = ECodLatin1) {
    Write(aBytes);
    CVelumCsvRows rows(aDelim);
    EXPECT_TRUE(Read(rows, iWatch, aCoding));
    return TableOf(rows);
  }
  // Number and text of the failure.
  std::pair<qint32, QString> Failure(const QByteArray& aBytes, qint32 aCoding = ECodLatin1) {
    Write(aBytes);
    CVelumCsvRows rows(u',');
    try {
      static_cast<void>(Read(rows, iWatch, aCoding));
    } catch (const CVelumException& e) {
      return {e.Number(), e.Descr()};
    }
    return {};
  }

  TempFolder iFolder;
  const QString iPath = iFolder.Path(u"a.csv"_s);
  qint64 iSize = 0;
  CNotingWatch iWatch;
};

TEST_F(CVelumCsvRowsTest, CutsCells) {
  EXPECT_EQ(Table("a, b ,\"c\"\r\n"), TTable({{u"a"_s, u"b "_s, u"c"_s}}));
  EXPECT_EQ(Table("a;b,c\n\n;x\n", u';'), TTable({{u"a"_s, u"b,c"_s}, {}, {u""_s, u"x"_s}}));
  EXPECT_EQ(Table("a\tb c\t\n", u'\t'), TTable({{u"a"_s, u"b c"_s}})) << "no cell behind the last delimiter";
  EXPECT_EQ(Table("a,  \n"), TTable({{u"a"_s}}));
}

TEST_F(CVelumCsvRowsTest, QuotedCellsHoldDelimitersAndLineEnds) {
  EXPECT_EQ(Table("\"a,b\",\"x\"\"y\"\n"), TTable({{u"a,b"_s, u"x\"\"y"_s}}))
      << "doubled quotes stay doubled";
  EXPECT_EQ(Table("\"a\nb\",c\nd\n"), TTable({{u"a\r\nb"_s, u"c"_s}, {u"d"_s}}));
  EXPECT_EQ(Table("\"a\n\"b\",c\n"), TTable({{u"a\r\n\"b"_s, u"c"_s}})) << "a quote in front closes nothing";
  EXPECT_EQ(Table("\"a\n\nb\",c\n"), TTable({{u"a\r\n\r\nb"_s, u"c"_s}}));
  EXPECT_EQ(Table("\"a\"b,c\n"), TTable({{u"a"_s, u"b"_s, u"c"_s}})) << "what follows a quote is a cell";
  EXPECT_EQ(Table("\"a\",   b\n"), TTable({{u"a"_s, u"b"_s}}));
}

TEST_F(CVelumCsvRowsTest, LineFeedsInCellsOfAFileWithOtherEndsStay) {
  EXPECT_EQ(Table("\"x\"\r\n\"a\nb\",c\r\n"), TTable({{u"x"_s}, {u"a\nb"_s, u"c"_s}}));
}

TEST_F(CVelumCsvRowsTest, TwentyItemsAreTaken) {
  QByteArray line("0");
  for (int i = 1; i < 20; ++i) line += "," + QByteArray::number(i);
  EXPECT_EQ(Table(line + "\n").value(0).size(), 20);
  EXPECT_TRUE(iWatch.iMessages.isEmpty());
  EXPECT_EQ(Table(line + ",20,21\n" + line + ",\"20\n20\"\n" + "x\n"),
            TTable({QString::fromLatin1(line).split(u','), QString::fromLatin1(line).split(u','), {u"x"_s}}));
  EXPECT_EQ(iWatch.iMessages, QList<qint32>({EMsgTooManyItems, EMsgTooManyItems})) << "once a line";
}

TEST_F(CVelumCsvRowsTest, TenThousandColumnsGiveOneMessage) {
  EXPECT_EQ(Table(QByteArray("1,").repeated(10000) + "\n").value(0).size(), 20);
  EXPECT_EQ(iWatch.iMessages.size(), 1);
}

TEST_F(CVelumCsvRowsTest, AnUnclosedCellEndsTheTable) {
  EXPECT_EQ(Table("a\nb,\"c\nd\ne\n"), TTable({{u"a"_s}}));
  CVelumCsvRows rows(u',');
  EXPECT_TRUE(Read(rows, iWatch));
  EXPECT_EQ(rows.UnclosedLine(), 2);
  EXPECT_EQ(rows.UnclosedItem(), 2);
  EXPECT_EQ(Table("\"" + QByteArray("line\n").repeated(50000)), TTable());
}

TEST_F(CVelumCsvRowsTest, AnEmptyFileHasNoLine) {
  Write("");
  CVelumCsvRows rows(u',');
  EXPECT_TRUE(Read(rows, iWatch));
  EXPECT_TRUE(rows.IsEmpty());
  Write("\n");
  EXPECT_TRUE(Read(rows, iWatch));
  EXPECT_FALSE(rows.IsEmpty());
  EXPECT_EQ(rows.NumRows(), 1);
}

TEST_F(CVelumCsvRowsTest, LongLinesAndItemsAreRefusedWithTheirLine) {
  EXPECT_EQ(Failure("a\n\"" + QByteArray(15000, 'x') + "\"\n").first, 0);
  const auto item = Failure("a\nb\nc,\"" + QByteArray(15001, 'x') + "\"\n");
  EXPECT_EQ(item.first, EHostOverflow);
  EXPECT_TRUE(item.second.contains(u"line 3, item 2")) << item.second.toStdString();
  EXPECT_EQ(Failure(QByteArray("x,").repeated(16383) + "\n").first, 0) << "32,766 characters";
  const auto line = Failure("a\n" + QByteArray("x,").repeated(16383) + "x\n");
  EXPECT_EQ(line.first, EHostOverflow);
  EXPECT_TRUE(line.second.contains(u"line 2")) << line.second.toStdString();
  const auto cell = Failure("a,b\n1,\"" + QByteArray(40000, 'x') + "\"\n");
  EXPECT_EQ(cell.first, EHostOverflow);
  EXPECT_TRUE(cell.second.contains(u"line 2")) << cell.second.toStdString();
  // Characters count, not bytes.
  EXPECT_EQ(Failure(QByteArray("\xC3\xA4,").repeated(16383) + "\n", ECodUtf8).first, 0);
}

TEST_F(CVelumCsvRowsTest, ALineBeyondAllMeasureIsRefusedBeforeItIsRead) {
  QFile file(iPath);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("a\n");
  ASSERT_TRUE(file.resize(qint64{2} << 30)); // takes no room on the disk
  file.close();
  iSize = file.size();
  CVelumCsvRows rows(u',');
  try {
    static_cast<void>(Read(rows, iWatch));
    FAIL();
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostOutOfMemory);
    EXPECT_TRUE(e.Descr().contains(u"line 2")) << e.what();
  }
}

TEST_F(CVelumCsvRowsTest, ReadsWhateverItIsGiven) {
  EXPECT_EQ(Table("a,b\rc,d\r"), TTable({{u"a"_s, u"b"_s}, {u"c"_s, u"d"_s}}));
  EXPECT_EQ(Table(QByteArray("a\0b,c\n", 6)), TTable({{u"a\0b"_s, u"c"_s}}));
  EXPECT_EQ(Table("\xFF\xFE"
                  "a\n"),
            TTable({{u"\u00FF\u00FE"
                     "a"_s}}));
  EXPECT_EQ(Table("a\1b,c\n\"d\1e\nf\",g\n"), TTable({{u"a"_s}, {u"d\r\nf"_s, u"g"_s}}))
      << "the end marker ends a line";
  EXPECT_EQ(Table("\"a\n\1b\",c\n"), TTable({{u"a\r\n\u0001b"_s, u"c"_s}}))
      << "but not as the first character of one on which a cell goes on";
  EXPECT_EQ(Table("\xEF\xBB\xBF\xC3\xA9\n"), TTable({{u"\u00E9"_s}})) << "the mark decides the coding";
}

TEST_F(CVelumCsvRowsTest, CancelStopsTheReading) {
  Write(QByteArray("a,b\n").repeated(10000));
  CNotingWatch cancelling(2);
  CVelumCsvRows rows(u',');
  EXPECT_FALSE(Read(rows, cancelling));
  EXPECT_EQ(cancelling.iDone.size(), 2);
  EXPECT_LT(rows.NumRows(), 10000);
  CVelumCsvRows all(u',');
  EXPECT_TRUE(Read(all, iWatch));
  EXPECT_EQ(all.NumRows(), 10000);
  EXPECT_TRUE(std::is_sorted(iWatch.iDone.begin(), iWatch.iDone.end()));
  EXPECT_LE(iWatch.iDone.last(), 100);
}

TEST_F(CVelumCsvRowsTest, AgreesWithTheScannerOnAnything) {
  std::mt19937 random(7);
  const QByteArray alphabet("ab ,,,;\"\"\"\n\n\r\1\t.");
  for (int round = 0; round < 400; ++round) {
    QByteArray text;
    const int len = static_cast<int>(random() % 60);
    for (int i = 0; i < len; ++i)
      text += alphabet.at(static_cast<qsizetype>(random() % size_t(alphabet.size())));
    if (round % 7 == 0) text.prepend(QByteArray("x,").repeated(18));
    iWatch.iMessages.clear();
    const TTable table = Table(text);
    int tooMany = 0;
    EXPECT_EQ(table, ScannedTable(iPath, u',', tooMany)) << text.toPercentEncoding().toStdString();
    EXPECT_EQ(iWatch.iMessages.size(), tooMany) << text.toPercentEncoding().toStdString();
  }
}

TEST_F(CVelumCsvRowsTest, BinaryJunkAgreesWithTheScannerToo) {
  std::mt19937 random(11);
  for (int round = 0; round < 50; ++round) {
    QByteArray junk(5000, '\0');
    for (char& c : junk) c = static_cast<char>(random());
    const TTable table = Table(junk);
    int tooMany = 0;
    EXPECT_EQ(table, ScannedTable(iPath, u',', tooMany)) << round;
  }
}

} // namespace
