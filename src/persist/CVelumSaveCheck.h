// What a save looks at before it touches the document.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

#include <functional>

namespace CVelumSaveCheck {

// The bytes that stack and view take on file. Refuses (message EMsgCouldNotSave, with the card or background
// that is to blame) when a text has over 15,000 characters and could not be read back.
[[nodiscard]] qint64 Measure(CVelumStack& aStack, CVelumViewState& aView);

// Refuses blobs that could not be read back: over 10,000,000 bytes or of none, or with a text as above.
void CheckBlobs(const CVelumBlobStore& aStore);

// After an assertion was overruled: runs aLoad, which is to read the new document back before it becomes the
// document, and refuses when that fails. Otherwise nothing: what passed all assertions can be read.
void RefuseUnreadable(const std::function<void()>& aLoad);

// Raises EMsgCouldNotSave with a reason.
[[noreturn]] void Refuse(const QString& aReason);

} // namespace CVelumSaveCheck
