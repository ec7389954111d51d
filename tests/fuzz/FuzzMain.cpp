// Runs a fuzz target by itself: TARGET SEED COUNT makes the inputs SEED to SEED + COUNT - 1 and runs them;
// TARGET print SEED writes an input to standard output; TARGET FILE... runs saved inputs. An input that takes
// longer than EMaxSeconds ends the program by a signal, and so does one that crashes; the last line on
// standard error tells from which seed to look for it.
#include "FuzzTarget.h"

#include <QFile>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace {

constexpr unsigned EMaxSeconds = 30;
constexpr unsigned long EReportEvery = 1000;

void RunInput(const QByteArray& aInput) {
  alarm(EMaxSeconds);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(aInput.constData()),
                         static_cast<std::size_t>(aInput.size()));
  alarm(0);
}

bool RunFile(const char* aPath) {
  QFile file(QString::fromLocal8Bit(aPath));
  if (!file.open(QIODevice::ReadOnly)) {
    std::fprintf(stderr, "cannot read %s\n", aPath);
    return false;
  }
  RunInput(file.readAll());
  return true;
}

QByteArray InputOf(unsigned long aSeed) {
  std::mt19937 random(static_cast<std::uint32_t>(aSeed));
  return FuzzTarget::MakeInput(random);
}

void RunSeeds(unsigned long aSeed, unsigned long aCount) {
  for (unsigned long i = 0; i < aCount; ++i) {
    if (i % EReportEvery == 0) std::fprintf(stderr, "seed %lu\n", aSeed + i);
    RunInput(InputOf(aSeed + i));
  }
}

bool ReadNumber(const char* aText, unsigned long& aNumber) {
  char* end = nullptr;
  aNumber = std::strtoul(aText, &end, 10);
  return end != aText && *end == '\0';
}

} // namespace

int main(int aArgc, char** aArgv) {
  unsigned long seed = 0;
  unsigned long count = 0;
  if (aArgc == 3 && ReadNumber(aArgv[1], seed) && ReadNumber(aArgv[2], count)) {
    RunSeeds(seed, count);
    return 0;
  }
  if (aArgc == 3 && std::string_view(aArgv[1]) == "print" && ReadNumber(aArgv[2], seed)) {
    const QByteArray input = InputOf(seed);
    std::fwrite(input.constData(), 1, static_cast<std::size_t>(input.size()), stdout);
    return 0;
  }
  bool ok = aArgc > 1;
  for (int i = 1; i < aArgc; ++i) ok = RunFile(aArgv[i]) && ok;
  if (aArgc < 2) std::fprintf(stderr, "usage: %s SEED COUNT | print SEED | FILE...\n", aArgv[0]);
  return ok ? 0 : 1;
}
