// Arbitrary byte code against a small stack. The first byte of the input says how assertions are answered,
// whether instructions are fused, and how the rest is shared out between two handlers that can call each
// other.
#include "FuzzStack.h"
#include "FuzzTarget.h"

namespace {

constexpr int EOverruleBit = 1;

QByteArray Handler(const QByteArray& aCode) {
  return QByteArray(2, '\0') + aCode;
}

class CMaker {
public:
  explicit CMaker(std::mt19937& aRandom) : iRandom(aRandom) {}

  QByteArray Make() {
    Byte(Below(256));
    // Entering a frame comes first in most.
    if (Below(8) != 0) Op(EOpEnter, Below(6));
    for (int left = Below(60); left > 0; --left) Instr();
    if (Below(2) == 0) Op(EOpLeave, Below(6));
    return iBytes;
  }

private:
  [[nodiscard]] int Below(int aBound) { return static_cast<int>(iRandom() % static_cast<unsigned>(aBound)); }
  void Byte(int aByte) { iBytes.append(static_cast<char>(aByte)); }
  void Op(int aOp, int aNum) {
    Byte(aOp);
    Byte(aNum & 0xFF);
    Byte(aNum >> 8);
  }
  void Text() {
    static const char* const texts[] = {"", "m", "n", "c1", "B", "f0", "12", "1.5", "f7", "text"};
    const QByteArray text = texts[Below(10)];
    Byte(EOpPushStr);
    Byte(Below(50) == 0 ? Below(256) : 11);
    Byte(Below(50) == 0 ? Below(256) : static_cast<int>(text.size()));
    iBytes += text;
  }
  void Jump() {
    static const int ops[] = {EOpJump,     EOpJumpIfFalse,           EOpFirstCard,
                              EOpNextCard, EOpFirstCardInBackground, EOpNextCardInBackground};
    Op(ops[Below(6)], Below(10) == 0 ? Below(65536) : 2 + Below(100));
  }
  // Card and field on the stack, and what takes them.
  void FieldRef() {
    Byte(EOpPushCurCard);
    Op(EOpPushInt, 1 + Below(9));
    Byte(EOpValToControl);
    static const int ops[] = {EOpGetField, EOpPutField, EOpSend};
    Byte(ops[Below(3)]);
  }
  void Instr() {
    switch (Below(10)) {
    case 0:
      return Text();
    case 1:
      return Jump();
    case 2:
      return FieldRef();
    case 3:
      Op(EOpPushInt, Below(6));
      return Byte(Below(2) == 0 ? EOpPushVarVal : EOpStoreVar);
    case 4:
      return Op(EOpPushInt, Below(4) == 0 ? Below(65536) : Below(10));
    case 5:
      return Op(EOpLine, Below(100));
    case 6:
      return Byte(EOpEqual + Below(2) * (EOpMul - EOpEqual) + Below(12));
    case 7:
      return Byte(Below(256));
    default:
      return Byte(1 + Below(47));
    }
  }

  std::mt19937& iRandom;
  QByteArray iBytes;
};

} // namespace

QByteArray FuzzTarget::MakeInput(std::mt19937& aRandom) {
  return CMaker(aRandom).Make();
}

static QList<QString> Run(int aFlags, const QByteArray& aCode, bool aSingle) {
  FuzzStack stack((aFlags & EOverruleBit) != 0, aSingle);
  const qsizetype split = aCode.size() * (aFlags >> 2) / 64;
  FuzzStack::AddHandler(stack.Page(), u"n"_s, Handler(aCode.left(split)));
  FuzzStack::AddHandler(stack.Field(), u"m"_s, Handler(aCode.mid(split)));
  FuzzStack::AddHandler(stack.Page(), u"openCard"_s, Handler(aCode.left(split / 2)));
  stack.Send(u"m"_s);
  stack.Send(u"n"_s);
  return stack.Outcome();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0) return 0;
  const QByteArray code(reinterpret_cast<const char*>(aData + 1), static_cast<qsizetype>(aSize - 1));
  FuzzStack::ExpectSame(Run(aData[0], code, false), Run(aData[0], code, true));
  return 0;
}
