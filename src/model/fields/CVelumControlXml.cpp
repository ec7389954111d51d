// The XML form of a control.
#include "core/CVelumChecked.h"
#include "core/CVelumFieldTypes.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "model/fields/CVelumControl.h"

namespace {
constexpr qint16 EMinGen = 2;
constexpr qint16 EGen = 3;
const QString EProc = u"CVelumControl.InternalizeXml"_s;
const QString EDefaultVal = u"DefaultVal"_s;
} // namespace

void CVelumControl::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadStructAttr(*this);
  const qint16 gen = aParser.ShortAttr(u"gen"_s);
  CVelumError::AssertObj(gen >= EMinGen && gen <= EGen, this, u"InternalizeXml"_s, u"gen"_s);
  ReadAttrXml(aParser);
  const qint32 numListCol = aParser.CountAttr(u"numListCol"_s);
  const TXmlExtras extras = ReadExtrasAttr(aParser);
  iDefaultVal = aParser.ReadTextElem(EDefaultVal);
  iListCol = nullptr;
  if (numListCol > 0) ReadListColXml(aParser);
  ReadExtrasXml(aParser, extras);
  aParser.ReadTheNext(u"Control"_s, true);
  iListBox = nullptr;
  iWikiTextBox = nullptr;
  iChanged = false;
}

void CVelumControl::ReadAttrXml(const CVelumXmlParser& aParser) {
  iId = aParser.IntAttr(u"id"_s);
  iName = aParser.Attr(u"name"_s);
  iDescr = aParser.Attr(u"descr"_s);
  iLabel = aParser.Attr(u"label"_s);
  iConType = aParser.ShortAttr(u"type"_s);
  CVelumError::ThrowBadStruct(CVelumFieldTypes::IsType(iConType), this, EProc, u"ConType"_s);
  iVisLines = aParser.ShortAttr(u"visLines"_s);
  iVisChar = aParser.ShortAttr(u"visChar"_s);
  iFlags = aParser.CountAttr(u"flags"_s);
  iMaxChar = aParser.ShortAttr(u"maxChar"_s);
  iDigits = aParser.ShortAttr(u"digits"_s);
  iListVisChar = aParser.ShortAttr(u"listVisChar"_s);
  iListColTitle = aParser.Attr(u"listColTitle"_s);
  iPartnerId = aParser.IntAttr(u"partnerId"_s);
  iRefControlId = aParser.IntAttr(u"refControlId"_s);
  iSelBackgroundId = aParser.IntAttr(u"selBackgroundId"_s);
  iSelControlId = aParser.IntAttr(u"selControlId"_s);
  iStdCmd = aParser.ShortAttr(u"stdCmd"_s);
  iDestCardId = aParser.IntAttr(u"destCardId"_s);
  iBackColor = aParser.IntAttr(u"backColor"_s);
}

void CVelumControl::ReadListColXml(CVelumXmlParser& aParser) {
  iListCol = MakeRef<CVelumArray>();
  aParser.ReadChild(*iListCol, *this, u"InternalizeXml iListCol"_s);
  const bool plain = (iListCol->Flags() & (EArrStrKey | EArrIntKey | EArrMixed)) == 0;
  CVelumError::ThrowBadStruct(plain && iListCol->Type() == EValInt, this, EProc, u"ListCol"_s);
}

void CVelumControl::ExternalizeXml(CVelumXmlWriter& aWriter) {
  aWriter.BeginElem(u"Control"_s);
  aWriter.AddShortAttr(u"gen"_s, EGen);
  aWriter.AddIntAttr(u"id"_s, iId);
  aWriter.AddAttr(u"name"_s, iName);
  aWriter.AddAttr(u"descr"_s, iDescr);
  aWriter.AddAttr(u"label"_s, iLabel);
  aWriter.AddShortAttr(u"type"_s, CVelumChecked::Narrow<qint16>(iConType));
  aWriter.AddShortAttr(u"visLines"_s, iVisLines);
  aWriter.AddShortAttr(u"visChar"_s, iVisChar);
  aWriter.AddIntAttr(u"flags"_s, iFlags);
  aWriter.AddShortAttr(u"maxChar"_s, iMaxChar);
  aWriter.AddShortAttr(u"digits"_s, iDigits);
  aWriter.AddShortAttr(u"listVisChar"_s, iListVisChar);
  aWriter.AddAttr(u"listColTitle"_s, iListColTitle);
  aWriter.AddIntAttr(u"partnerId"_s, iPartnerId);
  aWriter.AddIntAttr(u"refControlId"_s, iRefControlId);
  aWriter.AddIntAttr(u"selBackgroundId"_s, iSelBackgroundId);
  aWriter.AddIntAttr(u"selControlId"_s, iSelControlId);
  aWriter.AddShortAttr(u"numListCol"_s, CVelumChecked::Narrow<qint16>(NumListCols()));
  aWriter.AddIntAttr(u"stdCmd"_s, iStdCmd);
  aWriter.AddIntAttr(u"destCardId"_s, iDestCardId);
  aWriter.AddIntAttr(u"backColor"_s, iBackColor);
  WriteExtrasAttr(aWriter);
  aWriter.BeginStruct();
  aWriter.WriteTextElem(EDefaultVal, iDefaultVal);
  if (NumListCols() > 0) iListCol->ExternalizeXml(aWriter);
  WriteExtrasXml(aWriter);
  aWriter.EndElem(u"Control"_s);
}
