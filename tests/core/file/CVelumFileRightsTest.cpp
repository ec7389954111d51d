#include "core/file/CVelumFileRights.h"

#include "core/file/CVelumOs.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

const char* const EList = "system.posix_acl_access";

// An access list: the owner, user 65534, the group and the rest, with a mask.
QByteArray List(char aOwner, char aUser, char aGroup, char aMask, char aOther) {
  const auto entry = [](char aTag, char aPerm, quint32 aId) {
    QByteArray bytes(1, aTag);
    bytes += QByteArray(1, '\0') + QByteArray(1, aPerm) + QByteArray(1, '\0');
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(aId >> (8 * i));
    return bytes;
  };
  constexpr quint32 ENobody = 65534;
  constexpr quint32 ENone = 0xffffffff;
  return QByteArray("\x02\0\0\0", 4) + entry(1, aOwner, ENone) + entry(2, aUser, ENobody) +
         entry(4, aGroup, ENone) + entry(16, aMask, ENone) + entry(32, aOther, ENone);
}

class CVelumFileRightsTest : public testing::Test {
protected:
  CVelumFileRightsTest() { iLikeName = QFile::encodeName(iFolder.Write(u"like"_s, "old")); }
  ~CVelumFileRightsTest() override { CVelumOs::Close(iFd); }
  // A private file that gets the rights of the other one.
  void Copy(const QString& aLike = u"like"_s) {
    QFile::remove(iPath);
    CVelumOs::Close(iFd);
    iFd = CVelumOs::Open(iPath, O_RDWR | O_CREAT | O_EXCL, 0600);
    ASSERT_GE(iFd, 0);
    CVelumFileRights::Copy(iFd, iPath, iFolder.Path(aLike));
  }
  struct stat Stat() const {
    struct stat info;
    EXPECT_EQ(::fstat(iFd, &info), 0);
    return info;
  }
  QByteArray Attribute(const char* aName) const {
    QByteArray value(1000, '\0');
    const ssize_t len = ::fgetxattr(iFd, aName, value.data(), 1000);
    return value.left(std::max<ssize_t>(len, 0));
  }
  bool Set(const QByteArray& aPath, const char* aName, const QByteArray& aValue) {
    return ::setxattr(aPath.constData(), aName, aValue.constData(), static_cast<size_t>(aValue.size()), 0) ==
           0;
  }

  TempFolder iFolder;
  QString iPath = iFolder.Path(u"f"_s);
  QByteArray iLikeName;
  int iFd = -1;
};

TEST_F(CVelumFileRightsTest, PermissionsAreThoseOfTheOther) {
  for (const mode_t mode : {0600U, 0640U, 0444U, 0666U}) {
    ASSERT_EQ(::chmod(iLikeName.constData(), mode), 0);
    Copy();
    EXPECT_EQ(Stat().st_mode & 07777, mode);
  }
}

TEST_F(CVelumFileRightsTest, ANewFileGetsWhatTheMaskLeaves) {
  const mode_t before = ::umask(027);
  Copy(u"none"_s);
  ::umask(before);
  EXPECT_EQ(Stat().st_mode & 07777, 0640U);
}

TEST_F(CVelumFileRightsTest, OwnerAndGroupAreKept) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  ASSERT_EQ(::chown(iLikeName.constData(), 65534, 4), 0);
  Copy();
  EXPECT_EQ(Stat().st_uid, 65534U);
  EXPECT_EQ(Stat().st_gid, 4U);
}

TEST_F(CVelumFileRightsTest, WhereTheGroupCannotBeKeptItGetsNoMoreThanAll) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  ASSERT_EQ(::chown(iLikeName.constData(), 0, 4), 0);
  ASSERT_EQ(::chmod(iLikeName.constData(), 0664), 0);
  ASSERT_EQ(::chmod(QFile::encodeName(iFolder.Path()).constData(), 0777), 0);
  ASSERT_EQ(::setegid(65534), 0);
  ASSERT_EQ(::seteuid(65534), 0);
  Copy();
  EXPECT_EQ(::seteuid(0), 0);
  EXPECT_EQ(::setegid(0), 0);
  EXPECT_EQ(Stat().st_uid, 65534U);
  EXPECT_EQ(Stat().st_mode & 07777, 0644U);
}

TEST_F(CVelumFileRightsTest, AttributesAreKept) {
  if (!Set(iLikeName, "user.note", "kept")) GTEST_SKIP() << "no attributes on this file system";
  Copy();
  EXPECT_EQ(Attribute("user.note"), QByteArray("kept"));
}

TEST_F(CVelumFileRightsTest, TheAccessListIsKept) {
  const QByteArray list = List(6, 6, 0, 6, 0);
  if (!Set(iLikeName, EList, list)) GTEST_SKIP() << "no access lists on this file system";
  Copy();
  EXPECT_EQ(Attribute(EList), list);
  EXPECT_EQ(Stat().st_mode & 07777, 0660U) << "the mask, as the other shows it";
}

TEST_F(CVelumFileRightsTest, TheFoldersListForNewFilesIsNoRightOfAnOldOne) {
  ASSERT_EQ(::chmod(iLikeName.constData(), 0600), 0);
  const QByteArray folder = QFile::encodeName(iFolder.Path());
  const QByteArray list = List(6, 6, 6, 6, 0);
  if (!Set(folder, "system.posix_acl_default", list)) GTEST_SKIP() << "no access lists on this file system";
  Copy();
  EXPECT_EQ(Attribute(EList), QByteArray());
  EXPECT_EQ(Stat().st_mode & 07777, 0600U);
  Copy(u"none"_s);
  EXPECT_EQ(Attribute(EList), list) << "but of a new one";
  EXPECT_EQ(Stat().st_mode & 07777, 0660U);
}

} // namespace
