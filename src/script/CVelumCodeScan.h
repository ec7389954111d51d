// What can be told of byte code without running it.
#pragma once

#include <QByteArray>

// All functions read the instructions one behind the other, as a compiler wrote them, and stop at what is
// none.
namespace CVelumCodeScan {

// The largest slot that the code names, plus one: the room that the variables of a handler take. 0 for code
// that names none. Slots that code computes are not seen.
[[nodiscard]] qint32 NumSlots(const QByteArray& aCode);

// For a text on top of the stack ahead of the instruction at aPos: the slot that the text ends in, when all
// that happens to it until then is that others are appended to it, and nothing reads that slot meanwhile. -1
// otherwise.
[[nodiscard]] qint16 AppendsTo(const QByteArray& aCode, qint32 aPos);

} // namespace CVelumCodeScan
