#include "cli/CliRun.h"

#include "core/CVelumMsg.h"
#include "persist/CVelumStackFile.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
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
  EXPECT_EQ(result.iOut, iOut.toUtf8() + ": 2 cards; UTF-8, comma, with a header line\n"
                                         "  2 columns: Name Text; Size Real\n"
                                         "  cards are named by Name\n"
                                         "  sorted by Name: keep sorted?\n");
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

// The bytes of a file that a call must leave as they are.
TEST_F(CVelumImportCsvCommand, ReplacesNothingThatWasNotMeant) {
  const QString csv = iFolder.Write(u"a.csv"_s, "a\n1\n");
  const QString link = iFolder.Path(u"link.csv"_s);
  const QString text = iFolder.Write(u"notes.txt"_s, "Orvelle is the name\n");
  ASSERT_TRUE(QFile::link(csv, link));
  ASSERT_EQ(Run({csv, iOut}).iStatus, 0);
  const QByteArray stack = iFolder.Read(u"out.Orvelle"_s);
  const struct {
    QStringList iArguments;
    const char* iMessage;
  } cases[] = {
      {{csv, csv}, "is the file that is read"},
      {{csv, csv, u"--overwrite"_s}, "is the file that is read"},
      {{csv, link, u"--overwrite"_s}, "is the file that is read"},
      {{csv, text, u"--overwrite"_s}, "is no stack"},
      {{csv, iOut}, "--overwrite replaces it"},
      {{iOut, csv}, "is a stack"},
      {{iOut, csv, u"--overwrite"_s}, "is a stack"},
      {{csv, iOut, u"--into"_s, CliRun::Sample(), u"--background"_s, u"Country"_s}, "--overwrite"},
  };
  for (const auto& each : cases) {
    const TCliResult result = Run(each.iArguments);
    EXPECT_EQ(result.iStatus, 1) << each.iMessage;
    EXPECT_TRUE(result.iErr.contains(each.iMessage)) << result.iErr.toStdString();
    EXPECT_EQ(iFolder.Read(u"a.csv"_s), QByteArray("a\n1\n")) << each.iMessage;
    EXPECT_EQ(iFolder.Read(u"notes.txt"_s), QByteArray("Orvelle is the name\n")) << each.iMessage;
    EXPECT_EQ(iFolder.Read(u"out.Orvelle"_s), stack) << each.iMessage;
  }
}

TEST_F(CVelumImportCsvCommand, ReplacesAStackWhenAsked) {
  ASSERT_EQ(Run({iFolder.Write(u"a.csv"_s, "a\nold\n"), iOut}).iStatus, 0);
  const TCliResult result = Run({iFolder.Write(u"b.csv"_s, "a\nnew\n"), iOut, u"--overwrite"_s});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  EXPECT_EQ(Cards(iOut), "new\tnew\n");
}

TEST_F(CVelumImportCsvCommand, AStackThatIsFilledNeedsNoOtherName) {
  ASSERT_EQ(Run({iFolder.Write(u"a.csv"_s, "Name\nAnna\n"), iOut}).iStatus, 0);
  const QString csv = iFolder.Write(u"b.csv"_s, "Name\nCyd\n");
  const TCliResult result = Run({csv, u"--into"_s, iOut});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  EXPECT_EQ(Cards(iOut), "Cyd\tCyd\n");
  EXPECT_EQ(Run({iFolder.Write(u"c.csv"_s, "Name\nDora\n"), iOut, u"--into"_s, iOut}).iStatus, 0);
  EXPECT_EQ(Cards(iOut), "Dora\tDora\n");
}

// The field of the background decides, not what the column looks like.
TEST_F(CVelumImportCsvCommand, NumbersGoIntoFieldsOfTexts) {
  ASSERT_EQ(Run({iFolder.Write(u"a.csv"_s, "n,v\nx,text\n"), iOut}).iStatus, 0);
  const TCliResult result = Run({iFolder.Write(u"b.csv"_s, "n,v\nx,5\ny,006\n"), u"--into"_s, iOut});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  EXPECT_EQ(Cards(iOut), "x\tx\t5\ny\ty\t006\n");
}

TEST_F(CVelumImportCsvCommand, EqualColumnNamesGetNumbers) {
  const QString csv = iFolder.Write(u"a.csv"_s, "n,a,a,a 2,,\"\"\nx,1,2,3,4,5\n");
  const TCliResult result = Run({csv, iOut, u"--no-types"_s});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_TRUE(result.iOut.contains("n Text; a Text; a 3 Text; a 2 Text; Field 5 Text; Field 6 Text"))
      << result.iOut.toStdString();
}

TEST_F(CVelumImportCsvCommand, TellsWhatItMadeAsJson) {
  const QString csv = iFolder.Write(u"a.csv"_s, "Name,Size\nAnna,1.5\nBob,22.25\n");
  const TCliResult result = Run({csv, iOut, u"--json"_s, u"--keep-sorted"_s});
  EXPECT_EQ(result.iStatus, 0);
  const QJsonObject facts = QJsonDocument::fromJson(result.iOut).object();
  EXPECT_EQ(facts.value(u"file"_s).toString(), csv);
  EXPECT_EQ(facts.value(u"stack"_s).toString(), iOut);
  const QJsonObject made = facts.value(u"backgrounds"_s).toArray().at(0).toObject();
  EXPECT_EQ(made.value(u"name"_s).toString(), u"First Background"_s);
  EXPECT_EQ(made.value(u"cards"_s).toInt(), 2);
  EXPECT_EQ(made.value(u"cardName"_s).toString(), u"Name"_s);
  EXPECT_EQ(made.value(u"sortedBy"_s).toArray(), QJsonArray{u"Name"_s});
  const QJsonObject size = made.value(u"fields"_s).toArray().at(1).toObject();
  EXPECT_EQ(size, (QJsonObject{{u"name"_s, u"Size"_s}, {u"type"_s, u"Real"_s}}));
  const QJsonObject report = facts.value(u"report"_s).toObject();
  EXPECT_EQ(report.value(u"records"_s).toInt(), 2);
  EXPECT_EQ(report.value(u"columns"_s).toArray().size(), 2);
}

TEST_F(CVelumImportCsvCommand, ReadsStandardInput) {
  const TCliResult result =
      CliRun::RunFed("Name,Size\nAnna,1\n", {u"import-csv"_s, u"-"_s, iOut, u"--json"_s});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  EXPECT_TRUE(result.iOut.contains("\"standard input\"")) << result.iOut.toStdString();
  EXPECT_EQ(Cards(iOut), "Anna\tAnna\t1\n");
  EXPECT_TRUE(CliRun::Run({u"info"_s, iOut}).iOut.contains("standard input"));
}

TEST_F(CVelumImportCsvCommand, FailuresOfAStreamNameIt) {
  const TCliResult empty = CliRun::RunFed({}, {u"import-csv"_s, u"-"_s, iOut});
  EXPECT_EQ(empty.iStatus, 1);
  EXPECT_TRUE(empty.iErr.contains("EMsgEmptyFile"));
  const TCliResult wide =
      CliRun::RunFed("a\n" + QByteArray(40000, 'x') + "\n", {u"import-csv"_s, u"-"_s, iOut});
  EXPECT_EQ(wide.iStatus, 1);
  EXPECT_TRUE(wide.iErr.contains("standard input, line 2, column 1: a cell of more than"))
      << wide.iErr.toStdString();
  const TCliResult device = CliRun::RunProgram(
      u"sh"_s, {u"-c"_s, u"\"$0\" \"$@\" < /dev/zero"_s, CliRun::Program(), u"import-csv"_s, u"-"_s, iOut});
  EXPECT_EQ(device.iStatus, 1);
  EXPECT_TRUE(device.iErr.contains("is a device")) << device.iErr.toStdString();
  EXPECT_FALSE(iFolder.Has(u"out.Orvelle"_s));
}

TEST_F(CVelumImportCsvCommand, AStackThatComesInAStreamIsRefusedToo) {
  QFile file(CliRun::Sample());
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  for (const QStringList& way : {QStringList{}, {u"--classic"_s}, {u"--drop"_s}}) {
    const TCliResult fed = CliRun::RunFed(file.readAll(), QStringList{u"import-csv"_s, u"-"_s, iOut} + way);
    EXPECT_EQ(fed.iStatus, 1);
    EXPECT_TRUE(fed.iErr.contains("standard input is a stack")) << fed.iErr.toStdString();
    EXPECT_FALSE(iFolder.Has(u"out.Orvelle"_s));
    ASSERT_TRUE(file.seek(0));
  }
}

TEST_F(CVelumImportCsvCommand, ReadsAPipeAndWritesToStandardOutput) {
  const QString csv = iFolder.Write(u"a.csv"_s, "Name\nAnna\n");
  const TCliResult result = CliRun::RunProgram(u"env"_s, {u"LC_ALL=C"_s, u"bash"_s, u"-c"_s,
                                                          u"\"$0\" import-csv <(cat \"$1\") - > \"$2\""_s,
                                                          CliRun::Program(), csv, iOut});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_TRUE(result.iErr.startsWith("orvelles-cli: -: 1 card; UTF-8")) << result.iErr.toStdString();
  EXPECT_EQ(Cards(iOut), "Anna\tAnna\n");
}

TEST_F(CVelumImportCsvCommand, LooksAtTheWholeFileForItsCoding) {
  const QByteArray plain = "a,b\n" + QByteArray("x1,y\n").repeated(300000);
  ASSERT_EQ(Run({iFolder.Write(u"a.csv"_s, plain + "Pi\xC3\xA7"
                                                   "arra,z\n"),
                 iOut, u"--no-key"_s})
                .iStatus,
            0);
  EXPECT_TRUE(Cards(iOut).endsWith("\tPi\xC3\xA7"
                                   "arra\tz\n"));
  const QString mixed = iFolder.Write(u"b.csv"_s, "a,b\nPi\xC3\xA7"
                                                  "arra,z\n" +
                                                      plain + "\xE9,z\n");
  ASSERT_EQ(Run({mixed, iOut, u"--no-key"_s, u"--overwrite"_s}).iStatus, 0);
  EXPECT_TRUE(Cards(iOut).endsWith("\t\xC3\xA9\tz\n")) << "one byte that is none of UTF-8";
}

TEST_F(CVelumImportCsvCommand, CountsTheLinesThatLoseItems) {
  QByteArray line("0");
  for (int i = 1; i <= 20; ++i) line += "," + QByteArray::number(i);
  const TCliResult result = Run({iFolder.Write(u"a.csv"_s, line + "\n" + line + "\n"), iOut, u"--classic"_s});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_EQ(result.iErr.count("EMsgTooManyItems"), 1);
  EXPECT_TRUE(result.iErr.contains("(lines: 2) Line 1, item 21: '20'\n")) << result.iErr.toStdString();
}

TEST_F(CVelumImportCsvCommand, TellsOfACellThatIsNeverClosed) {
  const QString csv = iFolder.Write(u"a.csv"_s, "a,b\n1,2\n3,\"4\n5,6\n");
  const TCliResult result = Run({csv, iOut, u"--classic"_s});
  EXPECT_EQ(result.iStatus, 0);
  EXPECT_TRUE(result.iErr.contains("line 3 is never closed")) << result.iErr.toStdString();
  EXPECT_EQ(Cards(iOut), "1\t1\t2\n");
  const TCliResult into = Run({csv, u"--classic"_s, u"--into"_s, iOut});
  EXPECT_EQ(into.iStatus, 1) << "cards would go";
  EXPECT_TRUE(into.iErr.contains("line 3, column 2: a quote that is never closed"));
  EXPECT_EQ(Run({csv, u"--classic"_s, u"--into"_s, iOut, u"--drop"_s}).iStatus, 0);
}

TEST_F(CVelumImportCsvCommand, StopsAtWhatCannotComeInWhole) {
  const QString csv = iFolder.Write(u"a.csv"_s, "a,b\n1,2\n3,4,5\n");
  const TCliResult stopped = Run({csv, iOut});
  EXPECT_EQ(stopped.iStatus, 1);
  EXPECT_TRUE(
      stopped.iErr.contains(csv.toUtf8() + ", line 3, column 3: more cells than columns; 1 cell left out"))
      << stopped.iErr.toStdString();
  EXPECT_FALSE(iFolder.Has(u"out.Orvelle"_s));
  const TCliResult dropped = Run({csv, iOut, u"--drop"_s});
  EXPECT_EQ(dropped.iStatus, 0);
  EXPECT_TRUE(dropped.iOut.contains("line 3, column 3: more cells than columns; 1 cell left out"));
  EXPECT_EQ(Cards(iOut), "1\t1\t2\n3\t3\t4\n");
  EXPECT_EQ(CliRun::Run({u"--yes"_s, u"import-csv"_s, csv, iFolder.Path(u"b.Orvelle"_s)}).iStatus, 1)
      << "a yes to all questions drops nothing";
}

TEST_F(CVelumImportCsvCommand, ChangesNothingUnlessAskedTo) {
  const QString csv = iFolder.Write(u"a.csv"_s, "skip me\nzip;d;note\n01234;16/07/2010;\" a \n\"\n02345;;\n");
  const TCliResult result = Run({csv, iOut, u"--skip-lines"_s, u"1"_s, u"--name"_s, u"d"_s});
  EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
  const TCliResult plain = CliRun::Run({u"export-csv"_s, iOut, u"-"_s, u"--plain"_s});
  EXPECT_EQ(plain.iOut, "zip,d,note\r\n01234,2010-07-16,\" a \n\"\r\n02345,,\r\n");
  const TCliResult typed = Run({csv, iOut, u"--overwrite"_s, u"--skip-lines"_s, u"1"_s, u"--type"_s,
                                u"zip=Integer"_s, u"--type"_s, u"2=text"_s, u"--no-card-name"_s});
  EXPECT_EQ(typed.iStatus, 0) << typed.iErr.toStdString();
  EXPECT_TRUE(typed.iOut.contains("zip Integer (2 changed); d Text (1 empty)")) << typed.iOut.toStdString();
  EXPECT_TRUE(typed.iOut.contains("2 cells show another text than the file"));
  EXPECT_EQ(Run({csv, iOut, u"--overwrite"_s, u"--type"_s, u"none=Integer"_s}).iStatus, 2);
  EXPECT_EQ(Run({csv, iOut, u"--overwrite"_s, u"--type"_s, u"zip=Number"_s}).iStatus, 2);
}

TEST_F(CVelumImportCsvCommand, KeepsCardsSortedWhereItIsAskedTo) {
  const QString csv = iFolder.Write(u"a.csv"_s, "n,size\nb,1\na,2\n");
  const TCliResult kept = Run({csv, iOut, u"--keep-sorted"_s});
  EXPECT_EQ(kept.iStatus, 0) << kept.iErr.toStdString();
  EXPECT_FALSE(kept.iOut.contains("keep sorted?")) << kept.iOut.toStdString();
  ASSERT_EQ(Run({iFolder.Write(u"b.csv"_s, "n,size\nc,9\nd,0\n"), u"--into"_s, iOut, u"--add"_s}).iStatus, 0);
  EXPECT_EQ(Cards(iOut), "d\td\t0\nb\tb\t1\na\ta\t2\nc\tc\t9\n");
}

TEST_F(CVelumImportCsvCommand, AddsCardsAndMatchesFields) {
  ASSERT_EQ(Run({iFolder.Write(u"a.csv"_s, "n,v\nx,1\n"), iOut}).iStatus, 0);
  const QString csv = iFolder.Write(u"b.csv"_s, "value,n\n2,y\n");
  EXPECT_EQ(Run({csv, u"--into"_s, iOut, u"--add"_s}).iStatus, 1) << "no field is called value";
  const TCliResult added = Run({csv, u"--into"_s, iOut, u"--add"_s, u"--field"_s, u"value=v"_s});
  EXPECT_EQ(added.iStatus, 0) << added.iErr.toStdString();
  EXPECT_TRUE(added.iOut.startsWith(iOut.toUtf8() + ": 1 card into 'First Background'; UTF-8"));
  EXPECT_EQ(Cards(iOut), "x\tx\t1\ny\ty\t2\n");
  EXPECT_EQ(CliRun::Run({u"check"_s, iOut}).iOut, QByteArray());
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
      {{good, iOut, u"--skip-lines"_s, u"x"_s}, 2, "no number of lines"},
      {{good, iOut, u"--skip-lines=-1"_s}, 2, "no number of lines"},
      {{good, iOut, u"--classic"_s, u"--skip-lines"_s, u"1"_s}, 2, "knows no --skip-lines"},
      {{good, iOut, u"--add"_s}, 2, "--into, which is missing"},
      {{good, iOut, u"--field"_s, u"a=b"_s}, 2, "--into is missing"},
      {{good, iOut, u"--into"_s, sample}, 2, "--background is missing; the stack has '"},
      {{good, iOut, u"--background"_s, u"Country"_s}, 2, "--into, which is missing"},
      {{good}, 2, "OUT is missing"},
      {{good, u"-"_s, u"--json"_s}, 2, "standard output"},
      {{sample, iOut}, 1, "is a stack"},
      {{CliRun::XmlStack(), iOut}, 1, "is a stack"},
      {{good, iFolder.Path(u"none/out.Orvelle"_s)}, 1, "there is no folder"},
      {{good, iFolder.Path()}, 1, "is a folder"},
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
