#include "persist/CVelumBinSave.h"

#include "core/CVelumMsg.h"
#include "persist/CVelumJournal.h"
#include "persist/StackMaker.h"
#include "persist/StackTeller.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class CVelumBinSaveTest : public testing::Test {
protected:
  QStringList Files() const {
    return QDir(iFolder.Path()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
  }
  // Loads the document and compares it with aDoc in memory.
  void ExpectOnDisk(StackMaker& aDoc) {
    StackMaker loaded = StackMaker::Load(iPath);
    EXPECT_EQ(StackTeller::Difference(aDoc.Tell(), loaded.Tell(), {}), u""_s);
  }
  void ExpectFailure(qint32 aNumber, StackMaker& aDoc, const QString& aPath) {
    try {
      aDoc.Save(aPath);
      ADD_FAILURE() << "no failure";
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), aNumber) << e.what();
    }
  }
  qint32 PosOf(const StackMaker& aDoc, qint32 aId) const {
    const CVelumBlobStore& store = *aDoc.iStack->BlobStore();
    return store.PosTab().ValRef(store.Index().ValRef(store.Index().FindIntKey(aId)).Int()).Int0();
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  QString iPath = iFolder.Path(u"t.Orvelle"_s);
};

TEST_F(CVelumBinSaveTest, NewDocumentWithPictures) {
  StackMaker doc = StackMaker::New(3, 1000);
  EXPECT_TRUE(doc.iStack->Changed());
  doc.Save(iPath);
  EXPECT_FALSE(doc.iStack->Changed());
  EXPECT_TRUE(doc.iStack->BlobStore()->Flag(EBstFileBased));
  EXPECT_EQ(Files(), QStringList{u"t.Orvelle"_s});
  ExpectOnDisk(doc);
}

TEST_F(CVelumBinSaveTest, BlobsStayWhereTheyAreWhenTheStackShrinks) {
  StackMaker doc = StackMaker::New(3, 1000);
  doc.Save(iPath);
  doc.Card(0)->SetControlVal(doc.TextId(), TVelumValue::OfStr(QString(2000, u'x')));
  doc.Save(iPath);
  auto* before = &doc.iStack->BlobStore()->PosTab();
  qint32 first = before->ValRef(0).Int0();
  qint64 size = QFileInfo(iPath).size();
  doc.Card(0)->SetControlVal(doc.TextId(), TVelumValue::OfStr(u"x"_s));
  doc.Save(iPath);
  EXPECT_EQ(doc.iStack->BlobStore()->PosTab().ValRef(0).Int0(), first);
  EXPECT_LT(doc.iStack->BlobStore()->StartPos(), first);
  EXPECT_EQ(QFileInfo(iPath).size(), size) << "the file is not cut";
  ExpectOnDisk(doc);
}

TEST_F(CVelumBinSaveTest, DeletingTheLastPictureRewritesTheFile) {
  StackMaker doc = StackMaker::New(1, 5000);
  doc.Save(iPath);
  doc.iStack->DeleteCard(doc.Card(0));
  doc.Save(iPath);
  EXPECT_LT(QFileInfo(iPath).size(), 3000);
  ExpectOnDisk(doc);
}

TEST_F(CVelumBinSaveTest, ChangedPicturesAreWrittenAnew) {
  StackMaker doc = StackMaker::New(4, 3000);
  doc.Save(iPath);
  doc.ChangePicture(*doc.Card(0), QByteArray(4000, 'x')); // the first on file, and longer
  doc.ChangePicture(*doc.Card(2), QByteArray(10, 'y'));
  doc.Save(iPath);
  ExpectOnDisk(doc);
  EXPECT_EQ(doc.Picture(*doc.Card(0)), QByteArray(4000, 'x'));
}

TEST_F(CVelumBinSaveTest, ReferenceCountsAreSaved) {
  StackMaker doc = StackMaker::New(2, 100);
  qint32 id = doc.Card(0)->GetControlVal(doc.PictureId(), false).Int();
  doc.Card(1)->SetControlVal(doc.PictureId(), TVelumValue::OfBlobId(id));
  doc.Save(iPath);
  StackMaker loaded = StackMaker::Load(iPath);
  EXPECT_EQ(loaded.iStack->BlobStore()->ReadBlob(id, false)->RefCount(), 2);
  loaded.iStack->DeleteCard(loaded.Card(1));
  loaded.Save(iPath);
  EXPECT_EQ(StackMaker::Load(iPath).iStack->BlobStore()->ReadBlob(id, false)->RefCount(), 1);
}

TEST_F(CVelumBinSaveTest, SaveAsLeavesTheOldDocument) {
  StackMaker doc = StackMaker::New(3, 1000);
  doc.Save(iPath);
  QByteArray before = iFolder.Read(u"t.Orvelle"_s);
  doc.AddCard(u"more"_s, 500);
  doc.Save(iFolder.Path(u"u.Orvelle"_s));
  EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), before);
  EXPECT_EQ(doc.iStack->BlobStore()->File()->Filename(), iFolder.Path(u"u.Orvelle"_s));
  iPath = iFolder.Path(u"u.Orvelle"_s);
  ExpectOnDisk(doc);
}

TEST_F(CVelumBinSaveTest, SaveAsOntoTheSameFileByAnotherName) {
  StackMaker doc = StackMaker::New(3, 1000);
  doc.Save(iPath);
  ASSERT_TRUE(QFile::link(iPath, iFolder.Path(u"l.Orvelle"_s)));
  doc.AddCard(u"more"_s, 500);
  doc.Save(iFolder.Path(u"l.Orvelle"_s));
  EXPECT_TRUE(QFileInfo(iFolder.Path(u"l.Orvelle"_s)).isSymLink());
  EXPECT_FALSE(QFileInfo(iPath).isSymLink());
  ExpectOnDisk(doc);
}

TEST_F(CVelumBinSaveTest, LinksAndPermissionsStay) {
  QString target = iFolder.Path(u"target.Orvelle"_s);
  StackMaker::New(2, 0).Save(target);
  ASSERT_EQ(::chmod(QFile::encodeName(target).constData(), 0640), 0);
  ASSERT_TRUE(QFile::link(u"target.Orvelle"_s, iPath));
  for (qsizetype bytes : {0, 100, 100}) { // beside, beside, in place
    StackMaker doc = StackMaker::Load(iPath);
    doc.AddCard(u"more"_s, bytes);
    doc.Save(iPath);
    EXPECT_TRUE(QFileInfo(iPath).isSymLink());
    struct stat info;
    ASSERT_EQ(::stat(QFile::encodeName(target).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640U);
    ExpectOnDisk(doc);
  }
  EXPECT_EQ(Files(), (QStringList{u"t.Orvelle"_s, u"target.Orvelle"_s}));
}

TEST_F(CVelumBinSaveTest, FolderThatCannotBeWrittenRefusesBeforeAnything) {
  StackMaker doc = StackMaker::New(2, 1000);
  doc.Save(iPath);
  doc.AddCard(u"more"_s, 100);
  QByteArray before = iFolder.Read(u"t.Orvelle"_s);
  QByteArray folder = QFile::encodeName(iFolder.Path());
  ASSERT_EQ(::chmod(folder.constData(), 0555), 0);
  ASSERT_EQ(::chmod(QFile::encodeName(iPath).constData(), 0666), 0);
  bool root = ::geteuid() == 0;
  if (root && ::seteuid(65534) != 0) GTEST_SKIP() << "root cannot be given up here";
  doc.iStack->BlobStore()->NoteFileId(); // the change of permissions is not what this is about
  ExpectFailure(EMsgCouldNotSave, doc, iPath);
  if (root) {
    ASSERT_EQ(::seteuid(0), 0);
  }
  ASSERT_EQ(::chmod(folder.constData(), 0755), 0);
  EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), before);
  EXPECT_TRUE(doc.iStack->Changed());
  doc.Save(iPath);
  ExpectOnDisk(doc);
}

TEST_F(CVelumBinSaveTest, AnotherVersionInPlaceOfTheFileIsKept) {
  StackMaker doc = StackMaker::New(3, 1000);
  doc.Save(iPath);
  StackMaker other = StackMaker::New(1, 200);
  other.Save(iFolder.Path(u"o"_s));
  ASSERT_EQ(
      ::rename(QFile::encodeName(iFolder.Path(u"o"_s)).constData(), QFile::encodeName(iPath).constData()), 0);
  QByteArray otherBytes = iFolder.Read(u"t.Orvelle"_s);
  doc.AddCard(u"more"_s, 100);
  doc.Save(iPath);
  ExpectOnDisk(doc);
  ASSERT_EQ(Files().size(), 2);
  QString kept = Files().first();
  EXPECT_TRUE(kept.startsWith(u"t (other version "_s) && kept.endsWith(u").Orvelle"_s)) << kept.toStdString();
  EXPECT_EQ(iFolder.Read(kept), otherBytes);
  ASSERT_EQ(iPresenter.Told().size(), 1);
  EXPECT_TRUE(iPresenter.Told().first().contains(kept));
  doc.Save(iPath);
  EXPECT_EQ(Files().size(), 2) << "from now on the file is known";
}

// As an editor or a copy into the file does it, which keeps the inode.
TEST_F(CVelumBinSaveTest, AnotherVersionInTheSameFileIsKept) {
  for (const qsizetype bytes : {0, 1000}) {
    StackMaker doc = StackMaker::New(3, bytes);
    doc.Save(iPath);
    const QByteArray other = iFolder.Read(u"t.Orvelle"_s) + "of another program";
    {
      QFile file(iPath);
      ASSERT_TRUE(file.open(QIODevice::ReadWrite));
      file.write(other);
    }
    doc.AddCard(u"more"_s, bytes);
    doc.Save(iPath);
    ExpectOnDisk(doc);
    ASSERT_EQ(Files().size(), 2);
    EXPECT_EQ(iFolder.Read(Files().first()), other);
    EXPECT_EQ(iPresenter.Told().size(), 1);
    for (const QString& name : Files()) QFile::remove(iFolder.Path(name));
    iPresenter.Clear();
  }
}

// Two ways to one folder, where the text of the link alone leads to another one.
TEST_F(CVelumBinSaveTest, ASaveThroughLinksGoesToTheFileThatWasLoaded) {
  ASSERT_TRUE(QDir(iFolder.Path()).mkpath(u"real/c/d"_s));
  ASSERT_TRUE(QDir(iFolder.Path()).mkpath(u"other"_s));
  const QString real = iFolder.Path(u"real/c/doc.Orvelle"_s);
  StackMaker::New(2, 500).Save(real);
  ASSERT_EQ(::symlink("../doc.Orvelle", QFile::encodeName(iFolder.Path(u"real/c/d/link.Orvelle"_s))), 0);
  ASSERT_EQ(::symlink("../real/c/d", QFile::encodeName(iFolder.Path(u"other/dirlink"_s))), 0);
  const QString link = iFolder.Path(u"other/dirlink/link.Orvelle"_s);
  for (const bool binary : {true, false}) {
    StackMaker doc = StackMaker::Load(link);
    doc.iStack->SetFlag(EStaBinary, binary);
    doc.AddCard(u"more"_s, 700);
    doc.Save(link);
    EXPECT_EQ(StackMaker::Load(real).iStack->NumCards(), doc.iStack->NumCards());
    EXPECT_EQ(QDir(iFolder.Path(u"other"_s)).entryList(QDir::Files), QStringList());
    EXPECT_EQ(iPresenter.Told(), QList<QString>());
  }
}

TEST_F(CVelumBinSaveTest, ALinkThatLeadsElsewhereNowIsAnotherVersion) {
  const QString first = iFolder.Path(u"first"_s);
  const QString second = iFolder.Path(u"second"_s);
  StackMaker::New(2, 500).Save(first);
  StackMaker::New(1, 100).Save(second);
  const QByteArray firstBytes = iFolder.Read(u"first"_s);
  const QByteArray secondBytes = iFolder.Read(u"second"_s);
  ASSERT_TRUE(QFile::link(first, iPath));
  StackMaker doc = StackMaker::Load(iPath);
  QFile::remove(iPath);
  ASSERT_TRUE(QFile::link(second, iPath));
  doc.AddCard(u"more"_s, 700);
  doc.Save(iPath);
  EXPECT_EQ(iFolder.Read(u"first"_s), firstBytes);
  ASSERT_EQ(iPresenter.Told().size(), 1);
  EXPECT_EQ(StackMaker::Load(second).iStack->NumCards(), 3);
  ASSERT_TRUE(Files().contains(u"second"_s) && Files().size() == 4);
  for (const QString& name : Files()) {
    if (name.startsWith(u"second (other"_s)) {
      EXPECT_EQ(iFolder.Read(name), secondBytes);
    }
  }
}

TEST_F(CVelumBinSaveTest, APrivateDocumentStaysPrivateWhileItIsSaved) {
  class CLook : public CVelumFaults {
  public:
    explicit CLook(QString aFolder) : iFolder(std::move(aFolder)) { CVelumOs::SetFaults(this); }
    ~CLook() override { CVelumOs::SetFaults(nullptr); }
    int Before(EOsCall, const QString&, qint64&) override {
      for (const QFileInfo& file : QDir(iFolder).entryInfoList(QDir::Files)) {
        ++iLooks;
        EXPECT_EQ(file.permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions())
            << file.fileName().toStdString();
      }
      return 0;
    }
    QString iFolder;
    int iLooks = 0;
  };
  for (const qsizetype bytes : {0, 1000}) {
    StackMaker doc = StackMaker::New(3, bytes);
    doc.Save(iPath);
    ASSERT_EQ(::chmod(QFile::encodeName(iPath).constData(), 0600), 0);
    doc = StackMaker::Load(iPath);
    doc.AddCard(u"more"_s, bytes);
    const CLook look(iFolder.Path());
    doc.Save(iPath);
    EXPECT_GT(look.iLooks, 3);
  }
}

TEST_F(CVelumBinSaveTest, TwoWindowsOnOneDocument) {
  StackMaker::New(6, 1000).Save(iPath);
  StackMaker one = StackMaker::Load(iPath);
  StackMaker two = StackMaker::Load(iPath);
  one.Card(0)->SetControlVal(one.TextId(), TVelumValue::OfStr(QString(3000, u'x'))); // moves blobs
  one.Save(iPath);
  two.AddCard(u"two"_s, 50);
  two.Save(iPath);
  ExpectOnDisk(two);
  StackMaker kept = StackMaker::Load(iFolder.Path(Files().first()));
  EXPECT_EQ(StackTeller::Difference(one.Tell(), kept.Tell(), {}), u""_s);
}

TEST_F(CVelumBinSaveTest, AloneTheFileStaysTheSame) {
  StackMaker doc = StackMaker::New(3, 1000);
  doc.Save(iPath);
  TVelumFileId before = CVelumOs::IdOf(iPath);
  doc.AddCard(u"more"_s, 100);
  doc.Save(iPath);
  EXPECT_TRUE(CVelumOs::IdOf(iPath).SameFile(before)) << "saved in place";
  StackMaker second = StackMaker::Load(iPath);
  doc.Save(iPath);
  EXPECT_FALSE(CVelumOs::IdOf(iPath).SameFile(before)) << "the second one's blobs stay where they are";
  EXPECT_EQ(StackTeller::Difference(doc.Tell(), second.Tell(), {}), u""_s);
}

TEST_F(CVelumBinSaveTest, ADeletedFileIsWrittenAgain) {
  StackMaker doc = StackMaker::New(3, 1000);
  doc.Save(iPath);
  QFile::remove(iPath);
  doc.Save(iPath);
  ExpectOnDisk(doc);
  EXPECT_EQ(Files().size(), 1);
}

TEST_F(CVelumBinSaveTest, TextThatCouldNotBeReadBackIsRefused) {
  StackMaker doc = StackMaker::New(2, 1000);
  doc.Save(iPath);
  QByteArray before = iFolder.Read(u"t.Orvelle"_s);
  doc.Card(1)->SetControlVal(doc.TextId(), TVelumValue::OfStr(QString(15001, u'x')));
  ExpectFailure(EMsgCouldNotSave, doc, iPath);
  CVelumMsg::ShowLastError();
  EXPECT_EQ(iPresenter.LastMsg(), EMsgCouldNotSave);
  EXPECT_TRUE(iPresenter.LastText().contains(u"Card 1"_s)) << iPresenter.LastText().toStdString();
  EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), before);
  EXPECT_TRUE(doc.iStack->Changed());
  doc.Card(1)->SetControlVal(doc.TextId(), TVelumValue::OfStr(QString(15000, u'x')));
  doc.Save(iPath);
  ExpectOnDisk(doc);
}

// The message leads to the place.
TEST_F(CVelumBinSaveTest, ARefusalNamesTheFieldOrTheHandler) {
  const auto reason = [this](const std::function<void(StackMaker&)>& aSpoil) {
    StackMaker doc = StackMaker::New(2, 100);
    aSpoil(doc);
    ExpectFailure(EMsgCouldNotSave, doc, iPath);
    CVelumMsg::ShowLastError();
    return iPresenter.LastText().section(u"\r\n"_s, 1);
  };
  const auto script = [](CVelumScripted& aObj) {
    const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
    TVelumElem elem;
    handlers->InitElem(elem);
    elem.iStrKey = u"select"_s;
    elem.iVal = TVelumValue::OfStr(QString(15002, u'0'));
    handlers->CreateStrKey(elem);
    aObj.SetScript(handlers);
  };
  const auto field = [](StackMaker& aDoc) { return aDoc.Card(1)->Background()->FindControl(aDoc.TextId()); };
  EXPECT_EQ(reason([&](StackMaker& d) {
              d.Card(1)->SetControlVal(d.TextId(), TVelumValue::OfStr(QString(16000, u'x')));
              field(d)->SetName(u"Report"_s);
            }),
            u"Card 'Card 1' holds a text that is too long: the text of its field 'Report' has 16000 "
            u"characters, at most "
            u"15000 can be stored"_s);
  EXPECT_EQ(
      reason([&](StackMaker& d) { d.Card(1)->SetScriptSource(QString(15001, u'x')); }),
      u"Card 'Card 1' holds a text that is too long: its script has 15001 characters, at most 15000 can be stored"_s);
  EXPECT_EQ(reason([&](StackMaker& d) { script(*d.Card(1)); }),
            u"Card 'Card 1' holds a text that is too long: the code of its handler 'select' has 15002 "
            u"characters, at most "
            u"15000 can be stored"_s);
  EXPECT_TRUE(
      reason([&](StackMaker& d) { script(*field(d)); })
          .contains(
              u"holds a text that is too long: field 'Text': the code of its handler 'select' has 15002"_s));
  EXPECT_TRUE(reason([&](StackMaker& d) {
                script(*d.Card(1)->Background());
              }).contains(u"holds a text that is too long: the code of its handler 'select' has 15002"_s));
  EXPECT_EQ(reason([&](StackMaker& d) { script(*d.iStack); }),
            u"The stack holds a text that is too long: the code of its handler 'select' has 15002 "
            u"characters, at most "
            u"15000 can be stored"_s);
}

TEST_F(CVelumBinSaveTest, EveryKindOfTextIsChecked) {
  const QString text(15001, u'x');
  const std::pair<const char*, std::function<void(StackMaker&)>> places[] = {
      {"stack name", [&](StackMaker& d) { d.iStack->SetName(text); }},
      {"stack description", [&](StackMaker& d) { d.iStack->SetDescr(text); }},
      {"stack script", [&](StackMaker& d) { d.iStack->SetScriptSource(text); }},
      {"view name", [&](StackMaker& d) { d.iView->iName = text; }},
      {"card name", [&](StackMaker& d) { d.iStack->RenameCard(d.Card(0), text); }},
      {"card script", [&](StackMaker& d) { d.Card(0)->SetScriptSource(text); }},
      {"background name", [&](StackMaker& d) { d.Card(0)->Background()->SetName(text); }},
      {"field label",
       [&](StackMaker& d) { d.Card(0)->Background()->FindControl(d.TextId())->SetLabel(text); }},
      {"field default",
       [&](StackMaker& d) { d.Card(0)->Background()->FindControl(d.TextId())->SetDefaultVal(text); }},
      {"sort key",
       [&](StackMaker& d) {
         d.iStack->AddSortKey(MakeRef<CVelumSortKey>(d.iStack->IdGen().NextId(), text, 0));
       }},
      {"font", [&](StackMaker& d) { d.iStack->SetListFont(MakeRef<CVelumFont>(text, ENoShort, ENoInt)); }},
      {"picture name",
       [&](StackMaker& d) {
         d.iStack->BlobStore()
             ->ReadBlob(d.Card(0)->GetControlVal(d.PictureId(), false).Int(), false)
             ->SetName(text);
       }},
      {"picture of no bytes", [](StackMaker& d) { d.ChangePicture(*d.Card(0), {}); }},
      {"large picture", [](StackMaker& d) { d.ChangePicture(*d.Card(0), QByteArray(10000001, 'x')); }},
  };
  for (const auto& [what, spoil] : places) {
    SCOPED_TRACE(what);
    StackMaker doc = StackMaker::New(1, 100);
    doc.Save(iPath);
    QByteArray before = iFolder.Read(u"t.Orvelle"_s);
    spoil(doc);
    ExpectFailure(EMsgCouldNotSave, doc, iPath);
    EXPECT_EQ(iFolder.Read(u"t.Orvelle"_s), before);
  }
}

TEST_F(CVelumBinSaveTest, APictureOfTenMillionBytesGoesThrough) {
  StackMaker doc = StackMaker::New(1, 10000000);
  doc.Save(iPath);
  ExpectOnDisk(doc);
}

TEST_F(CVelumBinSaveTest, LongCardListIsCutOnDiskAndWholeInMemory) {
  StackMaker doc = StackMaker::New(0, 0);
  auto list = MakeRef<CVelumControl>(doc.iStack->IdGen().NextId(), u"List"_s, EConList);
  list->SetFlag(EConCardList, true);
  Ref<CVelumControlSet> background;
  qint32 at = 0;
  ASSERT_TRUE(doc.iStack->GetFirstBackground(background, at));
  list->SetSelBackgroundId(background->Id());
  background->AddControl(list, ENoInt);
  doc.iStack->SetControlDynFlags();
  for (int i = 0; i < 2000; ++i) doc.AddCard(u"A card with a name %1"_s.arg(i), 0);
  QString whole = doc.Card(0)->GetControlVal(list->Id(), false).Str();
  ASSERT_GT(whole.size(), 15000);
  doc.Save(iPath);
  EXPECT_EQ(doc.Card(0)->GetControlVal(list->Id(), false).Str(), whole);
  EXPECT_FALSE(doc.iStack->Changed());
  StackMaker loaded = StackMaker::Load(iPath);
  QString stored = loaded.Card(0)->Background()->FindControl(list->Id())->DefaultVal();
  EXPECT_LE(stored.size(), 15000);
  EXPECT_GT(stored.size(), 14900);
  EXPECT_TRUE(whole.startsWith(stored) && stored.endsWith(u"\r\n"_s));
  EXPECT_FALSE(loaded.iStack->Changed());
  EXPECT_EQ(loaded.Card(0)->GetControlVal(list->Id(), false).Str(), whole) << "computed anew when read";
}

TEST_F(CVelumBinSaveTest, ADamagedPictureIsMovedAsItIs) {
  StackMaker doc = StackMaker::New(3, 1000);
  doc.Save(iPath);
  const qint32 id = doc.Card(1)->GetControlVal(doc.PictureId(), false).Int();
  const qint32 pos = PosOf(doc, id);
  doc = StackMaker::New(0, 0);
  {
    CVelumFile file(iPath, EFilReadWrite);
    file.OpenFile();
    file.SeekPos(pos);
    file.WriteRawBytes(QByteArray(6, '\xee'));
  }
  const auto bytes = [&](const StackMaker& aDoc) {
    CVelumFile file(iPath, EFilRead);
    file.OpenFile();
    return file.PeekAt(PosOf(aDoc, id), aDoc.iStack->BlobStore()->PosTab().ValRef(1).Int1());
  };
  StackMaker loaded = StackMaker::Load(iPath);
  const QByteArray before = bytes(loaded);
  loaded.Card(0)->SetControlVal(loaded.TextId(), TVelumValue::OfStr(QString(3000, u'x')));
  loaded.Save(iPath);
  EXPECT_FALSE(loaded.iStack->Changed());
  ASSERT_EQ(iPresenter.Told().size(), 1);
  EXPECT_TRUE(iPresenter.Told().first().contains(u"cannot be read"_s));
  loaded.Save(iPath);
  EXPECT_EQ(iPresenter.Told().size(), 1) << "told once";
  EXPECT_EQ(iPresenter.Count(), 0);
  // The rest is whole after a load, and another save keeps the bytes too.
  StackMaker again = StackMaker::Load(iPath);
  EXPECT_EQ(bytes(again), before);
  iPresenter.SetDefaultAnswer(true);
  for (const int card : {0, 2}) EXPECT_EQ(again.Picture(*again.Card(card)).size(), 1000) << card;
  EXPECT_EQ(iPresenter.CountOf(EMsgAssertFailedOk), 1);
  again.Save(iFolder.Path(u"other.Orvelle"_s));
  EXPECT_EQ(again.iStack->BlobStore()->PosTab().ValRef(1).Int1(), before.size());
}

TEST_F(CVelumBinSaveTest, ManyRandomEditsAndSaves) {
  std::srand(4711);
  auto random = [](int aMax) { return std::rand() % aMax; };
  StackMaker doc = StackMaker::New(5, 300);
  doc.Save(iPath);
  for (int step = 0; step < 4000; ++step) {
    int num = doc.iStack->NumCards();
    Ref<CVelumCard> card = num > 0 ? doc.Card(random(num)) : doc.AddCard(u"again"_s, 10);
    switch (random(8)) {
    case 0:
      if (num < 30) doc.AddCard(u"new %1"_s.arg(step), random(3000));
      break;
    case 1:
      if (num > 3) doc.iStack->DeleteCard(card);
      break;
    case 2:
      doc.SetPicture(*card, QByteArray(1 + random(5000), static_cast<char>(step)));
      break;
    case 3:
      if (!doc.Picture(*card).isEmpty())
        doc.ChangePicture(*card, QByteArray(1 + random(5000), static_cast<char>(step)));
      break;
    case 4:
      card->SetControlVal(doc.TextId(), TVelumValue::OfStr(QString(random(2000), u't')));
      break;
    case 5: { // another reference to a picture
      TVelumValue val = doc.Card(random(num))->GetControlVal(doc.PictureId(), false);
      if (val.Type() == EValBlobId) card->SetControlVal(doc.PictureId(), val);
      break;
    }
    case 6:
      (void)doc.Picture(*card);
      break;
    default:
      doc.Save(random(10) == 0 ? iFolder.Path(u"u%1.Orvelle"_s.arg(random(3))) : doc.iStack->Filename());
      ASSERT_FALSE(doc.iStack->Changed());
      if (random(10) == 0) {
        iPath = doc.iStack->Filename();
        ExpectOnDisk(doc);
        ASSERT_FALSE(HasFailure()) << "step " << step;
      }
      if (random(20) == 0) doc = StackMaker::Load(doc.iStack->Filename());
    }
    ASSERT_TRUE(doc.iStack->BlobStore()->IsSound() || doc.iStack->Changed()) << "step " << step;
  }
  doc.Save(iPath);
  ExpectOnDisk(doc);
  EXPECT_EQ(iPresenter.Count(), 0);
}

} // namespace
