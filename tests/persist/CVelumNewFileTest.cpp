#include "persist/CVelumNewFile.h"

#include "persist/CVelumListLimit.h"
#include "persist/CVelumOtherVersion.h"
#include "support/FaultInjection.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace {

class CVelumNewFileTest : public testing::Test {
protected:
  static void Fill(const CVelumNewFile& aFile, const QByteArray& aBytes) {
    QFile file(aFile.Path());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write(aBytes);
  }
  QStringList Files() const { return QDir(iFolder.Path()).entryList(QDir::Files, QDir::Name); }

  TempFolder iFolder;
  QString iPath = iFolder.Path(u"d"_s);
};

TEST_F(CVelumNewFileTest, TakesThePlaceOfTheOldFile) {
  iFolder.Write(u"d"_s, "old");
  CVelumNewFile file(iPath);
  Fill(file, "new");
  EXPECT_EQ(iFolder.Read(u"d"_s), QByteArray("old"));
  file.TakePlace();
  EXPECT_TRUE(file.Placed());
  EXPECT_EQ(iFolder.Read(u"d"_s), QByteArray("new"));
  EXPECT_EQ(Files(), QStringList{u"d"_s});
}

TEST_F(CVelumNewFileTest, GoesAwayWhenItIsNotWanted) {
  iFolder.Write(u"d"_s, "old");
  { CVelumNewFile file(iPath); }
  EXPECT_EQ(Files(), QStringList{u"d"_s});
  EXPECT_EQ(iFolder.Read(u"d"_s), QByteArray("old"));
}

TEST_F(CVelumNewFileTest, TwoAtOnceAreRefused) {
  CVelumNewFile first(iPath);
  Fill(first, "first");
  FaultInjection impatient;
  EXPECT_THROW(CVelumNewFile second(iPath), CVelumException);
  first.TakePlace();
  EXPECT_EQ(iFolder.Read(u"d"_s), QByteArray("first"));
}

TEST_F(CVelumNewFileTest, WhatACrashLeftIsOverwritten) {
  iFolder.Write(u"d-new"_s, "a longer piece than the next");
  CVelumNewFile file(iPath);
  Fill(file, "new");
  file.TakePlace();
  EXPECT_EQ(iFolder.Read(u"d"_s), QByteArray("new"));
}

TEST_F(CVelumNewFileTest, WhenAnyCallOfItsMakingFailsNothingIsLeft) {
  iFolder.Write(u"d"_s, "old");
  int num = 0;
  for (bool reached = true; reached; ++num) {
    FaultInjection faults(FaultInjection::EAct::Fail, num, 5 /* EIO */);
    try {
      const CVelumNewFile file(iPath);
      reached = faults.Hit();
    } catch (const CVelumException&) {
    }
    if (reached && num < 2) {
      EXPECT_EQ(Files(), QStringList{u"d"_s}) << num;
    }
  }
  EXPECT_GE(num, 3);
  CVelumNewFile::RemoveLeft(iPath); // where it was the removal that failed
  EXPECT_EQ(Files(), QStringList{u"d"_s});
}

TEST_F(CVelumNewFileTest, OnlyItsOwnerMayReadItUntilItTakesThePlace) {
  iFolder.Write(u"d"_s, "old");
  QFile::setPermissions(iPath, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
  iFolder.Write(u"d-new"_s, "left by a crash, and readable for all");
  CVelumNewFile file(iPath);
  constexpr QFile::Permissions EOthers = QFile::ReadGroup | QFile::ReadOther;
  EXPECT_EQ(QFile::permissions(file.Path()) & EOthers, QFile::Permissions());
  EXPECT_EQ(QFileInfo(file.Path()).size(), 0);
  file.TakePlace();
  EXPECT_EQ(QFile::permissions(iPath) & EOthers, QFile::ReadGroup);
}

TEST_F(CVelumNewFileTest, FailedSyncKeepsTheOldFile) {
  iFolder.Write(u"d"_s, "old");
  CVelumNewFile file(iPath);
  FaultInjection faults(FaultInjection::EAct::Fail, 0);
  faults.Only(EOsCall::Sync);
  EXPECT_THROW(file.TakePlace(), CVelumException);
  EXPECT_FALSE(file.Placed());
  EXPECT_EQ(iFolder.Read(u"d"_s), QByteArray("old"));
}

TEST_F(CVelumNewFileTest, OtherVersionGetsANameOfItsOwn) {
  QString path = iFolder.Write(u"a.b.Orvelle"_s, "other");
  QString first = CVelumOtherVersion::Keep(path);
  QString second = CVelumOtherVersion::Keep(path);
  EXPECT_NE(first, second);
  EXPECT_TRUE(first.startsWith(iFolder.Path(u"a.b (other version "_s))) << first.toStdString();
  EXPECT_TRUE(second.endsWith(u" 2).Orvelle"_s)) << second.toStdString();
  EXPECT_EQ(Files().size(), 3);
}

TEST_F(CVelumNewFileTest, OtherVersionIsCopiedWhereThereAreNoLinks) {
  QString path = iFolder.Write(u"a"_s, QByteArray(3000000, 'x'));
  FaultInjection faults(FaultInjection::EAct::Fail, 0, 1 /* EPERM */);
  faults.Only(EOsCall::Link);
  QString kept = CVelumOtherVersion::Keep(path);
  ASSERT_TRUE(faults.Hit());
  QFile file(kept);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), QByteArray(3000000, 'x'));
}

TEST(CVelumListCutTest, CutsBehindALine) {
  EXPECT_EQ(CVelumListCut::CutText(u"short"_s), u"short"_s);
  QString line(7498, u'a'); // two with their ends are 15,000
  EXPECT_EQ(CVelumListCut::CutText(line + u"\r\n"_s + line), line + u"\r\n"_s + line);
  EXPECT_EQ(CVelumListCut::CutText(line + u"\r\n"_s + line + u"\r\nb"_s),
            line + u"\r\n"_s + line + u"\r\n"_s);
  EXPECT_EQ(CVelumListCut::CutText(line + u"\r\n"_s + line + u"c\r\nb"_s), line + u"\r\n"_s);
  EXPECT_EQ(CVelumListCut::CutText(QString(15001, u'a')), u"\r\n"_s);
}

} // namespace
