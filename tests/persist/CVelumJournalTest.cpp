#include "persist/CVelumJournal.h"

#include "core/CVelumMsg.h"
#include "support/PrintQt.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

bool NotWhole() {
  return false;
}

class CVelumJournalTest : public testing::Test {
protected:
  CVelumJournalTest() {
    for (int i = 0; i < 3000000; ++i) iOld.append(static_cast<char>(i * 7 / 3));
    iFolder.Write(u"d"_s, iOld);
  }
  // Overwrites a piece of the document as a save does.
  void Overwrite(CVelumJournal& aJournal, qint64 aPos, const QByteArray& aBytes) {
    aJournal.BeforeWrite(aPos, aBytes.size());
    QFile file(iPath);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.seek(aPos);
    file.write(aBytes);
  }
  // A journal that covers some pieces, of a save that was cut off behind them.
  void CutOff() {
    CVelumJournal journal(iPath);
    Overwrite(journal, 10, QByteArray(20, 'x'));
    Overwrite(journal, 5, QByteArray(10, 'y'));
    Overwrite(journal, 100, QByteArray(2500000, 'z')); // more than a record
    Overwrite(journal, 2999990, QByteArray(500, 'e')); // beyond the end
  }
  QByteArray Doc() const { return iFolder.Read(u"d"_s); }
  bool HasJournal() const { return iFolder.Has(u"d-journal"_s); }

  TempFolder iFolder;
  QString iPath = iFolder.Path(u"d"_s);
  QByteArray iOld;
};

TEST_F(CVelumJournalTest, RecoverPutsTheOldDocumentBack) {
  CutOff();
  EXPECT_NE(Doc(), iOld);
  EXPECT_TRUE(HasJournal());
  EXPECT_TRUE(CVelumJournal::Recover(iPath, NotWhole));
  EXPECT_EQ(Doc(), iOld);
  EXPECT_FALSE(HasJournal());
  EXPECT_FALSE(CVelumJournal::Recover(iPath, NotWhole));
}

TEST_F(CVelumJournalTest, RollBack) {
  CVelumJournal journal(iPath);
  Overwrite(journal, 0, QByteArray(1000, 'x'));
  Overwrite(journal, 500, QByteArray(1000, 'y'));
  journal.RollBack();
  EXPECT_TRUE(journal.Finished());
  EXPECT_EQ(Doc(), iOld);
  EXPECT_FALSE(HasJournal());
}

TEST_F(CVelumJournalTest, FinishKeepsTheNewDocument) {
  CVelumJournal journal(iPath);
  Overwrite(journal, 0, QByteArray(1000, 'x'));
  journal.Finish();
  EXPECT_FALSE(HasJournal());
  EXPECT_FALSE(CVelumJournal::Recover(iPath, NotWhole));
  EXPECT_EQ(Doc().left(1000), QByteArray(1000, 'x'));
}

TEST_F(CVelumJournalTest, EachByteIsKeptOnce) {
  CVelumJournal journal(iPath);
  auto size = [this] { return iFolder.Read(u"d-journal"_s).size(); };
  journal.Cover(100, 100);
  qsizetype one = size();
  journal.Cover(100, 100);
  journal.Cover(120, 50);
  EXPECT_EQ(size(), one);
  journal.Cover(300, 100);
  qsizetype two = size();
  journal.Cover(150, 200); // 200 to 300 are new
  EXPECT_EQ(size() - two, 100 + 32);
  journal.Cover(0, 1000); // 0 to 100, and 400 to 1000
  EXPECT_EQ(size() - two, 100 + 32 + 700 + 2 * 32);
  journal.Cover(0, 1000);
  journal.Cover(3000000, 100);
  journal.Cover(-50, 60);
  EXPECT_EQ(size() - two, 100 + 32 + 700 + 2 * 32);
}

TEST_F(CVelumJournalTest, ALockedJournalIsLeftAlone) {
  CVelumJournal journal(iPath);
  Overwrite(journal, 0, QByteArray(10, 'x'));
  try {
    CVelumJournal::Recover(iPath, NotWhole);
    ADD_FAILURE() << "no failure";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostPermissionDenied);
  }
  EXPECT_THROW(CVelumJournal second(iPath), CVelumException);
  EXPECT_TRUE(HasJournal());
  EXPECT_EQ(Doc().left(10), QByteArray(10, 'x'));
}

TEST_F(CVelumJournalTest, WhatWasNeverReliedOnIsNotReplayed) {
  CutOff();
  QByteArray journal = iFolder.Read(u"d-journal"_s);
  QByteArray spoilt = Doc();
  // A head that is cut short or wrong: nothing had been overwritten.
  for (const QByteArray& bytes :
       {journal.left(0), journal.left(47), QByteArray(journal).replace(9, 1, "x")}) {
    iFolder.Write(u"d-journal"_s, bytes);
    EXPECT_FALSE(CVelumJournal::Recover(iPath, NotWhole));
    EXPECT_EQ(Doc(), spoilt);
    EXPECT_FALSE(HasJournal());
  }
  // A record that is cut short ends the journal; those before it count.
  iFolder.Write(u"d-journal"_s, journal.left(48 + 32 + 20 + 32 + 3));
  EXPECT_TRUE(CVelumJournal::Recover(iPath, NotWhole));
  EXPECT_EQ(Doc().mid(10, 20), iOld.mid(10, 20));
  EXPECT_EQ(Doc().mid(5, 5), QByteArray(5, 'y'));
  EXPECT_EQ(Doc().size(), iOld.size());
}

TEST_F(CVelumJournalTest, EveryPrefixAndChangedByteOfAJournalIsSafe) {
  iOld = QByteArray(300, 'o');
  iFolder.Write(u"d"_s, iOld);
  {
    CVelumJournal journal(iPath);
    Overwrite(journal, 0, QByteArray(50, 'x'));
    Overwrite(journal, 100, QByteArray(50, 'x'));
  }
  QByteArray spoilt = Doc();
  QByteArray whole = iFolder.Read(u"d-journal"_s);
  auto expectOldOrSpoilt = [&](const QByteArray& aJournal) {
    QFile doc(iPath);
    ASSERT_TRUE(doc.open(QIODevice::ReadWrite)); // keeps the inode
    doc.write(spoilt);
    doc.resize(spoilt.size());
    doc.close();
    QFile::remove(iFolder.Path(u"d-journal"_s));
    iFolder.Write(u"d-journal"_s, aJournal);
    (void)CVelumJournal::Recover(iPath, NotWhole);
    EXPECT_EQ(Doc().size(), 300);
    for (int i = 0; i < 300; ++i) ASSERT_TRUE(Doc()[i] == iOld[i] || Doc()[i] == spoilt[i]);
  };
  for (qsizetype len = 0; len <= whole.size(); ++len) expectOldOrSpoilt(whole.left(len));
  for (qsizetype at = 0; at < whole.size(); ++at)
    expectOldOrSpoilt(QByteArray(whole).replace(at, 1, QByteArray(1, static_cast<char>(whole[at] + 1))));
}

TEST_F(CVelumJournalTest, JournalOfAnotherFileOnlyCountsForADocumentThatIsNotWhole) {
  CutOff();
  QByteArray spoilt = Doc();
  QFile::remove(iPath);
  iFolder.Write(u"d"_s, spoilt);
  QFile hold(iFolder.Path(u"hold"_s)); // so that the file system cannot give the same inode again
  QFile::remove(iPath);
  ASSERT_TRUE(hold.open(QIODevice::WriteOnly));
  iFolder.Write(u"d"_s, spoilt);
  EXPECT_TRUE(CVelumJournal::Recover(iPath, NotWhole)) << "a copy of the folder, say";
  EXPECT_EQ(Doc(), iOld);
}

TEST_F(CVelumJournalTest, JournalOfAnotherFileIsSetAsideForAWholeDocument) {
  CutOff();
  iFolder.Write(u"other"_s, "something else");
  QFile::remove(iPath);
  ASSERT_TRUE(QFile::rename(iFolder.Path(u"other"_s), iPath));
  EXPECT_FALSE(CVelumJournal::Recover(iPath, [] { return true; }));
  EXPECT_EQ(Doc(), QByteArray("something else"));
  EXPECT_FALSE(HasJournal());
  EXPECT_TRUE(iFolder.Has(u"d-journal-unused"_s));
}

TEST_F(CVelumJournalTest, WithoutDocumentTheJournalIsSetAside) {
  CutOff();
  QFile::remove(iPath);
  EXPECT_FALSE(CVelumJournal::Recover(iPath, NotWhole));
  EXPECT_FALSE(iFolder.Has(u"d"_s));
  EXPECT_TRUE(iFolder.Has(u"d-journal-unused"_s));
}

} // namespace
