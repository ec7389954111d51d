// Expressions.
#include "script/CVelumCompiler.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "script/CVelumByteCode.h"
#include "script/CVelumKeywords.h"

using namespace CVelumError;

// Counts the nesting while it lives.
class CVelumCompiler::CDepth {
public:
  explicit CDepth(int& aDepth) : iDepth(aDepth) {
    if (iDepth >= EMaxDepth) RaiseHost(EHostOutOfMemory);
    ++iDepth;
  }
  ~CDepth() { --iDepth; }
  CDepth(const CDepth&) = delete;
  CDepth& operator=(const CDepth&) = delete;

private:
  int& iDepth;
};

void CVelumCompiler::CompExpr() {
  CompSimple();
  int op = 0;
  if (iSym == ESymEqual || IsKw(EKwIs)) op = EOpEqual;
  if (iSym == ESymGreater) op = EOpGreater;
  if (iSym == ESymGreaterEqual) op = EOpGreaterEqual;
  if (iSym == ESymLess) op = EOpLess;
  if (iSym == ESymLessEqual) op = EOpLessEqual;
  if (iSym == ESymNotEqual) op = EOpNotEqual;
  if (op == 0) return;
  NextSym();
  CompSimple();
  CodeByte(op);
}

// A leading sign is skipped and has no effect.
void CVelumCompiler::CompSimple() {
  if (iSym == ESymMinus) AddNote(u"The sign has no effect: write 0 - ... instead."_s, iSymStart);
  if (iSym == ESymPlus || iSym == ESymMinus) NextSym();
  CompTerm();
  for (;;) {
    int op = 0;
    if (iSym == ESymPlus) op = EOpAdd;
    if (iSym == ESymMinus) op = EOpSub;
    if (IsKw(EKwOr)) op = EOpOr;
    if (iSym == ESymAmpersand) op = EOpConcat;
    if (op == 0) return;
    NextSym();
    CompTerm();
    CodeByte(op);
  }
}

void CVelumCompiler::CompTerm() {
  CompFactor();
  for (;;) {
    int op = 0;
    if (iSym == ESymStar) op = EOpMul;
    if (iSym == ESymSlash) op = EOpDiv;
    if (IsKw(EKwAnd)) op = EOpAnd;
    if (op == 0) return;
    NextSym();
    CompFactor();
    CodeByte(op);
  }
}

void CVelumCompiler::CompFactor() {
  const CDepth depth(iDepth);
  switch (iSym) {
  case ESymIdent:
    CodeSlot(iSymStr);
    CodeByte(EOpPushVarVal);
    return NextSym();
  case ESymNumber:
    return CompNumber();
  case ESymString:
    CodeByte(EOpPushStr);
    CodeStr();
    return NextSym();
  case ESymLParen:
    return CompParens();
  case ESymKeyword:
    return CompKeywordFactor();
  default:
    Error(u"CompFactor"_s, EMsgBadExpression, iSymStr, QString());
  }
}

void CVelumCompiler::CompKeywordFactor() {
  switch (iSymKw) {
  case EKwNot:
    NextSym();
    CompFactor();
    return CodeByte(EOpNot);
  case EKwField:
    return CompField();
  case EKwRandom:
    return CompRandom();
  case EKwNumber:
    return CompNumberOfCards();
  case EKwReturn:
    CodeByte(EOpPushReturn);
    return NextSym();
  case EKwTab:
    CodeByte(EOpPushTab);
    return NextSym();
  case EKwThe:
    return CompTheDate();
  default:
    Error(u"CompFactor"_s, EMsgBadExpression, iSymStr, QString());
  }
}

void CVelumCompiler::CompNumber() {
  bool ok = false;
  const qint16 num = iSymStr.toShort(&ok);
  if (!ok) RaiseHost(EHostOverflow);
  CodeByte(EOpPushInt);
  CodeInt(num);
  NextSym();
}

void CVelumCompiler::CompParens() {
  NextSym();
  CompExpr();
  CheckSymIsSym(ESymRParen);
  NextSym();
}

void CVelumCompiler::CompField() {
  NextSym();
  CompFieldRef();
  CodeByte(EOpGetField);
}

void CVelumCompiler::CompRandom() {
  NextSym();
  const qint16 count = iSym == ESymLParen ? CompFunctionCall() : qint16(0);
  iSymDone = iSym == ESymRParen && count > 0;
  CodeByte(EOpPushInt);
  CodeInt(count);
  CodeByte(EOpRandom);
}

// Arguments up to the closing parenthesis, which stays the current symbol. Returns their number.
qint16 CVelumCompiler::CompFunctionCall() {
  qint16 count = 0;
  do {
    NextSym();
    CompExpr();
    CVelumLib::Inc(count);
    if (iSym != ESymComma && iSym != ESymRParen)
      Error(u"CompFunctionCall"_s, EMsgBadParamList, QString(), QString());
  } while (iSym == ESymComma);
  return count;
}

void CVelumCompiler::CompNumberOfCards() {
  NextSym();
  CheckSymIsKw(EKwOf);
  NextSym();
  CheckSymIsKw(EKwCards);
  NextSym();
  if (!IsKw(EKwOf)) return CodeByte(EOpNumCards);
  NextSym();
  CheckSymIsKw(EKwBackground);
  NextSym();
  CompFactor();
  CodeByte(EOpValToBackground);
  CodeByte(EOpNumCardsOfBackground);
}

void CVelumCompiler::CompTheDate() {
  NextSym();
  if (!IsKw(EKwDate)) Error(u"CompFactor"_s, EMsgBadExpression, iSymStr, QString());
  CodeByte(EOpPushDate);
  NextSym();
}
