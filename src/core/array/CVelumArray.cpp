#include "core/array/CVelumArray.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/array/CVelumArraySort.h"
#include "core/text/CVelumCollation.h"

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

void CVelumArray::PutBack(qint32 aIndex, const TVelumElem& aElem) {
  InsertAt(aIndex, TVelumCell(aElem.iVal, aElem.iIntKey), QString(aElem.iStrKey));
}

void CVelumArray::RestoreAlloc(qint32 aAlloc) {
  iAlloc = std::max(aAlloc, iMax);
}

qint32 CVelumArray::PlaceOfIntKey(qint32 aKey) const {
  qint32 index = 0;
  static_cast<void>(LocateInt(aKey, index));
  return index;
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
