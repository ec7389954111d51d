// The XML form of the stack.
#include "core/CVelumChecked.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "model/CVelumStack.h"

namespace {

constexpr qint16 EGen = 4;

Ref<CVelumArray> ReadArray(CVelumXmlParser& aParser, const CVelumStack& aStack, const QString& aName) {
  auto array = MakeRef<CVelumArray>();
  aParser.ReadChild(*array, aStack, u"InternalizeXml "_s + aName);
  return array;
}

} // namespace

void CVelumStack::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadStructAttr(*this);
  CVelumError::AssertObj(aParser.ShortAttr(u"gen"_s) == EGen, this, u"InternalizeXml"_s,
                         u"InternalizeXml gen"_s);
  iId = 0;
  iFlags = 0;
  iName = aParser.Attr(u"name"_s);
  iDescr = aParser.Attr(u"descr"_s);
  iBackColor = aParser.IntAttr(u"backColor"_s);
  const TXmlExtras extras = ReadExtrasAttr(aParser);
  const bool withListFont = aParser.BooleanAttr(u"listFontDef"_s);
  InternalizeArraysXml(aParser);
  ReadExtrasXml(aParser, extras);
  iListFont = nullptr;
  if (withListFont) {
    iListFont = MakeRef<CVelumFont>();
    aParser.ReadChild(*iListFont, *this, u"InternalizeXml iListFont"_s);
  }
  aParser.ReadTheNext(u"Stack"_s, true);
  LinkLoaded();
}

void CVelumStack::InternalizeArraysXml(CVelumXmlParser& aParser) {
  iIdGen = MakeRef<CVelumIdGen>();
  aParser.ReadChild(*iIdGen, *this, u"InternalizeXml iIdGen"_s);
  iBackground = ReadArray(aParser, *this, u"iBackground"_s);
  iCard = ReadArray(aParser, *this, u"iCard"_s);
  iOrder.SetIdBound(iCard->Count());
  aParser.ReadChild(iOrder, *this, u"InternalizeXml iOrderIndex"_s);
  iNameIndex = ReadArray(aParser, *this, u"iNameIndex"_s);
  iSortKey = ReadArray(aParser, *this, u"iSortKey"_s);
  iKeyIndex = ReadArray(aParser, *this, u"iKeyIndex"_s);
  iBlobStore = MakeRef<CVelumBlobStore>();
  aParser.ReadChild(*iBlobStore, *this, u"InternalizeXml iBlobStore"_s);
}

void CVelumStack::ExternalizeXml(CVelumXmlWriter& aWriter) {
  aWriter.BeginElem(u"Stack"_s);
  aWriter.AddShortAttr(u"gen"_s, EGen);
  aWriter.AddAttr(u"name"_s, iName);
  aWriter.AddAttr(u"descr"_s, iDescr);
  aWriter.AddIntAttr(u"backColor"_s, iBackColor);
  WriteExtrasAttr(aWriter);
  aWriter.AddBooleanAttr(u"listFontDef"_s, static_cast<bool>(iListFont));
  aWriter.BeginStruct();
  iIdGen->ExternalizeXml(aWriter);
  iBackground->ExternalizeXml(aWriter);
  iCard->ExternalizeXml(aWriter);
  iOrder.ExternalizeXml(aWriter);
  iNameIndex->ExternalizeXml(aWriter);
  iSortKey->ExternalizeXml(aWriter);
  iKeyIndex->ExternalizeXml(aWriter);
  CVelumChecked::Deref(iBlobStore).ExternalizeXml(aWriter);
  WriteExtrasXml(aWriter);
  if (iListFont) iListFont->ExternalizeXml(aWriter);
  aWriter.EndElem(u"Stack"_s);
}
