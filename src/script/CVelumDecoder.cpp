#include "script/CVelumDecoder.h"

#include "core/CVelumConst.h"
#include "core/CVelumLib.h"
#include "script/CVelumCodeScan.h"

namespace {

// As iHolds of TInstr wants it; 0 for what is no comparison.
quint8 HoldsOf(int aOp) {
  switch (aOp) {
  case EOpLess:
    return 1;
  case EOpEqual:
    return 2;
  case EOpLessEqual:
    return 3;
  case EOpGreater:
    return 4;
  case EOpNotEqual:
    return 5;
  case EOpGreaterEqual:
    return 6;
  default:
    return 0;
  }
}

EHot HotOf(int aOp) {
  if (aOp == EOpAdd) return EHotAdd;
  if (aOp == EOpSub) return EHotSub;
  return aOp == EOpMul ? EHotMul : EHotNone;
}

bool MayBeHot(const TOperand& aOperand) {
  return aOperand.iKind == TOperand::ENum || aOperand.iKind == TOperand::ESlot;
}

// Bytes of an instruction with a 16-bit operand, and of a literal ahead of its characters.
constexpr qint32 ENumLen = 3;
// Texts, and fields, that are kept decoded.
constexpr size_t EMaxKept = 10000;
// Line marks that join an instruction.
constexpr int EMaxMarks = 100;

} // namespace

CVelumDecodedCode::CVelumDecodedCode(const QString& aHex)
    : iBytes(CVelumLib::HexToBytes(aHex)), iHexLen(static_cast<qint32>(aHex.size())),
      iNumSlots(CVelumCodeScan::NumSlots(iBytes)),
      iInstrs(static_cast<size_t>(qMin<qsizetype>(iBytes.size(), EMostDecoded))) {}

int CVelumDecodedCode::ByteAt(qint32 aPos) const {
  return aPos < iBytes.size() ? static_cast<quint8>(iBytes.at(aPos)) : -1;
}

// The operand of instruction aOp at aPos, if that stands there whole and its number is one that can be read.
bool CVelumDecodedCode::ReadNum(qint32 aPos, quint8 aOp, qint16& aNum) const {
  if (ByteAt(aPos) != aOp || aPos + ENumLen > iBytes.size() || ByteAt(aPos + 2) > 127) return false;
  aNum = static_cast<qint16>(ByteAt(aPos + 1) + 256 * ByteAt(aPos + 2));
  return true;
}

// 13 s, 12
bool CVelumDecodedCode::ReadSlotStore(qint32 aPos, qint16& aSlot) const {
  return ReadNum(aPos, EOpPushInt, aSlot) && ByteAt(aPos + ENumLen) == EOpStoreVar;
}

// A whole literal.
bool CVelumDecodedCode::ReadText(qint32& aPos, QString& aText) const {
  if (ByteAt(aPos) != EOpPushStr || ByteAt(aPos + 1) != EValStr) return false;
  const int len = ByteAt(aPos + 2);
  if (len < 0 || aPos + ENumLen + len > iBytes.size()) return false;
  aText = CVelumLib::FromCodePage(iBytes.mid(aPos + ENumLen, len));
  aPos += ENumLen + len;
  return true;
}

// aEnd: what is done with the field, EOpGetField or EOpPutField.
bool CVelumDecodedCode::ReadField(qint32& aPos, quint8 aEnd, TOperand& aOperand) {
  qint32 pos = aPos;
  TFieldOperand field;
  quint8 count = 4;
  if (ByteAt(pos) == EOpPushCurCard) {
    ++pos;
  } else {
    if (!ReadNum(pos, EOpPushInt, field.iCardSlot) || ByteAt(pos + ENumLen) != EOpPushVarVal ||
        ByteAt(pos + ENumLen + 1) != EOpValToCard)
      return false;
    pos += ENumLen + 2;
    count = 6;
  }
  field.iByName = ReadText(pos, field.iName);
  qint16 num = 0;
  if (!field.iByName) {
    if (!ReadNum(pos, EOpPushInt, num)) return false;
    pos += ENumLen;
  }
  field.iNum = num - 1;
  if (ByteAt(pos) != EOpValToControl || ByteAt(pos + 1) != aEnd || iFields.size() > EMaxKept) return false;
  aPos = pos + 2;
  aOperand = {TOperand::EField, count, static_cast<qint16>(iFields.size())};
  iFields.push_back(field);
  return true;
}

bool CVelumDecodedCode::ReadTextOperand(qint32& aPos, TOperand& aOperand) {
  if (iTexts.size() > EMaxKept) return false;
  QString text;
  if (!ReadText(aPos, text)) {
    const int op = ByteAt(aPos);
    if (op != EOpPushReturn && op != EOpPushTab) return false;
    text = op == EOpPushReturn ? u"\r\n"_s : u"\t"_s;
    ++aPos;
  }
  aOperand = {TOperand::EText, 1, static_cast<qint16>(iTexts.size())};
  iTexts.push_back(text);
  return true;
}

bool CVelumDecodedCode::ReadOperand(qint32& aPos, TOperand& aOperand) {
  if (ReadField(aPos, EOpGetField, aOperand) || ReadTextOperand(aPos, aOperand)) return true;
  qint16 num = 0;
  if (!ReadNum(aPos, EOpPushInt, num)) return false;
  aPos += ENumLen;
  aOperand = {TOperand::ENum, 1, num};
  if (ByteAt(aPos) != EOpPushVarVal) return true;
  ++aPos;
  aOperand = {TOperand::ESlot, 2, num};
  return true;
}

bool CVelumDecodedCode::DecodeStore(qint32 aPos, TInstr& aInstr) const {
  if (ReadSlotStore(aPos, aInstr.iArg)) {
    aInstr.iKind = EFusedStore;
    aInstr.iCount = 2;
    aInstr.iNext = aPos + ENumLen + 1;
    return true;
  }
  const int op = ByteAt(aPos);
  if (!IsBinaryOp(op) || !ReadSlotStore(aPos + 1, aInstr.iArg)) return false;
  aInstr.iKind = EFusedTopStore;
  aInstr.iOp = static_cast<quint8>(op);
  aInstr.iCount = 3;
  aInstr.iNext = aPos + ENumLen + 2;
  return true;
}

bool CVelumDecodedCode::DecodeWalk(qint32 aPos, TInstr& aInstr) const {
  const int op = ByteAt(aPos);
  qint16 top = 0;
  if (op != EOpNextCard && op != EOpNextCardInBackground) return false;
  if (!ReadNum(aPos, static_cast<quint8>(op), aInstr.iArg) || !ReadNum(aPos + ENumLen, EOpJump, top))
    return false;
  aInstr.iKind = EFusedNextCard;
  aInstr.iOp = static_cast<quint8>(op);
  aInstr.iCount = 2;
  aInstr.iNext = top;
  return true;
}

bool CVelumDecodedCode::DecodeJump(qint32 aPos, TInstr& aInstr) const {
  if (!ReadNum(aPos, EOpJump, aInstr.iArg)) return false;
  aInstr.iKind = EFusedJump;
  aInstr.iNext = aPos + ENumLen;
  return true;
}

bool CVelumDecodedCode::DecodePut(qint32 aPos, TInstr& aInstr) {
  qint32 pos = aPos;
  if (!ReadField(pos, EOpPutField, aInstr.iLeft)) return false;
  aInstr.iKind = EFusedPut;
  aInstr.iArg = aInstr.iLeft.iNum;
  aInstr.iCount = aInstr.iLeft.iCount;
  aInstr.iNext = pos;
  return true;
}

// Two operands and a binary operator, or what can be made of one operand alone.
bool CVelumDecodedCode::DecodeOperands(qint32 aPos, TInstr& aInstr) {
  qint32 pos = aPos;
  if (!ReadOperand(pos, aInstr.iLeft)) return false;
  const qint32 behindLeft = pos;
  if (ReadOperand(pos, aInstr.iRight) && (IsBinaryOp(ByteAt(pos)) || ByteAt(pos) == EOpRandom)) {
    DecodeBinary(pos, aInstr);
    return true;
  }
  aInstr.iCount = aInstr.iLeft.iCount;
  aInstr.iNext = behindLeft;
  DecodeOperand(behindLeft, aInstr);
  return aInstr.iKind != EFusedNone;
}

// One operand, behind which the code goes on at aPos.
void CVelumDecodedCode::DecodeOperand(qint32 aPos, TInstr& aInstr) const {
  if (ReadSlotStore(aPos, aInstr.iArg)) {
    aInstr.iKind = EFusedStoreOperand;
    aInstr.iCount = static_cast<quint8>(aInstr.iCount + 2);
    aInstr.iNext = aPos + ENumLen + 1;
    return;
  }
  if (IsBinaryOp(ByteAt(aPos))) {
    aInstr.iKind = EFusedTopBin;
    aInstr.iOp = static_cast<quint8>(ByteAt(aPos));
    aInstr.iCount = static_cast<quint8>(aInstr.iCount + 1);
    aInstr.iNext = aPos + 1;
    return;
  }
  static constexpr EFused kinds[] = {EFusedNone, EFusedPushVar, EFusedPushStr, EFusedPushField};
  aInstr.iKind = kinds[aInstr.iLeft.iKind];
  aInstr.iArg = aInstr.iLeft.iNum;
}

// The operator at aPos, and what takes its result.
void CVelumDecodedCode::DecodeBinary(qint32 aPos, TInstr& aInstr) const {
  const qint32 pos = aPos + 1;
  aInstr.iOp = static_cast<quint8>(ByteAt(aPos));
  aInstr.iKind = EFusedBinPush;
  int count = aInstr.iLeft.iCount + aInstr.iRight.iCount + 1;
  aInstr.iNext = pos;
  if (HoldsOf(aInstr.iOp) != 0 && ReadNum(pos, EOpJumpIfFalse, aInstr.iArg)) {
    aInstr.iKind = EFusedCmpJump;
    count += 1;
    aInstr.iNext = pos + ENumLen;
  } else if (ReadSlotStore(pos, aInstr.iArg)) {
    aInstr.iKind = EFusedBinStore;
    count += 2;
    aInstr.iNext = pos + ENumLen + 1;
  }
  aInstr.iCount = static_cast<quint8>(count);
}

bool CVelumDecodedCode::DecodeAny(qint32 aPos, TInstr& aInstr) {
  TInstr fused;
  if (!DecodeStore(aPos, fused) && !DecodePut(aPos, fused) && !DecodeOperands(aPos, fused) &&
      !DecodeJump(aPos, fused) && !DecodeWalk(aPos, fused))
    return false;
  aInstr = fused;
  return true;
}

// aPos is where the instruction begins behind its line marks.
void CVelumDecodedCode::MarkAppend(qint32 aPos, TInstr& aInstr) const {
  if (aInstr.iKind == EFusedBinPush && aInstr.iOp == EOpConcat)
    aInstr.iEndsIn = CVelumCodeScan::AppendsTo(iBytes, aInstr.iNext);
  else if (aInstr.iKind == EFusedNone && ByteAt(aPos) == EOpConcat)
    aInstr.iEndsIn = CVelumCodeScan::AppendsTo(iBytes, aPos + 1);
}

void CVelumDecodedCode::MarkHot(TInstr& aInstr) {
  const bool operands = MayBeHot(aInstr.iLeft) && MayBeHot(aInstr.iRight);
  if (aInstr.iKind == EFusedJump) aInstr.iHot = EHotJump;
  if (aInstr.iKind == EFusedLine) aInstr.iHot = EHotLine;
  if (aInstr.iKind == EFusedBinStore && operands) aInstr.iHot = HotOf(aInstr.iOp);
  if (aInstr.iKind != EFusedCmpJump) return;
  aInstr.iHolds = HoldsOf(aInstr.iOp);
  if (operands) aInstr.iHot = EHotCompare;
}

// The next number or operator of an expression, and how many numbers wait then.
bool CVelumDecodedCode::ReadStep(qint32& aPos, int& aDepth, TExpr& aExpr) {
  if (aExpr.iNumSteps >= TExpr::EMaxSteps) return false;
  TExpr::TStep& step = aExpr.iSteps[aExpr.iNumSteps++];
  const int op = ByteAt(aPos);
  if (aDepth >= 2 && (op == EOpAdd || op == EOpSub || op == EOpMul || op == EOpDiv)) {
    step.iOp = static_cast<quint8>(op);
    ++aExpr.iCount;
    ++aPos;
    --aDepth;
    return true;
  }
  if (aDepth >= TExpr::EMaxDepth || !ReadOperand(aPos, step.iOperand)) return false;
  aExpr.iCount = static_cast<quint8>(aExpr.iCount + step.iOperand.iCount);
  aExpr.iDepth = qMax(aExpr.iDepth, static_cast<quint8>(++aDepth));
  return step.iOperand.iKind != TOperand::EText;
}

// Of one operator there is another fused instruction.
bool CVelumDecodedCode::ReadExpr(qint32 aPos, TExpr& aExpr) {
  constexpr int leastSteps = 5;
  qint32 pos = aPos;
  for (int depth = 0; depth != 1 || !ReadSlotStore(pos, aExpr.iSlot);)
    if (!ReadStep(pos, depth, aExpr)) return false;
  aExpr.iCount = static_cast<quint8>(aExpr.iCount + 2);
  aExpr.iNext = pos + ENumLen + 1;
  return aExpr.iNumSteps >= leastSteps;
}

// Whether an expression begins at aPos; where it cannot be done as a whole, the instruction runs as it is.
void CVelumDecodedCode::DecodeExpr(qint32 aPos, TInstr& aInstr) {
  const bool mayBegin = ByteAt(aPos) == EOpPushInt || ByteAt(aPos) == EOpPushCurCard;
  if (!mayBegin || aInstr.iKind == EFusedBinStore || aInstr.iKind == EFusedCmpJump ||
      iExprs.size() > EMaxKept)
    return;
  const size_t numTexts = iTexts.size();
  const size_t numFields = iFields.size();
  TExpr expr;
  if (ReadExpr(aPos, expr)) {
    aInstr.iExpr = static_cast<qint16>(iExprs.size());
    iExprs.push_back(expr);
    return;
  }
  iTexts.resize(numTexts);
  iFields.resize(numFields);
}

// Line marks ahead of an instruction join it; of several the last one counts.
void CVelumDecodedCode::Decode(qint32 aPos, TInstr& aInstr) {
  qint32 pos = aPos;
  qint16 line = -1;
  int marks = 0;
  for (; marks < EMaxMarks && ReadNum(pos, EOpLine, line); ++marks) pos += ENumLen;
  aInstr = TInstr();
  if (DecodeAny(pos, aInstr)) {
    aInstr.iCount = static_cast<quint8>(aInstr.iCount + marks);
  } else if (marks > 0) {
    aInstr.iKind = EFusedLine;
    aInstr.iCount = static_cast<quint8>(marks);
    aInstr.iNext = pos;
  } else {
    aInstr.iKind = EFusedNone;
  }
  aInstr.iLine = line;
  DecodeExpr(pos, aInstr);
  if (aInstr.iExpr >= 0) {
    quint8& count = iExprs.back().iCount;
    count = static_cast<quint8>(count + marks);
  }
  MarkAppend(pos, aInstr);
  MarkHot(aInstr);
}
