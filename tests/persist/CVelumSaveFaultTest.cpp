// Saves that are cut off or fail, at each of the calls they make.
#include "persist/CVelumJournal.h"
#include "persist/StackMaker.h"
#include "persist/StackTeller.h"
#include "support/FaultInjection.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <optional>
#include <sys/wait.h>
#include <unistd.h>

namespace {

enum class EKind { InPlace, Beside, SaveAs, OtherVersion };

// A kind of save, with the document before and after it.
class SaveFault : public testing::TestWithParam<EKind> {
protected:
  SaveFault() {
    StackMaker first = StackMaker::New(4, GetParam() == EKind::Beside ? 0 : 70000);
    first.Save(iPath);
    iOld = first.Tell();
    iOldBytes = iFolder.Read(u"t.Orvelle"_s);
  }
  // The old document on the disk, and in memory one with edits of all kinds.
  StackMaker Edited() {
    for (const QString& name : QDir(iFolder.Path()).entryList(QDir::Files)) QFile::remove(iFolder.Path(name));
    iFolder.Write(u"t.Orvelle"_s, iOldBytes);
    StackMaker doc = StackMaker::Load(iPath);
    doc.Card(1)->SetControlVal(doc.TextId(), TVelumValue::OfStr(QString(9000, u'x'))); // moves blobs
    if (GetParam() != EKind::Beside) {
      doc.ChangePicture(*doc.Card(2), QByteArray(80000, 'c'));
      doc.SetPicture(*doc.Card(3), QByteArray(1000, 'n')); // leaves a hole
      doc.AddCard(u"new"_s, 90000);
    }
    if (GetParam() == EKind::OtherVersion) {
      QFile::remove(iPath);
      iFolder.Write(u"t.Orvelle"_s, iOldBytes);
    }
    return doc;
  }
  QString Target() const { return GetParam() == EKind::SaveAs ? iFolder.Path(u"n.Orvelle"_s) : iPath; }

  // Whether what is on the disk under aPath says aTold.
  static bool Says(const QString& aPath, const QJsonObject& aTold) {
    StackMaker loaded = StackMaker::Load(aPath);
    return StackTeller::Difference(aTold, loaded.Tell(), {}).isEmpty();
  }
  void ExpectOldOrNew(const QJsonObject& aNew) {
    EXPECT_TRUE(Says(iPath, iOld) || (GetParam() != EKind::SaveAs && Says(iPath, aNew)));
    if (GetParam() == EKind::SaveAs && QFile::exists(Target())) {
      EXPECT_TRUE(Says(Target(), aNew));
    }
    EXPECT_FALSE(QFile::exists(CVelumJournal::NameFor(iPath))) << "opening has cleared it away";
  }
  // The failed save has left the program as it was: all blobs can be read, and edits saved.
  void GoOn(StackMaker& aDoc, const QJsonObject& aNew) {
    EXPECT_EQ(StackTeller::Difference(aNew, aDoc.Tell(), {}), u""_s);
    aDoc.AddCard(u"later"_s, 50000);
    aDoc.ChangePicture(*aDoc.Card(aDoc.iStack->NumCards() - 1), QByteArray(60000, 'z'));
    aDoc.Save(Target());
    EXPECT_FALSE(aDoc.iStack->Changed());
    EXPECT_TRUE(Says(Target(), aDoc.Tell()));
  }
  void FailEachCall(FaultInjection::EAct aAct) {
    int num = 0;
    for (bool reached = true; reached; ++num) {
      SCOPED_TRACE(num);
      StackMaker doc = Edited();
      QJsonObject edited = doc.Tell();
      bool failed = false;
      {
        FaultInjection faults(aAct, num);
        try {
          doc.Save(Target());
        } catch (const CVelumException&) {
          failed = true;
        }
        reached = faults.Hit();
      }
      if (failed) {
        EXPECT_TRUE(doc.iStack->Changed());
      }
      ExpectOldOrNew(edited);
      GoOn(doc, edited);
      if (HasFailure()) return;
    }
    EXPECT_GT(num, 8) << "the calls of a save have been counted";
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  QString iPath = iFolder.Path(u"t.Orvelle"_s);
  QJsonObject iOld;
  QByteArray iOldBytes;
};

TEST_P(SaveFault, EachCallFailsOnce) {
  FailEachCall(FaultInjection::EAct::Fail);
}

TEST_P(SaveFault, EachCallFailsAndAllBehindIt) {
  FailEachCall(FaultInjection::EAct::Stay);
}

TEST_P(SaveFault, KilledAtEachCall) {
  int num = 0;
  for (bool reached = true; reached; ++num) {
    SCOPED_TRACE(num);
    std::optional<StackMaker> doc = Edited();
    QJsonObject edited = doc->Tell();
    pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      FaultInjection faults(FaultInjection::EAct::Kill, num);
      try {
        doc->Save(Target());
      } catch (const std::exception&) {
        ::_exit(FaultInjection::EKilled);
      }
      ::_exit(faults.Hit() ? FaultInjection::EKilled : 0);
    }
    doc.reset(); // its open file, with the lock, is the child's too
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    reached = WEXITSTATUS(status) == FaultInjection::EKilled;
    ExpectOldOrNew(edited);
    // Another program start goes on with it.
    StackMaker loaded = StackMaker::Load(iPath);
    QJsonObject told = loaded.Tell();
    GoOn(loaded, told);
    if (HasFailure()) return;
  }
  EXPECT_GT(num, 8);
}

std::string KindName(const testing::TestParamInfo<EKind>& aInfo) {
  switch (aInfo.param) {
  case EKind::InPlace:
    return "InPlace";
  case EKind::Beside:
    return "Beside";
  case EKind::SaveAs:
    return "SaveAs";
  default:
    return "OtherVersion";
  }
}

INSTANTIATE_TEST_SUITE_P(Saves, SaveFault,
                         testing::Values(EKind::InPlace, EKind::Beside, EKind::SaveAs, EKind::OtherVersion),
                         KindName);

// Every call of a load fails in turn: nothing is lost, and a later load works.
TEST(LoadFault, EachCallFails) {
  TempFolder folder;
  ScriptedPresenter presenter;
  QString path = folder.Path(u"t.Orvelle"_s);
  StackMaker doc = StackMaker::New(3, 70000);
  doc.Save(path);
  QByteArray bytes = folder.Read(u"t.Orvelle"_s);
  for (EOsCall call : {EOsCall::Open, EOsCall::Read}) {
    int num = 0;
    for (bool reached = true; reached; ++num) {
      FaultInjection faults(FaultInjection::EAct::Fail, num, 5 /* EIO */);
      faults.Only(call);
      try {
        (void)StackMaker::Load(path).Tell();
        EXPECT_FALSE(faults.Hit());
      } catch (const CVelumException&) {
        EXPECT_TRUE(faults.Hit());
      }
      reached = faults.Hit();
    }
    EXPECT_GT(num, 2);
  }
  EXPECT_EQ(folder.Read(u"t.Orvelle"_s), bytes);
  EXPECT_EQ(StackTeller::Difference(doc.Tell(), StackMaker::Load(path).Tell(), {}), u""_s);
}

} // namespace
