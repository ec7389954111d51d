#include "persist/CVelumBinSave.h"

#include "core/CVelumChecked.h"
#include "core/CVelumSeams.h"
#include "persist/CVelumBinFormat.h"
#include "persist/CVelumBinLoad.h"
#include "persist/CVelumJournal.h"
#include "persist/CVelumListLimit.h"
#include "persist/CVelumNewFile.h"
#include "persist/CVelumOtherVersion.h"
#include "persist/CVelumSaveCheck.h"

#include <algorithm>

using namespace CVelumBinFormat;

CVelumBinSave::CVelumBinSave(QString aFilename, CVelumStack& aStack, CVelumViewState& aView)
    : iFilename(std::move(aFilename)), iPath(CVelumOs::RealPath(iFilename)), iStack(aStack), iView(aView),
      iStoreRef(aStack.BlobStore()), iStore(CVelumChecked::Deref(iStoreRef)) {}

bool CVelumBinSave::Recover(const QString& aFilename) {
  QString path = CVelumOs::RealPath(aFilename);
  return CVelumJournal::Recover(path, [&] { return CVelumBinLoad::IsWhole(path); });
}

void CVelumBinSave::Run() {
  // A save that failed and could not be undone either may have left the file half written.
  bool own = iStore.FileId().SameFile(CVelumOs::IdOf(iPath));
  if (Recover(iFilename) && own) iStore.NoteFileId();
  iStack.PrepareForSave();
  CVelumBlobStore::TState state = iStore.State();
  const QSet<qint32> damaged = iStore.Damaged();
  try {
    WriteAll();
  } catch (...) {
    if (!iWritten) TakeBack(state);
    if (iTouched) iStore.NoteFileId();
    throw;
  }
  iStore.NoteFileId();
  iStack.SetChanged(false);
  TellDamage(damaged);
  CVelumOtherVersion::Tell(iFilename, iKept);
}

// What the save itself has found, besides what was known before.
void CVelumBinSave::TellDamage(const QSet<qint32>& aBefore) const {
  QList<qint32> ids = (iStore.Damaged() - aBefore).values();
  if (ids.isEmpty()) return;
  std::sort(ids.begin(), ids.end());
  QStringList names;
  for (qint32 id : ids) names.append(QString::number(id));
  CVelumSeams::Presenter().Tell(
      u"The bytes of these pictures cannot be read, and were saved as they are: %1"_s.arg(
          names.join(u", "_s)));
}

void CVelumBinSave::TakeBack(const CVelumBlobStore::TState& aState) {
  iStore.Restore(aState);
  if (!iKept.isEmpty()) CVelumOs::RemoveQuietly(iKept);
}

void CVelumBinSave::WriteAll() {
  CVelumListCut cut(iStack);
  iStore.SwitchToFileBased();
  iStore.ReleaseChangedPlaces();
  CVelumSaveCheck::CheckBlobs(iStore);
  const bool fits = FitsInPlace();
  // A file of its own needs no measuring: it is refused while it is written, and is gone then.
  if (fits) SetPointerPos(EHeadLen + CVelumSaveCheck::Measure(iStack, iView));
  if (OtherVersionIsThere()) iKept = CVelumOtherVersion::Keep(iPath);
  // The tables of others who have the file open would no longer tell where the blobs are.
  if (fits && iStore.File()->TryLockAlone()) {
    WriteInPlace();
  } else {
    WriteBeside();
  }
}

void CVelumBinSave::SetPointerPos(qint64 aPos) {
  iPointerPos = CVelumChecked::Narrow<qint32>(aPos);
  iBlobPos = CVelumChecked::Add(iPointerPos, static_cast<qint32>(EPointerLen));
}

// The file that this stack was loaded from or saved to last is no longer what it was then.
bool CVelumBinSave::OtherVersionIsThere() const {
  if (iStack.Filename() != iFilename || !iStore.FileId().Exists()) return false;
  TVelumFileId there = CVelumOs::IdOf(iPath);
  return there.Exists() && there != iStore.FileId();
}

// Only a file that is known, and that has blobs worth leaving where they are.
bool CVelumBinSave::FitsInPlace() const {
  bool known =
      iStack.Filename() == iFilename && iStore.FileId().Exists() && CVelumOs::IdOf(iPath) == iStore.FileId();
  return known && iStore.HasBlobsOnFile() && iStore.IsSound();
}

void CVelumBinSave::WriteStackData(CVelumFile& aFile) {
  aFile.SeekPos(0);
  WriteHead(aFile);
  iStack.Externalize(aFile);
  iView.Externalize(aFile);
}

// Where the data can be read back. Measuring finds the card that is to blame.
void CVelumBinSave::WriteReadableData(CVelumFile& aFile) {
  aFile.RefuseUnreadable();
  try {
    WriteStackData(aFile);
  } catch (const CVelumException& e) {
    if (e.Number() == EHostOverflow) static_cast<void>(CVelumSaveCheck::Measure(iStack, iView));
    throw;
  }
  SetPointerPos(aFile.CurrentPos());
}

void CVelumBinSave::WriteTable(CVelumFile& aFile) {
  qint32 behind = iStore.BehindPos();
  // The table has to end at a position too.
  static_cast<void>(CVelumChecked::Narrow<qint32>(behind + iStore.ExtLen()));
  aFile.SeekPos(iPointerPos);
  aFile.WriteInt(behind);
  aFile.SeekPos(behind);
  iStore.Externalize(aFile);
}

void CVelumBinSave::WriteInPlace() {
  CVelumJournal journal(iPath);
  Ref<CVelumFile> file = iStore.File();
  iTouched = true;
  try {
    // What will certainly be overwritten goes to the disk at once; the rest when its turn comes.
    journal.Cover(0, iBlobPos);
    journal.Cover(iStore.BehindPos(), iStore.ExtLen());
    file->SetWriteGuard(&journal);
    iStore.SetNewStartPos(iBlobPos);
    WriteStackData(*file);
    // Anything else would overwrite blobs.
    if (file->CurrentPos() != iPointerPos) CVelumError::RaiseHost(EHostBadCall, iStack.ObjDescr());
    iStore.Commit();
    WriteTable(*file);
    file->Sync();
    journal.Finish();
  } catch (...) {
    file->DropBuffer();
    file->SetWriteGuard(nullptr);
    file->LockShared();
    iWritten = journal.Finished();
    if (!iWritten) RollBack(journal);
    throw;
  }
  file->SetWriteGuard(nullptr);
  file->LockShared();
  iWritten = true;
}

// Where this fails too, the journal stays, and the next who opens the file puts it right.
void CVelumBinSave::RollBack(CVelumJournal& aJournal) {
  try {
    aJournal.RollBack();
  } catch (const CVelumException&) { // the failure of the save is the one to tell
  }
}

void CVelumBinSave::WriteBeside() {
  CVelumNewFile target(iPath);
  auto file = MakeRef<CVelumFile>(target.Path(), EFilReadWrite);
  file->OpenFile();
  file->LockShared();
  WriteReadableData(*file);
  iStore.WriteAllTo(file, iBlobPos);
  WriteTable(*file);
  file->Flush();
  try {
    target.TakePlace();
  } catch (...) {
    iWritten = iTouched = target.Placed();
    if (iWritten) file->SetFilename(iFilename);
    throw;
  }
  file->SetFilename(iFilename);
  iWritten = true;
}
