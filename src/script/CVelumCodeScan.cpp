#include "script/CVelumCodeScan.h"

#include "core/CVelumConst.h"
#include "script/CVelumByteCode.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace {

// What an instruction does to the stack, and what it may be part of.
struct TEffect {
  qint8 iLen = 0; // with its operand; 0 for what is no instruction
  qint8 iPops = 0;
  qint8 iPushes = 0;
  bool iPure = false; // computes a value, and neither jumps nor changes anything
};

constexpr std::array<TEffect, EOpSend + 1> Effects() {
  std::array<TEffect, EOpSend + 1> table{};
  for (int op = EOpEqual; op <= EOpConcat; ++op)
    if (IsBinaryOp(op)) table[static_cast<size_t>(op)] = {1, 2, 1, true};
  for (const int op : {EOpPushCurCard, EOpNumCards, EOpPushReturn, EOpPushTab, EOpPushDate, EOpPushParam})
    table[static_cast<size_t>(op)] = {1, 0, 1, true};
  for (const int op : {EOpValToCard, EOpValToControl, EOpPushVarVal, EOpNot, EOpNegate, EOpValToBackground,
                       EOpNumCardsOfBackground})
    table[static_cast<size_t>(op)] = {1, 1, 1, true};
  for (const int op : {EOpGetField, EOpRandom}) table[static_cast<size_t>(op)] = {1, 2, 1, true};
  for (const int op : {EOpStop, EOpGoNextCard}) table[static_cast<size_t>(op)] = {1, 0, 0};
  for (const int op : {EOpAnswer, EOpGoToCard, EOpPop}) table[static_cast<size_t>(op)] = {1, 1, 0};
  for (const int op : {EOpPutField, EOpSend}) table[static_cast<size_t>(op)] = {1, 3, 0};
  for (const int op : {EOpLine, EOpJump, EOpNextCard, EOpNextCardInBackground, EOpEnter, EOpLeave})
    table[static_cast<size_t>(op)] = {3, 0, 0};
  table[EOpPushStr] = {3, 0, 1, true}; // and its characters
  table[EOpPushInt] = {3, 0, 1, true};
  table[EOpStoreVar] = {1, 2, 0};
  table[EOpJumpIfFalse] = {3, 1, 0};
  table[EOpFirstCard] = {3, 0, 2};
  table[EOpFirstCardInBackground] = {3, 0, 1};
  return table;
}

constexpr std::array<TEffect, EOpSend + 1> EEffects = Effects();

// No number that is known.
constexpr qint32 EUnknown = -1;
constexpr qint16 ENone = -1;
// Instructions of one statement that are looked at.
constexpr int EMostSteps = 2000;

// Reads instruction by instruction, and keeps the numbers that were pushed.
class CWalk {
public:
  CWalk(const QByteArray& aCode, qint32 aPos) : iCode(aCode), iPos(aPos) {}

  // Looks at the instruction at the position; false where none stands whole.
  bool Look() {
    iOp = Byte(0);
    const bool known = iOp >= 0 && iOp < static_cast<int>(EEffects.size());
    iEffect = known ? EEffects[static_cast<size_t>(iOp)] : TEffect();
    if (iEffect.iLen == 0) return false;
    iLen = iEffect.iLen + (iOp == EOpPushStr ? qMax(0, Byte(2)) : 0);
    return iPos + iLen <= iCode.size();
  }
  // Does what the instruction does to the stack, and goes behind it.
  void Step() {
    for (int i = 0; i < iEffect.iPops && !iStack.empty(); ++i) iStack.pop_back();
    for (int i = 0; i < iEffect.iPushes; ++i)
      iStack.push_back(iOp == EOpPushInt ? Byte(1) + 256 * Byte(2) : EUnknown);
    iPos += iLen;
  }
  void Push() { iStack.push_back(EUnknown); }

  [[nodiscard]] int Op() const { return iOp; }
  [[nodiscard]] const TEffect& Effect() const { return iEffect; }
  [[nodiscard]] size_t Depth() const { return iStack.size(); }
  // The number aDepth entries below the top, or EUnknown.
  [[nodiscard]] qint32 Num(size_t aDepth) const {
    return aDepth < iStack.size() ? iStack[iStack.size() - 1 - aDepth] : EUnknown;
  }
  // The slot that the instruction names, or EUnknown.
  [[nodiscard]] qint32 Slot() const {
    if (iOp == EOpPushVarVal || iOp == EOpStoreVar || iOp == EOpFirstCard) return Num(0);
    return iOp == EOpFirstCardInBackground ? Num(1) : EUnknown;
  }

private:
  [[nodiscard]] int Byte(qint32 aAt) const {
    return iPos + aAt < iCode.size() ? static_cast<quint8>(iCode.at(iPos + aAt)) : -1;
  }

  const QByteArray& iCode;
  qint32 iPos;
  int iOp = 0;
  qint32 iLen = 0;
  TEffect iEffect;
  std::vector<qint32> iStack;
};

} // namespace

qint32 CVelumCodeScan::NumSlots(const QByteArray& aCode) {
  qint32 largest = EUnknown;
  for (CWalk walk(aCode, EGenerationLen); walk.Look(); walk.Step())
    if (walk.Slot() <= std::numeric_limits<qint16>::max()) largest = qMax(largest, walk.Slot());
  return largest + 1;
}

qint16 CVelumCodeScan::AppendsTo(const QByteArray& aCode, qint32 aPos) {
  std::vector<qint32> read;
  CWalk walk(aCode, aPos);
  walk.Push(); // the text
  for (int i = 0; i < EMostSteps && walk.Look(); ++i, walk.Step()) {
    const bool takesText = static_cast<size_t>(walk.Effect().iPops) >= walk.Depth();
    if (walk.Op() == EOpStoreVar && walk.Depth() == 2) {
      const bool isRead = std::find(read.begin(), read.end(), walk.Slot()) != read.end();
      const bool isSlot = walk.Slot() <= std::numeric_limits<qint16>::max();
      return isRead || !isSlot ? ENone : static_cast<qint16>(walk.Slot());
    }
    if (!walk.Effect().iPure || (takesText && (walk.Op() != EOpConcat || walk.Depth() != 2))) return ENone;
    if (walk.Op() != EOpPushVarVal) continue;
    if (walk.Slot() == EUnknown) return ENone;
    read.push_back(walk.Slot());
  }
  return ENone;
}
