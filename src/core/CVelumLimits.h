// What a document, and a line of the scanner, can hold at most. All rooms refuse or cut by these.
#pragma once

#include <QtGlobal>

// Characters of the longest text that a document can hold.
inline constexpr qsizetype EMaxStoredText = 15000;
// The same in bytes, as a file counts them.
inline constexpr qint32 EMaxStoredTextBytes = 2 * EMaxStoredText;
// Bytes of the largest block of data (a picture) that a document can hold.
inline constexpr qint32 EMaxStoredBlock = 10000000;
// Bytes that no stored picture reaches, with all the texts beside its data: a span that is longer is damaged.
inline constexpr qint64 ENoStoredBlob = 11000000;
// Characters of the longest line that is scanned: a length, the end marker included, has 16 bits.
inline constexpr qsizetype EMaxScanLine = 32766;
