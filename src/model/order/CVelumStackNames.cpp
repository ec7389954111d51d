// The names of the cards.
#include "core/CVelumChecked.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumCollation.h"
#include "model/CVelumStack.h"

#include <algorithm>

namespace {
constexpr qint32 EFewNames = 200; // cards of one name that are looked through one by one

// The first index in [aFrom, aEnd) for which aIsBehind holds, which it does from there on; else aEnd.
template <class F> qint32 FirstWhere(qint32 aFrom, qint32 aEnd, F aIsBehind) {
  while (aFrom < aEnd) {
    const qint32 mid = aFrom + (aEnd - aFrom) / 2;
    if (aIsBehind(mid))
      aEnd = mid;
    else
      aFrom = mid + 1;
  }
  return aFrom;
}

// The entry of a card between two indices, or -1.
qint32 EntryIn(const CVelumArray& aNames, qint32 aFrom, qint32 aEnd, qint32 aId) {
  for (qint32 i = aFrom; i < aEnd; ++i)
    if (aNames.ValRef(i).Int() == aId) return i;
  return -1;
}

// The same where the ids ascend; -1 also where they do not.
qint32 EntryInAscending(const CVelumArray& aNames, qint32 aFrom, qint32 aEnd, qint32 aId) {
  const qint32 at = FirstWhere(aFrom, aEnd, [&](qint32 aMid) { return aNames.ValRef(aMid).Int() >= aId; });
  return at < aEnd && aNames.ValRef(at).Int() == aId ? at : -1;
}

// Entries of one name may stand in any order among themselves.
void LetIdsAscend(CVelumArray& aNames, qint32 aFrom, qint32 aEnd) {
  std::vector<qint32> ids;
  ids.reserve(size_t(aEnd - aFrom));
  for (qint32 i = aFrom; i < aEnd; ++i) ids.push_back(aNames.ValRef(i).Int());
  std::sort(ids.begin(), ids.end());
  for (qint32 i = aFrom; i < aEnd; ++i) aNames.SetValAt(i + 1, TVelumValue::OfInt(ids[size_t(i - aFrom)]));
}

} // namespace

// The entry of a card among those of its name, which are sorted by id if they are many: in a stack where all
// cards have one name, each card is found without looking at all others.
qint32 CVelumStack::EntryAmongEquals(qint32 aFrom, qint32 aEnd, qint32 aId) {
  if (aEnd - aFrom <= EFewNames) return EntryIn(*iNameIndex, aFrom, aEnd, aId);
  if (const qint32 at = EntryInAscending(*iNameIndex, aFrom, aEnd, aId); at >= 0) return at;
  if (EntryIn(*iNameIndex, aFrom, aEnd, aId) < 0) return -1;
  RecordEntries(false, *iNameIndex, aFrom, aEnd, 0, iNameIndex->Alloc());
  LetIdsAscend(*iNameIndex, aFrom, aEnd);
  RecordEntries(true, *iNameIndex, aFrom, aEnd, 0, iNameIndex->Alloc());
  return EntryInAscending(*iNameIndex, aFrom, aEnd, aId);
}

// The entry of a card under its name, or -1.
qint32 CVelumStack::EntryOf(const CVelumCard& aCard) {
  TVelumElem elem;
  qint32 next = 0;
  if (!iNameIndex->ReadByStrKey(aCard.Name(), elem, next)) return -1;
  if (elem.iVal.Int() == aCard.Id()) return next - 1;
  const auto order = [&](qint32 aAt) {
    return CVelumCollation::CompareBin(iNameIndex->StrKeyAt(aAt), aCard.Name());
  };
  const qint32 from = FirstWhere(0, next, [&](qint32 aAt) { return order(aAt) >= 0; });
  const qint32 end = FirstWhere(next, iNameIndex->Count(), [&](qint32 aAt) { return order(aAt) > 0; });
  return EntryAmongEquals(from, end, aCard.Id());
}

void CVelumStack::AddName(const CVelumCard& aCard) {
  if (!InBulk(aCard)) AddEntry(*iNameIndex, aCard.Name(), aCard.Id());
}

// Takes out the entry that stands for the card, also when it has another name than the card.
void CVelumStack::RemoveName(const CVelumCard& aCard) {
  if (InBulk(aCard)) return;
  qint32 at = EntryOf(aCard);
  if (at >= 0 || iNameIndex->GetIntIndex(aCard.Id(), at)) RemoveEntry(*iNameIndex, at);
}

void CVelumStack::RenameCard(const Ref<CVelumCard>& aCard, const QString& aName) {
  CVelumCard& card = CVelumChecked::Deref(aCard);
  CVelumError::Assert(card.Stack() == this, u"RenameCard stack"_s);
  if (card.Stack() != this) return;
  RemoveName(card);
  card.SetName(aName);
  AddName(card);
  WriteNameField(card);
  SetCardListsDirty(nullptr);
}

// The field that gives the name takes it over, unless its value gives that name already: the value can be
// more than its text ("1234.57" of 1234.567). The name, written into the field, can become another text
// ("007" in a number field), which is the name then.
void CVelumStack::WriteNameField(CVelumCard& aCard) {
  Ref<CVelumControl> control;
  const CVelumControlSet& background = CVelumChecked::Deref(FindBackground(aCard.BackgroundId()));
  if (!background.GetControlByFlag(EConCardName, control)) return;
  const TVelumFieldInfo field = control->FieldInfo();
  const qint32 at = aCard.Value().FindIntKey(control->Id());
  if (at >= 0 && CVelumValue::ValToExtText(aCard.Value().ValRef(at), field) == aCard.Name()) return;
  aCard.SetControlVal(control->Id(), CVelumValue::ExtTextToVal(aCard.Name(), field));
}

// The value of a card-name field became aName.
void CVelumStack::TakeName(CVelumCard& aCard, const QString& aName) {
  if (aName != aCard.Name()) RenameCard(&aCard, aName);
}
