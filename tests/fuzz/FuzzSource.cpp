// Arbitrary source, compiled, and the handlers that come of it run, with fused instructions and without. The
// first byte of the input says how assertions are answered; the rest is the source in the code page 1252.
#include "FuzzStack.h"
#include "FuzzTarget.h"

#include "core/CVelumLib.h"

namespace {

constexpr int EOverruleBit = 1;

class CMaker {
public:
  explicit CMaker(std::mt19937& aRandom) : iRandom(aRandom) {}

  QByteArray Make() {
    iText.append(static_cast<char>(Below(256)));
    for (int left = 1 + Below(3); left > 0; --left) Handler();
    if (Below(4) == 0) Damage();
    return iText;
  }

private:
  static constexpr int EMaxDepth = 4;

  [[nodiscard]] int Below(int aBound) { return static_cast<int>(iRandom() % static_cast<unsigned>(aBound)); }
  void Add(const char* aText) { iText += aText; }
  template <std::size_t N> void OneOf(const char* const (&aTexts)[N]) {
    Add(aTexts[Below(static_cast<int>(N))]);
  }

  void Handler() {
    Add("On ");
    OneOf({"m", "n", "openCard", "m p"});
    Add("\n");
    Statements(EMaxDepth);
    Add("End\n");
  }
  void Statements(int aDepth) {
    for (int left = Below(5); left > 0; --left) Statement(aDepth);
  }
  void Block(const char* aEnd, int aDepth) {
    Add("\n");
    Statements(aDepth - 1);
    Add(aEnd);
  }
  void Statement(int aDepth) {
    switch (Below(aDepth > 0 ? 10 : 7)) {
    case 0:
    case 1:
      OneOf({"x", "y", "z", "p"});
      Add(" = ");
      Expr(aDepth);
      break;
    case 2:
      Add("Put ");
      Expr(aDepth);
      Add(" Into ");
      Field(aDepth);
      break;
    case 3:
      Add("Go ");
      OneOf({"Next Card", "\"c1\"", "To 2", "Card x", "0"});
      break;
    case 4:
      Add("Answer ");
      Expr(aDepth);
      break;
    case 5:
      OneOf({"Exit Repeat", "x = x & x", "x = x + 1", "s = s & y", "# note", ""});
      break;
    case 6:
      Add("Send ");
      OneOf({"\"m\"", "\"n\"", "x", "5"});
      Add(" To ");
      Field(aDepth);
      break;
    case 7:
      Add("If ");
      Expr(aDepth);
      Add(" Then");
      if (Below(2) == 0) Block("Else", aDepth);
      Block("End If", aDepth);
      break;
    case 8:
      Add("Repeat While ");
      Expr(aDepth);
      Block("End Repeat", aDepth);
      break;
    default:
      Add("Repeat For Each Card ");
      OneOf({"x", "c"});
      if (Below(2) == 0) Add(" Of Background \"B\"");
      Block("End Repeat", aDepth);
    }
    Add("\n");
  }
  void Field(int aDepth) {
    Add("Field ");
    OneOf({"1", "2", "3", "\"f3\"", "\"f5\"", "x", "99", "\"no\""});
    if (Below(3) == 0) {
      Add(" Of Card ");
      if (aDepth > 0)
        Factor(aDepth - 1);
      else
        Add("c");
    }
  }
  void Expr(int aDepth) {
    Factor(aDepth - 1);
    while (Below(2) == 0) {
      OneOf({" + ", " - ", " * ", " / ", " & ", " = ", " < ", " >= ", " <> ", " And ", " Or "});
      Factor(aDepth - 1);
    }
  }
  void Factor(int aDepth) {
    switch (Below(aDepth > 0 ? 8 : 4)) {
    case 0:
      return OneOf({"x", "y", "z", "c", "p"});
    case 1:
      return OneOf({"0", "1", "2", "32767", "7"});
    case 2:
      return OneOf({"\"text\"", "\"12\"", "\"\"", "\"1.5\"", "\"c2\""});
    case 3:
      return OneOf({"Return", "Tab", "The Date", "Random", "(Random(6)", "Number Of Cards"});
    case 4:
      Add("Not ");
      return Factor(aDepth - 1);
    case 5:
      return Field(aDepth);
    default:
      Add("(");
      Expr(aDepth);
      Add(")");
    }
  }
  // Noise at a few places: bytes changed, taken out, put twice.
  void Damage() {
    for (int left = 1 + Below(4); left > 0 && iText.size() > 2; --left) {
      const qsizetype at = 1 + Below(static_cast<int>(iText.size()) - 1);
      switch (Below(4)) {
      case 0:
        iText[at] = static_cast<char>(Below(256));
        break;
      case 1:
        iText.remove(at, Below(12));
        break;
      case 2:
        iText.insert(at, iText.mid(at, Below(200)));
        break;
      default:
        iText.insert(at, QByteArray(Below(4000), "(\" \n#"[Below(5)]));
      }
    }
  }

  std::mt19937& iRandom;
  QByteArray iText;
};

} // namespace

QByteArray FuzzTarget::MakeInput(std::mt19937& aRandom) {
  return CMaker(aRandom).Make();
}

static QList<QString> Run(int aFlags, const QString& aSource, bool aSingle) {
  FuzzStack stack((aFlags & EOverruleBit) != 0, aSingle);
  const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
  CVelumCompiler compiler;
  try {
    const CVelumError::CCommand command;
    compiler.Compile(aSource, *handlers);
  } catch (const CVelumException&) {
    // An error in the source. The handlers ahead of it are as good as any.
  }
  stack.Page().SetScript(handlers);
  stack.Send(u"m"_s);
  stack.Send(u"n"_s);
  return stack.Outcome();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0) return 0;
  const QByteArray bytes(reinterpret_cast<const char*>(aData + 1), static_cast<qsizetype>(aSize - 1));
  const QString source = CVelumLib::ToCrLf(CVelumLib::FromCodePage(bytes));
  FuzzStack::ExpectSame(Run(aData[0], source, false), Run(aData[0], source, true));
  return 0;
}
