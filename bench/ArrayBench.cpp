// Inserts into, lookups in and walks over the keyed array.
#include "Bench.h"

#include "core/array/CVelumArray.h"

#include <algorithm>
#include <random>

namespace {

struct TKind {
  const char16_t* iName;
  qint32 iFlags;
};

constexpr TKind EKinds[] = {
    {u"integer keys", EArrIntKey},
    {u"texts, exact", EArrStrKey | EArrExactCase},
    {u"texts, by collation", EArrStrKey},
};

QList<TVelumElem> Elems(const TKind& aKind, qint32 aCount, bool aRandom) {
  QList<TVelumElem> elems(aCount);
  for (qint32 i = 0; i < aCount; ++i) {
    elems[i].iVal = TVelumValue::OfInt(i);
    if (aKind.iFlags & EArrIntKey)
      elems[i].iIntKey = i;
    else
      elems[i].iStrKey = u"Card %1"_s.arg(i, 7, 10, QChar(u'0'));
  }
  std::mt19937 random(1);
  if (aRandom) std::shuffle(elems.begin(), elems.end(), random);
  return elems;
}

void Fill(CVelumArray& aArray, const QList<TVelumElem>& aElems) {
  for (const TVelumElem& elem : aElems) aArray.CreateAt(elem, ENoInt);
}

void FillBulk(CVelumArray& aArray, const QList<TVelumElem>& aElems) {
  aArray.BeginBulk(static_cast<qint32>(aElems.size()));
  for (const TVelumElem& elem : aElems) aArray.AppendBulk(elem);
  aArray.EndBulk();
}

double SecondsToFill(const TKind& aKind, const QList<TVelumElem>& aElems,
                     const std::function<void(CVelumArray&, const QList<TVelumElem>&)>& aFill) {
  Ref<CVelumArray> array;
  return Bench::Seconds(
      aElems.size() > 200000 ? 1 : 5, [&] { aFill(*array, aElems); },
      [&] { array = MakeRef<CVelumArray>(aKind.iFlags, EValInt); });
}

double SecondsToFind(const CVelumArray& aArray, const QList<TVelumElem>& aElems) {
  return Bench::Seconds(3, [&] {
    TVelumElem elem;
    qint32 next = 0;
    for (const TVelumElem& key : aElems) {
      if (aArray.Flags() & EArrIntKey)
        static_cast<void>(aArray.FindIntKey(key.iIntKey));
      else
        static_cast<void>(aArray.ReadByStrKey(key.iStrKey, elem, next));
    }
  });
}

double SecondsToIndex(const CVelumArray& aArray, const QList<TVelumElem>& aElems) {
  return Bench::Seconds(3, [&] {
    volatile qint32 sink = 0;
    for (const TVelumElem& elem : aElems) sink = aArray.ValRef(elem.iVal.Int()).Int();
    static_cast<void>(sink);
  });
}

} // namespace

int main(int aArgc, char** aArgv) {
  Bench::Init();
  Bench::Head({u"keys"_s, u"elements"_s, u"insert, rising"_s, u"insert, random"_s, u"bulk, random"_s,
               u"find, random"_s, u"index, random"_s, u"index, rising"_s});
  for (const TKind& kind : EKinds)
    for (const qint32 count : Bench::Counts(aArgc, aArgv)) {
      const QList<TVelumElem> rising = Elems(kind, count, false);
      const QList<TVelumElem> random = Elems(kind, count, true);
      CVelumArray array(kind.iFlags, EValInt);
      Fill(array, random);
      Bench::Row({QString::fromUtf16(kind.iName), QString::number(count),
                  Bench::Each(SecondsToFill(kind, rising, Fill), count),
                  Bench::Each(SecondsToFill(kind, random, Fill), count),
                  Bench::Each(SecondsToFill(kind, random, FillBulk), count),
                  Bench::Each(SecondsToFind(array, random), count),
                  Bench::Each(SecondsToIndex(array, random), count),
                  Bench::Each(SecondsToIndex(array, rising), count)});
    }
  return 0;
}
