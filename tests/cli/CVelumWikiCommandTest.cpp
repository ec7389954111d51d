// wiki.
#include "CliRun.h"

#include "support/CaseFiles.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

using namespace Qt::Literals::StringLiterals;

namespace {

TEST(CVelumWikiCommand, PrintsTheRtfOfEachCase) {
  int count = 0;
  for (const std::string& name : CaseFiles::Names("wiki", u"*.txt"_s)) {
    const QString path = CaseFiles::Folder("wiki") + u'/' + QString::fromStdString(name);
    const QJsonObject expected = CaseFiles::Expected(path);
    if (expected[u"font"].isObject()) continue;
    const TCliResult result = CliRun::Run({u"wiki"_s, path});
    EXPECT_EQ(result.iStatus, 0) << result.iErr.toStdString();
    EXPECT_EQ(result.iOut, expected[u"rtf"].toString().toUtf8()) << name;
    ++count;
  }
  EXPECT_GE(count, 11);
}

TEST(CVelumWikiCommand, TakesTheLineEndsOfAFileFromLinux) {
  const TempFolder folder;
  const TCliResult unix = CliRun::Run({u"wiki"_s, folder.Write(u"a.txt"_s, "a\nb\n\nc\n")});
  const TCliResult dos = CliRun::Run({u"wiki"_s, folder.Write(u"b.txt"_s, "a\r\nb\r\n\r\nc")});
  EXPECT_EQ(unix.iOut, dos.iOut);
  EXPECT_EQ(unix.iOut.count("\\par "), 3);
}

TEST(CVelumWikiCommand, RefusesWhatCannotBeShown) {
  const TempFolder folder;
  const QStringList paths{folder.Write(u"long.txt"_s, QByteArray(32767, 'a')),
                          folder.Write(u"longer.txt"_s, QByteArray(1000000, 'a')),
                          folder.Write(u"links.txt"_s, QByteArray("[[a]]").repeated(1002)),
                          folder.Path(u"none.txt"_s), folder.Path(u"."_s)};
  for (const QString& path : paths) {
    const TCliResult result = CliRun::Run({u"wiki"_s, path});
    EXPECT_EQ(result.iStatus, 1) << path.toStdString();
    EXPECT_EQ(result.iOut, QByteArray());
    EXPECT_TRUE(result.iErr.startsWith("orvelles-cli: EMsg")) << result.iErr.toStdString();
  }
  EXPECT_EQ(CliRun::Run({u"wiki"_s}).iStatus, 2);
}

TEST(CVelumWikiCommand, TakesAnyBytes) {
  const TempFolder folder;
  QByteArray bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  EXPECT_EQ(CliRun::Run({u"wiki"_s, folder.Write(u"a.txt"_s, bytes)}).iStatus, 0);
}

} // namespace
