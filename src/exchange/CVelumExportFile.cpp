#include "exchange/CVelumExportFile.h"

#include "core/CVelumLog.h"
#include "persist/CVelumNewFile.h"

bool CVelumExportFile::WriteBeside(const QString& aPath, const CVelumStack& aStack,
                                   const std::function<bool(const QString&)>& aWrite) {
  qCDebug(gLogExchange) << "export to" << aPath;
  const QString path = CVelumOs::RealPath(aPath);
  const TVelumFileId there = CVelumOs::IdOf(path);
  const QString own = aStack.Filename();
  if (there.Exists() && !own.isEmpty() && there.SameFile(CVelumOs::IdOf(CVelumOs::RealPath(own))))
    CVelumError::RaiseHost(EHostPermissionDenied, aPath + u" is the stack itself."_s);
  CVelumNewFile target(path);
  if (!aWrite(target.Path())) return false;
  target.TakePlace();
  return true;
}
