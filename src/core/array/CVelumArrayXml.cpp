// The XML form of CVelumArray: members as attributes, and an element "Elem" for each element.
#include "core/CVelumChecked.h"
#include "core/CVelumValue.h"
#include "core/array/CVelumArray.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"

#include <algorithm>

namespace {

constexpr qint16 EGeneration = 3;
constexpr qint32 EMissingStep = 50;
constexpr qint32 EMissingRoom = 10;
// Room is made for so many elements of which the document tells only the number.
constexpr qint32 EMaxReserved = 64;
const QString EElem = u"Elem"_s;
const QString EObj = u"Obj"_s;
const QString EStr = u"Str"_s;

// What an object is called in the assertion of its tag.
QString ClassAssertion(int aTag) {
  static const QString names[] = {u"iCard"_s,    u"iControl"_s, u"iControlSet"_s,
                                  u"iSortKey"_s, u"iArr"_s,     u"iBlob"_s};
  return u"InternalizeXml "_s + names[aTag - EValCard];
}

bool IsObjTag(int aTag) {
  return aTag >= EValCard && aTag <= EValBlob;
}

} // namespace

void CVelumArray::InternalizeXml(CVelumXmlParser& aParser) {
  const CNesting nesting(*this);
  aParser.ReadStructAttr(*this);
  iStore = CVelumArrayStore();
  iMax = 0;
  iRare.reset();
  iId = aParser.IntAttr(u"id"_s);
  iFlags = aParser.CountAttr(u"flags"_s);
  iType = aParser.ShortAttr(u"type"_s);
  const qint32 count = aParser.CountAttr(u"max"_s);
  const bool withAlloc = aParser.HasAttr(u"alloc"_s);
  iAllocStep = withAlloc ? aParser.IntAttr(u"allocStep"_s) : EMissingStep;
  iAlloc = withAlloc ? aParser.IntAttr(u"alloc"_s) : CVelumChecked::Add(count, EMissingRoom);
  iSortKeyId = aParser.IntAttr(u"sortKeyId"_s);
  if (iAlloc > EMaxAlloc) CVelumError::RaiseHost(EHostOutOfMemory);
  ApplyShape();
  iStore.Reserve(std::min(count, EMaxReserved));
  while (iMax < count) ReadElemXml(aParser);
  ApplyShape();
  aParser.ReadTheNext(XmlTag(), true);
  iChanged = false;
  if (!WithSortKey()) EnsureSorted();
}

void CVelumArray::ReadElemXml(CVelumXmlParser& aParser) {
  aParser.ReadTheNext(EElem, false);
  aParser.ReadStructAttr(*this);
  QString strKey;
  if (WithStrKey()) strKey = aParser.Attr(u"strKey"_s);
  const qint32 intKey = WithIntKey() ? aParser.IntAttr(u"intKey"_s) : ENoInt;
  iStore.Append(TVelumCell(ReadValXml(aParser), intKey), std::move(strKey));
  ++iMax;
  aParser.ReadTheNext(EElem, true);
}

TVelumValue CVelumArray::ReadValXml(CVelumXmlParser& aParser) {
  const qint16 tag = aParser.ShortAttr(u"type"_s);
  switch (tag) {
  case EValUndef:
    return {};
  case EValStr:
    return TVelumValue::OfStr(aParser.ReadTextElem(EStr));
  case EValInt:
    return TVelumValue::OfInt(aParser.IntAttr(u"int"_s));
  case EValBlobId:
    return TVelumValue::OfBlobId(aParser.IntAttr(u"int"_s));
  case EValReal:
    return TVelumValue::OfReal(aParser.RealAttr(u"real"_s));
  case EValDate:
    return TVelumValue::OfDate(CVelumValue::IntToDate(aParser.IntAttr(u"date"_s)));
  case EValTime:
    return TVelumValue::OfTime(CVelumValue::IntToTime(aParser.IntAttr(u"time"_s)));
  case EValBoolean:
    return TVelumValue::OfBoolean(aParser.BooleanAttr(u"boolean"_s));
  case EValIntPair:
    return TVelumValue::OfPair(aParser.IntAttr(u"int0"_s), aParser.IntAttr(u"int1"_s));
  default:
    Check(IsObjTag(tag), u"ExternalizeXml", u"iElem.iVal.iType");
    if (!IsObjTag(tag)) return TVelumValue::OfType(tag);
    return TVelumValue::OfObj(tag, ReadObjXml(aParser, tag));
  }
}

Ref<CVelumStored> CVelumArray::ReadObjXml(CVelumXmlParser& aParser, int aTag) {
  if (aParser.HasAttr(u"objMissing"_s)) return nullptr;
  Ref<CVelumStored> obj =
      aTag == EValArray ? Ref<CVelumStored>(new CVelumArray) : CVelumSeams::NewObject(aTag);
  Check(static_cast<bool>(obj), u"InternalizeXml class");
  aParser.ReadTheNext(EObj, false);
  aParser.ReadStructAttr(*this);
  aParser.ReadChild(CVelumChecked::Deref(obj), *this, ClassAssertion(aTag));
  aParser.ReadTheNext(EObj, true);
  return obj;
}

void CVelumArray::BeginXml(CVelumXmlWriter& aWriter, const TXmlHead& aHead) {
  aWriter.BeginElem(u"Array"_s);
  aWriter.AddShortAttr(u"gen"_s, EGeneration);
  aWriter.AddIntAttr(u"id"_s, aHead.iId);
  aWriter.AddIntAttr(u"flags"_s, aHead.iFlags);
  aWriter.AddShortAttr(u"type"_s, aHead.iType);
  aWriter.AddIntAttr(u"allocStep"_s, aHead.iAllocStep);
  aWriter.AddIntAttr(u"alloc"_s, aHead.iAlloc);
  aWriter.AddIntAttr(u"max"_s, aHead.iMax);
  aWriter.AddIntAttr(u"sortKeyId"_s, aHead.iSortKeyId);
  aWriter.BeginStruct();
}

void CVelumArray::ExternalizeXml(CVelumXmlWriter& aWriter) {
  BeginXml(aWriter, {iId, iFlags, iType, iAllocStep, iAlloc, iMax, iSortKeyId});
  for (qint32 i = 0; i < iMax; ++i) {
    aWriter.BeginElem(EElem);
    if (WithStrKey()) aWriter.AddAttr(u"strKey"_s, iStore.Key(i));
    const TVelumCell& cell = iStore.Cell(i);
    if (WithIntKey()) aWriter.AddIntAttr(u"intKey"_s, cell.iIntKey);
    aWriter.AddShortAttr(u"type"_s, static_cast<qint16>(cell.Type()));
    WriteValXml(aWriter, cell);
    aWriter.EndElem(EElem);
  }
  aWriter.EndElem(XmlTag());
}

void CVelumArray::WriteValXml(CVelumXmlWriter& aWriter, const TVelumValue& aVal) const {
  switch (aVal.Type()) {
  case EValUndef:
    break;
  case EValStr:
    aWriter.BeginStruct();
    return aWriter.WriteTextElem(EStr, aVal.Str());
  case EValInt:
  case EValBlobId:
    aWriter.AddIntAttr(u"int"_s, aVal.Int());
    break;
  case EValReal:
    aWriter.AddRealAttr(u"real"_s, aVal.Real());
    break;
  case EValDate:
    aWriter.AddIntAttr(u"date"_s, CVelumValue::DateToInt(aVal.Date()));
    break;
  case EValTime:
    aWriter.AddIntAttr(u"time"_s, CVelumValue::TimeToInt(aVal.Time()));
    break;
  case EValBoolean:
    aWriter.AddBooleanAttr(u"boolean"_s, aVal.Boolean());
    break;
  case EValIntPair:
    aWriter.AddIntAttr(u"int0"_s, aVal.Int0());
    aWriter.AddIntAttr(u"int1"_s, aVal.Int1());
    break;
  default:
    Check(aVal.IsObjType(), u"ExternalizeXml", u"iElem.iVal.iType");
    return WriteObjXml(aWriter, aVal);
  }
  aWriter.BeginStruct();
}

void CVelumArray::WriteObjXml(CVelumXmlWriter& aWriter, const TVelumValue& aVal) {
  if (!aVal.IsObjType() || !aVal.Obj()) {
    aWriter.AddIntAttr(u"objMissing"_s, 1);
    return aWriter.BeginStruct();
  }
  aWriter.BeginStruct();
  aWriter.BeginElem(EObj);
  aWriter.BeginStruct();
  aVal.Obj()->ExternalizeXml(aWriter);
  aWriter.EndElem(EObj);
}
