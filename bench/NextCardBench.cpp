// Going to the next card in the real main window, drawn on the offscreen platform.
#include "Bench.h"
#include "BenchStack.h"

#include "persist/CVelumStackFile.h"
#include "runtime/view/CVelumStackView.h"
#include "shell/frame/CVelumMain.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <ctime>

namespace {

constexpr int EWarm = 50; // steps that are not counted: fonts, pictures and the pool of controls are made
constexpr int ESteps = 2000;

// Cards of one background after the other, or of two in turn.
void WriteStack(qint32 aCount, bool aInTurn, const QString& aPath) {
  BenchStack stack(BenchStack::EWide);
  stack.Stack()->BeginBulk(aCount);
  qint32 num = 0;
  for (const QString& name : stack.Names(aCount))
    stack.Stack()->AddCard(stack.NewCard(name, aInTurn ? num++ : 0), nullptr, false);
  stack.Stack()->EndBulk();
  stack.Stack()->SetFlag(EStaBinary, true);
  CVelumStackFile(aPath).SaveStack(stack.Stack(), MakeRef<CVelumViewState>());
}

double SecondsOf(clockid_t aClock) {
  timespec now{};
  clock_gettime(aClock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// What one step takes, with the painting: by the clock, and of the processor, which other programs do not
// prolong.
struct TStep {
  double iWall;
  double iProcessor;
};

TStep Step() {
  const TStep start{SecondsOf(CLOCK_MONOTONIC), SecondsOf(CLOCK_PROCESS_CPUTIME_ID)};
  Ref<CVelumCard> card;
  if (!gStackView->OrderNext(card)) qFatal("no next card");
  QCoreApplication::processEvents();
  return {SecondsOf(CLOCK_MONOTONIC) - start.iWall, SecondsOf(CLOCK_PROCESS_CPUTIME_ID) - start.iProcessor};
}

// The aPart-th part of the steps takes at most so long.
double Percentile(std::vector<TStep>& aSteps, double TStep::*aTime, double aPart) {
  std::sort(aSteps.begin(), aSteps.end(),
            [aTime](const TStep& aA, const TStep& aB) { return aA.*aTime < aB.*aTime; });
  return aSteps[static_cast<size_t>(static_cast<double>(aSteps.size() - 1) * aPart)].*aTime;
}

// Median and 99th percentile of both times, of steps from the middle of the stack on.
QList<double> Steps(const QString& aPath) {
  QTemporaryDir home;
  qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
  qputenv("QT_QPA_PLATFORM", "offscreen");
  int argc = 1;
  char name[] = "bench_nextcard";
  char* argv[] = {name, nullptr};
  QApplication app(argc, argv);
  CVelumMain::Main(aPath);
  if (!gStackView) qFatal("no stack");
  Ref<CVelumCard> card;
  const bool more = gStack->GetCardByNum(gStack->NumCards() / 2, card);
  if (more) gStackView->GoToCard(card);
  for (int i = 0; i < EWarm; ++i) static_cast<void>(Step());
  std::vector<TStep> steps(std::min<size_t>(ESteps, size_t(gStack->NumCards()) / 2 - EWarm - 1));
  std::generate(steps.begin(), steps.end(), Step);
  return {Percentile(steps, &TStep::iWall, 0.5), Percentile(steps, &TStep::iWall, 0.99),
          Percentile(steps, &TStep::iProcessor, 0.5), Percentile(steps, &TStep::iProcessor, 0.99)};
}

void Measure(qint32 aCount, bool aInTurn) {
  const QString path = Bench::TempPath(u"next.Orvelle"_s);
  QFile::remove(path);
  static_cast<void>(Bench::InChild([&] {
    WriteStack(aCount, aInTurn, path);
    return QList<double>{};
  }));
  const QList<double> figures = Bench::InChild([&] { return Steps(path); });
  Bench::Row({aInTurn ? u"other background"_s : u"same background"_s, QString::number(aCount),
              Bench::Ms(figures[0]), Bench::Ms(figures[1]), Bench::Ms(figures[2]), Bench::Ms(figures[3])});
  QFile::remove(path);
}

} // namespace

int main(int aArgc, char** aArgv) {
  QCoreApplication::setOrganizationName(u"Brindleway"_s);
  QCoreApplication::setApplicationName(u"OrvellesBench"_s);
  Bench::Init();
  Bench::Head({u"next card"_s, u"cards"_s, u"median"_s, u"99th percentile"_s, u"processor, median"_s,
               u"processor, 99th percentile"_s});
  for (const bool inTurn : {false, true})
    for (const qint32 count : Bench::Counts(aArgc, aArgv)) Measure(count, inTurn);
  return 0;
}
