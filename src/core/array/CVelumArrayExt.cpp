// The binary form of CVelumArray: frame, id, flags, type, growth step, capacity, count, sort key id, and the
// elements.
#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/array/CVelumArray.h"
#include "core/file/CVelumFile.h"

#include <algorithm>

namespace {

constexpr int ETypeId = 5;
constexpr int EGeneration = 3;
constexpr qint64 EHeadLen = 4 + 4 + 4 + 2 + 4 + 4 + 4 + 4;
// Counts up to this one are not compared with the length of the file, which costs a system call.
constexpr qint32 ESmallCount = 64;
constexpr int EMaxNesting = 20;

} // namespace

CVelumArray::CNesting::CNesting(const CVelumArray& aArray) {
  CVelumError::ThrowBadStruct(gDepth < EMaxNesting, &aArray, u"CVelumArray.Internalize"_s, u"nesting"_s);
  ++gDepth;
}

void CVelumArray::Internalize(CVelumFile& aFile) {
  const CNesting nesting(*this);
  static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, EGeneration, EGeneration));
  iStore = CVelumArrayStore();
  iMax = 0;
  iMixedObj = false;
  iRare.reset();
  iId = aFile.ReadInt();
  iFlags = aFile.ReadInt();
  iType = aFile.ReadShort();
  iAllocStep = aFile.ReadInt();
  const qint32 alloc = aFile.ReadInt();
  const qint32 count = aFile.ReadInt();
  iSortKeyId = aFile.ReadInt();
  if (alloc > EMaxAlloc) CVelumError::RaiseHost(EHostOutOfMemory);
  iAlloc = alloc;
  ReadElems(aFile, count);
  iChanged = false;
  if (!WithSortKey()) EnsureSorted();
}

// How many elements of aCount the file can hold at most: memory is only asked for these.
qint32 CVelumArray::CountThatFits(CVelumFile& aFile, qint32 aCount) const {
  if (aCount <= ESmallCount) return aCount;
  const qint64 elemLen = 2 + (WithStrKey() ? 2 : 0) + (WithIntKey() ? 4 : 0);
  return static_cast<qint32>(std::min<qint64>(aCount, (aFile.Size() - aFile.CurrentPos()) / elemLen));
}

// A count beyond the file is told when what there is has been read: mostly something else is wrong before.
void CVelumArray::ReadElems(CVelumFile& aFile, qint32 aCount) {
  ApplyShape();
  const qint32 fits = CountThatFits(aFile, aCount);
  if (fits > 0) iStore.Reserve(fits);
  while (iMax < fits) {
    QString strKey;
    if (WithStrKey()) strKey = aFile.ReadStr();
    const qint32 intKey = WithIntKey() ? aFile.ReadInt() : ENoInt;
    iStore.AppendReserved(TVelumCell(ReadVal(aFile), intKey), std::move(strKey));
    NoteObj(iStore.Cell(iMax));
    ++iMax;
  }
  if (iMax != aCount)
    CVelumLib::CheckRead(aFile, false, this, u"CVelumArray.Internalize"_s,
                         u"count="_s + QString::number(aCount));
  ApplyShape();
}

TVelumValue CVelumArray::ReadVal(CVelumFile& aFile) {
  const qint16 tag = aFile.ReadShort();
  switch (tag) {
  case EValUndef:
    return {};
  case EValStr:
    return TVelumValue::OfStr(aFile.ReadStr());
  case EValInt:
    return TVelumValue::OfInt(aFile.ReadInt());
  case EValBlobId:
    return TVelumValue::OfBlobId(aFile.ReadInt());
  case EValReal:
    return TVelumValue::OfReal(aFile.ReadReal());
  case EValDate:
    return TVelumValue::OfDate(CVelumValue::IntToDate(aFile.ReadInt()));
  case EValTime:
    return TVelumValue::OfTime(CVelumValue::IntToTime(aFile.ReadInt()));
  case EValBoolean:
    return TVelumValue::OfBoolean(aFile.ReadBoolean());
  case EValIntPair: {
    const qint32 int0 = aFile.ReadInt();
    return TVelumValue::OfPair(int0, aFile.ReadInt());
  }
  case EValCard:
  case EValControl:
  case EValControlSet:
  case EValSortKey:
  case EValArray:
  case EValBlob:
    return TVelumValue::OfObj(tag, ReadObj(aFile, tag));
  default:
    Check(false, u"Internalize", u"iElem.iVal.iType");
    return TVelumValue::OfType(tag);
  }
}

Ref<CVelumStored> CVelumArray::ReadObj(CVelumFile& aFile, int aTag) {
  if (aFile.ReadShort() != 1) return nullptr;
  Ref<CVelumStored> obj =
      aTag == EValArray ? Ref<CVelumStored>(new CVelumArray) : CVelumSeams::NewObject(aTag);
  Check(static_cast<bool>(obj), u"Internalize class");
  if (obj) obj->Internalize(aFile);
  return obj;
}

void CVelumArray::Externalize(CVelumFile& aFile) {
  CVelumLib::WriteBinObjStart(aFile, ETypeId, EGeneration);
  aFile.WriteInt(iId);
  aFile.WriteInt(iFlags);
  aFile.WriteShort(iType);
  aFile.WriteInt(iAllocStep);
  aFile.WriteInt(iAlloc);
  aFile.WriteInt(iMax);
  aFile.WriteInt(iSortKeyId);
  for (qint32 i = 0; i < iMax; ++i) {
    if (WithStrKey()) aFile.WriteStr(iStore.Key(i));
    const TVelumCell& cell = iStore.Cell(i);
    if (WithIntKey()) aFile.WriteInt(cell.iIntKey);
    aFile.WriteShort(static_cast<qint16>(cell.Type()));
    WriteVal(aFile, cell);
  }
}

void CVelumArray::WriteVal(CVelumFile& aFile, const TVelumValue& aVal) const {
  switch (aVal.Type()) {
  case EValUndef:
    break;
  case EValStr:
    aFile.WriteStr(aVal.Str());
    break;
  case EValInt:
  case EValBlobId:
    aFile.WriteInt(aVal.Int());
    break;
  case EValReal:
    aFile.WriteReal(aVal.Real());
    break;
  case EValDate:
    aFile.WriteInt(CVelumValue::DateToInt(aVal.Date()));
    break;
  case EValTime:
    aFile.WriteInt(CVelumValue::TimeToInt(aVal.Time()));
    break;
  case EValBoolean:
    aFile.WriteBoolean(aVal.Boolean());
    break;
  case EValIntPair:
    aFile.WriteInt(aVal.Int0());
    aFile.WriteInt(aVal.Int1());
    break;
  default:
    Check(aVal.IsObjType(), u"Externalize", u"iElem.iVal.iType");
    if (!aVal.IsObjType()) break;
    aFile.WriteShort(aVal.Obj() ? 1 : 0);
    if (aVal.Obj()) aVal.Obj()->Externalize(aFile);
  }
}

qint64 CVelumArray::ExtLen() const {
  qint64 len = EHeadLen + iMax * qint64{2 + (WithIntKey() ? 4 : 0)};
  for (qint32 i = 0; i < iMax; ++i) {
    if (WithStrKey()) len += CVelumFile::ExtStrLen(iStore.Key(i));
    len += ValLen(iStore.Cell(i));
  }
  return len;
}

qint64 CVelumArray::ValLen(const TVelumValue& aVal) const {
  switch (aVal.Type()) {
  case EValUndef:
    return 0;
  case EValStr:
    return CVelumFile::ExtStrLen(aVal.Str());
  case EValInt:
  case EValBlobId:
  case EValDate:
  case EValTime:
    return 4;
  case EValReal:
  case EValIntPair:
    return 8;
  case EValBoolean:
    return 2;
  default:
    Check(aVal.IsObjType() && aVal.Type() != EValBlob, u"ExtLen", u"iElem.iVal.iType");
    if (!aVal.IsObjType()) return 0;
    return 2 + (aVal.Obj() ? aVal.Obj()->ExtLen() : 0);
  }
}
