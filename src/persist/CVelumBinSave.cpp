#include "persist/CVelumBinSave.h"

#include "core/CVelumChecked.h"
#include "core/CVelumSeams.h"
#include "persist/CVelumBinFormat.h"
#include "persist/CVelumBinLoad.h"
#include "persist/CVelumJournal.h"
#include "persist/CVelumListLimit.h"
#include "persist/CVelumSaveCheck.h"
#include "persist/CVelumSaveTarget.h"

#include <algorithm>

using namespace CVelumBinFormat;

namespace {

// Where this fails too, the journal stays, and the next who opens the file puts it right; till then its old
// bytes are laid over the file in memory.
void RollBack(CVelumJournal& aJournal, CVelumFile& aFile) {
  try {
    aJournal.RollBack();
  } catch (const CVelumException&) { // the failure of the save is the one to tell
    try {
      if (!aJournal.Finished()) aFile.SetPatch(aJournal.OldBytes());
    } catch (const CVelumException&) { // neither the disk nor the journal can be read
    }
  }
}

// Whatever lock a save has taken, it leaves the shared one on the file that the store then has.
class CSharedAgain {
public:
  explicit CSharedAgain(const CVelumBlobStore& aStore) : iStore(aStore) {}
  ~CSharedAgain() {
    if (const Ref<CVelumFile> file = iStore.File()) static_cast<void>(file->TryLockShared());
  }
  CSharedAgain(const CSharedAgain&) = delete;
  CSharedAgain& operator=(const CSharedAgain&) = delete;

private:
  const CVelumBlobStore& iStore;
};

} // namespace

CVelumBinSave::CVelumBinSave(QString aFilename, CVelumStack& aStack, CVelumViewState& aView)
    : iFilename(std::move(aFilename)), iStack(aStack), iView(aView), iStoreRef(aStack.BlobStore()),
      iStore(CVelumChecked::Deref(iStoreRef)) {}

void CVelumBinSave::Run() {
  CVelumSaveTarget target(iFilename, iStack);
  iStack.PrepareForSave();
  const CVelumBlobStore::TState state = iStore.State();
  const QSet<qint32> damaged = iStore.Damaged();
  const CSharedAgain shared(iStore);
  try {
    WriteAll(target);
  } catch (...) {
    if (!iWritten) iStore.Restore(state);
    if (iTouched) iStore.NoteFileId();
    throw;
  }
  iStore.NoteFileId();
  iStack.SetChanged(false);
  TellDamage(damaged);
  target.TellKept();
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

void CVelumBinSave::WriteAll(CVelumSaveTarget& aTarget) {
  CVelumListCut cut(iStack);
  iStore.SwitchToFileBased();
  iStore.ReleaseChangedPlaces();
  CVelumSaveCheck::CheckBlobs(iStore);
  if (TakeAlone(aTarget))
    WriteInPlace(aTarget);
  else
    WriteBeside(aTarget);
}

// Whether the file may be changed in place, which nobody else may then have open: the tables of others would
// no longer tell where the blobs are. Only a file that has blobs worth leaving where they are, and only the
// one that has been open all the time. That is looked at last, when the locks are held.
bool CVelumBinSave::TakeAlone(const CVelumSaveTarget& aTarget) {
  const Ref<CVelumFile> file = iStore.File();
  if (!file || file->ReadOnly() || file->Patch() || !iStore.HasBlobsOnFile() || !iStore.IsSound())
    return false;
  return file->TryLockAlone() && aTarget.IsKnown();
}

void CVelumBinSave::SetPointerPos(qint64 aPos) {
  iPointerPos = CVelumChecked::Narrow<qint32>(aPos);
  iBlobPos = CVelumChecked::Add(iPointerPos, static_cast<qint32>(EPointerLen));
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

// The new document, over the one in aFile, before anything in the file has changed.
Ref<CVelumFilePatch> CVelumBinSave::Collect(CVelumFile& aFile) {
  SetPointerPos(EHeadLen + CVelumSaveCheck::Measure(iStack, iView));
  auto patch = MakeRef<CVelumFilePatch>(aFile.Size());
  aFile.SetPatch(patch);
  iStore.SetNewStartPos(iBlobPos);
  WriteStackData(aFile);
  // Anything else would overwrite blobs.
  if (aFile.CurrentPos() != iPointerPos) CVelumError::RaiseHost(EHostBadCall, iStack.ObjDescr());
  iStore.Commit();
  WriteTable(aFile);
  aFile.Flush();
  return patch;
}

void CVelumBinSave::RefuseUnreadable(const Ref<CVelumFile>& aFile) const {
  CVelumSaveCheck::RefuseUnreadable([&] {
    Ref<CVelumStack> stack;
    Ref<CVelumViewState> view;
    CVelumBinLoad::Load(aFile, stack, view);
  });
}

void CVelumBinSave::WriteInPlace(const CVelumSaveTarget& aTarget) {
  const Ref<CVelumFile> file = iStore.File();
  CVelumJournal journal(aTarget.Path(), file->Fd());
  try {
    const Ref<CVelumFilePatch> patch = Collect(*file);
    RefuseUnreadable(file);
    file->SetPatch(nullptr);
    journal.Write(*patch);
    iTouched = true;
    journal.Apply(*patch);
    journal.Finish();
  } catch (...) {
    file->SetPatch(nullptr);
    iWritten = journal.Finished();
    if (!iWritten) RollBack(journal, *file);
    throw;
  }
  iWritten = true;
}

// The lock of the new file is that of the blob store's file too, so that nobody has it for himself in
// between.
void CVelumBinSave::WriteBeside(CVelumSaveTarget& aTarget) {
  CVelumNewFile& target = aTarget.NewFile();
  auto file = MakeRef<CVelumFile>(target.Path(), EFilReadWrite);
  file->OpenSame(target.Fd());
  WriteReadableData(*file);
  iStore.WriteAllTo(file, iBlobPos);
  WriteTable(*file);
  file->Flush();
  RefuseUnreadable(file);
  try {
    aTarget.TakePlace();
  } catch (...) {
    iWritten = iTouched = target.Placed();
    if (iWritten) file->SetFilename(iFilename);
    throw;
  }
  file->SetFilename(iFilename);
  iWritten = true;
}
