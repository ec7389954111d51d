// An edit that a computed list of cards depends on, and the list that it makes stale, in a loaded stack.
#include "Bench.h"
#include "BenchStack.h"

#include "persist/CVelumStackFile.h"

#include <QFile>

namespace {

constexpr qint32 EEdits = 1000;

Ref<CVelumControl> FieldOf(CVelumCard& aCard, const QString& aName) {
  Ref<CVelumControl> control;
  if (!aCard.Background()->GetControlByName(aName, control)) qFatal("no field %s", qPrintable(aName));
  return control;
}

// Seconds of the first edit after the load, and of one of many; each gives a card to, or takes it from, the
// group that the list shows.
QList<double> Edits(const QString& aPath) {
  Ref<CVelumStack> stack;
  Ref<CVelumViewState> view;
  CVelumStackFile(aPath).LoadStack(stack, view);
  Ref<CVelumCard> group;
  Ref<CVelumControlSet> people;
  if (!stack->GetCard(u"Group 7"_s, group)) qFatal("no group");
  if (!stack->GetBackgroundByName(u"People"_s, people)) qFatal("no people");
  const qint32 list = FieldOf(*group, u"Members"_s)->Id();
  Ref<CVelumCard> card;
  qint32 index = 0;
  const auto edit = [&](qint32 aGroup) {
    if (!stack->GetNextCardInBackground(people->Id(), card, index))
      static_cast<void>(stack->GetFirstCardInBackground(people->Id(), card, index));
    card->SetControlVal(FieldOf(*card, u"Group"_s)->Id(), TVelumValue::OfInt(aGroup));
    static_cast<void>(group->GetControlVal(list, false));
  };
  const double first = Bench::Seconds(1, [&] { edit(7); });
  const double all = Bench::Seconds(1, [&] {
    for (qint32 i = 0; i < EEdits; ++i) edit(i % 20 ? -1 : 7);
  });
  return {first, all / EEdits};
}

void Measure(qint32 aCount) {
  const QString path = Bench::TempPath(u"edit.Orvelle"_s);
  QFile::remove(path);
  static_cast<void>(Bench::InChild([&] {
    BenchStack stack(BenchStack::ELists);
    stack.AddBulk(stack.Names(aCount));
    stack.Stack()->SetFlag(EStaBinary, true);
    CVelumStackFile(path).SaveStack(stack.Stack(), MakeRef<CVelumViewState>());
    return QList<double>{};
  }));
  const QList<double> figures = Bench::InChild([&] { return Edits(path); });
  Bench::Row({QString::number(aCount), Bench::Each(figures[0], 1), Bench::Each(figures[1], 1)});
  QFile::remove(path);
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  Bench::Head({u"cards"_s, u"first edit and list"_s, u"each of 1,000 more"_s});
  for (const qint32 count : Bench::Counts(aArgc, aArgv)) Measure(count);
  return 0;
}
