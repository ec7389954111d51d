// Loading and saving of stacks in both formats, in the same process one after the other, and long blobs.
#include "Bench.h"
#include "BenchStack.h"

#include "core/text/CVelumXmlParser.h"
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

// Of a load, and of a save over the same file: seconds on the clock, and of processor time.
QList<double> Measure(const QString& aPath, bool aBinary) {
  TPair pair;
  const Bench::TCost load = Bench::Cost([&] { pair = Load(aPath); });
  const Bench::TCost save = Bench::Cost([&] { Save(pair, aBinary, aPath); });
  return {load.iWall, load.Cpu(), save.iWall, save.Cpu()};
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
  QList<QString> row{aWhat, size(binary), size(xml)};
  for (qsizetype i = 0; i < bin.size(); ++i)
    row += {Bench::Ms(bin[i]), Bench::Ms(text[i]), Bench::Ratio(text[i], bin[i])};
  Bench::Row(row);
  for (const QString& path : {binary, xml}) QFile::remove(path);
}

// Processor time of reading a tag with so many attributes, a line for each.
void Attributes(int aCount) {
  const QString path = Bench::TempPath(u"attributes.xml"_s);
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly)) qFatal("open");
  file.write("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n<a\r\n");
  for (int i = 0; i < aCount; ++i) file.write("a" + QByteArray::number(i) + "=\"1\"\r\n");
  file.write("/>\r\n");
  file.close();
  const Bench::TCost cost = Bench::Cost([&] {
    CVelumXmlParser parser(path);
    parser.OpenFile();
    parser.ReadHeader();
    parser.ReadTheNext(u"a", false);
    bool term = false;
    parser.ReadAttr(term);
  });
  Bench::Row({QString::number(aCount), Bench::Ms(cost.Cpu()), Bench::Each(cost.Cpu(), aCount)});
  QFile::remove(path);
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
  Bench::Head({u"stack"_s, u"binary MB"_s, u"XML MB"_s, u"load"_s, u"load XML"_s, u"ratio"_s, u"load, CPU"_s,
               u"load XML, CPU"_s, u"ratio"_s, u"save"_s, u"save XML"_s, u"ratio"_s, u"save, CPU"_s,
               u"save XML, CPU"_s, u"ratio"_s});
  for (const qint32 count : Bench::Counts(aArgc, aArgv))
    Compare(u"%1 cards"_s.arg(count), count > 200000 ? 1 : 7, [&] { return Cards(count); });
  for (const qint32 megabytes : {5, 50})
    Compare(u"blobs of %1 MB"_s.arg(megabytes), 3, [&] { return Blobs(megabytes); });
  Bench::Head({u"attributes of a tag"_s, u"CPU"_s, u"each"_s});
  for (const int count : {10000, 40000, 160000}) Attributes(count);
  return 0;
}
