// Loading and saving of stacks in both formats, in the same process one after the other, and long blobs.
#include "Bench.h"
#include "BenchStack.h"

#include "persist/CVelumStackFile.h"

#include <QFile>
#include <QFileInfo>

namespace {

struct TPair {
  Ref<CVelumStack> iStack;
  Ref<CVelumViewState> iView;
};

void Save(const TPair& aPair, bool aBinary, const QString& aPath) {
  aPair.iStack->SetFlag(EStaBinary, aBinary);
  CVelumStackFile(aPath).SaveStack(aPair.iStack, aPair.iView);
}

TPair Load(const QString& aPath) {
  TPair pair;
  CVelumStackFile(aPath).LoadStack(pair.iStack, pair.iView);
  return pair;
}

// Seconds of a load, and of a save over the same file.
QList<double> Measure(const QString& aPath, bool aBinary) {
  TPair pair;
  const double load = Bench::Seconds(1, [&] { pair = Load(aPath); });
  const double save = Bench::Seconds(1, [&] { Save(pair, aBinary, aPath); });
  return {load, save};
}

// A row of both formats of what aMake makes.
void Compare(const QString& aWhat, int aTimes, const std::function<TPair()>& aMake) {
  const QString binary = Bench::TempPath(u"binary.Orvelle"_s);
  const QString xml = Bench::TempPath(u"stack.xml"_s);
  for (const QString& path : {binary, xml}) QFile::remove(path);
  static_cast<void>(Bench::InChild([&] {
    const TPair pair = aMake();
    Save(pair, true, binary);
    Save(pair, false, xml);
    return QList<double>{};
  }));
  const QList<double> bin = Bench::MedianInChildren(aTimes, [&] { return Measure(binary, true); });
  const QList<double> text = Bench::MedianInChildren(aTimes, [&] { return Measure(xml, false); });
  const auto size = [](const QString& aPath) {
    return QString::number(static_cast<double>(QFileInfo(aPath).size()) / 1e6, 'f', 1);
  };
  Bench::Row({aWhat, size(binary), size(xml), Bench::Ms(bin[0]), Bench::Ms(text[0]),
              Bench::Ratio(text[0], bin[0]), Bench::Ms(bin[1]), Bench::Ms(text[1]),
              Bench::Ratio(text[1], bin[1])});
  for (const QString& path : {binary, xml}) QFile::remove(path);
}

TPair Cards(qint32 aCount) {
  BenchStack stack(BenchStack::EPlain);
  stack.AddBulk(stack.Names(aCount));
  return {stack.Stack(), MakeRef<CVelumViewState>()};
}

// One card with pictures of 10 MB, the most that a stack file holds in one.
TPair Blobs(qint32 aMegabytes) {
  constexpr qint32 EEach = 10;
  TPair pair{MakeRef<CVelumStack>(u"Blobs"_s), MakeRef<CVelumViewState>()};
  for (qint32 left = aMegabytes; left > 0; left -= EEach) {
    auto blob = MakeRef<CVelumBlob>(pair.iStack->IdGen().NextId());
    blob->SetBytes(QByteArray(qMin(left, EEach) * 1000000, 'x'));
    pair.iStack->BlobStore()->AddBlob(blob);
  }
  return pair;
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  Bench::Head({u"stack"_s, u"binary MB"_s, u"XML MB"_s, u"load"_s, u"load XML"_s, u"ratio"_s, u"save"_s,
               u"save XML"_s, u"ratio"_s});
  for (const qint32 count : Bench::Counts(aArgc, aArgv))
    Compare(u"%1 cards"_s.arg(count), count > 200000 ? 1 : 5, [&] { return Cards(count); });
  for (const qint32 megabytes : {5, 50})
    Compare(u"blobs of %1 MB"_s.arg(megabytes), 3, [&] { return Blobs(megabytes); });
  return 0;
}
