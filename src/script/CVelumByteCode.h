// The instructions of the byte code, as they stand in files.
#pragma once

#include <QtGlobal>

enum EOp : quint8 {
  EOpPushStr = 1,
  EOpValToCard = 2,
  EOpValToControl = 3,
  EOpPutField = 4,
  EOpStop = 5,
  EOpGoNextCard = 6,
  EOpEqual = 7,
  EOpJumpIfFalse = 8,
  EOpGetField = 9,
  EOpAnswer = 10,
  EOpPushVarVal = 11,
  EOpStoreVar = 12,
  EOpPushInt = 13,
  EOpLine = 14,
  EOpGoToCard = 15,
  EOpNot = 16,
  EOpMul = 17,
  EOpDiv = 18,
  EOpAnd = 19,
  EOpAdd = 20,
  EOpSub = 21,
  EOpNegate = 22,
  EOpOr = 23,
  EOpGreater = 24,
  EOpGreaterEqual = 25,
  EOpLess = 26,
  EOpLessEqual = 27,
  EOpNotEqual = 28,
  EOpPushCurCard = 29,
  EOpJump = 30,
  EOpFirstCard = 31,
  EOpNextCard = 32,
  EOpRandom = 33,
  EOpNumCards = 34,
  EOpValToBackground = 35,
  EOpFirstCardInBackground = 36,
  EOpNextCardInBackground = 37,
  EOpEnter = 38,
  EOpLeave = 39,
  EOpConcat = 40,
  EOpPushReturn = 41,
  EOpPushTab = 42,
  EOpPushDate = 43,
  EOpPushParam = 44,
  EOpNumCardsOfBackground = 45,
  EOpPop = 46,
  EOpSend = 47,
};

// Bytes ahead of the first instruction.
constexpr qint32 EGenerationLen = 2;

// Whether a byte is one of the operators with two operands.
[[nodiscard]] constexpr bool IsBinaryOp(int aOp) {
  return aOp == EOpEqual || (aOp >= EOpMul && aOp <= EOpNotEqual && aOp != EOpNegate) || aOp == EOpConcat;
}
