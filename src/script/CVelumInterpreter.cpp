#include "script/CVelumInterpreter.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLog.h"

#include <chrono>

using namespace CVelumError;

Ref<CVelumInterpreter> gInterpreter;

namespace {

// Instructions between two looks at the clock, and milliseconds between two runs of events: as often as a
// person can notice, without paying for an empty queue at every instruction. What takes longer than the
// simplest instructions asks for a look itself (PumpSoon).
constexpr int EClockSteps = 1000;
constexpr qint64 EPumpMs = 1;
// Instructions ahead of the limit from which on no fused one may overrun it.
constexpr qint64 ENearLimit = 2 * EClockSteps;
// The progress bar moves on every 100 instructions, but is drawn at most this often (milliseconds).
constexpr int EProgressSteps = 100;
constexpr qint64 EProgressMs = 50;
// iFrame of a handler that has not entered its frame: any slot is out of bounds.
constexpr qint32 ENoFrame = ENoShort;

} // namespace

// Counts a loop of instructions while it lives.
class CVelumInterpreter::CLoop {
public:
  explicit CLoop(int& aLoops) : iLoops(aLoops) { ++iLoops; }
  ~CLoop() { --iLoops; }
  CLoop(const CLoop&) = delete;
  CLoop& operator=(const CLoop&) = delete;

private:
  int& iLoops;
};

// Takes the progress away when a script is over, however it ends.
class CVelumInterpreter::CShown {
public:
  explicit CShown(CVelumInterpreter& aOwner) : iOwner(aOwner) {}
  ~CShown() { iOwner.HideProgress(); }
  CShown(const CShown&) = delete;
  CShown& operator=(const CShown&) = delete;

private:
  CVelumInterpreter& iOwner;
};

CVelumInterpreter::CVelumInterpreter() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  iRandom.seed(static_cast<quint32>(now ^ (now >> 32)));
  ResetState();
}

CVelumInterpreter::~CVelumInterpreter() = default;

// ---- Life of a script

void CVelumInterpreter::ResetState() {
  iRunning = false;
  iBreak = false;
  for (TVarRef& entry : iStack) entry = nullptr;
  iSp = 0;
  iFrame = 0;
  for (TFrame& frame : iFrames) frame = TFrame();
  iNumFrames = 0;
  iCode = nullptr;
  iObj = nullptr;
  iPendingCode.clear();
  iPendingObj = nullptr;
  iPendingCard = nullptr;
}

void CVelumInterpreter::Reset() {
  ResetState();
  if (iLoops == 0) RunDeferred();
}

void CVelumInterpreter::BreakAndThen(std::function<void()> aCommand) {
  if (!iRunning) return aCommand();
  iDeferred = std::move(aCommand);
  Break();
}

void CVelumInterpreter::RunDeferred() {
  if (!iDeferred) return;
  const std::function<void()> command = std::exchange(iDeferred, nullptr);
  command();
}

QString CVelumInterpreter::Code() const {
  return iCode ? QString::fromLatin1(iCode->Bytes()) : u"**Null Context**"_s;
}

Ref<CVelumScripted> CVelumInterpreter::LocateAndExecScript(const Ref<CVelumCard>& aCard,
                                                           const Ref<CVelumControl>& aControl,
                                                           const QString& aMsg) {
  if (!iRunning) iError = {};
  if (aControl && TryScript(aControl, aMsg)) return aControl;
  if (!aCard) return nullptr;
  // A script may delete the card, or let go of the stack.
  const Ref<CVelumControlSet> background = aCard->Background();
  const Ref<CVelumStack> stack = aCard->Stack();
  if (TryScript(aCard, aMsg)) return aCard;
  if (background && TryScript(background, aMsg)) return background;
  if (stack && TryScript(stack, aMsg)) return stack;
  return nullptr;
}

bool CVelumInterpreter::TryScript(const Ref<CVelumScripted>& aObj, const QString& aMsg) {
  const Ref<CVelumArray> script = aObj->Script();
  if (!script) return false;
  QString code;
  qint32 next = 0;
  if (!script->ReadStr(aMsg, code, next)) return false;
  qCDebug(gLogScript) << "run" << aMsg << "of" << aObj->ObjDescr();
  Execute(aObj, code);
  return true;
}

Ref<CVelumDecodedCode> CVelumInterpreter::Decoded(const QString& aHex) {
  const auto known = iDecoded.constFind(aHex);
  if (known != iDecoded.constEnd()) return *known;
  const auto code = MakeRef<CVelumDecodedCode>(aHex);
  const qsizetype size = code->Bytes().size();
  if (size > EMaxDecodedBytes) return code;
  if (iDecodedBytes + size > EMaxDecodedBytes) {
    iDecoded.clear();
    iDecodedBytes = 0;
  }
  iDecodedBytes += size;
  iDecoded.insert(aHex, code);
  return code;
}

void CVelumInterpreter::Execute(const Ref<CVelumScripted>& aObj, const QString& aCode) {
  const Ref<CVelumCard> card = CVelumChecked::Deref(iHost).CurCard();
  if (iRunning) {
    iPendingObj = aObj;
    iPendingCode = aCode;
    iPendingCard = card;
    return;
  }
  RunFirst(aObj, aCode, card);
  if (iLoops == 0) RunDeferred();
}

void CVelumInterpreter::RunFirst(const Ref<CVelumScripted>& aObj, const QString& aCode,
                                 const Ref<CVelumCard>& aCard) {
  // A check that fails at each turn of a loop is asked about once.
  const CVelumError::CCommand command;
  const CVelumError::CPlace place([this] { return Place(); });
  const CLoop loop(iLoops);
  const CShown shown(*this);
  iTaken = 0;
  iBudget = 0;
  iGranted = 0;
  iClock.start();
  iNextPump = EPumpMs;
  iNextProgress = EProgressMs;
  try {
    StartCode(aObj, Decoded(aCode), aCard);
    Run();
  } catch (...) {
    iError.iObj = iObj;
    iError.iLine = iLine;
    throw;
  }
}

// The bar must not be what hides a failure.
void CVelumInterpreter::HideProgress() {
  try {
    if (iHost) iHost->ShowProgress(100);
  } catch (...) {
    CVelumError::CatchError(u"CVelumInterpreter.HideProgress"_s);
  }
}

QString CVelumInterpreter::Place() const {
  if (!iRunning || iInEvents) return {};
  TRunError error;
  error.iObj = iObj;
  error.iLine = iLine;
  return CVelumRunError::Place(error);
}

void CVelumInterpreter::StartCode(const Ref<CVelumScripted>& aObj, const Ref<CVelumDecodedCode>& aCode,
                                  const Ref<CVelumCard>& aCard) {
  iObj = aObj;
  iCode = aCode;
  iIp = 0;
  iBreak = false;
  ++iStamp;
  iFrame = ENoFrame;
  iLine = ENoInt;
  iCard = aCard;
  iRunning = true;
  AssertObj(CodeInt() == 0, this, u"Execute"_s, u"gen"_s);
}

// A suspended handler keeps the length of its hexadecimal text in 16 bits.
void CVelumInterpreter::PushFrame() {
  if (iNumFrames >= EMaxFrames) RaiseHost(EHostIndex);
  static_cast<void>(CVelumChecked::Narrow<qint16>(iCode->HexLen()));
  iFrames[static_cast<size_t>(iNumFrames++)] = {iObj, iCode, iIp, iFrame, iLine, iCard};
}

void CVelumInterpreter::PopFrame() {
  if (iNumFrames <= 0) RaiseHost(EHostIndex);
  TFrame& frame = iFrames[static_cast<size_t>(--iNumFrames)];
  iObj = frame.iObj;
  iCode = frame.iCode;
  iIp = frame.iIp;
  iFrame = frame.iFrame;
  iLine = frame.iLine;
  iCard = frame.iCard;
  frame = TFrame();
}

// What came in while events ran: a break, or another handler. False when the script is over.
bool CVelumInterpreter::Attend() {
  if (iBreak) {
    HideProgress();
    CVelumSeams::Presenter().Tell(u"Script breaked"_s);
    ResetState();
    return false;
  }
  PushFrame();
  const QString code = std::exchange(iPendingCode, QString());
  const Ref<CVelumScripted> obj = std::exchange(iPendingObj, nullptr);
  const Ref<CVelumCard> card = std::exchange(iPendingCard, nullptr);
  StartCode(obj, Decoded(code), card);
  return true;
}

// Every few instructions: the limit, and by the clock the progress bar and events.
void CVelumInterpreter::Tick() {
  const int steps = iGranted - iBudget;
  iTaken += steps;
  iGranted = iBudget = iPumpAlways ? 1 : EClockSteps;
  if (iLimit > 0 && iTaken >= iLimit) RaiseHost(EHostInterrupt, u"limit of instructions"_s);
  iNearLimit = iLimit > 0 && iLimit - iTaken < ENearLimit;
  if (iNearLimit) iGranted = iBudget = static_cast<int>(qMin<qint64>(iBudget, iLimit - iTaken));
  const qint64 now = iClock.elapsed();
  if (now >= iNextProgress) {
    iNextProgress = now + EProgressMs;
    iHost->ShowProgress(static_cast<int>(iTaken / EProgressSteps % 100));
  }
  if (!iPumpAlways && now < iNextPump) return;
  {
    const CEvents events(*this);
    CVelumSeams::EventPump().Pump();
  }
  iNextPump = iClock.elapsed() + EPumpMs;
}

void CVelumInterpreter::PumpWithin(int aSteps) {
  if (iBudget <= aSteps) return;
  iGranted -= iBudget - aSteps;
  iBudget = aSteps;
}

void CVelumInterpreter::Run() {
  for (;;) {
    if (iBudget <= 0) Tick();
    if (!iCode) return; // an event, or the last instruction, ended in a Reset
    if ((iBreak || !iPendingCode.isEmpty()) && !Attend()) return;
    if (!iPumpAlways) RunFused();
    if (iBudget <= 0 || !iCode) continue;
    --iBudget;
    if (!Dispatch(CodeByte())) break;
  }
  ResetState();
}
