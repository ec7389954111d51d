// What it costs to record changes, and to take them back: each work with nobody listening, and with undo.
#include "Bench.h"
#include "BenchStack.h"

#include "model/change/CVelumUndo.h"

#include <optional>

namespace {

struct TWork {
  QString iName;
  std::function<void(BenchStack&, qint32)> iPrepare;
  std::function<void(BenchStack&, qint32)> iRun;
};

Ref<CVelumControl> FirstField(CVelumStack& aStack) {
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  if (!aStack.GetFirstBackground(background, index)) qFatal("no background");
  return background->ControlAt(0);
}

void AddOneByOne(BenchStack& aStack, qint32 aCount) {
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  if (!aStack.Stack()->GetFirstBackground(background, index)) qFatal("no background");
  for (qint32 i = 0; i < aCount; ++i) {
    const CVelumError::CCommand command(u"Add"_s);
    aStack.Stack()->AddCard(MakeRef<CVelumCard>(QString::number(i * 7919LL % 1000003), background), nullptr,
                            false);
  }
}

void SetValues(BenchStack& aStack, qint32) {
  const CVelumError::CCommand command(u"Set"_s);
  const qint32 field = FirstField(*aStack.Stack())->Id();
  Ref<CVelumCard> card;
  qint32 number = 0;
  for (qint32 i = 0; aStack.Stack()->GetNextCard(card, i);)
    card->SetControlVal(field, TVelumValue::OfStr(u"value %1"_s.arg(++number)));
}

void AddBulk(BenchStack& aStack, qint32 aCount) {
  const CVelumError::CCommand command(u"Import"_s);
  aStack.AddBulk(aStack.Names(aCount));
}

void DeleteAll(BenchStack& aStack, qint32) {
  const CVelumError::CCommand command(u"Delete all"_s);
  aStack.Stack()->DeleteAllCards();
}

// Seconds of the work, of its undo (0 without), and bytes of heap that its step holds.
QList<double> Figures(const TWork& aWork, qint32 aCount, bool aRecorded) {
  BenchStack stack(BenchStack::EPlain);
  aWork.iPrepare(stack, aCount);
  std::optional<CVelumUndo> undo;
  if (aRecorded) undo.emplace(*stack.Stack(), std::numeric_limits<qint64>::max());
  const double work = Bench::Seconds(1, [&] { aWork.iRun(stack, aCount); });
  if (!undo) return {work, 0, 0};
  const auto cost = static_cast<double>(undo->Cost());
  const double back = Bench::Seconds(1, [&] {
    while (undo->CanUndo()) static_cast<void>(undo->Undo());
  });
  return {work, back, cost};
}

void Measure(const TWork& aWork, qint32 aCount) {
  constexpr int times = 7;
  const QList<double> plain = Bench::MedianInChildren(times, [&] { return Figures(aWork, aCount, false); });
  const QList<double> recorded = Bench::MedianInChildren(times, [&] { return Figures(aWork, aCount, true); });
  Bench::Row({aWork.iName, QString::number(aCount), Bench::Ms(plain[0]), Bench::Ms(recorded[0]),
              Bench::Ratio(recorded[0], plain[0]), Bench::Ms(recorded[1]),
              Bench::Ratio(recorded[1], plain[0]), QString::number(recorded[2] / aCount, 'f', 0)});
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  const auto nothing = [](BenchStack&, qint32) {};
  const auto fill = [](BenchStack& aStack, qint32 aCount) { aStack.AddBulk(aStack.Names(aCount)); };
  const QList<TWork> works{{u"AddCard"_s, nothing, AddOneByOne},
                           {u"values set"_s, fill, SetValues},
                           {u"cards added in bulk"_s, nothing, AddBulk},
                           {u"all cards deleted"_s, fill, DeleteAll}};
  Bench::Head({u"work"_s, u"cards"_s, u"not recorded"_s, u"recorded"_s, u"ratio"_s, u"undo"_s,
               u"undo to work"_s, u"bytes a card"_s});
  for (const qint32 count : Bench::Counts(aArgc, aArgv))
    for (const TWork& work : works) Measure(work, count);
  return 0;
}
