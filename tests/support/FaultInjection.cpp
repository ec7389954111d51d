#include "support/FaultInjection.h"

#include <unistd.h>

int FaultInjection::Before(EOsCall aCall, const QString&, qint64& aLen) {
  // Half of a write had to reach the file first, so the process ends at the call that follows.
  if (iDying) ::_exit(EKilled);
  if (!Counts(aCall)) return 0;
  int n = iCount++;
  bool hit = n == iAt || (iAct == EAct::Stay && iHit);
  if (!hit || iAct == EAct::None) return 0;
  iHit = true;
  aLen /= 2;
  if (iAct == EAct::Kill) {
    if (aCall != EOsCall::Write) ::_exit(EKilled);
    iDying = true;
  }
  return iErrno;
}
