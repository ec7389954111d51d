// Texts that share blocks of memory.
#pragma once

#include <QString>

// Makes many short texts at the price of few allocations: each text is a piece of a block, and counts as a
// user of it, as copies of a text do. A block lives as long as one of its texts. Changing a text gives it
// memory of its own.
class CVelumTextPool {
public:
  // A text of aLen characters, which are the caller's to fill in: aChars is where they stand, until the next
  // call. aLen is at least 1.
  [[nodiscard]] QString Take(qsizetype aLen, char16_t*& aChars);

private:
  QString::DataPointer iBlock;
  qsizetype iUsed = 0;
};
