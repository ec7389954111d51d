// Putting a document right after a save of it was cut off.
#pragma once

#include "core/file/CVelumFilePatch.h"

#include <QString>

namespace CVelumRecovery {

enum class EFound {
  Nothing,  // the document is as its last save left it
  Restored, // the old document was put back
  Doubt     // something else has changed the document since: nothing was touched
};

// To be called before the document aPath (no symbolic link) is read or written. Removes what a crash has left
// beside it, and puts the old document back where its journal says so. Where the document is gone the journal
// is set aside. Waits for a save that runs. Raises, with a text that says what can be done: host error 70
// when that save does not end, or when something that is no journal bears its name.
EFound Run(const QString& aPath);

// The old document in memory, for CVelumFile::SetPatch, where a save of the document was cut off and it
// cannot be put back, since it can only be read; nothing when it is as a save left it. aDoc is the document,
// open. Touches nothing. Waits and raises as Run does, and also in doubt.
[[nodiscard]] Ref<CVelumFilePatch> OldBytes(const QString& aPath, int aDoc);

// In doubt: builds the document as it was before the save that was cut off, beside the present one, as "NAME
// (before the crash DATE).ENDING"; returns that name. Where it was built before, that file stays as it is.
// Raises.
[[nodiscard]] QString BuildOld(const QString& aPath);

// In doubt, when the present document was chosen: removes the journal. Raises.
void Dismiss(const QString& aPath);

// What is told of a document in doubt.
[[nodiscard]] QString DoubtText(const QString& aPath, const QString& aOld);

} // namespace CVelumRecovery
