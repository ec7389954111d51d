#include "persist/CVelumViewState.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"

namespace {
constexpr int ETypeId = 4;
constexpr int EGen = 0;
} // namespace

CVelumViewState::CVelumViewState()
    : iCardViewRect(MakeRef<CVelumRect>()), iCardListRect(MakeRef<CVelumRect>()) {}

CVelumViewState::CVelumViewState(QString aName) : CVelumViewState() {
  iName = std::move(aName);
}

void CVelumViewState::Internalize(CVelumFile& aFile) {
  static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, EGen, EGen));
  iName = aFile.ReadStr();
  iCardViewOpen = aFile.ReadBoolean();
  iCardViewRect = MakeRef<CVelumRect>();
  iCardViewRect->Internalize(aFile);
  iCardListOpen = aFile.ReadBoolean();
  iCardListRect = MakeRef<CVelumRect>();
  iCardListRect->Internalize(aFile);
}

void CVelumViewState::Externalize(CVelumFile& aFile) {
  CVelumLib::WriteBinObjStart(aFile, ETypeId, EGen);
  aFile.WriteStr(iName);
  aFile.WriteBoolean(iCardViewOpen);
  CVelumChecked::Deref(iCardViewRect).Externalize(aFile);
  aFile.WriteBoolean(iCardListOpen);
  CVelumChecked::Deref(iCardListRect).Externalize(aFile);
}

qint64 CVelumViewState::ExtLen() const {
  return 4 + CVelumFile::ExtStrLen(iName) + 2 + iCardViewRect->ExtLen() + 2 + iCardListRect->ExtLen();
}

void CVelumViewState::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadStructAttr(*this);
  iName = aParser.Attr(u"name"_s);
  iCardViewOpen = aParser.BooleanAttr(u"cardViewOpen"_s);
  iCardListOpen = aParser.BooleanAttr(u"cardListOpen"_s);
  iCardViewRect = MakeRef<CVelumRect>();
  aParser.ReadChild(*iCardViewRect, *this, ObjDescr() + u"iCardViewRect"_s);
  iCardListRect = MakeRef<CVelumRect>();
  aParser.ReadChild(*iCardListRect, *this, ObjDescr() + u"iCardListRect"_s);
  aParser.ReadTheNext(u"StackView"_s, true);
}

void CVelumViewState::ExternalizeXml(CVelumXmlWriter& aWriter) {
  aWriter.BeginElem(u"StackView"_s);
  aWriter.AddAttr(u"gen"_s, u"0"_s);
  aWriter.AddAttr(u"name"_s, iName);
  aWriter.AddBooleanAttr(u"cardViewOpen"_s, iCardViewOpen);
  aWriter.AddBooleanAttr(u"cardListOpen"_s, iCardListOpen);
  aWriter.BeginStruct();
  CVelumChecked::Deref(iCardViewRect).ExternalizeXml(aWriter);
  CVelumChecked::Deref(iCardListRect).ExternalizeXml(aWriter);
  aWriter.EndElem(u"StackView"_s);
}
