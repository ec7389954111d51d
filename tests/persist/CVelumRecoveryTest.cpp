#include "persist/CVelumRecovery.h"

#include "persist/CVelumNewFile.h"
#include "persist/JournalTest.h"

#include <QDir>
#include <QFileInfo>

#include <cstdio>
#include <functional>
#include <memory>
#include <sys/stat.h>

using CVelumRecovery::EFound;

namespace {

constexpr qsizetype EBlock = 512;

class CVelumRecoveryTest : public JournalTest {
protected:
  CVelumRecoveryTest() {
    iOld = Pattern(3300);
    iNew = iOld;
    for (const qsizetype at : {600, 1100, 3200}) iNew[at] = static_cast<char>(iNew[at] + 1);
    iNew += Pattern(1500, 5);
  }
  void Cut() {
    Begin(iOld);
    CutOff(iNew);
  }
  // The first aLen bytes of aNew with the rest of aOld behind them.
  static QByteArray Mix(const QByteArray& aNew, const QByteArray& aOld, qsizetype aLen) {
    return aNew.left(aLen) + aOld.mid(aLen);
  }
  void ExpectDoubt(const QByteArray& aDoc) {
    EXPECT_EQ(RunOn(aDoc), EFound::Doubt);
    EXPECT_EQ(Doc(), aDoc);
    EXPECT_TRUE(HasJournal());
  }
  QStringList Files() const { return QDir(iFolder.Path()).entryList(QDir::Files, QDir::Name); }

  QByteArray iNew;
};

TEST_F(CVelumRecoveryTest, WithoutAJournalNothingHappens) {
  Begin(iOld);
  EXPECT_EQ(CVelumRecovery::Run(iPath), EFound::Nothing);
  EXPECT_EQ(Files(), QStringList{u"d"_s});
}

TEST_F(CVelumRecoveryTest, AJournalWithoutItsEndGoes) {
  iNew = iOld;
  iNew[600] = static_cast<char>(iNew[600] + 1); // one block
  Cut();
  const QByteArray whole = iJournal;
  const QByteArray doc = "whatever stands there";
  for (qsizetype len = 0; len<whole.size(); len += len> 60 && len < 560 ? 31 : 3) {
    iJournal = whole.left(len);
    ASSERT_EQ(RunOn(doc), EFound::Nothing) << len;
    ASSERT_EQ(Doc(), doc);
    ASSERT_FALSE(HasJournal());
  }
  for (qsizetype at = 8; at<whole.size(); at += at> 60 && at < 560 ? 31 : 3) { // before it is the version
    iJournal = whole;
    iJournal[at] = static_cast<char>(iJournal[at] + 1);
    ASSERT_EQ(RunOn(doc), EFound::Nothing) << at;
    ASSERT_FALSE(HasJournal());
  }
}

TEST_F(CVelumRecoveryTest, ASaveThatWasCompleteStays) {
  Cut();
  EXPECT_EQ(RunOn(iNew), EFound::Nothing);
  EXPECT_EQ(Doc(), iNew);
  EXPECT_FALSE(HasJournal());
}

TEST_F(CVelumRecoveryTest, EveryMixtureOfOldAndNewBlocksIsPutBack) {
  Cut();
  for (const bool longer : {true, false}) {
    const QByteArray rest = longer ? iNew.mid(iOld.size()) : QByteArray();
    const QByteArray both = longer ? iOld + rest : iOld;
    for (qsizetype len = 0; len <= iOld.size(); len += EBlock) {
      ASSERT_EQ(RunOn(Mix(iNew, both, len)), EFound::Restored) << len;
      ASSERT_EQ(Doc(), iOld);
      ASSERT_FALSE(HasJournal());
    }
  }
}

TEST_F(CVelumRecoveryTest, EveryLengthBetweenIsPutBack) {
  Cut();
  for (qsizetype len = iOld.size(); len < iNew.size(); len += 111) {
    ASSERT_EQ(RunOn(iNew.left(len)), EFound::Restored) << len;
    ASSERT_EQ(Doc(), iOld);
    ASSERT_EQ(RunOn(iOld + QByteArray(len - iOld.size(), '\0')), EFound::Restored) << len;
    ASSERT_EQ(Doc(), iOld);
  }
}

TEST_F(CVelumRecoveryTest, ASaveThatShortensIsPutBackFromEveryLength) {
  std::swap(iOld, iNew);
  Cut();
  EXPECT_EQ(RunOn(iNew), EFound::Nothing) << "complete";
  for (qsizetype len = iNew.size() + 1; len <= iOld.size(); len += 111) {
    ASSERT_EQ(RunOn(Mix(iNew, iOld, 1024).left(len)), EFound::Restored) << len;
    ASSERT_EQ(Doc(), iOld);
    ASSERT_EQ(RunOn(iNew + QByteArray(len - iNew.size(), '\0')), EFound::Restored) << len;
    ASSERT_EQ(Doc(), iOld);
  }
}

TEST_F(CVelumRecoveryTest, AnythingElseIsDoubt) {
  Cut();
  ExpectDoubt(QByteArray());
  ExpectDoubt(iOld.left(iOld.size() - 1));
  ExpectDoubt(iNew + "x");
  for (const qsizetype at : {512, 700, 1024, 1500, 3299}) {
    QByteArray doc = iOld;
    doc[at] = static_cast<char>(doc[at] + 1);
    ExpectDoubt(doc);
    doc = iNew;
    doc[at] = static_cast<char>(doc[at] + 1);
    ExpectDoubt(doc);
  }
}

TEST_F(CVelumRecoveryTest, ATextIsNeverReplayedOver) {
  iOld[0] = iNew[0] = '<';
  Cut();
  ExpectDoubt(Mix(iNew, iOld, 1024));
}

TEST_F(CVelumRecoveryTest, DeviceAndInodeDecideNothing) {
  Cut();
  iFolder.Write(u"copy"_s, Mix(iNew, iOld, 1024));
  ASSERT_EQ(::rename(QFile::encodeName(iFolder.Path(u"copy"_s)), QFile::encodeName(iPath)), 0);
  EXPECT_EQ(CVelumRecovery::Run(iPath), EFound::Restored);
  EXPECT_EQ(Doc(), iOld);
}

TEST_F(CVelumRecoveryTest, InDoubtTheOldDocumentIsBuiltBesideOnce) {
  Cut();
  const QByteArray other = iOld + iNew;
  ExpectDoubt(other);
  ASSERT_EQ(::chmod(QFile::encodeName(iPath).constData(), 0600), 0);
  const QString old = CVelumRecovery::BuildOld(iPath);
  EXPECT_TRUE(old.startsWith(iFolder.Path(u"d (before the crash "_s))) << old.toStdString();
  QFile file(old);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  QByteArray expected = other.left(iOld.size());
  for (const qsizetype at : {512, 1024, 3072}) expected.replace(at, EBlock, iOld.mid(at, EBlock));
  EXPECT_EQ(file.readAll(), expected);
  EXPECT_EQ(file.permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions())
      << "with the permissions of the document";
  EXPECT_EQ(Doc(), other);
  const QString name = QFileInfo(old).fileName();
  iFolder.Write(name, "opened and changed since");
  EXPECT_EQ(CVelumRecovery::BuildOld(iPath), old);
  EXPECT_EQ(iFolder.Read(name), "opened and changed since");
  EXPECT_EQ(Files().size(), 3);
  EXPECT_TRUE(CVelumRecovery::DoubtText(iPath, old).contains(old));
  CVelumRecovery::Dismiss(iPath);
  EXPECT_FALSE(HasJournal());
  EXPECT_EQ(CVelumRecovery::Run(iPath), EFound::Nothing);
}

TEST_F(CVelumRecoveryTest, WithoutDocumentTheJournalIsSetAside) {
  Cut();
  QFile::remove(iPath);
  EXPECT_EQ(CVelumRecovery::Run(iPath), EFound::Nothing);
  EXPECT_EQ(Files(), QStringList{u"d-journal-unused"_s});
}

TEST_F(CVelumRecoveryTest, AJournalThatSomebodyHoldsIsWaitedForAndThenTold) {
  Begin(iOld);
  const int fd = CVelumOs::Open(iPath, O_RDWR);
  class CLetGo : public CVelumFaults {
  public:
    CLetGo() { CVelumOs::SetFaults(this); }
    ~CLetGo() override { CVelumOs::SetFaults(nullptr); }
    int Before(EOsCall aCall, const QString&, qint64&) override {
      if (aCall != EOsCall::Wait) return 0;
      if (iWaits++ == 2) iJournal.reset();
      return iGivesUp;
    }
    std::unique_ptr<CVelumJournal> iJournal;
    int iWaits = 0;
    int iGivesUp = 0;
  } faults;
  faults.iJournal = std::make_unique<CVelumJournal>(iPath, fd);
  EXPECT_EQ(CVelumRecovery::Run(iPath), EFound::Nothing);
  EXPECT_EQ(faults.iWaits, 3);
  faults.iJournal = std::make_unique<CVelumJournal>(iPath, fd);
  faults.iGivesUp = 1;
  try {
    CVelumRecovery::Run(iPath);
    ADD_FAILURE() << "no failure";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostPermissionDenied);
    EXPECT_TRUE(e.Descr().contains(u"another program is saving it"_s));
  }
  EXPECT_TRUE(HasJournal());
  faults.iJournal.reset();
  CVelumOs::Close(fd);
}

// Its save, and another one, come to their end while its lock is waited for.
TEST_F(CVelumRecoveryTest, AJournalThatWentWhileItWasWaitedForIsNotLookedAt) {
  Begin(iOld);
  class CFinish : public CVelumFaults {
  public:
    explicit CFinish(std::function<void()> aFinish) : iFinish(std::move(aFinish)) {
      CVelumOs::SetFaults(this);
    }
    ~CFinish() override { CVelumOs::SetFaults(nullptr); }
    int Before(EOsCall aCall, const QString&, qint64&) override {
      if (aCall == EOsCall::Wait && iFinish) std::exchange(iFinish, nullptr)();
      return 0;
    }
    std::function<void()> iFinish;
  };
  const int fd = CVelumOs::Open(iPath, O_RDWR);
  const Ref<CVelumFilePatch> patch = PatchTo(fd, iNew);
  auto journal = std::make_unique<CVelumJournal>(iPath, fd);
  journal->Write(*patch);
  const QByteArray later = iNew + "and more";
  const CFinish faults([&] {
    journal->Apply(*patch);
    journal->Finish();
    journal.reset();
    iFolder.Write(u"d"_s, later);
  });
  EXPECT_EQ(CVelumRecovery::Run(iPath), EFound::Nothing);
  EXPECT_FALSE(faults.iFinish) << "it has waited";
  EXPECT_EQ(Doc(), later);
  EXPECT_EQ(Files(), QStringList{u"d"_s});
  CVelumOs::Close(fd);
}

// A folder, a pipe, which can be opened, and a link.
TEST_F(CVelumRecoveryTest, WhatIsNoJournalIsToldWithWhatToDo) {
  Begin(iOld);
  const QString name = iPath + u"-journal"_s;
  const QByteArray raw = QFile::encodeName(name);
  const std::function<bool()> makes[] = {[&] { return ::mkdir(raw, 0700) == 0; },
                                         [&] { return ::mkfifo(raw, 0600) == 0; },
                                         [&] { return QFile::link(iFolder.Write(u"j"_s, "x"), name); }};
  for (const auto& make : makes) {
    ASSERT_TRUE(make());
    try {
      CVelumRecovery::Run(iPath);
      ADD_FAILURE() << "no failure";
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), EHostPermissionDenied);
      EXPECT_TRUE(e.Descr().contains(name));
      EXPECT_TRUE(e.Descr().contains(u"Move it to another place"_s));
    }
    ASSERT_EQ(::remove(raw), 0);
  }
  EXPECT_EQ(iFolder.Read(u"j"_s), "x");
}

TEST_F(CVelumRecoveryTest, AJournalOfAnotherVersionIsNotTouched) {
  Cut();
  iJournal[7] = '1';
  iFolder.Write(u"d-journal"_s, iJournal);
  EXPECT_THROW(CVelumRecovery::Run(iPath), CVelumException);
  EXPECT_TRUE(HasJournal());
  EXPECT_EQ(Doc(), iOld);
}

TEST_F(CVelumRecoveryTest, WhatACrashLeftBesideGoesUnlessSomebodyHoldsIt) {
  Begin(iOld);
  {
    CVelumNewFile held(iPath);
    EXPECT_EQ(CVelumRecovery::Run(iPath), EFound::Nothing);
    EXPECT_TRUE(iFolder.Has(u"d-new"_s));
  }
  iFolder.Write(u"d-new"_s, "half of a document");
  EXPECT_EQ(CVelumRecovery::Run(iPath), EFound::Nothing);
  EXPECT_EQ(Files(), QStringList{u"d"_s});
}

} // namespace
