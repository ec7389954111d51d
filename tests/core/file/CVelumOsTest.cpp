#include "core/file/CVelumOs.h"

#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace {

class CVelumOsTest : public testing::Test {
protected:
  void Link(const char* aTarget, const QString& aName) {
    ASSERT_EQ(::symlink(aTarget, QFile::encodeName(iFolder.Path(aName)).constData()), 0);
  }
  void MakeFolder(const QString& aName) { ASSERT_TRUE(QDir(iFolder.Path()).mkpath(aName)); }
  // RealPath is the file that opening the name opens.
  void ExpectReal(const QString& aName, const QString& aReal) {
    const QString path = iFolder.Path() + u'/' + aName;
    const QString real = CVelumOs::RealPath(path);
    EXPECT_EQ(QFileInfo(real).canonicalFilePath(), QFileInfo(iFolder.Path(aReal)).canonicalFilePath())
        << real.toStdString();
    EXPECT_FALSE(QFileInfo(real).isSymLink());
    EXPECT_TRUE(CVelumOs::IdOf(path).SameFile(CVelumOs::IdOf(real)));
    EXPECT_TRUE(QFile::exists(CVelumOs::FolderOf(real)));
  }

  TempFolder iFolder;
};

TEST_F(CVelumOsTest, LinksAreFollowedAsTheSystemFollowsThem) {
  MakeFolder(u"real/c/d"_s);
  MakeFolder(u"other"_s);
  iFolder.Write(u"real/c/doc"_s, "the document");
  iFolder.Write(u"other/doc"_s, "another");
  Link("../doc", u"real/c/d/link"_s);
  Link("../real/c/d", u"other/dirlink"_s);
  Link("other/dirlink/link", u"twice"_s);
  ExpectReal(u"other/dirlink/link"_s, u"real/c/doc"_s);
  ExpectReal(u"real/c/d/link"_s, u"real/c/doc"_s);
  ExpectReal(u"twice"_s, u"real/c/doc"_s);
  ExpectReal(u"other/dirlink/../doc"_s, u"real/c/doc"_s);
  ExpectReal(u"other/doc"_s, u"other/doc"_s);
}

TEST_F(CVelumOsTest, ALinkToNothingNamesWhatWouldBeMade) {
  MakeFolder(u"a/b"_s);
  MakeFolder(u"x"_s);
  Link("../new", u"a/b/link"_s);
  Link("../a/b", u"x/dirlink"_s);
  const QString real = CVelumOs::RealPath(iFolder.Path() + u"/x/dirlink/link"_s);
  EXPECT_EQ(CVelumOs::FolderOf(real), QFileInfo(iFolder.Path(u"a"_s)).canonicalFilePath());
  EXPECT_TRUE(real.endsWith(u"/new"_s));
}

TEST_F(CVelumOsTest, LinksInACircleComeToAnEnd) {
  Link("b", u"a"_s);
  Link("a", u"b"_s);
  EXPECT_FALSE(CVelumOs::RealPath(iFolder.Path(u"a"_s)).isEmpty());
  Link("self", u"self"_s);
  EXPECT_FALSE(CVelumOs::RealPath(iFolder.Path(u"self"_s)).isEmpty());
}

TEST_F(CVelumOsTest, APathWithoutLinksStaysAsItIs) {
  EXPECT_EQ(CVelumOs::RealPath(u"name"_s), u"name"_s);
  EXPECT_EQ(CVelumOs::RealPath(u"no/such/folder/name"_s), u"no/such/folder/name"_s);
  EXPECT_EQ(CVelumOs::RealPath(u"no/such/../name"_s), u"no/such/../name"_s);
}

TEST_F(CVelumOsTest, FolderOfAPath) {
  EXPECT_EQ(CVelumOs::FolderOf(u"name"_s), u"."_s);
  EXPECT_EQ(CVelumOs::FolderOf(u"/name"_s), u"/"_s);
  EXPECT_EQ(CVelumOs::FolderOf(u"a/../name"_s), u"a/.."_s);
}

TEST_F(CVelumOsTest, WaitingEndsWithTheFirstYes) {
  int tries = 0;
  EXPECT_TRUE(CVelumOs::WaitFor([&tries] { return ++tries == 3; }));
  EXPECT_EQ(tries, 3);
}

} // namespace
