#include "persist/CVelumSaveTarget.h"

#include "core/CVelumChecked.h"
#include "persist/CVelumAccess.h"
#include "persist/CVelumOtherVersion.h"
#include "persist/CVelumRecovery.h"

using CVelumRecovery::EFound;

CVelumSaveTarget::CVelumSaveTarget(QString aFilename, CVelumStack& aStack)
    : iFilename(std::move(aFilename)), iPath(CVelumOs::RealPath(iFilename)), iStack(aStack), iNew(iPath) {
  BringBackLoaded();
  if (CVelumRecovery::Run(iPath) == EFound::Doubt)
    CVelumError::RaiseHost(EHostPermissionDenied,
                           CVelumRecovery::DoubtText(iPath, CVelumRecovery::BuildOld(iPath)) +
                               u" Open it first, and choose one of the two"_s);
}

CVelumSaveTarget::~CVelumSaveTarget() {
  if (!iNew.Placed() && !iKept.isEmpty()) CVelumOs::RemoveQuietly(iKept);
}

// A save that failed and could not be undone may have left the document that pictures are read from half
// written. Where it cannot be brought back now either, the old bytes are still laid over it in memory.
void CVelumSaveTarget::BringBackLoaded() {
  const Ref<CVelumBlobStore> store = iStack.BlobStore();
  const Ref<CVelumFile> file = store ? store->File() : nullptr;
  if (!file) return;
  try {
    const QString loaded = CVelumOs::RealPath(iStack.Filename());
    if (!CVelumOs::IdOf(loaded).SameFile(CVelumOs::IdOf(file->Fd()))) return;
    if (!CVelumAccess::WhyReadOnly(loaded).isEmpty()) return;
    const EFound found = CVelumRecovery::Run(loaded);
    if (found == EFound::Doubt || (found == EFound::Nothing && !file->Patch())) return;
    file->SetPatch(nullptr);
    store->NoteFileId();
  } catch (const CVelumException&) { // the bytes in memory have to do
  }
}

const TVelumFileId& CVelumSaveTarget::KnownId() const {
  static const TVelumFileId none;
  const bool same = iStack.Filename() == iFilename && iStack.BlobStore();
  return same ? iStack.BlobStore()->FileId() : none;
}

bool CVelumSaveTarget::IsKnown() const {
  return KnownId().Exists() && CVelumOs::IdOf(iPath) == KnownId();
}

void CVelumSaveTarget::TakePlace() {
  const bool other = KnownId().Exists() && CVelumOs::IdOf(iPath).Exists() && !IsKnown();
  if (other) iKept = CVelumOtherVersion::Keep(iPath);
  iNew.TakePlace();
}

void CVelumSaveTarget::TellKept() const {
  CVelumOtherVersion::Tell(iFilename, iKept);
}
