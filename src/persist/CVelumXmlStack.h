// Loading and saving a stack as an XML document.
#pragma once

#include "model/CVelumStack.h"
#include "persist/CVelumViewState.h"

// The document holds all that the binary form holds but the stack's id and flags; the pictures come into
// memory, and the file does not stay open. A text that the binary form could not read back is written here.
namespace CVelumXmlStack {

// Throws; the out-arguments are only set when all went well. The blob store does not know the state of the
// file.
void Load(const QString& aFilename, Ref<CVelumStack>& aStack, Ref<CVelumViewState>& aView);

// Writes the document beside the old one, which it then replaces. After a failure the document on the disk,
// the stack and its blob store are as they were. Message EMsgCouldNotSave for a text that could not be read
// back (see CVelumXmlWriter).
void Save(const QString& aFilename, CVelumStack& aStack, CVelumViewState& aView);

} // namespace CVelumXmlStack
