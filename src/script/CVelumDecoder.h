// Byte code in the form in which it runs.
#pragma once

#include "core/CVelumObject.h"
#include "script/CVelumByteCode.h"

#include <QByteArray>
#include <array>
#include <vector>

class CVelumControl;

// Instructions that stand for several of the byte code. They do the same as these, unless something is out
// of the ordinary (an empty slot, other types, a full stack): then the single ones run. An operand is a
// number (13 n), a variable (13 s, 11), a text (1) or a field (TFieldOperand).
enum EFused : quint8 {
  EFusedNone,         // runs from its bytes
  EFusedUndecoded,    // not reached yet
  EFusedPushVar,      // 13 s, 11
  EFusedPushStr,      // 1, 11, length, characters; 41; 42
  EFusedPushField,    // a field
  EFusedStore,        // 13 s, 12
  EFusedStoreOperand, // operand, 13 s, 12
  EFusedBinPush,      // operand, operand, binary operator or 33
  EFusedBinStore,     // the same, 13 s, 12
  EFusedCmpJump,      // operand, operand, comparison, 8 pos
  EFusedTopStore,     // binary operator, 13 s, 12
  EFusedTopBin,       // operand, binary operator; the left one is on the stack
  EFusedPut,          // a field up to its 3, then 4; the value is on the stack
  EFusedLine,         // 14 n, several
  EFusedJump,         // 30 pos
  EFusedNextCard,     // 32 or 37 pos, 30 pos
};

// The few that make most of a loop: they change nothing but whole numbers in variables, and the position.
enum EHot : quint8 { EHotNone, EHotJump, EHotLine, EHotCompare, EHotAdd, EHotSub, EHotMul };

// What an operand is, and its number: the number itself, a slot, or the index of a text or field in the code.
struct TOperand {
  enum EKind : quint8 { ENum, ESlot, EText, EField };
  EKind iKind = ENum;
  quint8 iCount = 1; // instructions of the byte code that it stands for
  qint16 iNum = 0;
};

// "Field f" or "Field f Of Card c": 29 or (13 s, 11, 2), then 1 or 13, then 3, 9. Remembers what it found;
// that holds for a while only (iStamp), and for the cards of one background.
struct TFieldOperand {
  qint16 iCardSlot = -1; // -1: the card of the handler
  bool iByName = false;
  QString iName;
  qint32 iNum = 0; // from 0
  quint32 iStamp = 0;
  const void* iStack = nullptr;
  qint32 iBackgroundId = 0;
  CVelumControl* iControl = nullptr;
  qint32 iControlId = 0;
  qint32 iConType = 0;
  int iValType = 0; // of its values
  qint32 iHint = 0; // index of the value in the array of the last card
};

// A sum, difference, product or quotient of several numbers, and the variable that takes it: numbers,
// variables and fields, with the operators behind what they join.
struct TExpr {
  static constexpr int EMaxSteps = 12;
  static constexpr int EMaxDepth = 4;
  struct TStep {
    TOperand iOperand;
    quint8 iOp = 0; // 0: the operand
  };
  std::array<TStep, EMaxSteps> iSteps;
  quint8 iNumSteps = 0;
  quint8 iDepth = 0; // numbers that wait for an operator at most
  quint8 iCount = 0; // instructions of the byte code that it stands for
  qint16 iSlot = 0;
  qint32 iNext = 0;
};

// One instruction at its position in the code.
struct TInstr {
  EFused iKind = EFusedUndecoded;
  quint8 iOp = 0;    // the binary operator of a fused one
  quint8 iCount = 1; // instructions of the byte code that it stands for
  EHot iHot = EHotNone;
  quint8 iHolds = 0; // of EFusedCmpJump: 1 if it holds for less, plus 2 for equal, plus 4 for greater
  static constexpr quint8 EHoldsEqual = 2;
  static constexpr quint8 EHoldsNotEqual = 5;
  qint16 iLine = -1; // of the line marks ahead of it, which it stands for too; -1 for none
  TOperand iLeft;
  TOperand iRight;
  qint16 iArg = 0;     // slot of a store or push, jump target, index of a text or field
  qint16 iExpr = -1;   // of an expression that begins here, its number in the code
  qint16 iEndsIn = -1; // of an & that leaves its text on the stack: see CVelumCodeScan::AppendsTo
  qint32 iNext = 0;    // position behind it; of a walk its beginning

  // Whether the comparison of EFusedCmpJump holds for two numbers.
  [[nodiscard]] bool Holds(qint32 aLeft, qint32 aRight) const {
    const int order = (aLeft > aRight) - (aLeft < aRight) + 1;
    return ((iHolds >> order) & 1) != 0;
  }
  // The same for two texts, by their codes.
  [[nodiscard]] bool Holds(const QString& aLeft, const QString& aRight) const {
    // Whether they are the same is told faster than which is the greater one.
    const bool sameOnly = iHolds == EHoldsEqual || iHolds == EHoldsNotEqual;
    if (sameOnly) return (aLeft == aRight) == (iHolds == EHoldsEqual);
    return Holds(aLeft.compare(aRight), 0);
  }
};

// The code of one handler, decoded position by position when it is first reached: a jump may go anywhere,
// also into the middle of an instruction. No compiler makes a handler of more than EMostDecoded bytes; what
// lies beyond runs from its bytes, so that code out of a file takes little more memory than it has there.
class CVelumDecodedCode final : public CVelumObject {
public:
  static constexpr qint32 EMostDecoded = 32768;

  // aHex: two hexadecimal digits a byte, as a stack holds it.
  explicit CVelumDecodedCode(const QString& aHex);

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumDecodedCode"_s; }
  [[nodiscard]] const QByteArray& Bytes() const { return iBytes; }
  // Length of the hexadecimal text.
  [[nodiscard]] qint32 HexLen() const { return iHexLen; }
  // Positions that have an instruction.
  [[nodiscard]] qint32 NumDecoded() const { return static_cast<qint32>(iInstrs.size()); }
  // Room that the variables take: the largest slot in the code, plus one.
  [[nodiscard]] qint32 NumSlots() const { return iNumSlots; }
  // The instruction at a position in 0 to NumDecoded() - 1.
  [[nodiscard]] const TInstr& At(qint32 aPos) {
    TInstr& instr = iInstrs[static_cast<size_t>(aPos)];
    if (instr.iKind == EFusedUndecoded) Decode(aPos, instr);
    return instr;
  }

  // A text or field of the code, by the number in its instruction.
  [[nodiscard]] const QString& Text(qint16 aNum) const { return iTexts[static_cast<size_t>(aNum)]; }
  [[nodiscard]] const TExpr& Expr(qint16 aNum) const { return iExprs[static_cast<size_t>(aNum)]; }
  [[nodiscard]] TFieldOperand& Field(qint16 aNum) { return iFields[static_cast<size_t>(aNum)]; }

private:
  void Decode(qint32 aPos, TInstr& aInstr);
  [[nodiscard]] bool DecodeAny(qint32 aPos, TInstr& aInstr);
  [[nodiscard]] bool DecodeStore(qint32 aPos, TInstr& aInstr) const;
  [[nodiscard]] bool DecodeWalk(qint32 aPos, TInstr& aInstr) const;
  [[nodiscard]] bool DecodeJump(qint32 aPos, TInstr& aInstr) const;
  [[nodiscard]] bool DecodePut(qint32 aPos, TInstr& aInstr);
  [[nodiscard]] bool DecodeOperands(qint32 aPos, TInstr& aInstr);
  void DecodeOperand(qint32 aPos, TInstr& aInstr) const;
  void DecodeBinary(qint32 aPos, TInstr& aInstr) const;
  void DecodeExpr(qint32 aPos, TInstr& aInstr);
  [[nodiscard]] bool ReadExpr(qint32 aPos, TExpr& aExpr);
  [[nodiscard]] bool ReadStep(qint32& aPos, int& aDepth, TExpr& aExpr);
  void MarkAppend(qint32 aPos, TInstr& aInstr) const;
  static void MarkHot(TInstr& aInstr);
  [[nodiscard]] bool ReadNum(qint32 aPos, quint8 aOp, qint16& aNum) const;
  [[nodiscard]] bool ReadSlotStore(qint32 aPos, qint16& aSlot) const;
  [[nodiscard]] bool ReadText(qint32& aPos, QString& aText) const;
  [[nodiscard]] bool ReadField(qint32& aPos, quint8 aEnd, TOperand& aOperand);
  [[nodiscard]] bool ReadTextOperand(qint32& aPos, TOperand& aOperand);
  [[nodiscard]] bool ReadOperand(qint32& aPos, TOperand& aOperand);
  [[nodiscard]] int ByteAt(qint32 aPos) const;

  QByteArray iBytes;
  qint32 iHexLen;
  qint32 iNumSlots;
  std::vector<TInstr> iInstrs;
  std::vector<QString> iTexts;
  std::vector<TFieldOperand> iFields;
  std::vector<TExpr> iExprs;
};
