// Pictures that only undo still holds, in a file without a name: they take no memory, and go with the
// program.
#pragma once

#include "core/CVelumObject.h"
#include "core/file/CVelumFile.h"

class CVelumPictureStash {
public:
  // Writes a picture whole; returns where it lies, or -1 when there is no room for it. Space comes free when
  // none of the pictures is needed any more.
  [[nodiscard]] qint64 Put(CVelumStored& aBlob);
  [[nodiscard]] Ref<CVelumStored> Get(qint64 aPos, qint32 aId);
  // One of them is not needed any more.
  void Drop();
  // Bytes of the file.
  [[nodiscard]] qint64 Size() const { return iSize; }

private:
  Ref<CVelumFile> iFile; // from the first picture on
  qint64 iSize = 0;
  qint64 iNum = 0;
};
