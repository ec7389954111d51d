#include "persist/CVelumBinLoad.h"

#include "core/CVelumChecked.h"
#include "persist/CVelumBinFormat.h"
#include "persist/CVelumListLimit.h"

namespace {

Ref<CVelumBlobStore> LoadStore(CVelumFile& aFrom, const Ref<CVelumFile>& aFile) {
  aFrom.SeekPos(aFrom.ReadInt());
  auto store = MakeRef<CVelumBlobStore>();
  store->Internalize(aFrom);
  store->SetFile(aFile);
  return store;
}

} // namespace

void CVelumBinLoad::Load(const Ref<CVelumFile>& aFile, Ref<CVelumStack>& aStack,
                         Ref<CVelumViewState>& aView) {
  CVelumFile file(CVelumChecked::Deref(aFile).Filename(), EFilRead);
  file.OpenSame(aFile->Fd());
  file.SetPatch(aFile->Patch());
  CVelumBinFormat::ReadHead(file);
  auto stack = MakeRef<CVelumStack>();
  stack->Internalize(file);
  auto view = MakeRef<CVelumViewState>();
  view->Internalize(file);
  stack->SetFilename(file.Filename());
  stack->SetBlobStore(LoadStore(file, aFile));
  file.CloseFile();
  stack->SetFlag(EStaBinary, true);
  CVelumListCut::MarkCutLists(*stack);
  stack->ResetChangeInfo();
  stack->ResetChanged();
  aStack = stack;
  aView = view;
}
