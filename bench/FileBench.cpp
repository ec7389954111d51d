// Loading and saving of a binary stack, beside a program that only parses, or formats, the same bytes.
#include "Bench.h"
#include "BenchStack.h"
#include "MinimalStack.h"

#include "persist/CVelumStackFile.h"

#include <QFile>

namespace {

QByteArray BytesOf(const QString& aPath) {
  QFile file(aPath);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void Write(BenchStack::EKind aKind, qint32 aCount, const QString& aPath) {
  BenchStack stack(aKind);
  stack.AddBulk(stack.Names(aCount));
  stack.Stack()->SetFlag(EStaBinary, true);
  CVelumStackFile(aPath).SaveStack(stack.Stack(), MakeRef<CVelumViewState>());
}

// Seconds of a load, and of a save over the same file.
QList<double> Ours(const QString& aPath) {
  Ref<CVelumStack> stack;
  Ref<CVelumViewState> view;
  const double load = Bench::Seconds(1, [&] { CVelumStackFile(aPath).LoadStack(stack, view); });
  const double save = Bench::Seconds(1, [&] { CVelumStackFile(aPath).SaveStack(stack, view); });
  return {load, save};
}

QList<double> Minimal(const QString& aPath, const QString& aCopy) {
  MinimalStack minimal;
  const double load = Bench::Seconds(1, [&] { minimal.Load(aPath); });
  const double save = Bench::Seconds(1, [&] { minimal.Save(aCopy); });
  return {load, save};
}

void Measure(BenchStack::EKind aKind, qint32 aCount) {
  const QString path = Bench::TempPath(u"file.Orvelle"_s);
  const QString copy = Bench::TempPath(u"copy.Orvelle"_s);
  const int times = aCount > 200000 ? 3 : 9;
  QFile::remove(path);
  static_cast<void>(Bench::InChild([&] {
    Write(aKind, aCount, path);
    return QList<double>{};
  }));
  const QList<double> ours = Bench::MedianInChildren(times, [&] { return Ours(path); });
  const QList<double> minimal = Bench::MedianInChildren(times, [&] { return Minimal(path, copy); });
  const QByteArray bytes = BytesOf(path);
  Bench::Row({BenchStack::KindName(aKind), QString::number(aCount),
              QString::number(static_cast<double>(bytes.size()) / 1e6, 'f', 1), Bench::Ms(ours[0]),
              Bench::Ms(minimal[0]), Bench::Ratio(ours[0], minimal[0]), Bench::Ms(ours[1]),
              Bench::Ms(minimal[1]), Bench::Ratio(ours[1], minimal[1]),
              bytes == BytesOf(copy) ? u"yes"_s : u"NO"_s});
  QFile::remove(path);
  QFile::remove(copy);
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  Bench::Head({u"stack"_s, u"cards"_s, u"MB"_s, u"load"_s, u"parse only"_s, u"ratio"_s, u"save"_s,
               u"format and write only"_s, u"ratio"_s, u"same bytes"_s});
  for (const auto kind : {BenchStack::EPlain, BenchStack::ELists})
    for (const qint32 count : Bench::Counts(aArgc, aArgv)) Measure(kind, count);
  return 0;
}
