#include "Bench.h"

#include "core/text/CVelumCollation.h"
#include "core/text/CVelumLocale.h"
#include "model/CVelumStack.h"

#include <QDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

void Bench::Init() {
  CVelumLocale::Init(u"en_US"_s);
  CVelumModel::Install();
}

namespace {

double Median(std::vector<double> aFigures) {
  std::sort(aFigures.begin(), aFigures.end());
  return aFigures[aFigures.size() / 2];
}

// The child's end: writes the figures, and leaves without tidying up.
[[noreturn]] void Deliver(int aPipe, const std::function<QList<double>()>& aRun) {
  int status = 1;
  try {
    const QList<double> figures = aRun();
    const auto len = static_cast<size_t>(figures.size()) * sizeof(double);
    if (write(aPipe, figures.constData(), len) == static_cast<ssize_t>(len)) status = 0;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
  }
  _exit(status);
}

double SecondsOf(const timeval& aTime) {
  return static_cast<double>(aTime.tv_sec) + static_cast<double>(aTime.tv_usec) / 1e6;
}

Bench::TCost Used() {
  Bench::TCost used;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage usage{};
    getrusage(who, &usage);
    used.iUser += SecondsOf(usage.ru_utime);
    used.iSystem += SecondsOf(usage.ru_stime);
  }
  return used;
}

} // namespace

Bench::TCost Bench::Cost(const std::function<void()>& aRun) {
  const TCost before = Used();
  const double wall = Seconds(1, aRun);
  const TCost after = Used();
  return {wall, after.iUser - before.iUser, after.iSystem - before.iSystem};
}

QList<double> Bench::InChild(const std::function<QList<double>()>& aRun) {
  int ends[2];
  if (pipe(ends) != 0) qFatal("pipe");
  const pid_t child = fork();
  if (child == 0) Deliver(ends[1], aRun);
  close(ends[1]);
  QList<double> figures(64);
  const ssize_t len = read(ends[0], figures.data(), static_cast<size_t>(figures.size()) * sizeof(double));
  close(ends[0]);
  int status = 1;
  if (waitpid(child, &status, 0) != child || status != 0 || len < 0) qFatal("a measured process failed");
  figures.resize(static_cast<qsizetype>(static_cast<size_t>(len) / sizeof(double)));
  return figures;
}

QList<double> Bench::MedianInChildren(int aTimes, const std::function<QList<double>()>& aRun) {
  std::vector<std::vector<double>> all;
  for (int i = 0; i < aTimes; ++i) {
    const QList<double> figures = InChild(aRun);
    all.resize(static_cast<size_t>(figures.size()));
    for (size_t f = 0; f < all.size(); ++f) all[f].push_back(figures.at(static_cast<qsizetype>(f)));
  }
  QList<double> medians;
  for (const std::vector<double>& figures : all) medians.append(Median(figures));
  return medians;
}

double Bench::Seconds(int aTimes, const std::function<void()>& aRun, const std::function<void()>& aPrepare) {
  std::vector<double> times;
  for (int i = 0; i < aTimes; ++i) {
    if (aPrepare) aPrepare();
    const auto start = std::chrono::steady_clock::now();
    aRun();
    times.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return Median(times);
}

qint64 Bench::HeapBytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<qint64>(info.uordblks + info.hblkhd);
}

qint64 Bench::BlockBytes(const void* aBlock) {
  constexpr qint64 head = 8;
  return aBlock ? static_cast<qint64>(malloc_usable_size(const_cast<void*>(aBlock))) + head : 0;
}

QList<qint32> Bench::Counts(int aArgc, char** aArgv) {
  QList<qint32> counts;
  for (int i = 1; i < aArgc; ++i) counts.append(QString::fromLocal8Bit(aArgv[i]).toInt());
  return counts.isEmpty() ? QList<qint32>{1000, 100000, 1000000} : counts;
}

QString Bench::TempPath(const QString& aName) {
  return QDir::tempPath() + u"/orvelles-bench-"_s + aName;
}

void Bench::Row(const QList<QString>& aCells) {
  std::printf("| %s |\n", qPrintable(QStringList(aCells).join(u" | "_s)));
  std::fflush(stdout);
}

void Bench::Head(const QList<QString>& aCells) {
  std::printf("\n");
  Row(aCells);
  Row(QList<QString>(aCells.size(), u"---"_s));
}

QString Bench::Ms(double aSeconds) {
  return QString::number(aSeconds * 1e3, 'f', aSeconds < 0.1 ? 2 : 0) + u" ms"_s;
}

QString Bench::Each(double aSeconds, qint64 aNum) {
  const double ns = aSeconds * 1e9 / static_cast<double>(std::max<qint64>(aNum, 1));
  return ns < 10000 ? QString::number(ns, 'f', 0) + u" ns"_s : QString::number(ns / 1000, 'f', 1) + u" us"_s;
}

QString Bench::Ratio(double aA, double aB) {
  return QString::number(aA / aB, 'f', 2);
}
