// The stack on file, and what is put right and connected after reading.
#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumLog.h"
#include "core/file/CVelumFile.h"
#include "model/CVelumStack.h"

#include <QScopedValueRollback>
#include <limits>

using CVelumModel::ObjAs;

namespace {
constexpr int ETypeId = 3;
constexpr int EGen = 4;
constexpr int EViewTypeId = 4;
constexpr qint32 EKeyBits = EArrStrKey | EArrIntKey;
const QString EProc = u"CVelumStack.Internalize"_s;

Ref<CVelumArray> ReadArray(CVelumFile& aFile) {
  auto array = MakeRef<CVelumArray>();
  array->Internalize(aFile);
  return array;
}

// Whether integer keys stand in the order in which they are searched; other arrays see to it themselves.
bool Ascending(const CVelumArray& aArray) {
  const bool keyed = (aArray.Flags() & EArrIntKey) != 0;
  for (qint32 i = 1; keyed && i < aArray.Count(); ++i)
    if (aArray.IntKeyAt(i - 1) >= aArray.IntKeyAt(i)) return false;
  return true;
}

// An array with the kind of key and the element type without which its lookups would mean nothing.
void Require(const CVelumArray& aArray, qint32 aKeyBits, qint32 aType, const QString& aWhat) {
  const bool ok = (aArray.Flags() & EKeyBits) == aKeyBits && aArray.Type() == aType;
  CVelumError::ThrowBadStruct(ok && Ascending(aArray), &aArray, EProc, aWhat);
}
} // namespace

void CVelumStack::Internalize(CVelumFile& aFile) {
  InternalizeCommon(aFile, ETypeId, EGen, EGen);
  iDescr = aFile.ReadStr();
  iListFont = nullptr;
  if (aFile.ReadBoolean()) {
    iListFont = MakeRef<CVelumFont>();
    iListFont->Internalize(aFile);
  }
  iIdGen = MakeRef<CVelumIdGen>();
  iIdGen->Internalize(aFile);
  InternalizeArrays(aFile);
  LinkLoaded();
}

// What follows the reading in either form.
void CVelumStack::LinkLoaded() {
  CheckArrays();
  iLoadProblems.clear();
  LinkBackgrounds();
  LinkKeys();
  TIndexSums sums = BeginSums();
  LinkCards(sums);
  MendNames(sums);
  SetControlDynFlags();
  CheckOrderIndex(sums);
  BuildCardFinder();
  qCDebug(gLogModel) << "linked" << NumCards() << "cards," << iLoadProblems.size() << "faults mended";
  iOrder.SetChanged(false);
  iChanged = false;
}

void CVelumStack::InternalizeArrays(CVelumFile& aFile) {
  iBackground = ReadArray(aFile);
  iCard = ReadArray(aFile);
  iOrder.SetIdBound(iCard->Count());
  iOrder.Internalize(aFile);
  iNameIndex = ReadArray(aFile);
  iSortKey = ReadArray(aFile);
  iKeyIndex = ReadArray(aFile);
  // In a file that ended before, the view's frame, which comes next, is the first thing that fails.
  if (aFile.PastEnd()) static_cast<void>(CVelumLib::ReadBinObjStart(aFile, EViewTypeId, 0, 0));
}

void CVelumStack::CheckArrays() const {
  Require(*iBackground, EArrIntKey, EValControlSet, u"background"_s);
  Require(*iCard, 0, EValCard, u"card"_s);
  Require(*iNameIndex, EArrStrKey, EValInt, u"nameIndex"_s);
  Require(*iSortKey, EArrIntKey, EValSortKey, u"sortKey"_s);
  Require(*iKeyIndex, EArrIntKey, EValArray, u"keyIndex"_s);
}

void CVelumStack::NoteProblem(const QString& aText) {
  if (iLoadProblems.size() < EMaxProblems)
    iLoadProblems.append(aText);
  else if (iLoadProblems.size() == EMaxProblems)
    iLoadProblems.append(u"There are more such problems"_s);
}

void CVelumStack::LinkBackgrounds() {
  for (qint32 i = 0; i < iBackground->Count(); ++i) {
    auto* background = ObjAs<CVelumControlSet>(iBackground->ValRef(i), EValControlSet);
    const bool ok = background && background->Id() == iBackground->IntKeyAt(i);
    CVelumError::ThrowBadStruct(ok, this, EProc, u"background"_s);
    background->SetStack(this);
    background->SetNumCards(0);
    if (!background->LoadProblem().isEmpty()) NoteProblem(background->LoadProblem());
  }
}

// Every card has its place as id, a background, and a place in the order. One walk for all: the cards of a
// large stack do not stay in the processor's cache from one walk to the next.
void CVelumStack::LinkCards(TIndexSums& aSums) {
  const std::vector<qint32> nums = LinkOrder();
  CVelumControlSet* background = nullptr;
  for (qint32 i = 0; i < iCard->Count(); ++i) {
    CVelumCard* card = FindCard(i);
    CVelumError::ThrowBadStruct(card || !iCard->ValRef(i).Obj(), this, EProc, u"card"_s);
    if (!card) continue;
    if (!background || background->Id() != card->BackgroundId())
      background = FindBackground(card->BackgroundId());
    CVelumError::ThrowBadStruct(background, card, EProc, u"card background"_s);
    card->SetStack(this);
    background->SetNumCards(background->NumCards() + 1);
    iOrder.AddBit(i, CVelumCardOrder::BackgroundBit(background->Id()));
    MendCard(*card, i, nums[size_t(i)]);
    SumUp(*card, aSums);
  }
}

// What a card says of itself must agree with where it stands.
void CVelumStack::MendCard(CVelumCard& aCard, qint32 aId, qint32 aNum) {
  if (aCard.iState & CVelumCard::EUnsorted) {
    NoteProblem(u"The values of card %1 were out of order"_s.arg(aId));
    aCard.SortValues();
  }
  if (aCard.iId != aId) {
    NoteProblem(u"Card %1 bears the id %2"_s.arg(aId).arg(aCard.iId));
    aCard.iId = aId;
  }
  if (aNum == ENoInt)
    aCard.iOrderNum = iOrder.NumOf(aId);
  else if (aCard.iOrderNum != aNum)
    NoteProblem(u"Card %1 has order number %2 instead of %3"_s.arg(aId).arg(aCard.iOrderNum).arg(aNum));
}

// Every card stands once in the order, and nothing else does. Returns the numbers of the order by card id,
// ENoInt for cards that it lacked.
std::vector<qint32> CVelumStack::LinkOrder() {
  std::vector<qint32> nums(size_t(iCard->Count()), ENoInt);
  std::vector<bool> seen(nums.size(), false);
  iOrder.ClearBits();
  qint32 lastNum = std::numeric_limits<qint32>::min();
  bool twice = false;
  for (qint32 pos = 0; pos < iOrder.Count();) {
    const qint32 id = iOrder.IdAt(pos);
    const bool there = id >= 0 && id < iCard->Count() && iCard->ValRef(id).Obj();
    if (!there || seen[size_t(id)]) {
      NoteProblem(
          (there ? u"The order holds card %1 twice"_s : u"The order holds card %1, which is not there"_s)
              .arg(id));
      iOrder.RemoveAt(pos);
      twice = twice || there;
      continue;
    }
    const qint32 num = iOrder.NumAt(pos++);
    if (num <= lastNum) NoteProblem(u"The order number %1 of card %2 does not ascend"_s.arg(num).arg(id));
    nums[size_t(id)] = lastNum = num;
    seen[size_t(id)] = true;
  }
  if (twice) iOrder.RenewPlaces();
  iOrder.LiftIdBound();
  for (qint32 id = 0; id < iCard->Count(); ++id) {
    if (seen[size_t(id)] || !iCard->ValRef(id).Obj()) continue;
    NoteProblem(u"The order lacks card %1"_s.arg(id));
    iOrder.InsertAt(iOrder.Count(), id, NumBefore(iOrder.Count()), 0);
  }
  return nums;
}

void CVelumStack::LinkKeys() {
  for (qint32 i = 0; i < iSortKey->Count(); ++i) {
    const CVelumSortKey* key = SortKeyAt(i);
    CVelumError::ThrowBadStruct(key && key->Id() == iSortKey->IntKeyAt(i), this, EProc, u"sortKey"_s);
  }
  for (qint32 i = 0; i < iKeyIndex->Count(); ++i) {
    const Ref<CVelumArray> index = KeyIndexAt(i);
    CVelumError::ThrowBadStruct(static_cast<bool>(index), this, EProc, u"keyIndex"_s);
    Require(*index, EArrStrKey, EValInt, u"keyIndex"_s);
    if (!(index->Flags() & EArrSortKey)) {
      if (index->SortKeyId() == ENoInt) continue;
      NoteProblem(u"Key index %1 had the flags %2"_s.arg(iKeyIndex->IntKeyAt(i)).arg(index->Flags()));
      index->SetFlags(index->Flags() | EArrSortKey);
    }
    const Ref<CVelumSortKey> key = SortKey(index->SortKeyId());
    CVelumError::ThrowBadStruct(static_cast<bool>(key), this, EProc, u"sortKey"_s);
    index->SetSortKey(key);
    index->EnsureSorted();
    index->SetChanged(false);
  }
}

void CVelumStack::Externalize(CVelumFile& aFile) {
  ExternalizeCommon(aFile, ETypeId, EGen);
  aFile.WriteStr(iDescr);
  aFile.WriteBoolean(static_cast<bool>(iListFont));
  if (iListFont) iListFont->Externalize(aFile);
  iIdGen->Externalize(aFile);
  iBackground->Externalize(aFile);
  {
    const QScopedValueRollback nums(iNumsById, iOrder.NumsById());
    iCard->Externalize(aFile);
  }
  iOrder.Externalize(aFile);
  iNameIndex->Externalize(aFile);
  iSortKey->Externalize(aFile);
  iKeyIndex->Externalize(aFile);
}

qint64 CVelumStack::ExtLen() const {
  return ExtLenCommon() + CVelumFile::ExtStrLen(iDescr) + 2 + (iListFont ? iListFont->ExtLen() : 0) +
         iIdGen->ExtLen() + iBackground->ExtLen() + iCard->ExtLen() + iOrder.ExtLen() + iNameIndex->ExtLen() +
         iSortKey->ExtLen() + iKeyIndex->ExtLen();
}
