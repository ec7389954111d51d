// Where exports go.
#pragma once

#include "model/CVelumStack.h"

#include <functional>

namespace CVelumExportFile {

// Writes a file beside aPath by aWrite, which is given its name and tells whether to put it in place; what
// was there stays until then. A file that is that of the stack itself is host error 70.
bool WriteBeside(const QString& aPath, const CVelumStack& aStack,
                 const std::function<bool(const QString&)>& aWrite);

} // namespace CVelumExportFile
