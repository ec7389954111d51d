// One save of a stack in the binary form.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

class CVelumSaveTarget;

// Where blobs stay at their places the document is changed in place, under a journal; otherwise it is
// written whole beside the old one, which it then replaces. After a failure the document on the disk, the
// stack and its blob store are as they were.
class CVelumBinSave {
public:
  // aFilename as the user named it; symbolic links are followed.
  CVelumBinSave(QString aFilename, CVelumStack& aStack, CVelumViewState& aView);
  void Run();

private:
  void WriteAll(CVelumSaveTarget& aTarget);
  void TellDamage(const QSet<qint32>& aBefore) const;
  [[nodiscard]] bool TakeAlone(const CVelumSaveTarget& aTarget);
  void WriteInPlace(const CVelumSaveTarget& aTarget);
  [[nodiscard]] Ref<CVelumFilePatch> Collect(CVelumFile& aFile);
  void RefuseUnreadable(const Ref<CVelumFile>& aFile) const;
  void WriteBeside(CVelumSaveTarget& aTarget);
  void SetPointerPos(qint64 aPos);
  void WriteStackData(CVelumFile& aFile);
  void WriteReadableData(CVelumFile& aFile);
  void WriteTable(CVelumFile& aFile);

  QString iFilename;
  CVelumStack& iStack;
  CVelumViewState& iView;
  Ref<CVelumBlobStore> iStoreRef;
  CVelumBlobStore& iStore;
  qint32 iPointerPos = 0; // of the pointer to the blob store's table
  qint32 iBlobPos = 0;    // of the blob area, behind that pointer
  bool iWritten = false;  // the new document is there
  bool iTouched = false;  // the file's state has changed, if only for a while
};
