#include "exchange/CVelumCsvSource.h"

#include "core/CVelumMsg.h"
#include "support/PrintQt.h"
#include "support/Raised.h"
#include "support/TempFolder.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

class CVelumCsvSourceTest : public testing::Test {
protected:
  // Reads to the end.
  CVelumCsvSource& Read(const QByteArray& aBytes, std::optional<ECsvEncoding> aChosen = {},
                        qint64 aMost = CVelumCsvSource::EWhole) {
    iSource = std::make_unique<CVelumCsvSource>(iFolder.Write(u"a.csv"_s, aBytes), aChosen, aMost);
    while (iSource->Step()) {
    }
    return *iSource;
  }
  std::string TextOf(const QByteArray& aBytes, std::optional<ECsvEncoding> aChosen = {}) {
    return std::string(Read(aBytes, aChosen).Text());
  }

  TempFolder iFolder;
  std::unique_ptr<CVelumCsvSource> iSource;
};

TEST_F(CVelumCsvSourceTest, TakesTheEncodingOfTheMark) {
  EXPECT_EQ(TextOf("\xEF\xBB\xBF\xC3\xA9"), "\xC3\xA9");
  EXPECT_EQ(iSource->Encoding(), ECsvEncoding::Utf8);
  EXPECT_EQ(TextOf(QByteArray("\xFF\xFE"
                              "a\0\xE9\0",
                              6)),
            "a\xC3\xA9");
  EXPECT_EQ(iSource->Encoding(), ECsvEncoding::Utf16Le);
  EXPECT_EQ(TextOf(QByteArray("\xFE\xFF\0a\xD8\x3D\xDE\x00", 8)), "a\xF0\x9F\x98\x80");
  EXPECT_EQ(iSource->Encoding(), ECsvEncoding::Utf16Be);
  EXPECT_FALSE(iSource->BadBytes().Any());
}

TEST_F(CVelumCsvSourceTest, LooksAtTheWholeFileForTheEncoding) {
  QByteArray bytes("a,b\n");
  for (int i = 0; i < 2000000; ++i) bytes += "x,y\n";
  EXPECT_EQ(TextOf(bytes + "Pi\xC3\xA7"
                           "arra,z\n"),
            (bytes + "Pi\xC3\xA7"
                     "arra,z\n")
                .toStdString());
  EXPECT_EQ(iSource->Encoding(), ECsvEncoding::Utf8);
  EXPECT_EQ(TextOf(bytes + "Pi\xE7"
                           "arra,z\n"),
            (bytes + "Pi\xC3\xA7"
                     "arra,z\n")
                .toStdString());
  EXPECT_EQ(iSource->Encoding(), ECsvEncoding::Windows1252);
  EXPECT_FALSE(iSource->BadBytes().Any());
  EXPECT_EQ(TextOf("\x80\n"), "\xE2\x82\xAC\n") << "the euro of the code page";
  EXPECT_EQ(TextOf(""), "");
}

TEST_F(CVelumCsvSourceTest, TellsWhereEncodingsAreMixed) {
  static_cast<void>(Read("a\nb\xC3\xA9\nc\xE9\n"));
  EXPECT_TRUE(iSource->BadBytes().iMixed);
  EXPECT_EQ(iSource->BadBytes().iLine, 3);
  EXPECT_EQ(iSource->Encoding(), ECsvEncoding::Windows1252);
}

TEST_F(CVelumCsvSourceTest, CountsBytesWithoutMeaning) {
  EXPECT_EQ(TextOf("\xEF\xBB\xBF"
                   "a\n\xE9\xFF,\xC3\xA9\n"),
            "a\n\xEF\xBF\xBD\xEF\xBF\xBD,\xC3\xA9\n");
  EXPECT_EQ(iSource->BadBytes().iCount, 2);
  EXPECT_EQ(iSource->BadBytes().iLine, 2);
  static_cast<void>(Read("a\n\xE9,\x81\n"));
  EXPECT_EQ(iSource->BadBytes().iCount, 1) << "free in the code page";
  EXPECT_FALSE(iSource->BadBytes().iReplaced);
  EXPECT_EQ(iSource->BadBytes().iLine, 2);
  EXPECT_EQ(TextOf(QByteArray("\xFF\xFE"
                              "\n\0\0\xD8z\0q",
                              9)),
            "\n\xEF\xBF\xBDz\xEF\xBF\xBD");
  EXPECT_EQ(iSource->BadBytes().iCount, 2) << "half of a pair, half of a character";
  EXPECT_EQ(iSource->BadBytes().iLine, 2);
}

TEST_F(CVelumCsvSourceTest, TakesTheEncodingThatIsChosen) {
  EXPECT_EQ(TextOf("\xC3\xA9", ECsvEncoding::Windows1252), "\xC3\x83\xC2\xA9");
  EXPECT_FALSE(iSource->BadBytes().Any());
  EXPECT_EQ(TextOf(QByteArray("\xFE\xFF\0a", 4), ECsvEncoding::Utf16Le), "a") << "the mark tells the order";
  EXPECT_EQ(TextOf(QByteArray("a\0", 2), ECsvEncoding::Utf16Le), "a");
  EXPECT_EQ(TextOf("\xE9", ECsvEncoding::Utf8), "\xEF\xBF\xBD");
  EXPECT_EQ(iSource->BadBytes().iCount, 1);
}

TEST_F(CVelumCsvSourceTest, ConvertsLongFilesWithoutPartingCharacters) {
  QByteArray bytes;
  std::string text;
  for (int i = 0; i < 1500000; ++i) {
    bytes += QByteArray("\x3D\xD8\x00\xDE"
                        "a\0",
                        i % 3 == 0 ? 6 : 4);
    text += i % 3 == 0 ? "\xF0\x9F\x98\x80"
                         "a"
                       : "\xF0\x9F\x98\x80";
  }
  EXPECT_TRUE(TextOf("\xFF\xFE" + bytes) == text);
  EXPECT_FALSE(iSource->BadBytes().Any());
  for (const QByteArray& front : {QByteArray(), QByteArray("a"), QByteArray("ab")}) {
    QByteArray euros = front;
    for (int i = 0; i < 1500000; ++i) euros += "\xE2\x82\xAC";
    EXPECT_EQ(Read(euros).Encoding(), ECsvEncoding::Utf8) << front.size();
    EXPECT_EQ(Read("\xEF\xBB\xBF\xFF" + euros).BadBytes().iCount, 1) << front.size();
  }
  QByteArray broken = "\xEF\xBB\xBF\xFF";
  for (int i = 0; i < 1500000; ++i) broken += "\xE2\x82\xAC";
  EXPECT_EQ(Read(broken).BadBytes().iCount, 1);
}

TEST_F(CVelumCsvSourceTest, ReadsABeginningWithoutHalfACharacter) {
  EXPECT_EQ(Read("ab\xC3\xA9"
                 "c",
                 {}, 3)
                .Text(),
            "ab");
  EXPECT_TRUE(iSource->IsPart());
  EXPECT_EQ(iSource->Encoding(), ECsvEncoding::Utf8);
  EXPECT_EQ(Read("ab\xC3\xA9"
                 "c",
                 {}, 4)
                .Text(),
            "ab\xC3\xA9");
  EXPECT_EQ(Read(QByteArray("\xFF\xFE"
                            "a\0b\0",
                            6),
                 {}, 5)
                .Text(),
            "a");
  EXPECT_EQ(Read("abc", {}, 3).Text(), "abc");
  EXPECT_FALSE(iSource->IsPart());
}

TEST_F(CVelumCsvSourceTest, RefusesAFileThatChangesWhileItIsRead) {
  QByteArray bytes;
  for (int i = 0; i < 2000000; ++i) bytes += "line\n";
  const QString path = iFolder.Write(u"b.csv"_s, bytes);
  CVelumCsvSource shorter(path);
  EXPECT_TRUE(shorter.Step());
  ASSERT_TRUE(QFile::resize(path, bytes.size() / 2));
  EXPECT_EQ(Raised([&] {
              while (shorter.Step()) {
              }
            }),
            EHostDeviceIo);
  CVelumCsvSource longer(path);
  EXPECT_TRUE(longer.Step());
  ASSERT_TRUE(QFile::resize(path, bytes.size()));
  EXPECT_EQ(Raised([&] {
              while (longer.Step()) {
              }
            }),
            EHostDeviceIo);
}

TEST_F(CVelumCsvSourceTest, KnowsOfZeroBytes) {
  EXPECT_FALSE(Read("a").HasZero());
  EXPECT_TRUE(Read(QByteArray("a\0b", 3)).HasZero());
  EXPECT_FALSE(Read(QByteArray("\xFF\xFE"
                               "a\0",
                               4))
                   .HasZero());
  EXPECT_TRUE(Read(QByteArray("\xFF\xFE"
                              "\0\0",
                              4))
                  .HasZero());
}

TEST_F(CVelumCsvSourceTest, RefusesWhatIsNoFile) {
  EXPECT_EQ(Raised([&] { CVelumCsvSource(iFolder.Path(u"none.csv"_s)); }), EMsgFileNotFound);
  EXPECT_EQ(Raised([&] { CVelumCsvSource(iFolder.Path()); }), EMsgNoFileAccess);
}

} // namespace
