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

void Measure(BenchStack::EKind aKind, qint32 aCount) {
  const QString path = Bench::TempPath(u"file.Orvelle"_s);
  const QString copy = Bench::TempPath(u"copy.Orvelle"_s);
  const int times = aCount > 200000 ? 3 : 9;
  {
    BenchStack stack(aKind);
    stack.AddBulk(stack.Names(aCount));
    stack.Stack()->SetFlag(EStaBinary, true);
    QFile::remove(path);
    CVelumStackFile(path).SaveStack(stack.Stack(), MakeRef<CVelumViewState>());
  }
  Ref<CVelumStack> stack;
  Ref<CVelumViewState> view;
  const double load = Bench::Seconds(
      times, [&] { CVelumStackFile(path).LoadStack(stack, view); },
      [&] {
        stack = nullptr;
        view = nullptr;
      });
  const double save = Bench::Seconds(times, [&] { CVelumStackFile(path).SaveStack(stack, view); });
  stack = nullptr;
  view = nullptr;
  auto minimal = std::make_unique<MinimalStack>();
  const double parse = Bench::Seconds(
      times, [&] { minimal->Load(path); }, [&] { minimal = std::make_unique<MinimalStack>(); });
  const double format = Bench::Seconds(times, [&] { minimal->Save(copy); });
  const QByteArray bytes = BytesOf(path);
  const bool same = bytes == BytesOf(copy);
  Bench::Row({BenchStack::KindName(aKind), QString::number(aCount),
              QString::number(static_cast<double>(bytes.size()) / 1e6, 'f', 1), Bench::Ms(load),
              Bench::Ms(parse), Bench::Ratio(load, parse), Bench::Ms(save), Bench::Ms(format),
              Bench::Ratio(save, format), same ? u"yes"_s : u"NO"_s});
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
