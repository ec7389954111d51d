// Opening and saving documents that a save was cut off in.
#include "core/CVelumMsg.h"
#include "persist/CVelumJournal.h"
#include "persist/CutSave.h"
#include "persist/StackTeller.h"
#include "support/FaultInjection.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <QDir>
#include <QFile>

namespace {

class CVelumDoubtTest : public testing::Test {
protected:
  CVelumDoubtTest() {
    StackMaker first = StackMaker::New(4, 30000);
    first.Save(iPath);
    iTold = first.Tell();
    iBytes = iFolder.Read(u"t.Orvelle"_s);
  }
  QStringList Files() const { return QDir(iFolder.Path()).entryList(QDir::Files, QDir::Name); }
  // XML knows neither the id nor the flags of a stack.
  static QJsonObject Plain(QJsonObject aTold) {
    aTold.remove(u"id"_s);
    aTold.remove(u"flags"_s);
    return aTold;
  }
  void ExpectSays(const QString& aPath, const QJsonObject& aTold) {
    EXPECT_EQ(StackTeller::Difference(Plain(aTold), Plain(StackMaker::Load(aPath).Tell()), {}), u""_s);
  }
  // A half-written document that something else has then written to.
  void CutAndSpoil() {
    CutSave::Run(iPath);
    QFile file(iPath);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.seek(600);
    file.write("something else");
  }
  QString Old() const {
    for (const QString& name : Files())
      if (name.startsWith(u"t (before the crash "_s)) return iFolder.Path(name);
    return {};
  }
  // The message of the failure of aDo.
  static QString Failure(const std::function<void()>& aDo) {
    try {
      aDo();
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), EHostPermissionDenied) << e.what();
      return e.Descr();
    }
    return {};
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  QString iPath = iFolder.Path(u"t.Orvelle"_s);
  QJsonObject iTold;
  QByteArray iBytes;
};

TEST_F(CVelumDoubtTest, AHalfWrittenDocumentIsPutBack) {
  CutSave::Run(iPath);
  EXPECT_NE(iFolder.Read(u"t.Orvelle"_s), iBytes);
  ExpectSays(iPath, iTold);
  EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), iBytes);
  EXPECT_EQ(Files(), QStringList{u"t.Orvelle"_s});
}

TEST_F(CVelumDoubtTest, ACopyOfTheFolderIsPutBackToo) {
  CutSave::Run(iPath);
  for (const QString& name : Files()) QFile::copy(iFolder.Path(name), iFolder.Path(u"c"_s + name));
  ASSERT_TRUE(QFile::rename(iFolder.Path(u"ct.Orvelle-journal"_s), iFolder.Path(u"c.Orvelle-journal"_s)));
  ASSERT_TRUE(QFile::rename(iFolder.Path(u"ct.Orvelle"_s), iFolder.Path(u"c.Orvelle"_s)));
  ExpectSays(iFolder.Path(u"c.Orvelle"_s), iTold);
}

TEST_F(CVelumDoubtTest, WithoutAChoiceNothingIsOpenedAndBothAreNamed) {
  CutAndSpoil();
  const QByteArray spoilt = iFolder.Read(u"t.Orvelle"_s);
  for (int i = 0; i < 2; ++i) {
    const QString text = Failure([this] { (void)StackMaker::Load(iPath); });
    EXPECT_TRUE(text.contains(iPath + u" "_s) && text.contains(Old())) << text.toStdString();
    EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), spoilt);
    EXPECT_EQ(Files().size(), 3) << "built once";
  }
  ExpectSays(Old(), iTold);
}

// An opening makes a file that is not there, but no document of it that the journal could belong to.
TEST_F(CVelumDoubtTest, AJournalWithoutItsDocumentIsNoDoubt) {
  CutSave::Run(iPath);
  ASSERT_TRUE(QFile::remove(iPath));
  try {
    (void)StackMaker::Load(iPath);
    ADD_FAILURE() << "it was opened";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EMsgNotAOrvelle);
  }
  EXPECT_EQ(iPresenter.Choices(), QList<QStringList>());
  EXPECT_TRUE(QFile::exists(CVelumJournal::NameFor(iPath)));
  EXPECT_EQ(Old(), QString());
}

TEST_F(CVelumDoubtTest, TheOldDocumentIsChosen) {
  CutAndSpoil();
  const QByteArray spoilt = iFolder.Read(u"t.Orvelle"_s);
  iPresenter.SetChoice(1);
  StackMaker doc = StackMaker::Load(iPath);
  EXPECT_EQ(doc.iStack->Filename(), Old());
  EXPECT_EQ(iPresenter.Choices(), (QList<QStringList>{{iPath, Old()}}));
  EXPECT_EQ(StackTeller::Difference(iTold, doc.Tell(), {}), u""_s);
  EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), spoilt);
  doc.AddCard(u"more"_s, 10);
  doc.Save(Old());
  EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), spoilt);
}

TEST_F(CVelumDoubtTest, ABackupOfAnotherStateIsNotReplayedOver) {
  StackMaker backup = StackMaker::Load(iPath);
  backup.AddCard(u"backup"_s, 100);
  backup.Card(0)->SetControlVal(backup.TextId(), TVelumValue::OfStr(u"backup"_s));
  const QString copy = iFolder.Path(u"backup.Orvelle"_s);
  backup.Save(copy);
  backup = StackMaker::New(0, 0);
  CutSave::Run(iPath);
  const QByteArray bytes = iFolder.Read(u"backup.Orvelle"_s);
  QFile file(iPath); // as cp does, which keeps the inode
  ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
  file.write(bytes);
  file.close();
  iPresenter.SetChoice(0);
  EXPECT_EQ(StackMaker::Load(iPath).iStack->NumCards(), 5);
  EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), bytes);
  EXPECT_FALSE(Old().isEmpty());
  EXPECT_FALSE(QFile::exists(CVelumJournal::NameFor(iPath)));
  EXPECT_EQ(iPresenter.Choices().size(), 1);
  (void)StackMaker::Load(iPath);
  EXPECT_EQ(iPresenter.Choices().size(), 1) << "asked once";
}

TEST_F(CVelumDoubtTest, ASoundXmlDocumentIsNotReplayedOver) {
  StackMaker xml = StackMaker::Load(iPath);
  xml.iStack->SetFlag(EStaBinary, false);
  xml.Save(iFolder.Path(u"x.xml"_s));
  const QByteArray bytes = iFolder.Read(u"x.xml"_s);
  CutSave::Run(iPath);
  QFile::remove(iPath);
  ASSERT_TRUE(QFile::rename(iFolder.Path(u"x.xml"_s), iPath));
  EXPECT_FALSE(Failure([this] { (void)StackMaker::Load(iPath); }).isEmpty());
  EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), bytes);
  iPresenter.SetChoice(0);
  EXPECT_EQ(StackMaker::Load(iPath).iStack->NumCards(), 4);
  EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), bytes);
}

TEST_F(CVelumDoubtTest, ASaveOntoADocumentInDoubtIsRefused) {
  CutAndSpoil();
  const QByteArray spoilt = iFolder.Read(u"t.Orvelle"_s);
  for (const bool binary : {true, false}) {
    StackMaker other = StackMaker::New(2, 100);
    other.iStack->SetFlag(EStaBinary, binary);
    const QString text = Failure([&] { other.Save(iPath); });
    EXPECT_TRUE(text.contains(Old())) << text.toStdString();
    EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), spoilt);
    EXPECT_FALSE(iFolder.Has(u"t.Orvelle-new"_s));
  }
}

TEST_F(CVelumDoubtTest, AnXmlSaveClearsAJournalAway) {
  CutSave::Run(iPath);
  StackMaker other = StackMaker::New(2, 100);
  other.iStack->SetFlag(EStaBinary, false);
  other.Save(iPath);
  EXPECT_EQ(Files(), QStringList{u"t.Orvelle"_s});
  ExpectSays(iPath, other.Tell());
}

// The pictures of the first one are where they were, and nobody may move them.
TEST_F(CVelumDoubtTest, AfterASaveThatFailedTheFileIsHeldAsBefore) {
  StackMaker doc = StackMaker::Load(iPath);
  CutSave::Edit(doc);
  int num = 0;
  for (bool reached = true; reached; ++num) {
    FaultInjection faults(FaultInjection::EAct::Fail, num);
    faults.Only(EOsCall::Sync);
    try {
      doc.Save(iPath);
    } catch (const CVelumException&) {
      StackMaker other = StackMaker::Load(iPath);
      EXPECT_FALSE(other.iStack->BlobStore()->File()->TryLockAlone()) << num;
    }
    reached = faults.Hit();
  }
  EXPECT_EQ(num, 3);
}

// A save that failed and could not be undone, and the document is saved elsewhere.
class CVelumFailedSaveTest : public CVelumDoubtTest {
protected:
  CVelumFailedSaveTest() {
    iDoc = StackMaker::Load(iPath);
    CutSave::Edit(iDoc);
    iEdited = iDoc.Tell();
    iDisk = std::make_unique<DyingDisk>(iPath);
    EXPECT_THROW(iDoc.Save(iPath), CVelumException);
    EXPECT_NE(iFolder.Read(u"t.Orvelle"_s), iBytes);
    EXPECT_TRUE(QFile::exists(CVelumJournal::NameFor(iPath)));
  }
  StackMaker iDoc;
  QJsonObject iEdited;
  std::unique_ptr<DyingDisk> iDisk;
};

TEST_F(CVelumFailedSaveTest, PicturesCanStillBeSeen) {
  EXPECT_EQ(StackTeller::Difference(iEdited, iDoc.Tell(), {}), u""_s);
  EXPECT_EQ(iPresenter.Count(), 0);
}

TEST_F(CVelumFailedSaveTest, SaveAsBringsTheOldDocumentBackFirst) {
  iDisk.reset();
  for (const bool binary : {true, false}) {
    const QString path = iFolder.Path(binary ? u"u.Orvelle"_s : u"u.xml"_s);
    iDoc.iStack->SetFlag(EStaBinary, binary);
    iDoc.Save(path);
    EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), iBytes);
    EXPECT_FALSE(QFile::exists(CVelumJournal::NameFor(iPath)));
    ExpectSays(path, iEdited);
  }
  EXPECT_TRUE(iPresenter.Told().isEmpty());
}

TEST_F(CVelumFailedSaveTest, SaveAsWorksWhereTheOldOneCannotBeBroughtBack) {
  iDisk.reset();
  QFile::remove(CVelumJournal::NameFor(iPath));
  QDir(iFolder.Path()).mkdir(u"t.Orvelle-journal"_s); // nobody can recover from that
  for (const bool binary : {true, false}) {
    const QString path = iFolder.Path(binary ? u"u.Orvelle"_s : u"u.xml"_s);
    iDoc.iStack->SetFlag(EStaBinary, binary);
    iDoc.Save(path);
    ExpectSays(path, iEdited);
  }
  EXPECT_TRUE(iPresenter.Told().isEmpty());
}

TEST_F(CVelumFailedSaveTest, TheNextSaveGoesIntoTheDocumentThatWasBroughtBack) {
  iDisk.reset();
  const TVelumFileId before = CVelumOs::IdOf(iPath);
  iDoc.Save(iPath);
  EXPECT_TRUE(CVelumOs::IdOf(iPath).SameFile(before));
  EXPECT_EQ(Files(), QStringList{u"t.Orvelle"_s});
  ExpectSays(iPath, iEdited);
}

} // namespace
