// A stack of many large pictures: what opening it reads, what showing one reads, the memory and the time of
// leafing through all of them, and the image library alone on the same bytes.
#include "Bench.h"

#include "core/CVelumMsg.h"
#include "exchange/CVelumPicture.h"
#include "persist/CVelumStackFile.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/view/CVelumGenForm.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumToolkitPump.h"
#include "toolkit/CVelumWinMan.h"

#include <FreeImage.h>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QtEndian>
#include <random>

namespace {

constexpr int EWidth = 4000;
constexpr int EHeight = 3000;
constexpr qsizetype EPictureBytes = 3'000'000;

// A grey wave with some noise, 24 bits a pixel.
QByteArray Bmp(int aNoise) {
  QByteArray bytes(54 + EWidth * EHeight * 3, '\0');
  bytes.replace(0, 2, "BM");
  const auto put = [&](int aAt, quint32 aValue) { qToLittleEndian(aValue, bytes.data() + aAt); };
  put(2, static_cast<quint32>(bytes.size()));
  put(10, 54);
  put(14, 40);
  put(18, EWidth);
  put(22, EHeight);
  put(26, 1 | 24 << 16);
  std::minstd_rand random(1);
  char* to = bytes.data() + 54;
  for (int i = 0; i < EWidth * EHeight; ++i) {
    const auto base = static_cast<unsigned>(i / EWidth + i % EWidth) / 8;
    for (int channel = 0; channel < 3; ++channel)
      *to++ = static_cast<char>(64 + (base + random() % static_cast<unsigned>(aNoise)) % 128);
  }
  return bytes;
}

// A JPEG of 12 megapixels and about 3 MB.
QByteArray Photo() {
  QByteArray photo;
  for (int noise = 4; photo.size() < EPictureBytes; noise += 4) photo = CVelumPicture(Bmp(noise)).ToJpeg();
  return photo;
}

// Seconds that the library needs to decode the bytes, the best of some runs.
double LibraryAlone(const QByteArray& aBytes) {
  double best = 1e9;
  for (int i = 0; i < 9; ++i) {
    QElapsedTimer timer;
    timer.start();
    FIMEMORY* stream = FreeImage_OpenMemory(reinterpret_cast<BYTE*>(const_cast<char*>(aBytes.constData())),
                                            static_cast<DWORD>(aBytes.size()));
    FIBITMAP* bitmap = FreeImage_LoadFromMemory(FIF_JPEG, stream, JPEG_ACCURATE);
    FIBITMAP* shown = FreeImage_ConvertTo32Bits(bitmap); // what a screen needs
    best = std::min(best, static_cast<double>(timer.nsecsElapsed()) / 1e9);
    FreeImage_Unload(shown);
    FreeImage_Unload(bitmap);
    FreeImage_CloseMemory(stream);
  }
  return best;
}

void MakeStack(const QString& aPath, qint32 aCount, const QByteArray& aPhoto) {
  auto stack = MakeRef<CVelumStack>(u"Pictures"_s);
  stack->SetFlag(EStaBinary, true);
  Ref<CVelumControlSet> set;
  qint32 index = 0;
  static_cast<void>(stack->GetFirstBackground(set, index));
  auto field = MakeRef<CVelumControl>(stack->IdGen().NextId(), u"Photo"_s, qint32{EConPicture});
  set->AddControl(field, ENoInt);
  stack->AddCard(MakeRef<CVelumCard>(u"none"_s, set), nullptr, false);
  for (qint32 i = 0; i < aCount; ++i) {
    auto blob = MakeRef<CVelumBlob>(stack->IdGen().NextId());
    blob->SetBytes(aPhoto);
    stack->BlobStore()->AddBlob(blob);
    auto card = MakeRef<CVelumCard>(QString::number(i), set);
    stack->AddCard(card, nullptr, false);
    card->SetControlVal(field->Id(), TVelumValue::OfBlobId(blob->Id()));
  }
  QFile::remove(aPath);
  CVelumStackFile(aPath).SaveStack(stack, MakeRef<CVelumViewState>(u"View"_s));
}

// A number of the process's files in /proc.
double Fact(const char* aFile, const QByteArray& aName) {
  QFile file(QString::fromLatin1(aFile));
  if (!file.open(QIODevice::ReadOnly)) return 0;
  for (const QByteArray& line : file.readAll().split('\n'))
    if (line.startsWith(aName)) return line.mid(aName.size()).simplified().split(' ').value(0).toDouble();
  return 0;
}

double BytesRead() {
  return Fact("/proc/self/io", "rchar:");
}

// Bytes read by opening, by the first picture, peak of memory in KB, best and median seconds of a step.
QList<double> Leaf(const QString& aPath) {
  int argc = 1;
  char name[] = "bench_picture";
  char* argv[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication app(argc, argv);
  CVelumToolkitPump pump;
  CVelumSeams::SetEventPump(&pump);
  CVelumMsg::InitMessages();
  CVelumWinMan::InitWinMan();
  CVelumLib::InitRuntime();
  const double start = BytesRead();
  CVelumLib::HandleLoadStack(aPath);
  QApplication::processEvents();
  const double opened = BytesRead();
  QList<double> times;
  double first = 0;
  Ref<CVelumCard> card;
  for (bool more = true; more;) {
    QElapsedTimer timer;
    timer.start();
    more = gStackView->OrderNext(card);
    QApplication::processEvents();
    if (more) times.append(static_cast<double>(timer.nsecsElapsed()) / 1e9);
    if (times.size() == 1) first = BytesRead() - opened;
  }
  std::sort(times.begin(), times.end());
  const double peak = Fact("/proc/self/status", "VmHWM:");
  return {opened - start, first, peak, times.value(0), times.value(times.size() / 2)};
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  const qint32 count = aArgc > 1 ? QByteArray(aArgv[1]).toInt() : 500;
  const QString path = Bench::TempPath(u"pictures.Orvelle"_s);
  const QList<double> made = Bench::InChild([&] {
    const QByteArray photo = Photo();
    MakeStack(path, count, photo);
    return QList<double>{static_cast<double>(photo.size()), LibraryAlone(photo)};
  });
  const QList<double> leaf = Bench::InChild([&] { return Leaf(path); });
  Bench::Head({u"pictures"_s, u"bytes of each"_s, u"bytes read by opening"_s, u"by showing one"_s,
               u"peak memory, MB"_s, u"library alone, best"_s, u"a step, best"_s, u"median"_s,
               u"best to library"_s});
  Bench::Row({QString::number(count), QString::number(made[0], 'f', 0), QString::number(leaf[0], 'f', 0),
              QString::number(leaf[1], 'f', 0), QString::number(leaf[2] / 1024, 'f', 0), Bench::Ms(made[1]),
              Bench::Ms(leaf[3]), Bench::Ms(leaf[4]), Bench::Ratio(leaf[3], made[1])});
  QFile::remove(path);
  return 0;
}
