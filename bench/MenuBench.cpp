// Opening the menus of the real main window, drawn on the offscreen platform.
#include "Bench.h"
#include "BenchStack.h"

#include "core/CVelumError.h"
#include "persist/CVelumStackFile.h"
#include "shell/frame/CVelumFrame.h"
#include "shell/frame/CVelumMain.h"

#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QTemporaryDir>
#include <algorithm>

namespace {

constexpr int ERounds = 20;

void WriteStack(qint32 aCount, const QString& aPath) {
  BenchStack stack(BenchStack::ELists);
  stack.AddBulk(stack.Names(aCount));
  stack.Stack()->SetFlag(EStaBinary, true);
  CVelumStackFile(aPath).SaveStack(stack.Stack(), MakeRef<CVelumViewState>());
}

// Seconds from the request to the painted menu.
double Open(QMenu& aMenu) {
  const double seconds = Bench::Seconds(1, [&aMenu] {
    aMenu.popup(gFrame->mapToGlobal(QPoint(20, 40)));
    QCoreApplication::processEvents();
  });
  aMenu.hide();
  QCoreApplication::processEvents();
  return seconds;
}

// Median and maximum over all menus, the first opening of each included.
QList<double> OpenAll(const QString& aPath) {
  QTemporaryDir home;
  qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
  int argc = 1;
  char name[] = "bench_menu";
  char* argv[] = {name, nullptr};
  QApplication app(argc, argv);
  CVelumMain::Main(aPath);
  if (!gStack) qFatal("no stack");
  QList<double> times;
  for (int round = 0; round < ERounds; ++round)
    for (const QAction* item : gFrame->menuBar()->actions())
      if (item->isVisible()) times.append(Open(*item->menu()));
  std::sort(times.begin(), times.end());
  return {times[times.size() / 2], times.last()};
}

void Measure(qint32 aCount) {
  const QString path = Bench::TempPath(u"menu.Orvelle"_s);
  QFile::remove(path);
  static_cast<void>(Bench::InChild([&] {
    WriteStack(aCount, path);
    return QList<double>{};
  }));
  const QList<double> figures = Bench::InChild([&] { return OpenAll(path); });
  Bench::Row({QString::number(aCount), Bench::Ms(figures[0]), Bench::Ms(figures[1])});
  QFile::remove(path);
}

} // namespace

int main(int aArgc, char** aArgv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QCoreApplication::setOrganizationName(u"Brindleway"_s);
  QCoreApplication::setApplicationName(u"OrvellesBench"_s);
  Bench::Init();
  Bench::Head({u"cards"_s, u"open a menu, median"_s, u"longest of all"_s});
  for (const qint32 count : Bench::Counts(aArgc, aArgv)) Measure(count);
  return 0;
}
