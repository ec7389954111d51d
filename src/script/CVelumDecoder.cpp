#include "script/CVelumDecoder.h"

#include "core/CVelumConst.h"
#include "core/CVelumLib.h"

namespace {

bool IsComparison(int aOp) {
  return aOp == EOpEqual || (aOp >= EOpGreater && aOp <= EOpNotEqual);
}

// Bytes of an instruction with a 16-bit operand, and of a literal ahead of its characters.
constexpr qint32 ENumLen = 3;
// Literals that are kept decoded.
constexpr size_t EMaxLiterals = 10000;

} // namespace

CVelumDecodedCode::CVelumDecodedCode(const QString& aHex)
    : iBytes(CVelumLib::HexToBytes(aHex)), iHexLen(static_cast<qint32>(aHex.size())),
      iInstrs(static_cast<size_t>(iBytes.size())) {}

int CVelumDecodedCode::ByteAt(qint32 aPos) const {
  return aPos < iBytes.size() ? static_cast<quint8>(iBytes.at(aPos)) : -1;
}

// The operand of instruction aOp at aPos, if that stands there whole and its number is one that can be read.
bool CVelumDecodedCode::ReadNum(qint32 aPos, quint8 aOp, qint16& aNum) const {
  if (ByteAt(aPos) != aOp || aPos + ENumLen > iBytes.size() || ByteAt(aPos + 2) > 127) return false;
  aNum = static_cast<qint16>(ByteAt(aPos + 1) + 256 * ByteAt(aPos + 2));
  return true;
}

// A variable's value (13 s, 11) or a number (13 n).
bool CVelumDecodedCode::ReadOperand(qint32& aPos, TOperand& aOperand) const {
  if (!ReadNum(aPos, EOpPushInt, aOperand.iNum)) return false;
  aPos += ENumLen;
  aOperand.iIsSlot = ByteAt(aPos) == EOpPushVarVal;
  if (aOperand.iIsSlot) ++aPos;
  return true;
}

bool CVelumDecodedCode::DecodeFused(qint32 aPos, TInstr& aInstr) const {
  qint32 pos = aPos;
  if (ReadNum(pos, EOpPushInt, aInstr.iArg) && ByteAt(pos + ENumLen) == EOpStoreVar) {
    aInstr.iKind = EFusedStore;
    aInstr.iCount = 2;
    aInstr.iNext = pos + ENumLen + 1;
    return true;
  }
  if (ByteAt(pos) == EOpConcat && ReadNum(pos + 1, EOpPushInt, aInstr.iArg) &&
      ByteAt(pos + 1 + ENumLen) == EOpStoreVar) {
    aInstr.iKind = EFusedConcatStore;
    aInstr.iCount = 3;
    aInstr.iNext = pos + ENumLen + 2;
    return true;
  }
  if (!ReadOperand(pos, aInstr.iLeft)) return false;
  const qint32 behindLeft = pos;
  const bool binary = ReadOperand(pos, aInstr.iRight) && IsBinaryOp(ByteAt(pos));
  if (!binary) {
    aInstr.iKind = EFusedPushVar;
    aInstr.iCount = 2;
    aInstr.iArg = aInstr.iLeft.iNum;
    aInstr.iNext = behindLeft;
    return aInstr.iLeft.iIsSlot;
  }
  aInstr.iOp = static_cast<quint8>(ByteAt(pos++));
  aInstr.iKind = EFusedBinPush;
  aInstr.iCount = static_cast<quint8>(3 + (aInstr.iLeft.iIsSlot ? 1 : 0) + (aInstr.iRight.iIsSlot ? 1 : 0));
  if (IsComparison(aInstr.iOp) && ReadNum(pos, EOpJumpIfFalse, aInstr.iArg)) {
    aInstr.iKind = EFusedCmpJump;
    aInstr.iCount = static_cast<quint8>(aInstr.iCount + 1);
    pos += ENumLen;
  } else if (ReadNum(pos, EOpPushInt, aInstr.iArg) && ByteAt(pos + ENumLen) == EOpStoreVar) {
    aInstr.iKind = EFusedBinStore;
    aInstr.iCount = static_cast<quint8>(aInstr.iCount + 2);
    pos += ENumLen + 1;
  }
  aInstr.iNext = pos;
  return true;
}

// A whole text literal; a code has fewer positions than a number can count.
bool CVelumDecodedCode::DecodeLiteral(qint32 aPos, TInstr& aInstr) {
  if (ByteAt(aPos) != EOpPushStr || ByteAt(aPos + 1) != EValStr || iLiterals.size() > EMaxLiterals)
    return false;
  const int len = ByteAt(aPos + 2);
  if (len < 0 || aPos + ENumLen + len > iBytes.size()) return false;
  aInstr.iKind = EFusedPushStr;
  aInstr.iArg = static_cast<qint16>(iLiterals.size());
  aInstr.iNext = aPos + ENumLen + len;
  iLiterals.push_back(CVelumLib::FromCodePage(iBytes.mid(aPos + ENumLen, len)));
  return true;
}

bool CVelumDecodedCode::DecodeAny(qint32 aPos, TInstr& aInstr) {
  TInstr fused;
  if (DecodeLiteral(aPos, fused) || DecodeFused(aPos, fused)) {
    aInstr = fused;
    return true;
  }
  fused = TInstr();
  if (!ReadNum(aPos, EOpJump, fused.iArg)) return false;
  fused.iKind = EFusedJump;
  fused.iNext = aPos + ENumLen;
  aInstr = fused;
  return true;
}

void CVelumDecodedCode::Decode(qint32 aPos, TInstr& aInstr) {
  if (DecodeAny(aPos, aInstr)) return;
  aInstr = TInstr();
  aInstr.iKind = EFusedNone;
  qint16 line = 0;
  if (!ReadNum(aPos, EOpLine, line)) return;
  if (!DecodeAny(aPos + ENumLen, aInstr)) {
    aInstr.iKind = EFusedLine;
    aInstr.iNext = aPos + ENumLen;
  } else {
    aInstr.iCount = static_cast<quint8>(aInstr.iCount + 1);
  }
  aInstr.iLine = line;
}
