#include "exchange/CVelumCsvKey.h"

#include "core/CVelumChecked.h"
#include "model/CVelumModelLib.h"

#include <unordered_set>

namespace {

// One in so many may be an exception.
constexpr qint32 EException = 25;

struct THash {
  size_t operator()(QStringView aText) const { return qHash(aText); }
};

} // namespace

bool CVelumImports::TryCardName(const CVelumCsvRows& aRows, int aColumn) {
  std::unordered_set<QStringView, THash> names;
  names.reserve(static_cast<size_t>(aRows.NumRows()));
  const qint32 most = aRows.NumRows() / EException;
  qint32 doubled = 0;
  for (qint32 row = 0; row < aRows.NumRows(); ++row) {
    if (aColumn >= aRows.NumItems(row) || aRows.Item(row, aColumn).isEmpty()) return false;
    if (names.insert(aRows.Item(row, aColumn)).second) continue;
    if (++doubled > most) return false;
  }
  return true;
}

Ref<CVelumSortKey> CVelumImports::MakeKey(const CVelumStack& aStack, qint32 aBackgroundId,
                                          const CVelumControl& aControl1, const CVelumControl* aControl2) {
  auto key = MakeRef<CVelumSortKey>(aStack.IdGen().NextId(), aControl1.Name(), aBackgroundId);
  for (const CVelumControl* control : {&aControl1, aControl2})
    if (control)
      key->AddKeyPart(control->ConType(), control->Id(), EWayAscending, CVelumLib::SortKeyLen(*control));
  return key;
}

bool CVelumImports::CheckKeyOrder(const CVelumStack& aStack, qint32 aBackgroundId,
                                  const CVelumSortKey& aKey) {
  constexpr int below = 0; // of CVelumKeyOrder::Compare
  const qint32 most = aStack.NumBackgroundCards(aBackgroundId) / EException;
  qint32 wrong = 0;
  QString last;
  Ref<CVelumCard> card;
  qint32 index = 0;
  for (bool first = true; aStack.GetNextCardInBackground(aBackgroundId, card, index); first = false) {
    QString key = aKey.BuildKey(*card);
    if (!first && aKey.Compare(key, last) == below && ++wrong > most) return false;
    last = std::move(key);
  }
  return true;
}

void CVelumImports::GuessKey(CVelumStack& aStack, qint32 aBackgroundId) {
  const Ref<CVelumControlSet> background = aStack.Background(aBackgroundId);
  if (CVelumChecked::Deref(background).Flag(ECseKeepCardsSorted) || background->NumControls() == 0) return;
  const CVelumControl& first = CVelumChecked::Deref(background->ControlAt(0));
  const CVelumControl* second = background->NumControls() > 1 ? background->ControlAt(1) : nullptr;
  Ref<CVelumSortKey> key = MakeKey(aStack, aBackgroundId, first, nullptr);
  if (!CheckKeyOrder(aStack, aBackgroundId, *key)) {
    if (!second) return;
    // Where the first field alone is out of order, both together are too; it is tried all the same.
    key = MakeKey(aStack, aBackgroundId, first, second);
    if (!CheckKeyOrder(aStack, aBackgroundId, *key)) return;
  }
  aStack.AddSortKey(key);
  background->SetFlag(ECseKeepCardsSorted, true);
  aStack.NewIndexForSortKey(key);
}
