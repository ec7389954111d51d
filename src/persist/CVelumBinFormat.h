// What stands in front of the stack in a binary stack file.
#pragma once

#include "core/CVelumLib.h"
#include "core/file/CVelumFile.h"

namespace CVelumBinFormat {

inline constexpr char EMagic[] = "Orvelle"; // seven bytes, without an end
inline constexpr qint64 EMagicLen = 7;
inline constexpr int ETypeId = 13; // of the file itself
inline constexpr int EGen = 0;
inline constexpr qint64 EHeadLen = EMagicLen + 4;
inline constexpr qint64 EPointerLen = 4; // between the stack data and the blob area

inline void WriteHead(CVelumFile& aFile) {
  aFile.WriteRawBytes(QByteArray(EMagic, EMagicLen));
  CVelumLib::WriteBinObjStart(aFile, ETypeId, EGen);
}

// The magic has been looked at before, and is skipped.
inline void ReadHead(CVelumFile& aFile) {
  static_cast<void>(aFile.ReadRawBytes(EMagicLen));
  static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, EGen, EGen));
}

} // namespace CVelumBinFormat
