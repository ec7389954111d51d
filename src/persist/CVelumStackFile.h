// Loading and saving a stack file.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

// Knows the overall layout of the file, tells the two formats apart and orders the steps. Saving is safe at
// every moment: the old or the new document is there, whole.
class CVelumStackFile final : public CVelumObject {
public:
  explicit CVelumStackFile(QString aFilename);

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] bool IsBinStack();
  [[nodiscard]] bool IsXmlStack();
  // Throws; the out-arguments are only set when all went well.
  void LoadStack(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);
  void SaveStack(const Ref<CVelumStack>& aStack, const Ref<CVelumViewState>& aView);

private:
  void LoadBinStack(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);
  void SaveBinStack();

  QString iFilename;
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};
