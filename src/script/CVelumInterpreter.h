// The stack machine that runs compiled handlers.
#pragma once

#include "model/CVelumModel.h"
#include "script/CVelumDecoder.h"
#include "script/CVelumRunError.h"
#include "script/CVelumScriptHost.h"
#include "script/CVelumVar.h"

#include <QElapsedTimer>
#include <QHash>
#include <array>
#include <functional>
#include <random>

// Runs one script at a time. A handler that is to start while one runs (a Go, a Send, an event that comes in
// while events are let run) becomes the one pending handler and starts at the next instruction. Byte code
// comes out of files and is not trusted: every operand, slot, target and tag is checked as it runs; what is
// wrong ends in an assertion, a run-time error (EMsgRunError, see GetError) or a host error, after which the
// caller calls Reset; GetError tells where it was.
class CVelumInterpreter final : public CVelumObject {
public:
  // Entries of the one stack of variables, temporaries and nested handlers, and suspended handlers; more are
  // host error 9.
  static constexpr int EStackSize = 21;
  static constexpr int EMaxFrames = 11;

  CVelumInterpreter();
  ~CVelumInterpreter() override;

  [[nodiscard]] QString ObjDescr() const override {
    return u"CVelumInterpreter ip="_s + QString::number(iIp);
  }
  // The open stack as scripts see it; not owned, null when no stack is open.
  void SetHost(CVelumScriptHost* aHost) { iHost = aHost; }
  [[nodiscard]] bool Running() const { return iRunning; }
  // Looks for a handler of aMsg in control, card, background and stack, in that order, and runs the first.
  // aControl may be nothing. Returns the owner of that handler, nothing when there is none.
  Ref<CVelumScripted> LocateAndExecScript(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl,
                                          const QString& aMsg);
  // The message parameter; kept across calls.
  [[nodiscard]] const QString& ParamVal() const { return iParamVal; }
  void SetParamVal(const QString& aVal) { iParamVal = aVal; }
  void SetVarVal(qint16 aSlot, const Ref<CVelumVar>& aVar);
  // Stops the script at its next instruction.
  void Break() { iBreak = true; }
  // Stops the running script, and does aCommand when it has ended; at once when none runs. For commands that
  // close, replace or empty the stack.
  void BreakAndThen(std::function<void()> aCommand);
  // Ends all handlers. From within a script (an event that failed) the loop of instructions ends as soon as
  // it is returned to.
  void Reset();
  // The last failure of a script: owner and line of any, message and parameters of EMsgRunError. Without an
  // owner when none failed since the last message.
  [[nodiscard]] const TRunError& GetError() const { return iError; }
  // "**Null Context**" between scripts; for a running one its bytes.
  [[nodiscard]] QString Code() const;

  // Instructions that a script may take, its nested handlers included; 0 is no limit. Beyond, host error 18.
  void SetLimit(qint64 aLimit) { iLimit = aLimit; }
  // Lets events run before every single instruction: the letter of the rule, for tests.
  void SetPumpAlways(bool aAlways) { iPumpAlways = aAlways; }
  // Bytes of code that are kept decoded, for the handlers met lately.
  [[nodiscard]] qsizetype DecodedBytes() const { return iDecodedBytes; }
  void SeedRandom(quint32 aSeed) { iRandom.seed(aSeed); }

private:
  class CLoop;
  class CShown;
  // Lets events run while it lives, which may also change the fields of the stack.
  class CEvents {
  public:
    explicit CEvents(CVelumInterpreter& aOwner) : iOwner(aOwner) {
      ++iOwner.iStamp;
      iOwner.iInEvents = true;
    }
    ~CEvents() { iOwner.iInEvents = false; }
    CEvents(const CEvents&) = delete;
    CEvents& operator=(const CEvents&) = delete;

  private:
    CVelumInterpreter& iOwner;
  };
  // Bytes of code that stay decoded.
  static constexpr qsizetype EMaxDecodedBytes = 65536;
  // Characters whose copying takes longer than an instruction should.
  static constexpr qsizetype ELongText = 2000;
  // Entries that the longest of fused instructions needs for a moment: a value, a card, a field.
  static constexpr qint32 EFusedRoom = 3;
  using TVarRef = Ref<CVelumVar>;
  struct TFrame {
    Ref<CVelumScripted> iObj;
    Ref<CVelumDecodedCode> iCode;
    qint32 iIp = 0;
    qint32 iFrame = 0;
    qint32 iLine = ENoInt;
    Ref<CVelumCard> iCard;
  };

  // Life of a script.
  [[nodiscard]] bool TryScript(const Ref<CVelumScripted>& aObj, const QString& aMsg);
  void Execute(const Ref<CVelumScripted>& aObj, const QString& aCode);
  void Run();
  void RunFirst(const Ref<CVelumScripted>& aObj, const QString& aCode, const Ref<CVelumCard>& aCard);
  void HideProgress();
  [[nodiscard]] QString Place() const;
  void RunDeferred();
  void ResetState();
  void StartCode(const Ref<CVelumScripted>& aObj, const Ref<CVelumDecodedCode>& aCode,
                 const Ref<CVelumCard>& aCard);
  [[nodiscard]] Ref<CVelumDecodedCode> Decoded(const QString& aHex);
  void PushFrame();
  void PopFrame();
  [[nodiscard]] bool Attend();
  void Tick();
  // Lets events run at the latest after aSteps more instructions, if a millisecond has passed.
  void PumpWithin(int aSteps);
  // The same before the next instruction.
  void PumpSoon() { PumpWithin(0); }
  // Instructions behind a Put: it is quick, but where lists hang on the value it is not.
  static constexpr int EPutSteps = 100;
  // The same after work on a text, if its length made that slow.
  void PumpIfLong(const QString& aText) {
    if (aText.size() > ELongText) PumpSoon();
  }

  // Code and stack.
  [[nodiscard]] int CodeByte();
  [[nodiscard]] qint16 CodeInt();
  void Push(TVarRef aVar);
  [[nodiscard]] TVarRef Pop();
  [[nodiscard]] const TVarRef& Peek(int aDepth) const;
  [[nodiscard]] TVarRef& Slot(qint32 aSlot);
  // The room for variables that a handler gets: what its code says, or what its slots need. A name that an
  // earlier handler of the source used keeps its slot, and is not counted in the code.
  [[nodiscard]] qint32 FrameSize();
  [[nodiscard]] qint32 Entries() const { return qMin(iSp, qint32{EStackSize}); }
  // Whether a slot is below what fused instructions would push. One that code computes can lie above.
  [[nodiscard]] bool InFrame(qint16 aSlot) const { return iFrame + aSlot < Entries(); }
  // The variable of a slot, or null where anything is unusual.
  [[nodiscard]] CVelumVar* SlotFast(qint16 aSlot) const {
    return InFrame(aSlot) ? iStack[static_cast<size_t>(iFrame + aSlot)].Get() : nullptr;
  }
  // Drops the top entry, which there must be.
  void DropTop() { iStack[static_cast<size_t>(--iSp)] = nullptr; }
  // Whether the single instructions of a fused one find room for what they push.
  [[nodiscard]] bool HasRoom() const { return iSp >= 0 && iSp + EFusedRoom <= EStackSize; }
  // A number, or a variable or field that holds one.
  [[nodiscard]] bool OperandInt(const TOperand& aOperand, qint32& aInt) const {
    if (aOperand.iKind == TOperand::ESlot) {
      const CVelumVar* var = SlotFast(aOperand.iNum);
      if (!var || var->ValType() != EValInt) return false;
      aInt = var->IntVal();
      return true;
    }
    aInt = aOperand.iNum;
    if (aOperand.iKind == TOperand::ENum) return true;
    return aOperand.iKind == TOperand::EField && FieldInt(aOperand.iNum, aInt);
  }
  [[nodiscard]] TVarRef OperandVar(const TOperand& aOperand) const;
  // The card of a field, if it can have one of the usual kind. The field is then known to be in its
  // background.
  [[nodiscard]] CVelumCard* CardOfField(TFieldOperand& aField) const {
    CVelumCard* card = iCard.Get();
    if (aField.iCardSlot >= 0) {
      const CVelumVar* var = SlotFast(aField.iCardSlot);
      card = var ? CVelumModel::ObjAs<CVelumCard>(var->GetValue(), EValCard) : nullptr;
    }
    if (!card || !card->Stack()) return nullptr;
    const bool known = aField.iStamp == iStamp && aField.iStack == card->Stack() &&
                       aField.iBackgroundId == card->BackgroundId();
    return known || FindField(aField, *card) ? card : nullptr;
  }
  [[nodiscard]] bool FindField(TFieldOperand& aField, const CVelumCard& aCard) const;
  [[nodiscard]] const TVelumValue* OwnFieldVal(qint16 aNum, int aConType) const;
  [[nodiscard]] bool FieldInt(qint16 aNum, qint32& aInt) const;
  [[nodiscard]] const QString* OperandText(const TOperand& aOperand) const;
  [[nodiscard]] TVarRef FieldVar(qint16 aNum) const;
  [[noreturn]] void RunFail(const QString& aProc, qint32 aMsg, const QString& aParam0,
                            const QString& aParam1 = {});

  // Instructions. Each returns false when the script is over.
  [[nodiscard]] bool Dispatch(int aOp);
  // Runs fused instructions until the budget is used up or one is not fused, or cannot be done as it is.
  void RunFused();
  struct TFrameVars;
  [[nodiscard]] TFrameVars FrameVars() const;
  [[nodiscard]] static bool ExecHot(const TInstr& aInstr, const TFrameVars& aVars, qint32& aIp);
  [[nodiscard]] bool RunHot(CVelumDecodedCode& aCode);
  [[nodiscard]] bool RunCold(const TInstr& aInstr);
  [[nodiscard]] bool RunExpr(const TExpr& aExpr);
  [[nodiscard]] bool ExecFused(const TInstr& aInstr);
  [[nodiscard]] bool OperandInts(const TInstr& aInstr, qint32& aLeft, qint32& aRight) const;
  [[nodiscard]] bool IntResult(int aOp, qint32 aLeft, qint32 aRight, qint32& aResult);
  [[nodiscard]] bool FusedIntJump(const TInstr& aInstr);
  [[nodiscard]] bool FusedTextJump(const TInstr& aInstr);
  [[nodiscard]] bool FusedIntStore(const TInstr& aInstr);
  [[nodiscard]] bool FusedIntPush(const TInstr& aInstr);
  [[nodiscard]] bool FusedPush(const TInstr& aInstr);
  [[nodiscard]] bool FusedStore(const TInstr& aInstr);
  [[nodiscard]] bool FusedStoreOperand(const TInstr& aInstr);
  [[nodiscard]] bool FusedBinary(const TInstr& aInstr);
  [[nodiscard]] bool FusedAppend(const TInstr& aInstr);
  [[nodiscard]] bool FusedTopStore(const TInstr& aInstr);
  [[nodiscard]] bool FusedTopJoin(const TInstr& aInstr);
  [[nodiscard]] bool FusedTopBin(const TInstr& aInstr);
  [[nodiscard]] bool FusedTopInt(const TInstr& aInstr);
  [[nodiscard]] bool FusedPut(const TInstr& aInstr);
  [[nodiscard]] bool FusedNextCard(const TInstr& aInstr);
  void AppendTo(CVelumVar& aVar, const CVelumVar& aRight);
  void StoreVar(qint32 aSlot, const TVarRef& aVar);
  void ExecPushStr();
  void ExecValToCard();
  void ExecValToControl();
  void ExecValToBackground();
  void ExecPutField();
  [[nodiscard]] TVelumValue FittingVal(const CVelumControl& aControl, const TVelumValue& aVal);
  void ExecGetField();
  void ExecGoNextCard();
  void ExecGoToCard();
  void ExecUpdateCard();
  void ExecJumpIfFalse();
  void ExecJump() { iIp = CodeInt(); }
  void ExecAnswer();
  void ExecPushVarVal();
  void ExecStoreVar();
  void ExecNot();
  void ExecNegate();
  void ExecBinOp(int aOp);
  void ExecPushCurCard();
  void ExecRandom();
  // 1 to aMost.
  [[nodiscard]] qint32 RandomUpTo(qint32 aMost);
  void ExecNumCards();
  void ExecNumCardsOfBackground();
  void ExecFirstCard();
  void ExecNextCard();
  void ExecFirstCardInBackground();
  void ExecNextCardInBackground();
  void ExecEnter();
  [[nodiscard]] bool ExecLeave();
  void ExecPop() { static_cast<void>(Pop()); }
  void ExecSend();
  void StepWalk(bool aFound, const Ref<CVelumCard>& aCard, qint32 aIndex, const TVarRef& aCardVar,
                const TVarRef& aPos, qint16 aTarget);
  [[nodiscard]] Ref<CVelumCard> CardOfVar(const CVelumVar& aVar, const QString& aProc);
  [[nodiscard]] CVelumStack& OpenStack() const;

  // Arithmetic.
  void CheckOpTypes(const CVelumVar& aLeft, const CVelumVar& aRight, int aType);
  [[nodiscard]] qint16 EndsIn(qint32 aPos) const;
  [[nodiscard]] TVarRef Join(TVarRef aLeft, const CVelumVar& aRight, qint16 aSlot);
  [[nodiscard]] TVarRef BinResult(int aOp, const CVelumVar& aLeft, const CVelumVar& aRight);
  [[nodiscard]] TVelumValue Arithmetic(int aOp, const CVelumVar& aLeft, const CVelumVar& aRight);
  [[nodiscard]] bool Comparison(int aOp, const CVelumVar& aLeft, const CVelumVar& aRight);

  CVelumScriptHost* iHost = nullptr;
  std::array<TVarRef, EStackSize> iStack;
  qint32 iSp = 0;
  Ref<CVelumDecodedCode> iCode; // nothing between scripts
  qint32 iIp = 0;
  qint32 iFrame = 0;
  qint32 iLine = ENoInt;
  QString iParamVal;
  Ref<CVelumCard> iCard;
  std::array<TFrame, EMaxFrames> iFrames;
  int iNumFrames = 0;
  bool iRunning = false;
  int iLoops = 0;       // loops of instructions that are on the program's own stack
  QString iPendingCode; // hexadecimal
  Ref<CVelumScripted> iPendingObj;
  Ref<CVelumCard> iPendingCard;
  bool iBreak = false;
  TRunError iError;
  Ref<CVelumScripted> iObj;
  std::function<void()> iDeferred;

  QHash<QString, Ref<CVelumDecodedCode>> iDecoded; // the handlers met lately
  qsizetype iDecodedBytes = 0;                     // of their code
  int iBudget = 0;                                 // instructions until the next Tick
  int iGranted = 0;                                // what iBudget began with
  qint64 iLimit = 0;
  qint64 iTaken = 0;
  bool iNearLimit = false;
  bool iPumpAlways = false;
  bool iInEvents = false; // what fails now is not the script
  quint32 iStamp = 1;     // changes whenever fields may have changed: with events
  QElapsedTimer iClock;   // since the script began; the rest in its milliseconds
  qint64 iNextPump = 0;
  qint64 iNextProgress = 0;
  std::mt19937 iRandom;
};

// The one interpreter of the program.
extern Ref<CVelumInterpreter> gInterpreter;
