#include "persist/CVelumBesideName.h"

#include "persist/CVelumJournal.h"
#include "persist/StackMaker.h"
#include "persist/StackTeller.h"
#include "support/FaultInjection.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QString NameOf(qsizetype aBytes) {
  return QString(aBytes - 8, u'n') + u".Orvelle"_s;
}

TEST(CVelumBesideName, MostNamesGetASuffix) {
  EXPECT_EQ(CVelumBesideName::For(u"/a/b"_s, u"-new"_s), u"/a/b-new"_s);
  EXPECT_EQ(CVelumBesideName::For(u"b"_s, u"-new"_s), u"b-new"_s);
  EXPECT_EQ(CVelumBesideName::For(NameOf(240), u"-journal"_s), NameOf(240) + u"-journal"_s);
}

TEST(CVelumBesideName, ALongNameGetsAShortNeighbour) {
  for (const qsizetype bytes : {241, 247, 248, 255}) {
    const QString name = CVelumBesideName::For(u"/a/"_s + NameOf(bytes), u"-journal"_s);
    EXPECT_TRUE(name.startsWith(u"/a/long-name-"_s));
    EXPECT_TRUE(name.endsWith(u"-journal"_s));
    EXPECT_LT(name.size(), 100);
    EXPECT_EQ(name, CVelumBesideName::For(u"/a/"_s + NameOf(bytes), u"-journal"_s));
  }
  EXPECT_NE(CVelumBesideName::For(NameOf(250), u"-new"_s), CVelumBesideName::For(NameOf(251), u"-new"_s));
}

TEST(CVelumBesideName, BytesCountNotCharacters) {
  const QString name(100, QChar(0x4E00)); // three bytes each
  EXPECT_TRUE(CVelumBesideName::For(name, u"-new"_s).startsWith(u"long-name-"_s));
  EXPECT_EQ(CVelumBesideName::For(name.first(80), u"-new"_s), name.first(80) + u"-new"_s);
}

TEST(CVelumBesideName, CutLeavesRoomForTheRest) {
  EXPECT_EQ(CVelumBesideName::Cut(u"short"_s, u".x"_s), u"short"_s);
  EXPECT_EQ(CVelumBesideName::Cut(QString(300, u'n'), QString(5, u'r')), QString(250, u'n'));
  const QString faces = QString::fromUtf8("😀").repeated(64); // four bytes and two characters each
  EXPECT_EQ(CVelumBesideName::Cut(faces, u"."_s).size(), 126) << "a pair is not torn";
}

// A document whose name is as long as the file system allows.
class LongName : public testing::Test {
protected:
  [[nodiscard]] QStringList Files() const { return QDir(iFolder.Path()).entryList(QDir::Files, QDir::Name); }
  static QJsonObject Told(const QString& aPath) { return StackMaker::Load(aPath).Tell(); }
  // Loads the document, changes it in place and saves it.
  void ChangeAndSave() const {
    StackMaker doc = StackMaker::Load(iPath);
    doc.ChangePicture(*doc.Card(1), QByteArray(80000, 'c'));
    doc.Save(iPath);
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  QString iPath = iFolder.Path(NameOf(255));
};

TEST_F(LongName, IsSavedInBothFormats) {
  StackMaker doc = StackMaker::New(3, 70000);
  doc.Save(iPath);
  ChangeAndSave();
  EXPECT_EQ(StackMaker::Load(iPath).Picture(*StackMaker::Load(iPath).Card(1)).size(), 80000);
  StackMaker text = StackMaker::Load(iPath);
  text.iStack->SetFlag(EStaBinary, false);
  text.Save(iPath);
  EXPECT_EQ(Told(iPath).isEmpty(), false);
  EXPECT_EQ(Files(), QStringList{NameOf(255)});
}

TEST_F(LongName, ASaveThatIsCutOffIsTakenBack) {
  StackMaker::New(3, 70000).Save(iPath);
  const QJsonObject before = Told(iPath);
  bool sawJournal = false;
  for (int at = 0;; ++at) {
    const pid_t child = fork();
    if (child == 0) {
      FaultInjection faults(FaultInjection::EAct::Kill, at);
      ChangeAndSave();
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    sawJournal |= QFile::exists(CVelumJournal::NameFor(iPath));
    if (WEXITSTATUS(status) == 0) break;
    const QJsonObject now = Told(iPath);
    if (!StackTeller::Difference(before, now, {}).isEmpty()) break; // the new document is whole
    EXPECT_FALSE(QFile::exists(CVelumJournal::NameFor(iPath))) << "opening has cleared it away";
  }
  EXPECT_TRUE(sawJournal);
}

TEST_F(LongName, AnotherVersionIsKeptUnderACutName) {
  StackMaker doc = StackMaker::New(2, 0);
  doc.Save(iPath);
  QFile::remove(iPath);
  StackMaker::New(1, 0).Save(iPath);
  doc.AddCard(u"more"_s, 0);
  doc.Save(iPath);
  ASSERT_EQ(iPresenter.Told().size(), 1);
  EXPECT_EQ(Files().size(), 2);
}

} // namespace
