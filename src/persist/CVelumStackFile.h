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
  // Puts the old document back first if a save was cut off; where something else has changed the document
  // since, the user chooses (see CVelumRecovery), and host error 70 follows when nobody does. Where the
  // document can only be read, the old one is shown and nothing is touched. Waits for a save by another
  // program. Throws; the out-arguments are only set when all went well.
  void LoadStack(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);
  // Throws; message EMsgCouldNotSave with a reason when the document can only be read, or the stack holds
  // what could not be read back.
  void SaveStack(const Ref<CVelumStack>& aStack, const Ref<CVelumViewState>& aView);

private:
  [[nodiscard]] bool StartsWith(const QByteArray& aBytes) const;
  [[nodiscard]] Ref<CVelumFile> OpenLocked() const;
  void SettleDoubt();
  void LoadAny(const Ref<CVelumFile>& aFile, Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);
  [[nodiscard]] bool LoadUnchanged(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);
  void LoadXmlStack(Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);
  void SaveXmlStack();
  void RefuseReadOnly() const;
  void LoadBinStack(const Ref<CVelumFile>& aFile, Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);
  void SaveBinStack();

  QString iFilename; // as the user named it, or of the document that he chose instead
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};
