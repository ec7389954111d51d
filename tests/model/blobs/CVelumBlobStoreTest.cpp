#include "model/blobs/CVelumBlobStore.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "model/CVelumModel.h"
#include "support/PrintQt.h"
#include "support/ScriptedPresenter.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <QFile>
#include <functional>

namespace {

// A file-based store on a file of its own, driven as a save drives it.
class CVelumBlobStoreTest : public testing::Test {
protected:
  CVelumBlobStoreTest() { CVelumModel::Install(); }

  static Ref<CVelumBlob> Make(qint32 aId, qsizetype aLen) {
    auto blob = MakeRef<CVelumBlob>(aId);
    blob->SetBytes(QByteArray(aLen, static_cast<char>('a' + aId % 26)));
    return blob;
  }
  // Stored length of a blob of Make.
  static qint32 Len(qsizetype aLen) { return static_cast<qint32>(Make(1, aLen)->ExtLen()); }
  void Add(qint32 aId, qsizetype aLen) { iStore->AddBlob(Make(aId, aLen)); }
  // Opens the file and writes all blobs from aStart on; then nothing is changed.
  void Save(qint32 aStart) {
    iStore->SetFile(iFolder.Path(u"f"_s));
    iStore->SwitchToFileBased();
    iStore->ReleaseChangedPlaces();
    iStore->SetNewStartPos(aStart);
    iStore->Commit();
    iStore->SetChanged(false);
  }
  // A store with blobs of content 10, 20, 30 and ids 1, 2, 3 saved at 100, none of them cached.
  void SaveThree() {
    Add(1, 10);
    Add(2, 20);
    Add(3, 30);
    Save(100);
    Reload();
  }
  // What a load makes of the store.
  void Reload() {
    CVelumFile table(iFolder.Path(u"t"_s), EFilReadWrite);
    table.OpenFile();
    iStore->Externalize(table);
    table.SeekPos(0);
    iStore->CloseFile();
    iStore = MakeRef<CVelumBlobStore>();
    iStore->Internalize(table);
    iStore->SetFile(iFolder.Path(u"f"_s));
  }
  // Positions and lengths on file.
  QList<std::pair<qint32, qint32>> Places() const {
    QList<std::pair<qint32, qint32>> places;
    for (qint32 i = 0; i < iStore->PosTab().Count(); ++i)
      places.append({iStore->PosTab().ValRef(i).Int0(), iStore->PosTab().ValRef(i).Int1()});
    return places;
  }
  qint32 PosOf(qint32 aId) const {
    qint32 at = iStore->Index().ValRef(iStore->Index().FindIntKey(aId)).Int();
    return at == ENoInt ? ENoInt : iStore->PosTab().ValRef(at).Int0();
  }
  bool Cached(qint32 aId) const { return iStore->Cache().FindIntKey(aId) >= 0; }
  // Writes something else over aLen bytes of the file.
  void Spoil(qint32 aPos, int aLen) {
    CVelumFile file(iFolder.Path(u"f"_s), EFilReadWrite);
    file.OpenFile();
    file.SeekPos(aPos);
    file.WriteRawBytes(QByteArray(aLen, '\xee'));
  }
  QByteArray BytesOf(const QString& aName) {
    iStore->File()->Flush();
    QFile file(iFolder.Path(aName));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
  }
  // aDo fails an assertion with aText.
  void ExpectAssert(const QString& aText, const std::function<void()>& aDo) {
    try {
      aDo();
      ADD_FAILURE() << "no failure";
    } catch (const CVelumException& e) {
      EXPECT_EQ(e.Number(), EMsgAssertFailed) << e.what();
    }
    EXPECT_TRUE(iPresenter.LastText().contains(aText)) << iPresenter.LastText().toStdString();
  }

  TempFolder iFolder;
  ScriptedPresenter iPresenter;
  Ref<CVelumBlobStore> iStore = MakeRef<CVelumBlobStore>(EBstRamBased);
};

TEST_F(CVelumBlobStoreTest, NewStore) {
  EXPECT_EQ(iStore->ObjDescr(), u"CVelumBlobStore"_s);
  EXPECT_EQ(iStore->BehindPos(), ENoInt);
  EXPECT_TRUE(iStore->Flag(EBstRamBased));
  EXPECT_TRUE(iStore->Changed());
  EXPECT_FALSE(iStore->HasBlobsOnFile());
}

TEST_F(CVelumBlobStoreTest, BlobsLieOneBehindTheOther) {
  SaveThree();
  EXPECT_EQ(Places(), (QList<std::pair<qint32, qint32>>{
                          {100, Len(10)}, {100 + Len(10), Len(20)}, {100 + Len(10) + Len(20), Len(30)}}));
  EXPECT_EQ(iStore->BehindPos(), 100 + Len(10) + Len(20) + Len(30));
  EXPECT_EQ(iStore->ReadBlob(2, false)->Bytes(), QByteArray(20, 'c'));
  EXPECT_TRUE(iStore->IsSound());
}

TEST_F(CVelumBlobStoreTest, BehindPosWithoutBlobsOnFileIsTheStart) {
  Save(100);
  EXPECT_EQ(iStore->BehindPos(), 100);
  EXPECT_EQ(iStore->StartPos(), 100);
}

TEST_F(CVelumBlobStoreTest, InfoOnlyStaysOutOfTheCache) {
  SaveThree();
  Ref<CVelumBlob> info = iStore->ReadBlob(1, true);
  EXPECT_TRUE(info->InfoOnly());
  EXPECT_FALSE(Cached(1));
  Ref<CVelumBlob> whole = iStore->ReadBlob(1, false);
  EXPECT_TRUE(Cached(1));
  EXPECT_EQ(iStore->ReadBlob(1, true), whole) << "a cached blob is given whole";
  EXPECT_FALSE(iStore->ReadBlob(1, true)->InfoOnly());
  EXPECT_EQ(whole->DynRefCount(), 1);
}

TEST_F(CVelumBlobStoreTest, WalksInOrderOfIds) {
  SaveThree();
  QList<qint32> ids;
  Ref<CVelumBlob> blob;
  qint32 at = 7;
  for (bool more = iStore->ReadFirstBlob(blob, at); more; more = iStore->ReadNextBlob(blob, at))
    ids.append(blob->Id());
  EXPECT_EQ(ids, (QList<qint32>{1, 2, 3}));
}

TEST_F(CVelumBlobStoreTest, CacheKeepsEightFirstInFirstOut) {
  for (qint32 id = 1; id <= 12; ++id) Add(id, 10);
  EXPECT_EQ(iStore->Cache().Count(), 12) << "in memory nothing is evicted";
  Save(100);
  Reload();
  for (qint32 id = 1; id <= 8; ++id) (void)iStore->ReadBlob(id, false);
  (void)iStore->ReadBlob(1, false); // does not make it younger
  (void)iStore->ReadBlob(9, false);
  EXPECT_EQ(iStore->Cache().Count(), 8);
  EXPECT_FALSE(Cached(1));
  EXPECT_TRUE(Cached(2));
}

TEST_F(CVelumBlobStoreTest, HeldAndChangedBlobsAreNotEvicted) {
  for (qint32 id = 1; id <= 12; ++id) Add(id, 10);
  Save(100);
  Reload();
  for (qint32 id = 1; id <= 8; ++id) {
    Ref<CVelumBlob> blob = iStore->ReadBlob(id, false);
    if (id < 3) blob->IncRefCount();
    if (id == 3) {
      blob->SetChanged(false);
      blob->IncRefCount();
      blob->SetChanged(false);
      blob->DecRefCount();
    }
    if (id > 3) blob->IncDynRefCount();
  }
  (void)iStore->ReadBlob(9, false);
  EXPECT_EQ(iStore->Cache().Count(), 9);
  EXPECT_TRUE(Cached(3)) << "its count fell";
  Ref<CVelumBlob> fourth = iStore->ReadBlob(4, false);
  fourth->DecDynRefCount();
  (void)iStore->ReadBlob(10, false);
  EXPECT_FALSE(Cached(4));
}

TEST_F(CVelumBlobStoreTest, DeletingLeavesAHoleThatTheFirstFittingBlobTakes) {
  SaveThree();
  qint32 hole = PosOf(2);
  iStore->DeleteBlob(2);
  EXPECT_EQ(iStore->NumBlobs(), 2);
  EXPECT_EQ(iStore->PosTab().Count(), 2);
  qint32 behind = iStore->BehindPos();
  Add(4, 21); // one byte too long
  Add(5, 12);
  Add(6, 5); // what is left of the hole is shorter than a frame
  Save(100);
  EXPECT_EQ(PosOf(4), behind);
  EXPECT_EQ(PosOf(5), hole);
  EXPECT_EQ(PosOf(6), behind + Len(21));
  EXPECT_TRUE(iStore->IsSound()) << "the places are in order";
  for (qint32 id : {1, 3, 4, 5, 6}) EXPECT_EQ(iStore->ReadBlob(id, false)->Id(), id);
}

TEST_F(CVelumBlobStoreTest, ABlobThatFillsAHoleExactlyGoesThere) {
  SaveThree();
  const qint32 hole = PosOf(2);
  iStore->DeleteBlob(2);
  Add(4, 20);
  Save(100);
  EXPECT_EQ(PosOf(4), hole);
}

TEST_F(CVelumBlobStoreTest, ABlobAtTheNewStartStaysWhereItIs) {
  SaveThree();
  const auto places = Places();
  iStore->SetNewStartPos(PosOf(1));
  EXPECT_EQ(Places(), places);
  const qint32 second = PosOf(2);
  const qint32 behind = iStore->BehindPos();
  iStore->SetNewStartPos(second);
  EXPECT_EQ(PosOf(2), second);
  EXPECT_EQ(PosOf(1), behind);
}

TEST_F(CVelumBlobStoreTest, NoBlobLandsInFrontOfTheStart) {
  SaveThree();
  iStore->DeleteBlob(1);
  Add(4, 1);
  Save(150);
  EXPECT_GE(PosOf(4), 150);
}

TEST_F(CVelumBlobStoreTest, OnlyOverrunBlobsMove) {
  SaveThree();
  qint32 second = PosOf(2);
  qint32 third = PosOf(3);
  qint32 behind = iStore->BehindPos();
  iStore->SetNewStartPos(second + 1);
  EXPECT_EQ(PosOf(3), third);
  EXPECT_EQ(PosOf(1), second + 1) << "the shorter one fits where the second was, before that has moved";
  EXPECT_EQ(PosOf(2), behind);
  EXPECT_EQ(iStore->Cache().Count(), 0) << "moving does not fill the cache";
  for (qint32 id : {1, 2, 3}) EXPECT_EQ(iStore->ReadBlob(id, false)->Bytes().size(), id * 10);
}

TEST_F(CVelumBlobStoreTest, ShrinkingMovesNothing) {
  SaveThree();
  auto places = Places();
  iStore->SetNewStartPos(10);
  EXPECT_EQ(Places(), places);
  Add(4, 1);
  Save(10);
  EXPECT_LT(PosOf(4), 100) << "a new blob takes the gap in front";
}

TEST_F(CVelumBlobStoreTest, EmptyStoreTakesAnyStart) {
  iStore->SetFile(iFolder.Path(u"f"_s));
  iStore->SwitchToFileBased();
  iStore->SetNewStartPos(5);
  EXPECT_EQ(iStore->StartPos(), 5);
}

TEST_F(CVelumBlobStoreTest, CommitWritesChangedBlobsAnew) {
  SaveThree();
  Ref<CVelumBlob> blob = iStore->ReadBlob(2, false);
  blob->SetBytes(QByteArray(500, 'x'));
  Save(100);
  EXPECT_GT(PosOf(2), PosOf(3));
  Reload();
  EXPECT_EQ(iStore->ReadBlob(2, false)->Bytes(), QByteArray(500, 'x'));
}

TEST_F(CVelumBlobStoreTest, CommitOfAChangedBlobWithAPlaceStaysAsItIs) {
  SaveThree();
  auto places = Places();
  Ref<CVelumBlob> blob = iStore->ReadBlob(2, false);
  blob->SetBytes(QByteArray(21, 'x'));
  ExpectAssert(u"implemented"_s, [this] { iStore->Commit(); });
  blob->SetBytes(QByteArray(19, 'x'));
  // The pair lands on the element in front, so that the check behind finds another blob there.
  ExpectAssert(u"id"_s, [this] { iStore->Commit(); });
  EXPECT_EQ(Places()[0], std::make_pair(places[1].first, Len(19)));
  EXPECT_EQ(Places()[1], places[1]);
  EXPECT_FALSE(blob->Changed());
}

TEST_F(CVelumBlobStoreTest, CommitOfTheFirstChangedBlobRunsOutOfTheTable) {
  SaveThree();
  iStore->ReadBlob(1, false)->SetBytes(QByteArray(9, 'x'));
  try {
    iStore->Commit();
    ADD_FAILURE() << "no failure";
  } catch (const CVelumException& e) {
    EXPECT_EQ(e.Number(), EHostIndex);
  }
}

TEST_F(CVelumBlobStoreTest, CommitLeavesANewBlobChanged) {
  Add(1, 10);
  iStore->SetFile(iFolder.Path(u"f"_s));
  iStore->SwitchToFileBased();
  iStore->SetNewStartPos(0);
  iStore->Commit();
  Ref<CVelumBlob> blob = iStore->ReadBlob(1, false);
  EXPECT_TRUE(blob->OnFile());
  EXPECT_TRUE(blob->Changed());
}

TEST_F(CVelumBlobStoreTest, DeletingASampleReleasesTheOriginal) {
  Add(1, 10);
  auto sample = Make(2, 5);
  sample->SetOriginalId(1);
  iStore->AddBlob(sample);
  iStore->ReadBlob(1, false)->IncRefCount();
  iStore->ReadBlob(2, false)->IncRefCount();
  Save(100);
  Reload();
  Ref<CVelumBlob> blob = iStore->ReadBlob(2, false);
  iStore->DecRefCount(blob);
  EXPECT_FALSE(blob);
  EXPECT_EQ(iStore->NumBlobs(), 0) << "the original has gone with it";
  EXPECT_FALSE(iStore->HasBlobsOnFile());
}

TEST_F(CVelumBlobStoreTest, AHeldBlobLivesUntilItIsLetGo) {
  Add(1, 10);
  Ref<CVelumBlob> blob = iStore->ReadBlob(1, false);
  blob->IncRefCount();
  blob->IncDynRefCount();
  iStore->DecRefCount(blob);
  ASSERT_TRUE(blob);
  EXPECT_TRUE(iStore->HasBlob(1));
  iStore->DecDynRefCount(blob);
  EXPECT_FALSE(blob);
  EXPECT_FALSE(iStore->HasBlob(1));
}

TEST_F(CVelumBlobStoreTest, CountOfAnInfoOnlyBlobIsNotLost) {
  Add(1, 10);
  iStore->ReadBlob(1, false)->IncRefCount();
  iStore->ReadBlob(1, false)->IncRefCount();
  Save(100);
  Reload();
  Ref<CVelumBlob> blob = iStore->ReadBlob(1, true);
  iStore->DecRefCount(blob);
  EXPECT_EQ(iStore->ReadBlob(1, false)->RefCount(), 1);
  Save(100);
  Reload();
  EXPECT_EQ(iStore->ReadBlob(1, false)->RefCount(), 1) << "and it is saved";
}

TEST_F(CVelumBlobStoreTest, Assertions) {
  SaveThree();
  ExpectAssert(u"iFound"_s, [this] { (void)iStore->ReadBlob(9, false); });
  ExpectAssert(u"iFound"_s, [this] { iStore->DeleteBlob(9); });
  ExpectAssert(u"on file"_s, [this] { iStore->AddBlob(iStore->ReadBlob(1, false)); });
  Ref<CVelumBlob> blob = iStore->ReadBlob(1, false);
  blob->IncRefCount();
  ExpectAssert(u"refCount"_s, [this] { iStore->DeleteBlob(1); });
  Ref<CVelumBlob> held = iStore->ReadBlob(2, false);
  held->IncDynRefCount();
  ExpectAssert(u"dynRefCount"_s, [this] { iStore->DeleteBlob(2); });
  auto ram = MakeRef<CVelumBlobStore>(EBstRamBased);
  ExpectAssert(u"file based"_s, [&] { ram->SetNewStartPos(1); });
  CVelumFile file(iFolder.Path(u"o"_s), EFilWrite);
  file.OpenFile();
  ExpectAssert(u"EBstFileBased"_s, [&] { ram->Externalize(file); });
}

TEST_F(CVelumBlobStoreTest, ABlobWithoutPlaceMustBeInMemory) {
  SaveThree();
  iStore->SetFlag(EBstFileBased, false);
  iStore->SetFlag(EBstRamBased, true);
  ExpectAssert(u"in store"_s, [this] { (void)iStore->ReadBlob(1, false); });
}

TEST_F(CVelumBlobStoreTest, FindsAnotherBlobAtThePlace) {
  SaveThree();
  CVelumFile file(iFolder.Path(u"f"_s), EFilReadWrite);
  file.OpenFile();
  file.SeekPos(PosOf(2) + 4);
  file.WriteInt(77);
  ExpectAssert(u"id"_s, [this] { (void)iStore->ReadBlob(2, false); });
  EXPECT_FALSE(Cached(2)) << "the cache stays as it was";
  EXPECT_EQ(iStore->ReadBlob(1, false)->Id(), 1) << "and is not asked about once more";
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_FALSE(iStore->IsSound());
}

TEST_F(CVelumBlobStoreTest, ChecksTheLengthAgainstTheFile) {
  SaveThree();
  CVelumFile file(iFolder.Path(u"f"_s), EFilReadWrite);
  file.OpenFile();
  file.SeekPos(PosOf(3) + Len(30) - 34);
  ASSERT_EQ(file.ReadInt(), 30);
  file.SeekPos(PosOf(3) + Len(30) - 34);
  file.WriteInt(5000000);
  ExpectAssert(u"len "_s, [this] { (void)iStore->ReadBlob(1, false); });
  EXPECT_FALSE(iStore->IsSound());
}

TEST_F(CVelumBlobStoreTest, DamageIsToldOnceAndTheRestWorks) {
  SaveThree();
  Spoil(PosOf(2), 4);
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(iStore->ReadBlob(1, false)->Bytes(), Make(1, 10)->Bytes());
  EXPECT_EQ(iStore->ReadBlob(3, false)->Bytes(), Make(3, 30)->Bytes());
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(iStore->Damaged(), QSet<qint32>{2});
  EXPECT_THROW((void)iStore->ReadBlob(2, false), CVelumException);
  EXPECT_FALSE(Cached(2));
}

TEST_F(CVelumBlobStoreTest, AWrongIdIsAskedAboutOnceAndTakesNoOthersPlace) {
  SaveThree();
  CVelumFile file(iFolder.Path(u"f"_s), EFilReadWrite);
  file.OpenFile();
  file.SeekPos(PosOf(2) + 4);
  file.WriteInt(3);
  file.CloseFile();
  iPresenter.SetDefaultAnswer(true);
  EXPECT_EQ(iStore->ReadBlob(2, false)->Id(), 3) << "let pass";
  EXPECT_EQ(iPresenter.Count(), 1);
  EXPECT_EQ(iStore->Damaged(), QSet<qint32>{2});
  EXPECT_EQ(iStore->ReadBlob(3, false)->Bytes(), Make(3, 30)->Bytes());
  EXPECT_EQ(iPresenter.Count(), 1);
}

TEST_F(CVelumBlobStoreTest, NoIsAnAnswerForOneCheckOnly) {
  SaveThree();
  Spoil(PosOf(2), 4);
  ExpectAssert(u"id"_s, [this] { (void)iStore->ReadBlob(1, false); });
  EXPECT_EQ(iStore->ReadBlob(3, false)->Bytes(), Make(3, 30)->Bytes());
  EXPECT_EQ(iPresenter.Count(), 1);
}

TEST_F(CVelumBlobStoreTest, ReferencesToDamagedAndMissingBlobsAreLeftAlone) {
  SaveThree();
  Spoil(PosOf(2), 4);
  iPresenter.SetDefaultAnswer(true);
  for (const qint32 id : {2, 9}) {
    iStore->AddReference(id);
    iStore->ReleaseReference(id);
    iStore->ReleaseReference(id);
  }
  EXPECT_EQ(iPresenter.Count(), 0);
  iStore->AddReference(1);
  iStore->AddReference(1);
  iStore->ReleaseReference(1);
  EXPECT_EQ(iStore->ReadBlob(1, false)->RefCount(), 1);
  iStore->ReleaseReference(1);
  EXPECT_FALSE(iStore->HasBlob(1));
  EXPECT_TRUE(iStore->HasBlob(2));
}

TEST_F(CVelumBlobStoreTest, DamagedBytesMoveAsTheyAre) {
  SaveThree();
  Spoil(PosOf(2), 8);
  QByteArray spoilt = BytesOf(u"f"_s).mid(PosOf(2), Len(20));
  auto file = MakeRef<CVelumFile>(iFolder.Path(u"n"_s), EFilReadWrite);
  file->OpenFile();
  iStore->WriteAllTo(file, 50);
  EXPECT_EQ(iPresenter.Count(), 0);
  EXPECT_EQ(Places(), (QList<std::pair<qint32, qint32>>{
                          {50, Len(10)}, {50 + Len(10), Len(20)}, {50 + Len(10) + Len(20), Len(30)}}));
  EXPECT_EQ(BytesOf(u"n"_s).mid(PosOf(2), Len(20)), spoilt);
  EXPECT_EQ(iStore->ReadBlob(3, false)->Bytes(), Make(3, 30)->Bytes());
}

TEST_F(CVelumBlobStoreTest, OfACutFileTheBytesThatAreThereMove) {
  SaveThree();
  QFile cut(iFolder.Path(u"f"_s));
  ASSERT_TRUE(cut.resize(PosOf(3) + 7));
  QByteArray rest = BytesOf(u"f"_s).mid(PosOf(3));
  auto file = MakeRef<CVelumFile>(iFolder.Path(u"n"_s), EFilReadWrite);
  file->OpenFile();
  iStore->WriteAllTo(file, 50);
  EXPECT_EQ(Places().last(), (std::pair<qint32, qint32>{50 + Len(10) + Len(20), 7}));
  EXPECT_EQ(BytesOf(u"n"_s).mid(PosOf(3)), rest);
  // Cut before the blob, there is nothing to move; it keeps its place in the tables.
  file->Truncate(PosOf(3) - 1);
  auto next = MakeRef<CVelumFile>(iFolder.Path(u"o"_s), EFilReadWrite);
  next->OpenFile();
  iStore->WriteAllTo(next, 50);
  EXPECT_EQ(Places().last().second, 1);
}

TEST_F(CVelumBlobStoreTest, SwitchToRamBasedTakesAllIntoMemory) {
  for (qint32 id = 1; id <= 12; ++id) Add(id, 10);
  Save(100);
  Reload();
  (void)iStore->ReadBlob(3, false);
  iStore->SwitchToRamBased();
  EXPECT_EQ(iStore->Cache().Count(), 12);
  EXPECT_FALSE(iStore->HasBlobsOnFile());
  EXPECT_TRUE(iStore->File()) << "the caller decides about the file";
  for (qint32 id = 1; id <= 12; ++id) {
    EXPECT_FALSE(iStore->ReadBlob(id, false)->OnFile());
    EXPECT_EQ(PosOf(id), ENoInt);
  }
  iStore->SwitchToRamBased(); // nothing more
  EXPECT_EQ(iStore->Cache().Count(), 12);
}

TEST_F(CVelumBlobStoreTest, SetFileTakesTheFirstNameOnly) {
  iStore->SetFile(iFolder.Path(u"a"_s));
  iStore->SetFile(iFolder.Path(u"b"_s));
  EXPECT_EQ(iStore->File()->Filename(), iFolder.Path(u"a"_s));
  EXPECT_FALSE(iFolder.Has(u"b"_s));
  iStore->CloseFile();
  iStore->CloseFile();
  EXPECT_FALSE(iStore->File());
}

TEST_F(CVelumBlobStoreTest, ChangedMarks) {
  SaveThree();
  EXPECT_FALSE(iStore->Changed());
  Ref<CVelumBlob> blob = iStore->ReadBlob(1, false);
  EXPECT_FALSE(iStore->Changed());
  blob->SetBytes("x");
  EXPECT_FALSE(iStore->Changed()) << "the cache only counts in memory mode";
  iStore->SwitchToRamBased();
  EXPECT_TRUE(iStore->Changed());
  iStore->SetChanged(false);
  EXPECT_FALSE(iStore->Changed());
  EXPECT_FALSE(blob->Changed());
}

TEST_F(CVelumBlobStoreTest, RestoreUndoesASave) {
  SaveThree();
  Ref<CVelumBlob> blob = iStore->ReadBlob(2, false);
  blob->SetBytes(QByteArray(50, 'x'));
  Add(4, 10);
  auto state = iStore->State();
  auto places = Places();
  Save(300);
  iStore->Restore(state);
  EXPECT_EQ(Places(), places);
  EXPECT_EQ(PosOf(4), ENoInt);
  EXPECT_EQ(iStore->StartPos(), 100);
  EXPECT_TRUE(blob->Changed());
  EXPECT_FALSE(iStore->ReadBlob(4, false)->OnFile());
}

TEST_F(CVelumBlobStoreTest, WriteAllToClosesTheHoles) {
  SaveThree();
  iStore->DeleteBlob(2);
  Add(4, 7);
  auto file = MakeRef<CVelumFile>(iFolder.Path(u"n"_s), EFilReadWrite);
  file->OpenFile();
  iStore->SwitchToFileBased();
  iStore->WriteAllTo(file, 50);
  EXPECT_EQ(Places(), (QList<std::pair<qint32, qint32>>{
                          {50, Len(10)}, {50 + Len(10), Len(30)}, {50 + Len(10) + Len(30), Len(7)}}));
  EXPECT_EQ(iStore->File(), file);
  EXPECT_EQ(iStore->ReadBlob(3, false)->Bytes(), QByteArray(30, 'd'));
}

TEST_F(CVelumBlobStoreTest, TablesOfAnotherKindAreRefused) {
  CVelumFile file(iFolder.Path(u"t"_s), EFilReadWrite);
  file.OpenFile();
  CVelumLib::WriteBinObjStart(file, 11, 0);
  file.WriteInt(0);
  file.WriteInt(EBstFileBased);
  CVelumArray(EArrStrKey, EValInt).Externalize(file);
  CVelumArray(0, EValIntPair).Externalize(file);
  file.SeekPos(0);
  EXPECT_THROW(iStore->Internalize(file), CVelumException);
  EXPECT_EQ(gLastError.iMsgId, EMsgBadStruct);
}

} // namespace
