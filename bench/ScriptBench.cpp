// Times of scripts, for bench/compare-scripts: one line per piece of work, its name and its seconds of
// processor time, the best of a few turns. Arguments name the pieces that are wanted.
#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/text/CVelumLocale.h"
#include "script/CVelumCompiler.h"
#include "script/CVelumPlainHost.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <limits>
#include <string_view>

namespace {

struct TWork {
  const char* iName;
  const char16_t* iBody;
};

// The same work stands in bench/scripts for Lua and Python.
const TWork EWorks[] = {
    {"loop", u"i = 0\ns = 0\nm = 1000 * 1000\nn = m * 10\nRepeat While i < n\ni = i + 1\ns = s + i\n"
             u"If s > m Then\ns = s - s\nEnd If\nEnd Repeat"},
    {"walk", u"s = 0\nRepeat For Each Card c\ns = s + Field \"Amount\" Of Card c\nEnd Repeat"},
    {"compare",
     u"n = 0\nRepeat For Each Card c\nIf Field \"Kind\" Of Card c = \"Kind 3\" Then\nn = n + 1\nEnd If\n"
     u"End Repeat"},
    {"divide", u"n = 0\nRepeat For Each Card c\nn = n + Field \"Amount\" Of Card c * 3 / 2\nEnd Repeat"},
    {"put", u"n = 5\nRepeat For Each Card c\nPut n Into Field \"Amount\" Of Card c\nEnd Repeat"},
    {"chain", u"s = \"\"\nRepeat For Each Card c\ns = s & c & \": \" & Field \"Amount\" Of Card c & Return\n"
              u"End Repeat"},
    {"text", u"s = \"\"\ni = 0\nn = 1000 * 1000\nRepeat While i < n\ni = i + 1\ns = s & \"abc\"\nEnd Repeat"},
    {"random", u"i = 0\nn = 1000 * 1000\nRepeat While i < n\ni = i + 1\nx = Random(6)\nEnd Repeat"},
};

Ref<CVelumStack> MakeStack(int aCards) {
  const auto stack = MakeRef<CVelumStack>(u"Bench"_s);
  const Ref<CVelumControlSet> page = stack->Background(0);
  const auto amount = MakeRef<CVelumControl>(stack->IdGen().NextId(), u"Amount"_s, qint32{EConInteger});
  page->AddControl(amount, ENoInt);
  const auto kind = MakeRef<CVelumControl>(stack->IdGen().NextId(), u"Kind"_s, qint32{EConText});
  page->AddControl(kind, ENoInt);
  stack->BeginBulk(aCards);
  for (int i = 0; i < aCards; ++i) {
    const auto card = MakeRef<CVelumCard>(u"Card "_s + QString::number(i), page);
    stack->AddCard(card, nullptr, false);
    card->SetControlVal(amount->Id(), TVelumValue::OfInt(i % 100));
    card->SetControlVal(kind->Id(), TVelumValue::OfStr(u"Kind "_s + QString::number(i % 10)));
  }
  stack->EndBulk();
  return stack;
}

constexpr int ETurns = 5;

template <class TWorkFn> double BestOf(const TWorkFn& aWork) {
  std::clock_t best = std::numeric_limits<std::clock_t>::max();
  for (int i = 0; i < ETurns; ++i) {
    const std::clock_t start = std::clock();
    aWork();
    best = std::min(best, std::clock() - start);
  }
  return static_cast<double>(best) / CLOCKS_PER_SEC;
}

double TimeOf(CVelumPlainHost& aHost, CVelumStack& aStack, const TWork& aWork) {
  CVelumCompiler compiler;
  const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
  const QString source = u"On work\n"_s + QString::fromUtf16(aWork.iBody) + u"\nEnd\n"_s;
  compiler.Compile(CVelumLib::ToCrLf(source), *handlers);
  aStack.SetScript(handlers);
  return BestOf([&] { aHost.Send(aHost.CurCard(), nullptr, u"work"_s); });
}

// 1,000 sources of 99 statements.
double TimeOfCompiling() {
  QString source = u"On work\n"_s;
  for (int i = 0; i < 99; ++i) source += u"x = x + %1 * y\n"_s.arg(i);
  source = CVelumLib::ToCrLf(source + u"End\n"_s);
  CVelumCompiler compiler;
  return BestOf([&] {
    for (int i = 0; i < 1000; ++i) {
      CVelumArray handlers(EArrStrKey, EValStr);
      compiler.Compile(source, handlers);
    }
  });
}

bool Wanted(int aArgc, char** aArgv, const char* aName) {
  return aArgc < 2 || std::any_of(aArgv + 1, aArgv + aArgc,
                                  [aName](const char* aArg) { return std::string_view(aArg) == aName; });
}

} // namespace

int main(int aArgc, char** aArgv) {
  CVelumModel::Install();
  CVelumMsg::InitMessages();
  CVelumLocale::Init(u"en_US"_s);
  const Ref<CVelumStack> stack = MakeStack(100000);
  CVelumPlainHost host(stack, MakeRef<CVelumInterpreter>());
  setvbuf(stdout, nullptr, _IOLBF, 0);
  for (const TWork& work : EWorks) {
    if (!Wanted(aArgc, aArgv, work.iName)) continue;
    try {
      std::printf("%s %.4f\n", work.iName, TimeOf(host, *stack, work));
    } catch (const CVelumException&) {
      std::printf("%s failed: %s %s\n", work.iName, qPrintable(gLastError.iProc), qPrintable(gLastError.iP1));
      return 1;
    }
  }
  if (Wanted(aArgc, aArgv, "compile")) std::printf("compile %.4f\n", TimeOfCompiling());
  return 0;
}
