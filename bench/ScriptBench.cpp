// Times of scripts, for bench/compare-scripts: one line per piece of work, its name and its seconds.
#include "core/CVelumLib.h"
#include "core/CVelumLocale.h"
#include "core/CVelumMsg.h"
#include "script/CVelumCompiler.h"
#include "script/CVelumPlainHost.h"

#include <QElapsedTimer>
#include <cstdio>

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
    {"text", u"s = \"\"\ni = 0\nn = 1000 * 1000\nRepeat While i < n\ni = i + 1\ns = s & \"abc\"\nEnd Repeat"},
    {"random", u"i = 0\nn = 1000 * 1000\nRepeat While i < n\ni = i + 1\nx = Random(6)\nEnd Repeat"},
};

Ref<CVelumStack> MakeStack(int aCards) {
  const auto stack = MakeRef<CVelumStack>(u"Bench"_s);
  const Ref<CVelumControlSet> page = stack->Background(0);
  const auto amount = MakeRef<CVelumControl>(stack->IdGen().NextId(), u"Amount"_s, qint32{EConInteger});
  page->AddControl(amount, ENoInt);
  stack->BeginBulk(aCards);
  for (int i = 0; i < aCards; ++i) {
    const auto card = MakeRef<CVelumCard>(u"Card "_s + QString::number(i), page);
    stack->AddCard(card, nullptr, false);
    card->SetControlVal(amount->Id(), TVelumValue::OfInt(i % 100));
  }
  stack->EndBulk();
  return stack;
}

double TimeOf(CVelumPlainHost& aHost, CVelumStack& aStack, const TWork& aWork) {
  CVelumCompiler compiler;
  const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
  const QString source = u"On work\n"_s + QString::fromUtf16(aWork.iBody) + u"\nEnd\n"_s;
  compiler.Compile(CVelumLib::ToCrLf(source), *handlers);
  aStack.SetScript(handlers);
  QElapsedTimer timer;
  timer.start();
  aHost.Send(aHost.CurCard(), nullptr, u"work"_s);
  return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

// 1,000 sources of 99 statements.
double TimeOfCompiling() {
  QString source = u"On work\n"_s;
  for (int i = 0; i < 99; ++i) source += u"x = x + %1 * y\n"_s.arg(i);
  source = CVelumLib::ToCrLf(source + u"End\n"_s);
  QElapsedTimer timer;
  timer.start();
  CVelumCompiler compiler;
  for (int i = 0; i < 1000; ++i) {
    CVelumArray handlers(EArrStrKey, EValStr);
    compiler.Compile(source, handlers);
  }
  return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

} // namespace

int main() {
  CVelumModel::Install();
  CVelumMsg::InitMessages();
  CVelumLocale::Init(u"en_US"_s);
  const Ref<CVelumStack> stack = MakeStack(100000);
  CVelumPlainHost host(stack, MakeRef<CVelumInterpreter>());
  setvbuf(stdout, nullptr, _IOLBF, 0);
  for (const TWork& work : EWorks) {
    try {
      std::printf("%s %.4f\n", work.iName, TimeOf(host, *stack, work));
    } catch (const CVelumException&) {
      std::printf("%s failed: %s %s\n", work.iName, qPrintable(gLastError.iProc), qPrintable(gLastError.iP1));
      return 1;
    }
  }
  std::printf("compile %.4f\n", TimeOfCompiling());
  return 0;
}
