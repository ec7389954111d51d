#include "persist/CVelumJournal.h"

#include "persist/CVelumJournalReader.h"
#include "persist/JournalTest.h"
#include "support/FaultInjection.h"

namespace {

class CVelumJournalTest : public JournalTest {
protected:
  CVelumJournalTest() {
    Begin(Pattern(3000000));
    iFd = CVelumOs::Open(iPath, O_RDWR);
  }
  ~CVelumJournalTest() override { CVelumOs::Close(iFd); }

  // Notes where a document is written to.
  class CWrites : public CVelumFaults {
  public:
    explicit CWrites(QString aPath) : iPath(std::move(aPath)) { CVelumOs::SetFaults(this); }
    ~CWrites() override { CVelumOs::SetFaults(nullptr); }
    int Before(EOsCall, const QString&, qint64&) override { return 0; }
    void Done(const TVelumOsStep& aStep) override {
      if (aStep.iCall == EOsCall::Write && aStep.iPath == iPath) iDone.append({aStep.iPos, aStep.iLen});
    }
    QString iPath;
    QList<std::pair<qint64, qint64>> iDone;
  };

  int iFd = -1;
};

TEST_F(CVelumJournalTest, ApplyMakesTheNewDocumentAndFinishKeepsIt) {
  const QByteArray made = Pattern(3100000, 11);
  const Ref<CVelumFilePatch> patch = PatchTo(iFd, made);
  CVelumJournal journal(iPath, iFd);
  journal.Write(*patch);
  EXPECT_EQ(Doc(), iOld);
  journal.Apply(*patch);
  EXPECT_EQ(Doc(), made);
  EXPECT_TRUE(HasJournal());
  journal.Finish();
  EXPECT_TRUE(journal.Finished());
  EXPECT_FALSE(HasJournal());
}

TEST_F(CVelumJournalTest, RollBackPutsTheOldDocumentBack) {
  for (const qsizetype len : {2000, 3000000, 3000001, 4000000}) {
    const Ref<CVelumFilePatch> patch = PatchTo(iFd, Pattern(len, 11));
    CVelumJournal journal(iPath, iFd);
    journal.Write(*patch);
    journal.Apply(*patch);
    ASSERT_NE(Doc(), iOld);
    journal.RollBack();
    EXPECT_TRUE(journal.Finished());
    EXPECT_EQ(Doc(), iOld);
    EXPECT_FALSE(HasJournal());
  }
}

TEST_F(CVelumJournalTest, EachBlockThatDiffersIsWrittenOnceAndNoOther) {
  QByteArray made = iOld;
  made[700] = static_cast<char>(made[700] + 1);
  made[5000] = static_cast<char>(made[5000] + 1);
  made[5200] = static_cast<char>(made[5200] + 1);
  made += "more";
  const Ref<CVelumFilePatch> patch = PatchTo(iFd, made);
  CVelumJournal journal(iPath, iFd);
  journal.Write(*patch);
  // Head, three pieces of a whole block, the piece before the old end and that behind it, and the end mark.
  const qint64 rest = iOld.size() % 512;
  EXPECT_EQ(iFolder.Read(u"d-journal"_s).size(), 24 + 3 * (32 + 512) + (32 + rest) + 32 + 24);
  CWrites writes(iPath);
  journal.Apply(*patch);
  EXPECT_EQ(writes.iDone,
            (QList<std::pair<qint64, qint64>>{{512, 512}, {4608, 1024}, {iOld.size() - rest, rest + 4}}));
  EXPECT_EQ(Doc(), made);
}

TEST_F(CVelumJournalTest, NothingIsTouchedBeforeTheJournalIsComplete) {
  const QByteArray made = Pattern(3100000, 11);
  int num = 0;
  for (bool reached = true; reached; ++num) {
    const Ref<CVelumFilePatch> patch = PatchTo(iFd, made);
    FaultInjection faults(FaultInjection::EAct::Fail, num);
    bool failed = false;
    try {
      CVelumJournal journal(iPath, iFd);
      journal.Write(*patch);
    } catch (const CVelumException&) {
      failed = true;
    }
    reached = faults.Hit();
    EXPECT_EQ(Doc(), iOld);
    EXPECT_TRUE(!failed || !HasJournal()) << num;
    QFile::remove(iPath + u"-journal"_s); // where it was the removal that failed
  }
  EXPECT_GT(num, 6);
}

TEST_F(CVelumJournalTest, OldBytesInMemory) {
  for (const qsizetype len : {2000, 3000300}) {
    const Ref<CVelumFilePatch> patch = PatchTo(iFd, Pattern(len, 11));
    CVelumJournal journal(iPath, iFd);
    journal.Write(*patch);
    journal.Apply(*patch);
    CVelumFile file(iPath, EFilRead);
    file.OpenFile();
    file.SetPatch(journal.OldBytes());
    EXPECT_EQ(file.PeekAt(0, 5000000), iOld);
    journal.RollBack();
  }
}

// Somebody who opens the document takes an empty journal away, and may do so before it is locked.
TEST_F(CVelumJournalTest, AJournalThatWasTakenAwayIsMadeAgain) {
  class CTakeAway : public CVelumFaults {
  public:
    explicit CTakeAway(QString aJournal) : iJournal(std::move(aJournal)) { CVelumOs::SetFaults(this); }
    ~CTakeAway() override { CVelumOs::SetFaults(nullptr); }
    int Before(EOsCall aCall, const QString&, qint64&) override {
      if (aCall == EOsCall::Lock && iTimes++ == 0) QFile::remove(iJournal);
      return 0;
    }
    QString iJournal;
    int iTimes = 0;
  } faults(iPath + u"-journal"_s);
  const CVelumJournal journal(iPath, iFd);
  EXPECT_EQ(faults.iTimes, 2);
  EXPECT_TRUE(HasJournal());
  const int other = CVelumOs::Open(iPath + u"-journal"_s, O_RDWR);
  EXPECT_FALSE(CVelumOs::TryLock(other, iPath)) << "it is held";
  CVelumOs::Close(other);
}

TEST_F(CVelumJournalTest, AJournalThatIsThereIsNotOverwritten) {
  iFolder.Write(u"d-journal"_s, "something");
  EXPECT_THROW(CVelumJournal(iPath, iFd), CVelumException);
  EXPECT_EQ(iFolder.Read(u"d-journal"_s), QByteArray("something"));
}

} // namespace
