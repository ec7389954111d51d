#include "model/change/CVelumPictureStash.h"

#include "core/CVelumError.h"
#include "model/change/CVelumReplay.h"

qint64 CVelumPictureStash::Put(CVelumStored& aBlob) {
  try {
    if (!iFile) iFile = CVelumChangeIo::NewUnnamedFile();
    iFile->SeekPos(iSize);
    CVelumReplay::WriteChild(*iFile, EChildBlob, aBlob);
    ++iNum;
    return std::exchange(iSize, iFile->CurrentPos());
  } catch (const CVelumException&) {
    return -1; // it stays in memory
  }
}

Ref<CVelumStored> CVelumPictureStash::Get(qint64 aPos, qint32 aId) {
  iFile->SeekPos(aPos);
  return CVelumReplay::ReadChild(*iFile, EChildBlob, aId);
}

void CVelumPictureStash::Drop() {
  if (--iNum > 0) return;
  iSize = 0;
  if (iFile) iFile->Truncate(0);
}
