// Timing, memory figures and tables for the measurements.
#pragma once

#include <QList>
#include <QString>
#include <functional>

namespace Bench {

// Sets the locale up as the programs do (en_US), and installs the model. Call first.
void Init();

// Seconds that aRun takes; the median of aTimes runs. aPrepare runs before each, untimed.
[[nodiscard]] double Seconds(int aTimes, const std::function<void()>& aRun,
                             const std::function<void()>& aPrepare = {});
// What a run takes: seconds on the clock, and of the processors for the program and the system (with those of
// programs that it starts and waits for).
struct TCost {
  double iWall = 0;
  double iUser = 0;
  double iSystem = 0;

  [[nodiscard]] double Cpu() const { return iUser + iSystem; }
};
[[nodiscard]] TCost Cost(const std::function<void()>& aRun);
// Runs aRun in a process of its own, so that it finds and leaves no used heap, and gives back the figures
// that it returns. Ends the program when that process fails.
[[nodiscard]] QList<double> InChild(const std::function<QList<double>()>& aRun);
// The same aTimes times; the median of each figure.
[[nodiscard]] QList<double> MedianInChildren(int aTimes, const std::function<QList<double>()>& aRun);
// Bytes of heap in use, with the allocator's own heads.
[[nodiscard]] qint64 HeapBytes();
// Bytes that the allocator keeps for a block, with its head; 0 for nothing.
[[nodiscard]] qint64 BlockBytes(const void* aBlock);

// The numbers of cards to measure: the program's arguments, else 1,000, 100,000 and 1,000,000.
[[nodiscard]] QList<qint32> Counts(int aArgc, char** aArgv);

// A path in the folder for temporary files.
[[nodiscard]] QString TempPath(const QString& aName);

// One line of a markdown table.
void Row(const QList<QString>& aCells);
void Head(const QList<QString>& aCells);
[[nodiscard]] QString Ms(double aSeconds);
// Seconds of aNum operations as time of one.
[[nodiscard]] QString Each(double aSeconds, qint64 aNum);
[[nodiscard]] QString Ratio(double aA, double aB);

} // namespace Bench
