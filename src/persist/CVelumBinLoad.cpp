#include "persist/CVelumBinLoad.h"

#include "core/CVelumSeams.h"
#include "persist/CVelumBinFormat.h"
#include "persist/CVelumListLimit.h"

namespace {

// Answers no to everything, and puts the presenter back.
class CSilence final : public CVelumPresenter {
public:
  CSilence() : iBefore(CVelumSeams::Presenter()) { CVelumSeams::SetPresenter(this); }
  ~CSilence() override { CVelumSeams::SetPresenter(&iBefore); }
  bool Message(qint32, EMsgClass, const QString&, const QString&) override { return false; }
  void Tell(const QString&) override {}
  void HelpPage(const QString&) override {}

private:
  CVelumPresenter& iBefore;
};

Ref<CVelumBlobStore> LoadStore(CVelumFile& aFile, const QString& aFilename) {
  aFile.SeekPos(aFile.ReadInt());
  auto store = MakeRef<CVelumBlobStore>();
  store->Internalize(aFile);
  store->SetFile(aFilename);
  return store;
}

} // namespace

void CVelumBinLoad::Load(const QString& aFilename, Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView) {
  CVelumFile file(aFilename, EFilRead);
  file.OpenFile();
  CVelumBinFormat::ReadHead(file);
  auto stack = MakeRef<CVelumStack>();
  stack->Internalize(file);
  auto view = MakeRef<CVelumViewState>();
  view->Internalize(file);
  stack->SetFilename(aFilename);
  stack->SetBlobStore(LoadStore(file, aFilename));
  file.CloseFile();
  stack->SetFlag(EStaBinary, true);
  CVelumListCut::MarkCutLists(*stack);
  stack->ResetChangeInfo();
  stack->ResetChanged();
  aStack = stack;
  aView = view;
}

bool CVelumBinLoad::IsWhole(const QString& aFilename) {
  CSilence silence;
  try {
    Ref<CVelumStack> stack;
    Ref<CVelumViewState> view;
    Load(aFilename, stack, view);
    return stack->BlobStore()->IsSound();
  } catch (const std::exception&) {
    return false;
  }
}
