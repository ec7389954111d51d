#include "core/CVelumDialogLib.h"

#include "core/CVelumChecked.h"
#include "core/CVelumSeams.h"

namespace {
qint16 gWaitCount = 0;
}

void CVelumDialogLib::BeginWait() {
  CVelumSeams::EventPump().SetWaitCursor(true);
  gWaitCount = CVelumChecked::Add<qint16>(gWaitCount, 1);
}

void CVelumDialogLib::EndWait() {
  if (gWaitCount > 0) --gWaitCount;
  if (gWaitCount == 0) CVelumSeams::EventPump().SetWaitCursor(false);
}

int CVelumDialogLib::WaitCount() {
  return gWaitCount;
}
