#include "support/FaultInjection.h"

#include "core/file/CVelumFilePatch.h"

#include <unistd.h>

int FaultInjection::Before(EOsCall aCall, const QString&, qint64& aLen) {
  if (aCall == EOsCall::Wait) return 1; // nobody else is there who could end it
  // Half of a write had to reach the file first, so the process ends at the call that follows.
  if (iDying) ::_exit(EKilled);
  if (!Counts(aCall)) return 0;
  int n = iCount++;
  bool hit = n == iAt || (iAct == EAct::Stay && iHit);
  if (!hit || iAct == EAct::None) return 0;
  iHit = true;
  aLen = aLen / 2 / CVelumFilePatch::EBlock * CVelumFilePatch::EBlock;
  if (iAct == EAct::Kill) {
    if (aCall != EOsCall::Write) ::_exit(EKilled);
    iDying = true;
  }
  return iErrno;
}
