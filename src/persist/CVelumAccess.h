// Which documents can only be read.
#pragma once

#include <QString>

namespace CVelumAccess {

// The folder of the documents that come with an installed program, seen from where the program lies.
[[nodiscard]] QString FolderOfProgram();
// Nobody writes to the documents in this folder; none when it is empty or not there. The start of the program
// calls this.
void SetInstalledFolder(const QString& aFolder);
// Why the document at aPath can only be read, in a sentence; empty when it can be saved as far as can be told
// beforehand. A save needs the right to change the file and the folder that it really lies in. Asks the file
// system each time.
[[nodiscard]] QString WhyReadOnly(const QString& aPath);

} // namespace CVelumAccess
