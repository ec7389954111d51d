// The power fails at any moment of a save or of what follows it: there is always the old or the new document.
#include "persist/CVelumRecovery.h"
#include "persist/CutSave.h"
#include "persist/StackMaker.h"
#include "support/PowerLoss.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QTemporaryDir>

namespace {

using CVelumRecovery::EFound;

enum class EKind { InPlace, Beside, Xml, OtherVersion };

const QString EName = u"t.Orvelle"_s;
constexpr int ERandom = 200; // choices of what reached the disk, for each call

// In memory where the system has such a place: bringing things to the disk then takes no time.
QString FolderName() {
  return (QFileInfo(u"/dev/shm"_s).isWritable() ? u"/dev/shm"_s : QDir::tempPath()) + u"/orvelles-XXXXXX"_s;
}

class PowerLossTest : public testing::TestWithParam<EKind> {
protected:
  PowerLossTest() {
    StackMaker first = StackMaker::New(2, GetParam() == EKind::Beside ? 0 : 700);
    first.iStack->SetFlag(EStaBinary, GetParam() != EKind::Xml);
    first.Save(iPath);
    first = StackMaker::Load(iPath);
    iStart = PowerLoss::StateOf(iDir.path());
    iOld = iStart[EName];
  }
  // A document with edits that change blocks in many places and make it longer.
  StackMaker Edited() const {
    StackMaker doc = StackMaker::Load(iPath);
    doc.Card(0)->SetControlVal(doc.TextId(), TVelumValue::OfStr(QString(600, u'x')));
    if (GetParam() != EKind::Beside) {
      doc.ChangePicture(*doc.Card(1), QByteArray(3500, 'c'));
      doc.AddCard(u"new"_s, 2900);
    }
    if (GetParam() == EKind::OtherVersion)
      PowerLoss::Make(iDir.path(), {{EName, iOld + "of another program"}}); // which can be read all the same
    return doc;
  }
  // The log of a save, of which the call aFailAt may fail. Whether the save says that it went:
  bool Save(PowerLoss& aLog, StackMaker& aDoc, int aFailAt = -1) {
    aLog.FailAt(aFailAt);
    aLog.Begin();
    bool done = true;
    try {
      aDoc.Save(iPath);
    } catch (const CVelumException&) {
      done = false;
    }
    aLog.End();
    return done;
  }
  // Opens what a power failure has left; the document is then.
  QByteArray Opened(const TFolderState& aState) {
    PowerLoss::Make(iOther.path(), aState);
    const QString path = iOther.filePath(EName);
    EXPECT_NE(CVelumRecovery::Run(path), EFound::Doubt);
    const TFolderState after = PowerLoss::StateOf(iOther.path());
    for (auto it = after.begin(); it != after.end(); ++it)
      EXPECT_TRUE(it.key() == EName || it.key().startsWith(u"t (other version "_s)) << it.key().toStdString();
    return after.value(EName);
  }
  // Where another program's version was there, it is there still.
  void ExpectOtherVersion(const TFolderState& aState) {
    if (GetParam() != EKind::OtherVersion) return;
    EXPECT_TRUE(aState.values().contains(iOld + "of another program"));
  }
  void ExpectOldOrNew(const PowerLoss& aLog, size_t aCount, const QByteArray& aOld, const QByteArray& aNew) {
    SCOPED_TRACE(aCount);
    aLog.ForEachState(aCount, ERandom, [&](const TFolderState& aState) {
      const QByteArray doc = Opened(aState);
      EXPECT_TRUE(doc == aOld || doc == aNew);
      ExpectOtherVersion(aState);
      ++iStates;
    });
  }
  // What was told to be done is on the disk. Only the lock of the save, an empty file, may come back.
  void ExpectDone(const PowerLoss& aLog) {
    const TFolderState now = PowerLoss::StateOf(iDir.path());
    aLog.ForEachState(aLog.Count(), ERandom, [&](TFolderState aState) {
      if (aState.value(EName + u"-new"_s, "none").isEmpty()) aState.remove(EName + u"-new"_s);
      EXPECT_EQ(aState.keys(), now.keys());
      EXPECT_TRUE(aState == now);
    });
  }

  ScriptedPresenter iPresenter;
  QTemporaryDir iDir{FolderName()};
  QTemporaryDir iOther{FolderName()};
  QString iPath = iDir.filePath(EName);
  TFolderState iStart;
  QByteArray iOld;
  int iStates = 0;
};

TEST_P(PowerLossTest, DuringASave) {
  StackMaker doc = Edited();
  PowerLoss log(iDir.path());
  const QByteArray old = PowerLoss::StateOf(iDir.path())[EName];
  ASSERT_TRUE(Save(log, doc));
  const QByteArray made = PowerLoss::StateOf(iDir.path())[EName];
  ASSERT_NE(made, old);
  for (size_t count = 0; count <= log.Count() && !HasFailure(); ++count)
    ExpectOldOrNew(log, count, old, made);
  ExpectDone(log);
  EXPECT_GT(iStates, 50);
}

TEST_P(PowerLossTest, DuringASaveThatFailsAndIsUndone) {
  bool failed = true;
  for (int at = 0; failed && !HasFailure(); ++at) {
    SCOPED_TRACE(at);
    PowerLoss::Make(iDir.path(), iStart);
    StackMaker doc = Edited();
    PowerLoss log(iDir.path());
    const QByteArray old = PowerLoss::StateOf(iDir.path())[EName];
    const bool done = Save(log, doc, at);
    failed = log.Failed();
    const QByteArray now = PowerLoss::StateOf(iDir.path())[EName];
    // What had been written when the call failed may be the whole new document.
    const QByteArray made = done ? now : log.SeenAfter(log.FailedAt())[EName];
    const size_t all = log.Count();
    for (size_t count = log.FailedAt(); count <= all && !HasFailure(); ++count)
      ExpectOldOrNew(log, count, old, made);
    if (!done && now == old)
      log.ForEachState(all, ERandom, [&](const TFolderState& aState) { EXPECT_EQ(Opened(aState), old); });
  }
}

// The program ends in a save, another one opens the document, and the power fails then: nothing that the
// first had written was brought to the disk by its end.
TEST_P(PowerLossTest, DuringTheOpeningAfterACrash) {
  StackMaker doc = Edited();
  PowerLoss log(iDir.path());
  const QByteArray old = PowerLoss::StateOf(iDir.path())[EName];
  ASSERT_TRUE(Save(log, doc));
  const QByteArray made = PowerLoss::StateOf(iDir.path())[EName];
  doc = StackMaker::New(0, 0);
  for (size_t end = log.Count(); end > 0 && !HasFailure(); --end) {
    SCOPED_TRACE(end);
    log.GoBackTo(end);
    log.Begin();
    const EFound found = CVelumRecovery::Run(iPath);
    log.End();
    ASSERT_NE(found, EFound::Doubt);
    const TFolderState now = PowerLoss::StateOf(iDir.path());
    for (size_t count = end; count <= log.Count() && !HasFailure(); ++count)
      ExpectOldOrNew(log, count, old, made);
    // Where the opening had to do something, that is not lost any more.
    if (log.Count() > end && found == EFound::Restored) ExpectDone(log);
    if (found == EFound::Restored) {
      EXPECT_EQ(now[EName], old);
    }
  }
}

// A journal of a save that was complete tells that the document need not be put back; so the document has to
// be on the disk before the journal goes.
class CompleteSaveTest : public PowerLossTest {};

TEST_P(CompleteSaveTest, IsOnTheDiskBeforeItsJournalGoes) {
  StackMaker doc = Edited();
  PowerLoss log(iDir.path());
  ASSERT_TRUE(Save(log, doc));
  const QByteArray made = PowerLoss::StateOf(iDir.path())[EName];
  doc = StackMaker::New(0, 0);
  int complete = 0;
  for (size_t end = log.Count(); end > 0 && !HasFailure(); --end) {
    log.GoBackTo(end);
    const TFolderState before = PowerLoss::StateOf(iDir.path());
    if (before[EName] != made || !before.contains(EName + u"-journal"_s)) continue;
    ++complete;
    log.Begin();
    EXPECT_EQ(CVelumRecovery::Run(iPath), EFound::Nothing);
    log.End();
    ExpectDone(log);
  }
  EXPECT_GT(complete, 0);
}

// A journal without its document must not come back when another document has the name.
TEST(PowerLossSetAside, IsOnTheDisk) {
  const QTemporaryDir dir{FolderName()};
  const QString path = dir.filePath(EName);
  StackMaker doc = StackMaker::New(2, 700);
  doc.Save(path);
  doc = StackMaker::New(0, 0);
  CutSave::Run(path);
  QFile::remove(path);
  PowerLoss log(dir.path());
  log.Begin();
  EXPECT_EQ(CVelumRecovery::Run(path), EFound::Nothing);
  log.End();
  log.ForEachState(log.Count(), 0, [](const TFolderState& aState) {
    EXPECT_EQ(aState.keys(), QList<QString>{EName + u"-journal-unused"_s});
  });
}

std::string KindName(const testing::TestParamInfo<EKind>& aInfo) {
  const char* names[] = {"InPlace", "Beside", "Xml", "OtherVersion"};
  return names[static_cast<int>(aInfo.param)];
}

INSTANTIATE_TEST_SUITE_P(Saves, CompleteSaveTest, testing::Values(EKind::InPlace), KindName);
INSTANTIATE_TEST_SUITE_P(Saves, PowerLossTest,
                         testing::Values(EKind::InPlace, EKind::Beside, EKind::Xml, EKind::OtherVersion),
                         KindName);

} // namespace
