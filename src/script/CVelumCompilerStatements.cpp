// The statements of the grammar.
#include "script/CVelumCompiler.h"

#include "core/CVelumChecked.h"
#include "script/CVelumByteCode.h"
#include "script/CVelumKeywords.h"

using namespace CVelumError;

// Statements from the line in work on, until one that begins with either keyword.
void CVelumCompiler::CompStatementsUntil(qint16 aKw1, qint16 aKw2) {
  while (!IsKw(aKw1) && !IsKw(aKw2)) {
    CompStatement();
    GetNextLine();
  }
}

void CVelumCompiler::CompStatement() {
  if (iSym == ESymIdent) return CompAssignment();
  AssertObj(iSym == ESymKeyword, this, u"CompStatement"_s, u"CompileLine keyword"_s);
  switch (iSymKw) {
  case EKwPut:
    return CompPut();
  case EKwGo:
    return CompGo();
  case EKwIf:
    return CompIf();
  case EKwAnswer:
    return CompAnswer();
  case EKwRepeat:
    return CompRepeat();
  case EKwExit:
    return CompExit();
  case EKwSend:
    return CompSend();
  default:
    AssertObj(false, this, u"CompStatement"_s, u"CompStatement keyword id"_s);
  }
}

void CVelumCompiler::CompAssignment() {
  const QString name = iSymStr;
  NextSym();
  CheckSymIsSym(ESymEqual);
  NextSym();
  CompExpr();
  CodeSlot(name);
  CodeByte(EOpStoreVar);
}

void CVelumCompiler::CompPut() {
  NextSym();
  CompExpr();
  CheckSymIsKw(EKwInto);
  NextSym();
  CheckSymIsKw(EKwField);
  NextSym();
  CompFieldRef();
  CodeByte(EOpPutField);
}

// factor [OF CARD factor]: the card stands behind the field in the source, but ahead of it in the code.
void CVelumCompiler::CompFieldRef() {
  QByteArray outer;
  outer.swap(iCode);
  CompFactor();
  const QByteArray field = std::exchange(iCode, std::move(outer));
  if (IsKw(EKwOf)) {
    NextSym();
    CheckSymIsKw(EKwCard);
    NextSym();
    CompFactor();
    CodeByte(EOpValToCard);
  } else {
    CodeByte(EOpPushCurCard);
  }
  iCode += field;
  CodeByte(EOpValToControl);
}

void CVelumCompiler::CompGo() {
  NextSym();
  if (IsKw(EKwTo)) NextSym();
  if (IsKw(EKwNext)) {
    NextSym();
    CheckSymIsKw(EKwCard);
    iSymDone = true;
    CodeByte(EOpGoNextCard);
    return;
  }
  if (IsKw(EKwCard)) NextSym();
  CompExpr();
  CodeByte(EOpGoToCard);
}

void CVelumCompiler::CompAnswer() {
  NextSym();
  CompExpr();
  CodeByte(EOpAnswer);
}

// The rest of "End If" or "End Repeat".
void CVelumCompiler::CompEnd(qint16 aKw) {
  NextSym();
  CheckSymIsKw(aKw);
  iSymDone = true;
}

// What stands behind Then on its line is dropped with that line.
void CVelumCompiler::CompIf() {
  NextSym();
  CompExpr();
  CheckSymIsKw(EKwThen);
  iSymDone = true;
  qint16 patch = 0;
  CodeJump(EOpJumpIfFalse, patch);
  GetNextLine();
  CompStatementsUntil(EKwElse, EKwEnd);
  if (IsKw(EKwElse)) {
    iSymDone = true;
    const qint16 elsePatch = patch;
    CodeJump(EOpJump, patch);
    CodePatch(CodePos(), elsePatch);
    GetNextLine();
    CompStatementsUntil(EKwEnd, EKwEnd);
  }
  CompEnd(EKwIf);
  CodePatch(CodePos(), patch);
}

void CVelumCompiler::CompRepeat() {
  NextSym();
  if (IsKw(EKwWhile)) return CompRepeatWhile();
  CheckSymIsKw(EKwFor);
  CompRepeatFor();
}

void CVelumCompiler::CompRepeatWhile() {
  const int mark = iNumExits;
  const qint16 top = CodePos();
  NextSym();
  CompExpr();
  qint16 patch = 0;
  CodeJump(EOpJumpIfFalse, patch);
  GetNextLine();
  CompStatementsUntil(EKwEnd, EKwEnd);
  CompEnd(EKwRepeat);
  CodeByte(EOpJump);
  CodeInt(top);
  CodePatch(CodePos(), patch);
  ResolveExits(mark, CodePos());
}

void CVelumCompiler::CompRepeatFor() {
  const int mark = iNumExits;
  NextSym();
  CheckSymIsKw(EKwEach);
  NextSym();
  CheckSymIsKw(EKwCard);
  NextSym();
  CheckSymIsSym(ESymIdent);
  CodeSlot(iSymStr);
  NextSym();
  const bool withBackground = IsKw(EKwOf);
  if (withBackground) {
    NextSym();
    CheckSymIsKw(EKwBackground);
    NextSym();
    CompFactor();
    CodeByte(EOpValToBackground);
  }
  qint16 firstPatch = 0;
  CodeJump(withBackground ? EOpFirstCardInBackground : EOpFirstCard, firstPatch);
  const qint16 top = CodePos();
  GetNextLine();
  CompStatementsUntil(EKwEnd, EKwEnd);
  CompEnd(EKwRepeat);
  qint16 nextPatch = 0;
  CodeJump(withBackground ? EOpNextCardInBackground : EOpNextCard, nextPatch);
  CodeByte(EOpJump);
  CodeInt(top);
  const qint16 exit = CodePos();
  CodePatch(exit, firstPatch);
  CodePatch(exit, nextPatch);
  ResolveExits(mark, exit);
  for (int i = 0; i < 3; ++i) CodeByte(EOpPop);
}

// Outside a loop nothing resolves the jump: it stays to position 0, and its entry stays in iExits.
void CVelumCompiler::CompExit() {
  NextSym();
  CheckSymIsKw(EKwRepeat);
  qint16 pos = 0;
  CodeJump(EOpJump, pos);
  PushExit(pos);
  NextSym();
}

void CVelumCompiler::CompSend() {
  NextSym();
  CompExpr();
  CheckSymIsKw(EKwTo);
  NextSym(); // the word that says what kind of target this is
  NextSym();
  CompFieldRef();
  CodeByte(EOpSend);
}
