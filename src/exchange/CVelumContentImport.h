// Import of content in XML: cards with named fields, as CVelumExports::ExportXml writes them.
#pragma once

#include "exchange/CVelumStep.h"
#include "model/CVelumStack.h"

namespace CVelumImports {

// Adds the cards of a file to a stack, behind all others and without default values. The backgrounds and
// fields that the file names must be there; fields of one name take the texts of that name in their order.
// What is out of place is an assertion; overruled or not, reading ends with a failure where it cannot go on.
// Cards that were read before a failure, or before aStep gave up (then the result is false), stay in the
// stack. A text of more than 15,000 characters is host error 6.
bool ImportXml(const QString& aPath, CVelumStack& aStack, const TVelumStep& aStep = {});

} // namespace CVelumImports
