// The card list's window over very many cards: opening, scrolling, one card's line, sorting the display.
#include "Bench.h"
#include "BenchStack.h"

#include "core/CVelumMsg.h"
#include "runtime/CVelumRuntimeLib.h"
#include "runtime/lists/CVelumCardListForm.h"
#include "runtime/view/CVelumStackView.h"
#include "toolkit/CVelumListWidget.h"
#include "toolkit/CVelumWinMan.h"

#include <QApplication>
#include <QImage>
#include <QScrollBar>
#include <algorithm>

namespace {

constexpr int EScrolls = 200;

CVelumListWidget& ListWidget() {
  auto* form = dynamic_cast<CVelumCardListForm*>(CVelumWinMan::NameToForm(u"CVelumCardListForm"_s));
  return *form->CardBox();
}

// Opens the list of the stack in gStack and paints it once.
void OpenAndPaint() {
  gStackView->OpenCardList();
  ListWidget().window()->grab();
}

// The longest of EScrolls steps over the whole list, each with its painting.
double WorstScroll() {
  QScrollBar* bar = ListWidget().verticalScrollBar();
  QImage image(ListWidget().size(), QImage::Format_RGB32);
  double worst = 0;
  for (int i = 0; i < EScrolls; ++i) {
    const double seconds = Bench::Seconds(1, [&] {
      bar->setValue(static_cast<int>(static_cast<qint64>(bar->maximum()) * (i * 37 % EScrolls) / EScrolls));
      ListWidget().render(&image);
    });
    worst = std::max(worst, seconds);
  }
  return worst;
}

double UpdateLast() {
  Ref<CVelumCard> last;
  if (!gStack->OrderLast(last)) qFatal("no card");
  return Bench::Seconds(21, [&] { gStackView->CardListView()->UpdateCard(*last); });
}

// Seconds: open and first paint, worst step of scrolling, UpdateCard, refill, sort by a text, jump to a text
// that no line begins with.
QList<double> Measure(qint32 aCount) {
  BenchStack stack(BenchStack::EPlain);
  stack.AddBulk(stack.Names(aCount));
  gStack = stack.Stack();
  const auto state = MakeRef<CVelumViewState>(u"View"_s);
  state->iCardListOpen = false;
  gStackView = MakeRef<CVelumStackView>(state, gStack);
  gStackView->OpenViews();
  QList<double> figures;
  figures.append(Bench::Seconds(5, OpenAndPaint, [] { gStackView->CloseCardList(); }));
  figures.append(WorstScroll());
  figures.append(UpdateLast());
  figures.append(Bench::Seconds(5, [] { gStackView->RefreshViews(false, true); }));
  figures.append(Bench::Seconds(1, [] { ListWidget().SortDisplay(0, Qt::AscendingOrder); }));
  figures.append(Bench::Seconds(1, [] { ListWidget().keyboardSearch(u"\u20ac"_s); }));
  gStackView->Release();
  gStackView = nullptr;
  gStack = nullptr;
  return figures;
}

} // namespace

int main(int aArgc, char** aArgv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication app(aArgc, aArgv);
  Bench::Init();
  CVelumMsg::InitMessages();
  CVelumWinMan::InitWinMan();
  CVelumLib::InitRuntime();
  Bench::Head({u"cards"_s, u"open and first paint"_s, u"longest of 200 scrolls"_s, u"UpdateCard"_s,
               u"refill"_s, u"sort by a text"_s, u"jump to nothing"_s});
  for (const qint32 count : Bench::Counts(aArgc, aArgv)) {
    QList<QString> cells{QString::number(count)};
    for (const double seconds : Measure(count)) cells.append(Bench::Ms(seconds));
    Bench::Row(cells);
  }
  return 0;
}
