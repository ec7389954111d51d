#include "model/CVelumFont.h"

#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"

namespace {
constexpr int ETypeId = 12;
constexpr qint16 EDefaultSize = 220;
constexpr float EPointsUnset = 31999.0F;

template <class T> void Set(T& aSlot, T aNew, bool& aChanged) {
  aSlot = std::move(aNew);
  aChanged = true;
}
} // namespace

CVelumFont::CVelumFont(QString aFaceName, qint16 aSize, qint32 aForeColor)
    : iFaceName(std::move(aFaceName)), iSize(aSize), iForeColor(aForeColor) {}

QString CVelumFont::ObjDescr() const {
  return u"CVelumFont "_s + iFaceName;
}

void CVelumFont::SetForeColor(qint32 aColor) {
  Set(iForeColor, aColor, iChanged);
}

void CVelumFont::SetFlags(qint32 aFlags) {
  Set(iFlags, aFlags, iChanged);
}

void CVelumFont::AddFont(const CVelumFont* aFont) {
  if (!aFont) return;
  if (!aFont->iFaceName.isEmpty()) Set(iFaceName, aFont->iFaceName, iChanged);
  if (aFont->iSize != ENoShort) Set(iSize, aFont->iSize, iChanged);
  if (aFont->iForeColor != ENoInt) SetForeColor(aFont->iForeColor);
  if (aFont->iFlags != 0) SetFlags(aFont->iFlags);
}

void CVelumFont::SetDefaults() {
  if (iFaceName.isEmpty()) Set(iFaceName, u"Arial"_s, iChanged);
  if (iSize == ENoShort) Set(iSize, EDefaultSize, iChanged);
  if (iForeColor == ENoInt) SetForeColor(0);
}

float CVelumFont::PointSize() const {
  return iSize == ENoShort ? EPointsUnset : static_cast<float>(iSize) / 20.0F;
}

QString CVelumFont::PointSizeStr() const {
  return iSize == ENoShort ? QString() : CVelumValue::ShortestReal(iSize / 20.0);
}

float CVelumFont::HostPointSize(bool aExact) const {
  return !aExact && iSize == EDefaultSize ? 8.0F : PointSize();
}

QString CVelumFont::FaceNameWithFlags() const {
  QString name = iFaceName;
  if (iFlags & EFntBold) name += u" Bold"_s;
  if (iFlags & EFntItalic) name += u" Italic"_s;
  if (iFlags & EFntUnderline) name += u" Underline"_s;
  return name;
}

void CVelumFont::Internalize(CVelumFile& aFile) {
  static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, 0, 0));
  iFaceName = aFile.ReadStr();
  iSize = aFile.ReadShort();
  iForeColor = aFile.ReadInt();
  iFlags = aFile.ReadInt();
  iChanged = false;
}

void CVelumFont::Externalize(CVelumFile& aFile) {
  CVelumLib::WriteBinObjStart(aFile, ETypeId, 0);
  aFile.WriteStr(iFaceName);
  aFile.WriteShort(iSize);
  aFile.WriteInt(iForeColor);
  aFile.WriteInt(iFlags);
}

qint64 CVelumFont::ExtLen() const {
  return 4 + CVelumFile::ExtStrLen(iFaceName) + 2 + 4 + 4;
}

void CVelumFont::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadAttrTerm();
  CVelumError::AssertObj(aParser.ShortAttr(u"gen"_s) == 0, this, u"InternalizeXml"_s, u"gen"_s);
  iFaceName = aParser.Attr(u"faceName"_s);
  iSize = aParser.ShortAttr(u"size"_s);
  iForeColor = aParser.IntAttr(u"foreColor"_s);
  iFlags = aParser.CountAttr(u"flags"_s);
  iChanged = false;
}

void CVelumFont::ExternalizeXml(CVelumXmlWriter& aWriter) {
  aWriter.BeginElem(u"Font"_s);
  aWriter.AddShortAttr(u"gen"_s, 0);
  aWriter.AddAttr(u"faceName"_s, iFaceName);
  aWriter.AddShortAttr(u"size"_s, iSize);
  aWriter.AddIntAttr(u"foreColor"_s, iForeColor);
  aWriter.AddIntAttr(u"flags"_s, iFlags);
  aWriter.EndEmptyElem();
}
