// Adding cards one by one.
#include "Bench.h"
#include "BenchStack.h"

#include <QLocale>

namespace {

QString Grouped(qint32 aNum) {
  return QLocale(u"en_US"_s).toString(aNum);
}

// Adds aCount cards in random order of names; returns the seconds, without the making of the cards.
double SecondsToAdd(BenchStack::EKind aKind, qint32 aCount) {
  BenchStack stack(aKind);
  QList<Ref<CVelumCard>> cards;
  qint32 num = 0;
  for (const QString& name : stack.Names(aCount)) cards.append(stack.NewCard(name, num++));
  return Bench::Seconds(1, [&] {
    for (const Ref<CVelumCard>& card : cards) stack.Stack()->AddCard(card, nullptr, false);
  });
}

// Adds aCount cards to the first of two backgrounds, each before the first card of the second.
double SecondsToAddBefore(qint32 aCount) {
  BenchStack stack(BenchStack::EPlain);
  const auto second = MakeRef<CVelumControlSet>(u"Second"_s, stack.Stack()->IdGen().NextId());
  stack.Stack()->AddBackground(second);
  const auto before = MakeRef<CVelumCard>(u"Last"_s, second);
  stack.Stack()->AddCard(before, nullptr, false);
  QList<Ref<CVelumCard>> cards;
  for (const QString& name : stack.Names(aCount)) cards.append(stack.NewCard(name, 0));
  return Bench::Seconds(1, [&] {
    for (const Ref<CVelumCard>& card : cards) stack.Stack()->AddCard(card, before, false);
  });
}

void Report(const QString& aWhat, const QList<qint32>& aCounts, const std::function<double(qint32)>& aTime) {
  double last = 0;
  for (const qint32 count : aCounts) {
    const double each = aTime(count) / count;
    Bench::Row({aWhat, Grouped(count), Bench::Each(each, 1), last > 0 ? Bench::Ratio(each, last) : u"-"_s});
    last = each;
  }
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  const QList<qint32> counts = Bench::Counts(aArgc, aArgv);
  Bench::Head({u"AddCard"_s, u"cards"_s, u"per card"_s, u"to the line above"_s});
  for (const auto kind : {BenchStack::EPlain, BenchStack::EKeptSorted, BenchStack::ELists})
    Report(BenchStack::KindName(kind), counts, [kind](qint32 aCount) { return SecondsToAdd(kind, aCount); });
  Report(u"before the first card of a second background"_s, {1000, 10000, 100000, 1000000},
         SecondsToAddBefore);
  return 0;
}
