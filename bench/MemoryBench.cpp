// Heap for each card of a loaded stack, and what it goes to.
#include "Bench.h"
#include "BenchStack.h"

#include "persist/CVelumStackFile.h"

namespace {

qint64 TextBytes(const QString& aText) {
  if (aText.isEmpty()) return 0;
  auto& data = const_cast<QString&>(aText).data_ptr();
  // A piece of a block that texts share.
  const qint64 own = 2 * (aText.size() + 1);
  if (data.constAllocatedCapacity() > 2 * aText.size() + 16) return own;
  // The characters lie behind the head of the shared data.
  return Bench::BlockBytes(data.d_ptr());
}

struct TParts {
  qint64 iCards = 0;
  qint64 iNames = 0;
  qint64 iElems = 0;
  qint64 iTexts = 0;
};

TParts PartsOf(const CVelumStack& aStack) {
  TParts parts;
  Ref<CVelumCard> card;
  qint32 index = 0;
  for (bool found = aStack.GetFirstCard(card, index); found; found = aStack.GetNextCard(card, index)) {
    const CVelumArray& value = card->Value();
    parts.iCards += Bench::BlockBytes(card.Get());
    parts.iNames += TextBytes(card->Name());
    if (value.Count() > 0) parts.iElems += Bench::BlockBytes(&value.ValRef(0));
    for (qint32 i = 0; i < value.Count(); ++i) parts.iTexts += TextBytes(value.ValRef(i).Str());
  }
  return parts;
}

void Measure(BenchStack::EKind aKind, qint32 aCount) {
  const QString path = Bench::TempPath(u"memory.Orvelle"_s);
  {
    BenchStack stack(aKind);
    stack.AddBulk(stack.Names(aCount));
    stack.Stack()->SetFlag(EStaBinary, true);
    CVelumStackFile(path).SaveStack(stack.Stack(), MakeRef<CVelumViewState>());
  }
  const qint64 before = Bench::HeapBytes();
  Ref<CVelumStack> stack;
  Ref<CVelumViewState> view;
  CVelumStackFile(path).LoadStack(stack, view);
  const qint64 all = Bench::HeapBytes() - before;
  const TParts parts = PartsOf(*stack);
  const auto each = [aCount](qint64 aBytes) {
    return QString::number(static_cast<double>(aBytes) / aCount, 'f', 0);
  };
  const qint64 cards = parts.iCards + parts.iNames + parts.iElems + parts.iTexts;
  Bench::Row({BenchStack::KindName(aKind), QString::number(aCount), each(all), each(parts.iCards),
              each(parts.iNames), each(parts.iElems), each(parts.iTexts), each(all - cards)});
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  Bench::Head({u"stack"_s, u"cards"_s, u"bytes per card"_s, u"card"_s, u"its name"_s, u"its elements"_s,
               u"its texts"_s, u"card table, order, name and key indexes"_s});
  for (const auto kind : {BenchStack::EPlain, BenchStack::ELists})
    for (const qint32 count : Bench::Counts(aArgc, aArgv)) Measure(kind, count);
  return 0;
}
