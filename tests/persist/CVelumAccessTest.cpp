#include "persist/CVelumAccess.h"

#include "core/CVelumMsg.h"
#include "persist/CVelumJournal.h"
#include "persist/CVelumStackCheck.h"
#include "persist/CVelumStackFile.h"
#include "persist/CutSave.h"
#include "persist/StackMaker.h"
#include "persist/StackTeller.h"
#include "support/DropRights.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

// A document with pictures in a folder that everybody may look into.
class CVelumAccessTest : public testing::Test {
protected:
  CVelumAccessTest() {
    DropRights::SetMode(iFolder.Path(), 0755);
    StackMaker::New(3, 1000).Save(iPath);
    iBefore = Bytes();
  }
  ~CVelumAccessTest() override { CVelumAccess::SetInstalledFolder({}); }
  [[nodiscard]] QByteArray Bytes() const { return iFolder.Read(u"t.Orvelle"_s); }
  // A save to aPath is refused with a reason that names what is in the way; nothing has changed.
  void ExpectRefused(StackMaker& aDoc, const QString& aPath, const QString& aNamed) {
    const QStringList files = QDir(iFolder.Path()).entryList(QDir::Files | QDir::Hidden);
    aDoc.iStack->SetChanged(true);
    try {
      CVelumStackFile(aPath).SaveStack(aDoc.iStack, aDoc.iView);
      ADD_FAILURE() << "no failure";
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), EMsgCouldNotSave);
      EXPECT_TRUE(e.Descr().contains(aNamed)) << e.what();
      EXPECT_TRUE(e.Descr().contains(u"under another name"_s)) << e.what();
    }
    EXPECT_TRUE(aDoc.iStack->Changed());
    EXPECT_EQ(QDir(iFolder.Path()).entryList(QDir::Files | QDir::Hidden), files);
  }

  TempFolder iFolder;
  TempFolder iOther;
  ScriptedPresenter iPresenter;
  QString iPath = iFolder.Path(u"t.Orvelle"_s);
  QByteArray iBefore;
};

} // namespace

TEST_F(CVelumAccessTest, TellsWhatIsInTheWay) {
  EXPECT_EQ(CVelumAccess::WhyReadOnly(iPath), QString());
  EXPECT_EQ(CVelumAccess::WhyReadOnly({}), QString());
  EXPECT_EQ(CVelumAccess::WhyReadOnly(iFolder.Path(u"no/such.Orvelle"_s)), QString());
  const DropRights nobody;
  if (!nobody.Works() || ::getuid() != 0) GTEST_SKIP() << "only root can become another user";
  EXPECT_EQ(CVelumAccess::WhyReadOnly(iPath), u"The file %1 may only be read."_s.arg(iPath));
  EXPECT_EQ(CVelumAccess::WhyReadOnly(iFolder.Path(u"new.Orvelle"_s)),
            u"Nothing may be written to the folder %1."_s.arg(iFolder.Path()));
}

TEST_F(CVelumAccessTest, AFolderThatMayNotBeWrittenIsInTheWayToo) {
  DropRights::SetMode(iPath, 0666);
  DropRights::SetMode(iFolder.Path(), 0555);
  {
    const DropRights nobody;
    if (!nobody.Works()) GTEST_SKIP() << "root cannot be given up here";
    StackMaker doc = StackMaker::Load(iPath);
    ExpectRefused(doc, iPath, iFolder.Path());
  }
  DropRights::SetMode(iFolder.Path(), 0755);
  EXPECT_EQ(Bytes(), iBefore);
}

TEST_F(CVelumAccessTest, ADocumentThatMayOnlyBeReadOpensAndIsSavedElsewhere) {
  DropRights::SetMode(iPath, 0444);
  DropRights::SetMode(iOther.Path(), 0777);
  StackMaker whole = StackMaker::Load(iPath);
  {
    const DropRights nobody;
    if (!nobody.Works()) GTEST_SKIP() << "root cannot be given up here";
    StackMaker doc = StackMaker::Load(iPath);
    EXPECT_EQ(StackTeller::Difference(whole.Tell(), doc.Tell(), {}), u""_s);
    doc.AddCard(u"more"_s, 500);
    ExpectRefused(doc, iPath, iPath);
    const QString path = iOther.Path(u"copy.Orvelle"_s);
    CVelumStackFile(path).SaveStack(doc.iStack, doc.iView);
    StackMaker copy = StackMaker::Load(path);
    EXPECT_EQ(StackTeller::Difference(doc.Tell(), copy.Tell(), {}), u""_s);
  }
  EXPECT_EQ(Bytes(), iBefore);
}

TEST_F(CVelumAccessTest, TheSameAsXml) {
  StackMaker doc = StackMaker::Load(iPath);
  doc.iStack->SetFlag(EStaBinary, false);
  doc.Save(iPath);
  iBefore = Bytes();
  ASSERT_TRUE(iBefore.startsWith('<'));
  DropRights::SetMode(iPath, 0444);
  DropRights::SetMode(iFolder.Path(), 0777);
  {
    const DropRights nobody;
    if (!nobody.Works()) GTEST_SKIP() << "root cannot be given up here";
    StackMaker loaded = StackMaker::Load(iPath);
    EXPECT_EQ(loaded.iStack->NumCards(), 3);
    ExpectRefused(loaded, iPath, iPath);
  }
  EXPECT_EQ(Bytes(), iBefore);
}

TEST_F(CVelumAccessTest, ADocumentThatMayBeWrittenAgainIsSaved) {
  DropRights::SetMode(iPath, 0444);
  DropRights::SetMode(iFolder.Path(), 0777);
  StackMaker doc = [&] {
    const DropRights nobody;
    return StackMaker::Load(iPath);
  }();
  if (::geteuid() == 0) {
    EXPECT_TRUE(doc.iStack->BlobStore()->File()->ReadOnly());
  }
  DropRights::SetMode(iPath, 0666);
  doc.iStack->BlobStore()->NoteFileId();
  doc.AddCard(u"more"_s, 500);
  doc.Save(iPath);
  StackMaker saved = StackMaker::Load(iPath);
  EXPECT_EQ(StackTeller::Difference(doc.Tell(), saved.Tell(), {}), u""_s);
}

TEST_F(CVelumAccessTest, WhatBelongsToTheProgramIsNobodysToWrite) {
  CVelumAccess::SetInstalledFolder(iFolder.Path() + u"/../"_s + QDir(iFolder.Path()).dirName());
  StackMaker doc = StackMaker::Load(iPath);
  ExpectRefused(doc, iPath, u"belongs to the program"_s);
  const QString link = iOther.Path(u"link.Orvelle"_s);
  ASSERT_TRUE(QFile::link(iPath, link));
  ExpectRefused(doc, link, u"belongs to the program"_s);
  EXPECT_EQ(Bytes(), iBefore);
  const QString copy = iOther.Path(u"copy.Orvelle"_s);
  CVelumStackFile(copy).SaveStack(doc.iStack, doc.iView);
  EXPECT_TRUE(QFile::exists(copy));
}

// A save by the owner was cut off; whoever can only read the document sees it as it was before.
TEST_F(CVelumAccessTest, AHalfWrittenDocumentIsShownAsItWas) {
  StackMaker whole = StackMaker::Load(iPath);
  const QJsonObject told = whole.Tell();
  whole = {};
  CutSave::Run(iPath);
  const QString journal = CVelumJournal::NameFor(iPath);
  ASSERT_TRUE(QFile::exists(journal));
  ASSERT_NE(Bytes(), iBefore);
  iBefore = Bytes();
  const QByteArray kept = iFolder.Read(u"t.Orvelle-journal"_s);
  DropRights::SetMode(iPath, 0444);
  DropRights::SetMode(journal, 0444);
  DropRights::SetMode(iOther.Path(), 0777);
  {
    const DropRights nobody;
    if (!nobody.Works()) GTEST_SKIP() << "root cannot be given up here";
    StackMaker doc = StackMaker::Load(iPath);
    EXPECT_EQ(StackTeller::Difference(told, doc.Tell(), {}), u""_s);
    EXPECT_EQ(CVelumStackCheck(*doc.iStack).Run(), QStringList());
    ExpectRefused(doc, iPath, iPath);
    const QString copy = iOther.Path(u"copy.Orvelle"_s);
    CVelumStackFile(copy).SaveStack(doc.iStack, doc.iView);
    EXPECT_EQ(StackTeller::Difference(told, StackMaker::Load(copy).Tell(), {}), u""_s);
  }
  EXPECT_EQ(Bytes(), iBefore);
  EXPECT_EQ(iFolder.Read(u"t.Orvelle-journal"_s), kept);
  // Its owner gets it put right as ever.
  EXPECT_EQ(StackTeller::Difference(told, StackMaker::Load(iPath).Tell(), {}), u""_s);
  EXPECT_FALSE(QFile::exists(journal));
}

TEST_F(CVelumAccessTest, WhatTheProgramOwnsIsShownAsItWasToo) {
  const QJsonObject told = StackMaker::Load(iPath).Tell();
  CutSave::Run(iPath);
  iBefore = Bytes();
  CVelumAccess::SetInstalledFolder(iFolder.Path());
  EXPECT_EQ(StackTeller::Difference(told, StackMaker::Load(iPath).Tell(), {}), u""_s);
  EXPECT_EQ(Bytes(), iBefore);
  EXPECT_TRUE(iFolder.Has(u"t.Orvelle-journal"_s));
}

TEST_F(CVelumAccessTest, AJournalWhoseSaveHadNotBegunOrWasCompleteChangesNothing) {
  const QJsonObject told = StackMaker::Load(iPath).Tell();
  CVelumAccess::SetInstalledFolder(iFolder.Path());
  iFolder.Write(u"t.Orvelle-journal"_s, "no end");
  EXPECT_EQ(StackTeller::Difference(told, StackMaker::Load(iPath).Tell(), {}), u""_s);
  EXPECT_EQ(iFolder.Read(u"t.Orvelle-journal"_s), "no end");
}

TEST_F(CVelumAccessTest, ADocumentInDoubtIsNotShown) {
  CutSave::Run(iPath);
  QByteArray bytes = Bytes();
  bytes[700] = static_cast<char>(bytes[700] ^ 1);
  bytes.append("more");
  iFolder.Write(u"t.Orvelle"_s, bytes);
  const QStringList files = QDir(iFolder.Path()).entryList(QDir::Files);
  CVelumAccess::SetInstalledFolder(iFolder.Path());
  try {
    static_cast<void>(StackMaker::Load(iPath));
    ADD_FAILURE() << "no failure";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostPermissionDenied);
    EXPECT_TRUE(e.Descr().contains(CVelumJournal::NameFor(iPath))) << e.what();
    EXPECT_TRUE(e.Descr().contains(u"of your own"_s)) << e.what();
  }
  EXPECT_EQ(Bytes(), bytes);
  EXPECT_EQ(QDir(iFolder.Path()).entryList(QDir::Files), files);
}

TEST_F(CVelumAccessTest, AJournalThatMayNotBeReadIsInTheWay) {
  CutSave::Run(iPath);
  DropRights::SetMode(iPath, 0444);
  DropRights::SetMode(CVelumJournal::NameFor(iPath), 0);
  const DropRights nobody;
  if (!nobody.Works()) GTEST_SKIP() << "root cannot be given up here";
  try {
    static_cast<void>(StackMaker::Load(iPath));
    ADD_FAILURE() << "no failure";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostPermissionDenied);
    EXPECT_TRUE(e.Descr().contains(u"has to open it first"_s)) << e.what();
  }
}
