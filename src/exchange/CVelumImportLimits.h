// What a text that comes in from outside may hold.
#pragma once

#include "core/CVelumError.h"
#include "core/CVelumLimits.h"

#include <QFileInfo>

namespace CVelumImportLimits {

[[nodiscard]] inline bool Fits(const QString& aText) {
  return aText.size() <= EMaxStoredText;
}
// Host error 6; aWhich ends in a blank and names the text.
[[noreturn]] inline void RaiseTooLong(const QString& aWhich) {
  CVelumError::RaiseHost(EHostOverflow, aWhich + u"has more than 15,000 characters."_s);
}

// Host error 57 for a file that another program writes to meanwhile.
[[noreturn]] inline void RaiseChanged(const QString& aPath, qint64 aLine) {
  CVelumError::RaiseHost(EHostDeviceIo,
                         u"%1, line %2: the file has changed while it was read"_s.arg(aPath).arg(aLine));
}

// Raises host error 70 for what is there but no file: a pipe would be waited for without an end, and can only
// be read once. A folder, or nothing, is for the opening to refuse.
inline void CheckIsFile(const QString& aPath) {
  const QFileInfo info(aPath);
  if (info.exists() && !info.isFile() && !info.isDir())
    CVelumError::RaiseHost(EHostPermissionDenied, aPath + u" is a pipe or a device."_s);
}

} // namespace CVelumImportLimits
