#include "core/CVelumArray.h"

#include "core/CVelumArraySort.h"
#include "core/CVelumChecked.h"
#include "core/CVelumCollation.h"
#include "core/CVelumLib.h"

#include <algorithm>
#include <numeric>

namespace {

bool IsIntVal(const TVelumValue& aVal) {
  return aVal.Type() == EValInt || aVal.Type() == EValBlobId;
}

} // namespace

CVelumArray::CVelumArray() = default;

CVelumArray::CVelumArray(qint32 aFlags, qint32 aType)
    : iFlags(aFlags), iType(CVelumChecked::Narrow<qint16>(aType)) {
  ApplyShape();
}

CVelumArray::~CVelumArray() = default;

QString CVelumArray::ObjDescr() const {
  return u"CVelumArray max="_s + QString::number(iMax) + u", alloc="_s + QString::number(iAlloc);
}

void CVelumArray::SetId(qint32 aId) {
  iId = aId;
  Touch();
}

void CVelumArray::SetFlags(qint32 aFlags) {
  iFlags = aFlags;
  ApplyShape();
  Touch();
}

bool CVelumArray::Changed() const {
  if (iChanged || !HoldsObj()) return iChanged;
  for (qint32 i = 0; i < iMax; ++i) {
    const CVelumStored* obj = iStore.Cell(i).Obj();
    if (obj && obj->Changed()) return true;
  }
  return false;
}

void CVelumArray::SetChanged(bool aChanged) {
  if (aChanged) return Touch();
  iChanged = false;
  if (!HoldsObj()) return;
  for (qint32 i = 0; i < iMax; ++i)
    if (CVelumStored* obj = iStore.Cell(i).Obj()) obj->SetChanged(false);
}

QString CVelumArray::Str(qint32 aIndex) const {
  Check(aIndex < iMax, u"GetStr Index");
  Check(iType == EValStr, u"With Str");
  Check(!WithKey(), u"Without key");
  return CellAt(aIndex).Str();
}

void CVelumArray::SetStr(qint32 aIndex, const QString& aStr) {
  Check(aIndex < iMax, u"LetStr Index");
  Check(iType == EValStr, u"With Str");
  Check(!WithKey(), u"Without key");
  CellAt(aIndex).Val() = TVelumValue::OfStr(aStr);
  Touch();
}

qint32 CVelumArray::IntNum(qint32 aIndex) const {
  Check(aIndex < iMax, u"GetIntNum Index");
  Check(iType == EValInt, u"With Int");
  Check(!WithKey(), u"Without key");
  return CellAt(aIndex).Int();
}

void CVelumArray::SetIntNum(qint32 aIndex, qint32 aInt) {
  Check(aIndex < iMax, u"LetIntNum Index");
  Check(iType == EValInt, u"With Int");
  Check(!WithKey(), u"Without key");
  CellAt(aIndex).Val() = TVelumValue::OfInt(aInt);
  Touch();
}

Ref<CVelumStored> CVelumArray::Obj(qint32 aIndex) const {
  Check(aIndex < iMax, u"GetObj Index");
  Check(WithObj(), u"With Obj");
  return {CellAt(aIndex).Obj()};
}

void CVelumArray::SetObj(qint32 aIndex, const Ref<CVelumStored>& aObj) {
  Check(aIndex < iMax, u"LetObj Index");
  Check(WithObj(), u"With Obj");
  Check(!WithKey(), u"Without key");
  TVelumCell& cell = CellAt(aIndex);
  const int tag = cell.IsObjType() ? cell.Type() : iType;
  if (tag < EValCard || tag > EValBlob) CVelumError::RaiseHost(EHostTypeMismatch);
  cell.Val() = TVelumValue::OfObj(tag, aObj);
  NoteObj(cell);
  Touch();
}

void CVelumArray::SetSortKeyId(qint32 aId) {
  iSortKeyId = aId;
  ResolveSortKey(nullptr);
  Touch();
}

void CVelumArray::SetSortKey(const Ref<CVelumKeyOrder>& aKey) {
  iSortKeyId = CVelumChecked::Deref(aKey).Id();
  ResolveSortKey(aKey);
  Touch();
}

void CVelumArray::ResolveSortKey(const Ref<CVelumKeyOrder>& aKey) {
  if (aKey || iRare) Rare().iSortKey = aKey;
}

Ref<CVelumKeyOrder> CVelumArray::SortKey() const {
  if (!WithSortKey()) return nullptr;
  if (iRare && iRare->iSortKey) return iRare->iSortKey;
  Check(iSortKeyId != ENoInt, u"GetSortKey", u"id set");
  return nullptr;
}

bool CVelumArray::GetStrIndex(const QString& aStr, qint32& aIndex) const {
  for (aIndex = 0; aIndex < iMax; ++aIndex)
    if (CVelumCollation::Compare(iStore.Cell(aIndex).Str(), aStr) == 0) return true;
  return false;
}

bool CVelumArray::GetIntIndex(qint32 aInt, qint32& aIndex) const {
  for (aIndex = 0; aIndex < iMax; ++aIndex)
    if (IsIntVal(iStore.Cell(aIndex)) && iStore.Cell(aIndex).Int() == aInt) return true;
  return false;
}

bool CVelumArray::GetObjIndex(const CVelumStored* aObj, qint32& aIndex) const {
  for (aIndex = 0; aIndex < iMax; ++aIndex)
    if (iStore.Cell(aIndex).Obj() == aObj) return true;
  return false;
}

void CVelumArray::Clear() {
  if (!KeepsStale()) iStore.Erase(0, iStore.Count());
  iMax = 0;
  Touch();
}

void CVelumArray::DeleteAt(qint32 aIndex, qint32 aNum) {
  Check(aIndex < iMax, u"DeleteAt max");
  Check(aNum <= iMax - aIndex, u"DeleteAt aNum");
  if (aNum < 0 || Checked(aIndex, iMax) > iMax - aNum) CVelumError::RaiseHost(EHostIndex);
  if (KeepsStale()) {
    for (qint32 i = aIndex; i < iMax - aNum; ++i) iStore.Cell(i) = iStore.Cell(i + aNum);
  } else {
    iStore.Erase(aIndex, aNum);
  }
  iMax -= aNum;
  Touch();
}

void CVelumArray::Move(qint32 aFrom, qint32 aNum, qint32 aTo, bool aRenumber, qint32 aStep) {
  const qint64 end = qint64{aFrom} + aNum;
  if (!aRenumber) Check(!WithKey(), u"Move", u"key");
  Check(end <= iMax, u"Move", u"max");
  Check(aTo <= aFrom || aTo >= end, u"Move", u"aToIndex");
  if (aNum == 0 || aTo == aFrom || aTo == end) return;
  Check(aTo <= iMax, u"MakeRoomAt index");
  if (aFrom < 0 || aNum < 0 || aTo < 0 || end > iMax || aTo > iMax || (aTo > aFrom && aTo < end))
    CVelumError::RaiseHost(EHostIndex);
  Grow(aNum);
  if (KeepsStale()) {
    MoveStale(aFrom, aNum, aTo);
  } else {
    std::vector<qint32> order(static_cast<size_t>(iStore.Count()));
    std::iota(order.begin(), order.end(), 0);
    const auto first = order.begin() + std::min(aFrom, aTo);
    std::rotate(first, order.begin() + (aTo < aFrom ? aFrom : end),
                order.begin() + std::max<qint64>(end, aTo));
    iStore.Permute(order.data());
  }
  Touch();
  if (aRenumber) RenumberIntKey(aStep);
}

// The block is copied into a gap and then deleted at its old place, so that the slots behind the end hold
// what they are described to hold.
void CVelumArray::MoveStale(qint32 aFrom, qint32 aNum, qint32 aTo) {
  OpenGap(aTo, aNum);
  const qint32 from = aTo < aFrom ? aFrom + aNum : aFrom;
  for (qint32 i = 0; i < aNum; ++i) iStore.Cell(aTo + i) = iStore.Cell(from + i);
  DeleteAt(from, aNum);
}

void CVelumArray::SetToLastObj() {
  qint32 max = iMax;
  while (max > 0 && !iStore.Cell(max - 1).Obj()) --max;
  const qint32 alloc = CVelumChecked::Add(max, iAllocStep);
  iMax = max;
  ApplyShape();
  iAlloc = std::min(iAlloc, alloc);
  Touch();
}

void CVelumArray::DeleteStrKey(const QString& aKey) {
  Check(WithStrKey(), u"DeleteStrKey withKey");
  qint32 index = 0;
  const bool found = LocateStr(aKey, index);
  Check(found, u"DeleteStrKey found");
  if (!found) CVelumError::RaiseHost(EHostIndex);
  DeleteAt(index);
}

void CVelumArray::DeleteIntKey(qint32 aKey) {
  Check(WithIntKey(), u"DeleteIntKey withKey");
  qint32 index = 0;
  const bool found = LocateInt(aKey, index);
  Check(found, u"DeleteIntKey found");
  if (!found) CVelumError::RaiseHost(EHostIndex);
  DeleteAt(index);
}

void CVelumArray::AdjustInt(qint32 aFrom, qint32 aDelta) {
  Check(iType == EValInt, u"AdjustInt", u"iType");
  for (qint32 i = 0; i < iMax; ++i) {
    TVelumCell& cell = iStore.Cell(i);
    if (cell.Type() == EValInt && cell.Int() >= aFrom && cell.Int() != ENoInt)
      cell.Val() = TVelumValue::OfInt(CVelumChecked::Add(cell.Int(), aDelta));
  }
}

bool CVelumArray::ReadStr(const QString& aKey, QString& aStr, qint32& aNext) const {
  TVelumElem elem;
  const bool found = ReadByStrKey(aKey, elem, aNext);
  aStr = elem.iVal.Str();
  return found;
}

void CVelumArray::RenumberStrKey(qint32 aStep) {
  Check(WithStrKey(), u"RenumberStrKey", u"with StrKey");
  if (iMax == 0) return;
  static_cast<void>(CVelumChecked::Mul(aStep, iMax));
  const auto width = static_cast<int>(StrKeyAt(0).size());
  if (iStore.Keyed())
    for (qint32 i = 0; i < iMax; ++i) iStore.Key(i) = CVelumLib::RightAlignNum(aStep * (i + 1), width);
  Touch();
}

void CVelumArray::RenumberIntKey(qint32 aStep) {
  Check(WithIntKey(), u"RenumberIntKey", u"with IntKey");
  static_cast<void>(CVelumChecked::Mul(aStep, iMax));
  for (qint32 i = 0; i < iMax; ++i) iStore.Cell(i).iIntKey = aStep * (i + 1);
  Touch();
}

void CVelumArray::Swap(CVelumArray& aOther) noexcept {
  std::swap(iId, aOther.iId);
  std::swap(iFlags, aOther.iFlags);
  std::swap(iType, aOther.iType);
  std::swap(iChanged, aOther.iChanged);
  const bool bulk = iBulk;
  iBulk = aOther.iBulk;
  aOther.iBulk = bulk;
  const bool mixedObj = iMixedObj;
  iMixedObj = aOther.iMixedObj;
  aOther.iMixedObj = mixedObj;
  std::swap(iAllocStep, aOther.iAllocStep);
  std::swap(iAlloc, aOther.iAlloc);
  std::swap(iMax, aOther.iMax);
  std::swap(iSortKeyId, aOther.iSortKeyId);
  std::swap(iRare, aOther.iRare);
  std::swap(iStore, aOther.iStore);
}

void CVelumArray::Sort() {
  Check(!WithKey(), u"Sort", u"not withKey");
  Check(iType == EValStr, u"Sort", u"EValStr");
  SortBy([this](qint32 aA, qint32 aB) {
    return CVelumCollation::CompareKeys(iStore.Cell(aA).Str(), iStore.Cell(aB).Str());
  });
}

void CVelumArray::InitElem(TVelumElem& aElem) const {
  aElem.iStrKey = QString();
  aElem.iIntKey = ENoInt;
  switch (Mixed() ? qint16{EValUndef} : iType) {
  case EValInt:
    aElem.iVal = TVelumValue::OfInt(ENoInt);
    break;
  case EValBlobId:
    aElem.iVal = TVelumValue::OfBlobId(ENoInt);
    break;
  case EValIntPair:
    aElem.iVal = TVelumValue::OfPair(ENoInt, ENoInt);
    break;
  default:
    aElem.iVal = TVelumValue::OfType(Mixed() ? qint16{EValUndef} : iType);
  }
}

qint32 CVelumArray::CreateStrKey(const TVelumElem& aElem) {
  Check(WithStrKey(), u"CreateStrKey", u"with StrKey");
  return Create(aElem, ENoInt);
}

void CVelumArray::CreateIntKey(const TVelumElem& aElem) {
  Check(WithIntKey(), u"CreateIntKey", u"with IntKey");
  static_cast<void>(Create(aElem, ENoInt));
}

void CVelumArray::CreateAt(const TVelumElem& aElem, qint32 aIndex) {
  static_cast<void>(Create(aElem, aIndex));
}

qint32 CVelumArray::CreateAtEnd(const TVelumElem& aElem) {
  return Create(aElem, ENoInt);
}

bool CVelumArray::ReadByStrKey(const QString& aKey, TVelumElem& aElem, qint32& aNext) const {
  Check(WithStrKey(), u"ReadByStrKey withKey");
  qint32 index = 0;
  if (!LocateStr(aKey, index)) {
    InitElem(aElem);
    return false;
  }
  CopyOut(index, aElem);
  aNext = index + 1;
  return true;
}

bool CVelumArray::ReadByIntKey(qint32 aKey, TVelumElem& aElem, qint32& aNext) const {
  Check(WithIntKey(), u"ReadByIntKey withKey");
  qint32 index = 0;
  if (!LocateInt(aKey, index)) {
    InitElem(aElem);
    return false;
  }
  CopyOut(index, aElem);
  aNext = index + 1;
  return true;
}

void CVelumArray::ReadByIndex(qint32 aIndex, TVelumElem& aElem) const {
  Check(!WithKey(), u"ReadByIndex", u"key");
  Check(aIndex < iMax, u"ReadByIndex", u"iMax");
  CopyOut(Checked(aIndex, iMax), aElem);
}

bool CVelumArray::ReadNext(TVelumElem& aElem, qint32& aIndex) const {
  if (aIndex >= iMax) {
    InitElem(aElem);
    return false;
  }
  CopyOut(Checked(aIndex, iMax), aElem);
  ++aIndex;
  return true;
}

bool CVelumArray::ReadPrev(TVelumElem& aElem, qint32& aIndex) const {
  if (aIndex < 1) {
    InitElem(aElem);
    return false;
  }
  CopyOut(Checked(aIndex - 1, iMax), aElem);
  --aIndex;
  return true;
}

void CVelumArray::SetValAt(qint32 aNext, const TVelumValue& aVal) {
  CellAt(CVelumChecked::Sub(aNext, 1)).Val() = aVal;
  NoteObj(aVal);
  Touch();
}

bool CVelumArray::ReadObjByNum(qint32 aNum, TVelumElem& aElem, qint32& aIndex) {
  if (!WithObj()) {
    aIndex = aNum;
    if (aNum < 0 || aNum >= iMax) return false;
    CopyOut(aNum, aElem);
    return true;
  }
  const bool cached = !iChanged && iRare && iRare->iObjCacheNum != ENoInt && iRare->iObjCacheNum <= aNum;
  qint32 num = cached ? iRare->iObjCacheNum : 0;
  qint32 index = cached ? iRare->iObjCacheIndex : 0;
  const qint64 end = std::min<qint64>(qint64{iAlloc} + 1, iStore.Count());
  for (; index < end; ++index) {
    if (!iStore.Cell(index).Obj() || num++ < aNum) continue;
    if (num - 1 != aNum) return false; // a negative number
    CopyOut(index, aElem);
    aIndex = index;
    if (!iChanged) {
      Rare().iObjCacheNum = aNum;
      Rare().iObjCacheIndex = index;
    }
    return true;
  }
  return false;
}

// Walks over all cards go through these two: no calls within.
void CVelumArray::RaiseIndex() {
  CVelumError::RaiseHost(EHostIndex);
}

const QString& CVelumArray::StrKeyAt(qint32 aIndex) const {
  static const QString none;
  return iStore.Keyed() ? iStore.Key(Checked(aIndex, iMax)) : none;
}

qint32 CVelumArray::FindIntKey(qint32 aKey) const {
  qint32 index = 0;
  return LocateInt(aKey, index) ? index : -1;
}

void CVelumArray::BeginBulk(qint32 aExpected) {
  iBulk = true;
  iStore.Gather();
  if (aExpected > 0) iStore.Reserve(CVelumChecked::Add(iMax, aExpected));
}

void CVelumArray::AppendBulk(const TVelumElem& aElem) {
  CheckType(aElem);
  CheckSlots(aElem);
  InsertAt(iMax, TVelumCell(aElem.iVal, aElem.iIntKey), QString(aElem.iStrKey));
}

void CVelumArray::EndBulk() {
  iBulk = false;
  const auto compare = [this](qint32 aA, qint32 aB) { return CompareElems(aA, aB); };
  bool sorted = true;
  bool twice = false;
  for (qint32 i = 1; WithKey() && i < iMax && sorted; ++i) sorted = compare(i - 1, i) <= 0;
  if (!sorted) iStore.Permute(CVelumArraySort::StableOrder(iMax, compare).data());
  for (qint32 i = 1; WithKey() && i < iMax && !twice; ++i) twice = compare(i - 1, i) == 0;
  ApplyShape();
  if (twice && (iFlags & EArrDuplicates) == 0) Check(false, u"Create duplicate");
}

void CVelumArray::EnsureSorted() {
  if (!WithStrKey() || iMax < 2) return;
  bool sorted = true;
  for (qint32 i = 1; i < iMax && sorted; ++i) sorted = CompareKeys(StrKeyAt(i - 1), StrKeyAt(i)) <= 0;
  if (sorted) return;
  const bool changed = iChanged;
  SortBy([this](qint32 aA, qint32 aB) { return CompareKeys(StrKeyAt(aA), StrKeyAt(aB)); });
  iChanged = changed;
}

void CVelumArray::Check(bool aCond, const char16_t* aProc, const char16_t* aText) const {
  if (!aCond) CVelumError::AssertObj(false, this, QString::fromUtf16(aProc), QString::fromUtf16(aText));
}

void CVelumArray::Check(bool aCond, const char16_t* aText) {
  if (!aCond) CVelumError::Assert(false, QString::fromUtf16(aText));
}

qint32 CVelumArray::Checked(qint32 aIndex, qint32 aLimit) {
  return CVelumChecked::Index(aIndex, aLimit);
}

TVelumCell& CVelumArray::CellAt(qint32 aIndex) const {
  return iStore.Cell(Checked(aIndex, iMax));
}

void CVelumArray::Touch() {
  iChanged = true;
  if (iRare) iRare->iObjCacheNum = ENoInt;
}

CVelumArray::TRare& CVelumArray::Rare() {
  if (!iRare) iRare = std::make_unique<TRare>();
  return *iRare;
}

// Which of several equal elements is found, and where among them one is inserted, shows in files; so the
// middles are tried in just this sequence.
template <class TCompare> bool CVelumArray::Locate(const TCompare& aCompare, qint32& aIndex) const {
  aIndex = 0;
  if (iMax == 0) return false;
  int order = 0;
  for (qint32 lo = 0, hi = iMax - 1;;) {
    const qint32 mid = (lo + hi) / 2;
    aIndex = mid;
    order = aCompare(mid);
    if (order == 0) return true;
    if (lo >= hi || mid == (order > 0 ? iMax - 1 : 0)) break;
    if (order > 0)
      lo = mid + 1;
    else
      hi = mid - 1;
  }
  if (order > 0) ++aIndex;
  return false;
}

// Large arrays are searched run by run. Only where the key occurs more than once does it matter which middles
// are tried.
template <class TCompare> bool CVelumArray::LocateKey(const TCompare& aCompare, qint32& aIndex) const {
  const auto compare = [&](qint32 aMid) { return aCompare(StrKeyAt(aMid)); };
  if (!iStore.Blocks() || !iStore.Keyed()) return Locate(compare, aIndex);
  qint32 lo = 0;
  qint32 hi = 0;
  iStore.Blocks()->Narrow(aCompare, lo, hi);
  while (lo < hi) {
    aIndex = (lo + hi) / 2;
    const int order = compare(aIndex);
    if (order == 0) {
      const bool twice =
          (aIndex > 0 && compare(aIndex - 1) == 0) || (aIndex + 1 < iMax && compare(aIndex + 1) == 0);
      return twice ? Locate(compare, aIndex) : true;
    }
    if (order > 0)
      lo = aIndex + 1;
    else
      hi = aIndex;
  }
  aIndex = lo;
  return false;
}

bool CVelumArray::LocateStr(const QString& aKey, qint32& aIndex) const {
  if (WithSortKey()) {
    const Ref<CVelumKeyOrder> key = SortKey();
    const CVelumKeyOrder& order = CVelumChecked::Deref(key);
    return LocateKey([&](const QString& aOther) { return order.Compare(aKey, aOther) - 1; }, aIndex);
  }
  if (iFlags & EArrExactCase)
    return LocateKey([&](const QString& aOther) { return CVelumCollation::CompareBin(aKey, aOther); },
                     aIndex);
  const CVelumCollation::CSought sought(aKey);
  return LocateKey([&](const QString& aOther) { return sought.CompareTo(aOther); }, aIndex);
}

bool CVelumArray::LocateInt(qint32 aKey, qint32& aIndex) const {
  return Locate(
      [&](qint32 aMid) {
        const qint32 key = iStore.Cell(aMid).iIntKey;
        return (aKey > key) - (aKey < key);
      },
      aIndex);
}

int CVelumArray::CompareKeys(const QString& aA, const QString& aB) const {
  if (WithSortKey()) return CVelumChecked::Deref(SortKey()).Compare(aA, aB) - 1;
  if (iFlags & EArrExactCase) return CVelumCollation::CompareBin(aA, aB);
  return CVelumCollation::CompareKeys(aA, aB);
}

int CVelumArray::CompareElems(qint32 aA, qint32 aB) const {
  if (WithStrKey()) return CompareKeys(StrKeyAt(aA), StrKeyAt(aB));
  const qint32 a = iStore.Cell(aA).iIntKey;
  const qint32 b = iStore.Cell(aB).iIntKey;
  return (a > b) - (a < b);
}

void CVelumArray::CopyOut(qint32 aIndex, TVelumElem& aElem) const {
  const TVelumCell& cell = iStore.Cell(aIndex);
  aElem.iStrKey = iStore.Keyed() ? iStore.Key(aIndex) : QString();
  aElem.iIntKey = cell.iIntKey;
  aElem.iVal = cell.Val();
}

qint32 CVelumArray::Create(const TVelumElem& aElem, qint32 aIndex) {
  CheckType(aElem);
  const qint32 index = PlaceFor(aElem, aIndex);
  CheckSlots(aElem);
  InsertAt(index, TVelumCell(aElem.iVal, aElem.iIntKey), QString(aElem.iStrKey));
  return index;
}

void CVelumArray::CheckType(const TVelumElem& aElem) const {
  const int type = aElem.iVal.Type();
  Check(type != EValUndef, u"Create", u"aElem.iVal.iType");
  if (!Mixed()) Check(type == iType, u"Create", u"iType");
}

qint32 CVelumArray::PlaceFor(const TVelumElem& aElem, qint32 aIndex) const {
  if (!WithKey()) {
    Check(aElem.iStrKey.isEmpty(), u"Create key");
    return aIndex == ENoInt ? iMax : aIndex;
  }
  qint32 index = 0;
  const bool found = WithStrKey() ? LocateStr(aElem.iStrKey, index) : LocateInt(aElem.iIntKey, index);
  if (found && (iFlags & EArrDuplicates) == 0) Check(false, u"Create duplicate");
  return index;
}

// Made before there is room for the element, so that a failure leaves the array as it was.
void CVelumArray::CheckSlots(const TVelumElem& aElem) const {
  const int type = Mixed() ? aElem.iVal.Type() : iType;
  if (!WithStrKey()) Check(aElem.iStrKey.isEmpty(), u"Create key");
  if (type != EValStr) Check(aElem.iVal.Str().isEmpty(), u"Create str");
  if (!WithObj()) Check(!aElem.iVal.Obj(), u"Create obj");
}

// The capacity as it stands in files; the storage has its own.
void CVelumArray::Grow(qint32 aNum) {
  const qint32 max = CVelumChecked::Add(iMax, aNum);
  if (max > iAlloc) iAlloc = CVelumChecked::Add(max, iAllocStep);
}

void CVelumArray::InsertAt(qint32 aIndex, TVelumCell&& aCell, QString&& aKey) {
  Check(aIndex <= iMax, u"MakeRoomAt index");
  const qint32 index = Checked(aIndex, CVelumChecked::Add(iMax, 1));
  NoteObj(aCell);
  Grow(1);
  if (KeepsStale()) {
    OpenGap(index, 1);
    iStore.Cell(index) = std::move(aCell);
  } else {
    iStore.Insert(index, std::move(aCell), std::move(aKey));
    ++iMax;
    if (WithKey() && !iBulk) iStore.Spread();
  }
  Touch();
}

// Makes room in an array that keeps stale slots, which are overwritten in their places.
void CVelumArray::OpenGap(qint32 aIndex, qint32 aNum) {
  while (iStore.Count() < iMax + aNum) iStore.Append(TVelumCell(), QString());
  for (qint32 i = iMax; i-- > aIndex;) iStore.Cell(i + aNum) = iStore.Cell(i);
  iMax += aNum;
}

// Brings the storage in line with the flags and the count.
void CVelumArray::ApplyShape() {
  if (WithStrKey()) iStore.SetKeyed(true);
  if (!KeepsStale() && iStore.Count() > iMax) iStore.Erase(iMax, iStore.Count() - iMax);
  if (WithKey())
    iStore.Spread();
  else
    iStore.Gather();
}

void CVelumArray::SortBy(const std::function<int(qint32, qint32)>& aCompare) {
  iStore.Gather();
  std::vector<qint32> order = CVelumArraySort::Order(iMax, aCompare);
  for (qint32 i = iMax; i < iStore.Count(); ++i) order.push_back(i);
  iStore.Permute(order.data());
  ApplyShape();
  Touch();
}
