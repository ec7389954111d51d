// Elements of a CVelumArray as a whole: by key, by position, one after the other, and many at once.
#include "core/CVelumChecked.h"
#include "core/array/CVelumArray.h"
#include "core/array/CVelumArraySort.h"

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
  const auto look = [&] {
    twice = false;
    for (qint32 i = 1; WithKey() && i < iMax && sorted; ++i) {
      const int order = compare(i - 1, i);
      sorted = order <= 0;
      twice = twice || order == 0;
    }
  };
  look();
  if (!sorted) {
    iStore.Permute(CVelumArraySort::StableOrder(iMax, compare).data());
    sorted = true;
    look();
  }
  ApplyShape();
  if (twice && (iFlags & EArrDuplicates) == 0) Check(false, u"Create duplicate");
}
