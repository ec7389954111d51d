#include "cli/CliRun.h"

#include "core/CVelumMsg.h"
#include "persist/CVelumStackFile.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

class CVelumImportCsvCommand : public testing::Test {
protected:
  CVelumImportCsvCommand() {
    CVelumMsg::InitMessages();
    CVelumModel::Install();
  }
  [[nodiscard]] static TCliResult Run(const QStringList& aArguments) {
    return CliRun::Run(QStringList{u"import-csv"_s} + aArguments);
  }
  // What the card list shows of a stack file.
  [[nodiscard]] static QByteArray Cards(const QString& aPath) {
    return CliRun::Run({u"cards"_s, aPath}).iOut;
  }

  TempFolder iFolder;
  const QString iOut = iFolder.Path(u"out.Orvelle"_s);
};

TEST_F(CVelumImportCsvCommand, MakesAStack) {
  const QString csv = iFolder.Write(u"a.csv"_s, "Name,Size\nAnna,1.5\nBob,22.25\n");
  const TCliResult result = Run({csv, iOut});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_EQ(result.iErr, QByteArray());
  EXPECT_EQ(Cards(iOut), "Anna\tAnna\t1.5\nBob\tBob\t22.25\n");
  EXPECT_EQ(CliRun::Run({u"check"_s, iOut}).iOut, QByteArray());
}

TEST_F(CVelumImportCsvCommand, TakesWhatTheFirstLinesSuggest) {
  const QString csv = iFolder.Write(u"a.csv"_s, "Name;Size\nZo\xC3\xAB;1,5\n");
  EXPECT_EQ(Run({csv, iOut}).iStatus, 0);
  EXPECT_EQ(Cards(iOut), "Zo\xC3\xAB\tZo\xC3\xAB\t1.5\n");
}

TEST_F(CVelumImportCsvCommand, OptionsSayOtherwise) {
  const QString csv = iFolder.Write(u"a.csv"_s, "b|2\na|1\n");
  const TCliResult result = Run({csv, iOut, u"--delimiter"_s, u"|"_s, u"--coding"_s, u"latin1"_s,
                                 u"--no-header"_s, u"--no-types"_s, u"--no-key"_s, u"--no-card-name"_s});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  EXPECT_EQ(Cards(iOut), "1\tb\t2\n2\ta\t1\n");
  const QByteArray facts = CliRun::Run({u"info"_s, iOut}).iOut;
  EXPECT_TRUE(facts.contains("Field 2")) << facts.toStdString();
  EXPECT_FALSE(facts.contains("Integer")) << facts.toStdString();
}

TEST_F(CVelumImportCsvCommand, FillsABackground) {
  EXPECT_EQ(Run({iFolder.Write(u"a.csv"_s, "Name\nAnna\nBob\n"), iOut}).iStatus, 0);
  const QString csv = iFolder.Write(u"b.csv"_s, "Name\nCyd\n");
  const QString other = iFolder.Path(u"other.Orvelle"_s);
  EXPECT_EQ(Run({csv, other, u"--into"_s, iOut, u"--background"_s, u"First Background"_s}).iStatus, 0);
  EXPECT_EQ(Cards(other), "Cyd\tCyd\n");
  EXPECT_EQ(Cards(iOut), "Anna\tAnna\nBob\tBob\n");
  EXPECT_EQ(CliRun::Run({u"check"_s, other}).iOut, QByteArray());
}

TEST_F(CVelumImportCsvCommand, CountsTheLinesThatLoseItems) {
  QByteArray line("0");
  for (int i = 1; i <= 20; ++i) line += "," + QByteArray::number(i);
  const TCliResult result = Run({iFolder.Write(u"a.csv"_s, line + "\n" + line + "\n"), iOut});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_EQ(result.iErr.count("EMsgTooManyItems"), 1);
  EXPECT_TRUE(result.iErr.contains("(lines: 2)")) << result.iErr.toStdString();
}

TEST_F(CVelumImportCsvCommand, TellsOfACellThatIsNeverClosed) {
  const TCliResult result = Run({iFolder.Write(u"a.csv"_s, "a,b\n1,2\n3,\"4\n5,6\n"), iOut});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_TRUE(result.iErr.contains("line 3 is never closed")) << result.iErr.toStdString();
}

TEST_F(CVelumImportCsvCommand, FailuresWriteNothing) {
  const QString good = iFolder.Write(u"good.csv"_s, "a\n1\n");
  const QString endless = iFolder.Write(u"endless.csv"_s, "a\n");
  ASSERT_TRUE(QFile::resize(endless, qint64{1} << 31)); // takes no room on the disk
  const QString sample = CliRun::Sample();
  struct TCase {
    QStringList iArguments;
    int iStatus;
    const char* iMessage;
  };
  const TCase cases[] = {
      {{iFolder.Write(u"empty.csv"_s, ""), iOut}, 1, "EMsgEmptyFile"},
      {{iFolder.Path(u"none.csv"_s), iOut}, 1, "EMsgFileNotFound"},
      {{iFolder.Path(), iOut}, 1, "EMsgNoFileAccess"},
      {{u"/dev/zero"_s, iOut}, 1, "a pipe or a device"},
      {{endless, iOut}, 1, "line 2"},
      {{iFolder.Write(u"long.csv"_s, "a\n" + QByteArray(40000, 'x') + "\n"), iOut}, 1, "line 2"},
      {{good, iOut, u"--delimiter"_s, u" "_s}, 2, "no delimiter"},
      {{good, iOut, u"--delimiter"_s, u"::"_s}, 2, "no delimiter"},
      {{good, iOut, u"--coding"_s, u"ebcdic"_s}, 2, "no coding"},
      {{good, iOut, u"--into"_s, sample}, 2, "belong together"},
      {{good, iOut, u"--into"_s, sample, u"--background"_s, u"None"_s}, 1, "EMsgBackgroundNotFound"},
  };
  for (const TCase& each : cases) {
    const TCliResult result = Run(each.iArguments);
    EXPECT_EQ(result.iStatus, each.iStatus) << each.iMessage;
    EXPECT_TRUE(result.iErr.contains(each.iMessage)) << result.iErr.toStdString();
    EXPECT_FALSE(iFolder.Has(u"out.Orvelle"_s)) << each.iMessage;
  }
}

} // namespace
