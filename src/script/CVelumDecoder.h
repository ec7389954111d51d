// Byte code in the form in which it runs.
#pragma once

#include "core/CVelumObject.h"
#include "script/CVelumByteCode.h"

#include <QByteArray>
#include <vector>

// Instructions that stand for several of the byte code. They do the same as these, unless something is out
// of the ordinary (an empty slot, other types, a full stack): then the single ones run.
enum EFused : quint8 {
  EFusedNone = 0,          // runs from its bytes
  EFusedPushVar = 100,     // 13 s, 11
  EFusedStore = 101,       // 13 s, 12
  EFusedBinPush = 102,     // operand, operand, binary operator
  EFusedBinStore = 103,    // the same, 13 s, 12
  EFusedCmpJump = 104,     // operand, operand, comparison, 8 pos
  EFusedLine = 105,        // 14 n
  EFusedJump = 106,        // 30 pos
  EFusedConcatStore = 107, // 40, 13 s, 12
  EFusedPushStr = 108,     // 1, 11, length, characters
  EFusedUndecoded = 255,
};

// An operand of a fused instruction: a slot, or a number.
struct TOperand {
  bool iIsSlot = false;
  qint16 iNum = 0;
};

// One instruction at its position in the code.
struct TInstr {
  quint8 iKind = EFusedUndecoded; // EFusedNone for a single instruction
  quint8 iOp = 0;                 // the binary operator of a fused one
  quint8 iCount = 1;              // instructions of the byte code that it stands for
  qint16 iLine = -1;              // of a line mark ahead of it, which it stands for too
  TOperand iLeft;
  TOperand iRight;
  qint16 iArg = 0;  // slot of a store or push, jump target, number of a literal
  qint32 iNext = 0; // position behind it
};

// The code of one handler, decoded position by position when it is first reached: a jump may go anywhere,
// also into the middle of an instruction.
class CVelumDecodedCode final : public CVelumObject {
public:
  // aHex: two hexadecimal digits a byte, as a stack holds it.
  explicit CVelumDecodedCode(const QString& aHex);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumDecodedCode"_s; }
  [[nodiscard]] const QByteArray& Bytes() const { return iBytes; }
  // Length of the hexadecimal text.
  [[nodiscard]] qint32 HexLen() const { return iHexLen; }
  // The instruction at a position in 0 to Bytes().size() - 1.
  [[nodiscard]] const TInstr& At(qint32 aPos) {
    TInstr& instr = iInstrs[static_cast<size_t>(aPos)];
    if (instr.iKind == EFusedUndecoded) Decode(aPos, instr);
    return instr;
  }

  // A literal of the code, by the number in its instruction.
  [[nodiscard]] const QString& Literal(qint16 aNum) const { return iLiterals[static_cast<size_t>(aNum)]; }

private:
  void Decode(qint32 aPos, TInstr& aInstr);
  [[nodiscard]] bool DecodeAny(qint32 aPos, TInstr& aInstr);
  [[nodiscard]] bool DecodeLiteral(qint32 aPos, TInstr& aInstr);
  [[nodiscard]] bool DecodeFused(qint32 aPos, TInstr& aInstr) const;
  [[nodiscard]] bool ReadNum(qint32 aPos, quint8 aOp, qint16& aNum) const;
  [[nodiscard]] bool ReadOperand(qint32& aPos, TOperand& aOperand) const;
  [[nodiscard]] int ByteAt(qint32 aPos) const;

  QByteArray iBytes;
  qint32 iHexLen;
  std::vector<TInstr> iInstrs;
  std::vector<QString> iLiterals;
};
