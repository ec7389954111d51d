// The code, the stack of values, and which instruction does what.
#include "script/CVelumInterpreter.h"

#include "core/CVelumChecked.h"
#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"

using namespace CVelumError;

// ---- Code and stack

int CVelumInterpreter::CodeByte() {
  const QByteArray& bytes = iCode->Bytes();
  AssertObj(iIp < iCode->HexLen(), this, u"CodeByte"_s, u"CodeByte codeLen"_s);
  CVelumChecked::CheckIndex<qsizetype>(iIp, bytes.size());
  return static_cast<quint8>(bytes.at(iIp++));
}

qint16 CVelumInterpreter::CodeInt() {
  const int low = CodeByte();
  const int high = CodeByte();
  return CVelumChecked::Narrow<qint16>(low + 256 * high);
}

void CVelumInterpreter::Push(TVarRef aVar) {
  const CVelumVar& var = CVelumChecked::Deref(aVar);
  if (var.GetValue().Type() == EValUndef) AssertObj(false, this, u"Push"_s, u"Push undef"_s);
  if (var.ValType() == EValUndef) AssertObj(false, this, u"Push"_s, u"Push undef"_s);
  iStack[static_cast<size_t>(CVelumChecked::Index(iSp, EStackSize))] = std::move(aVar);
  ++iSp;
}

CVelumInterpreter::TVarRef CVelumInterpreter::Pop() {
  if (iSp < 1) AssertObj(false, this, u"Pop"_s, u"Pop sp"_s);
  const qint32 top = CVelumChecked::Index(iSp - 1, EStackSize);
  iSp = top;
  return std::exchange(iStack[static_cast<size_t>(top)], nullptr);
}

const CVelumInterpreter::TVarRef& CVelumInterpreter::Peek(int aDepth) const {
  return iStack[static_cast<size_t>(CVelumChecked::Index(iSp - 1 - aDepth, EStackSize))];
}

CVelumInterpreter::TVarRef& CVelumInterpreter::Slot(qint32 aSlot) {
  return iStack[static_cast<size_t>(CVelumChecked::Index(CVelumChecked::Add(iFrame, aSlot), EStackSize))];
}

void CVelumInterpreter::SetVarVal(qint16 aSlot, const Ref<CVelumVar>& aVar) {
  Slot(aSlot) = aVar;
}

void CVelumInterpreter::RunFail(const QString& aProc, qint32 aMsg, const QString& aParam0,
                                const QString& aParam1) {
  iError = {aMsg, aParam0, aParam1, iObj, iLine};
  Throw(EMsgRunError, u"CVelumInterpreter."_s + aProc, QString(), QString());
}

bool CVelumInterpreter::Dispatch(int aOp) {
  switch (aOp) {
  case EOpPushStr:
    ExecPushStr();
    break;
  case EOpValToCard:
    ExecValToCard();
    break;
  case EOpValToControl:
    ExecValToControl();
    break;
  case EOpPutField:
    ExecPutField();
    break;
  case EOpStop:
    return false;
  case EOpGoNextCard:
    ExecGoNextCard();
    break;
  case EOpJumpIfFalse:
    ExecJumpIfFalse();
    break;
  case EOpGetField:
    ExecGetField();
    break;
  case EOpAnswer:
    ExecAnswer();
    break;
  case EOpPushVarVal:
    ExecPushVarVal();
    break;
  case EOpStoreVar:
    ExecStoreVar();
    break;
  case EOpPushInt:
    Push(MakeRef<CVelumVar>(TVelumValue::OfInt(CodeInt())));
    break;
  case EOpLine:
    iLine = CodeInt();
    break;
  case EOpGoToCard:
    ExecGoToCard();
    break;
  case EOpNot:
    ExecNot();
    break;
  case EOpNegate:
    ExecNegate();
    break;
  case EOpPushCurCard:
    ExecPushCurCard();
    break;
  case EOpJump:
    ExecJump();
    break;
  case EOpFirstCard:
    ExecFirstCard();
    break;
  case EOpNextCard:
    ExecNextCard();
    break;
  case EOpRandom:
    ExecRandom();
    break;
  case EOpNumCards:
    ExecNumCards();
    break;
  case EOpValToBackground:
    ExecValToBackground();
    break;
  case EOpFirstCardInBackground:
    ExecFirstCardInBackground();
    break;
  case EOpNextCardInBackground:
    ExecNextCardInBackground();
    break;
  case EOpEnter:
    ExecEnter();
    break;
  case EOpLeave:
    return ExecLeave();
  case EOpPushReturn:
    Push(MakeRef<CVelumVar>(TVelumValue::OfStr(u"\r\n"_s)));
    break;
  case EOpPushTab:
    Push(MakeRef<CVelumVar>(TVelumValue::OfStr(u"\t"_s)));
    break;
  case EOpPushDate:
    Push(MakeRef<CVelumVar>(TVelumValue::OfDate(CVelumValue::Today())));
    break;
  case EOpPushParam:
    Push(MakeRef<CVelumVar>(TVelumValue::OfStr(iParamVal)));
    break;
  case EOpNumCardsOfBackground:
    ExecNumCardsOfBackground();
    break;
  case EOpPop:
    ExecPop();
    break;
  case EOpSend:
    ExecSend();
    break;
  default:
    if (IsBinaryOp(aOp)) {
      ExecBinOp(aOp);
      break;
    }
    AssertObj(false, this, u"Execute"_s, u"Execute instr"_s);
  }
  return true;
}
