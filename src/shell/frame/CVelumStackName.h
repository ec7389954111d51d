// What a stack is called in titles, questions and dialogs.
#pragma once

#include "model/CVelumStack.h"

namespace CVelumStackName {

// The name of its file, with the ending. Without a file: the first line of its description; or what was
// imported, without folder and ending; or "New stack".
[[nodiscard]] QString Title(const CVelumStack& aStack);
// The same as the name of a file: the name to propose for a save.
[[nodiscard]] QString FileName(const CVelumStack& aStack);
// What stands in the title of the main window: the whole path, or Title where there is none, with "(read
// only)" behind where it cannot be saved.
[[nodiscard]] QString Caption(const CVelumStack& aStack);

} // namespace CVelumStackName
