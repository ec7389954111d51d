#include "model/CVelumSortKey.h"

#include "core/CVelumChecked.h"
#include "core/CVelumCollation.h"
#include "core/CVelumFile.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/CVelumXmlParser.h"
#include "core/CVelumXmlWriter.h"
#include "model/CVelumCard.h"
#include "model/CVelumRecorder.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr int ETypeId = 9;
constexpr int EGen = 0;
constexpr int EIdWidth = 10;
constexpr int EUsualLen = 40; // of a key with one text
const QString EPart = u"Part"_s;

// Results of Compare, as the array's binary search takes them.
enum EOrder : int { EBefore = 0, EEqual = 1, EAfter = 2 };

// Negative, 0 or positive; whole numbers are compared as doubles, so that no text can overflow.
int CompareNum(QStringView aA, QStringView aB, bool aWhole) {
  double a = CVelumValue::LenientNum(aA);
  double b = CVelumValue::LenientNum(aB);
  if (aWhole) {
    a = std::nearbyint(a);
    b = std::nearbyint(b);
  }
  return a < b ? -1 : a > b ? 1 : 0;
}

// Keys are built by the million, so each is written into one piece of memory.
void AppendUpper(QStringView aText, QString& aKey) {
  const qsizetype start = aKey.size();
  aKey += aText;
  for (QChar* c = aKey.data() + start; c != aKey.data() + aKey.size(); ++c) {
    if (c->unicode() > 127) {
      aKey.truncate(start);
      aKey += CVelumLib::ToUpperByLetter(aText.toString());
      return;
    }
    if (*c >= u'a' && *c <= u'z') *c = QChar(static_cast<char16_t>(c->unicode() - u'a' + u'A'));
  }
}

void AppendId(qint32 aId, QString& aKey) {
  if (aId < 0) {
    aKey += CVelumLib::RightAlignNum(aId, EIdWidth);
    return;
  }
  aKey.resize(aKey.size() + EIdWidth, u' ');
  QChar* c = aKey.data() + aKey.size();
  do {
    *--c = QChar(static_cast<char16_t>(u'0' + aId % 10));
    aId /= 10;
  } while (aId > 0);
}
} // namespace

CVelumSortKey::CVelumSortKey(qint32 aId, QString aName, qint32 aBackgroundId)
    : iId(aId), iName(std::move(aName)), iBackgroundId(aBackgroundId) {}

QString CVelumSortKey::ObjDescr() const {
  return u"CVelumSortKey name="_s + iName + u",id="_s + QString::number(iId);
}

void CVelumSortKey::SetName(const QString& aName) {
  CVelumRecord::Store(*this, "Name", iName, aName, iChanged);
}

void CVelumSortKey::AddKeyPart(qint32 aType, qint32 aControlId, qint32 aWay, qint16 aLen) {
  TVelumKeyPart& part = iKeyPart[CVelumChecked::Index(iNumKeyPart, EMaxParts)];
  qint16 pos = 0;
  if (iNumKeyPart > 0) {
    const TVelumKeyPart& last = iKeyPart[iNumKeyPart - 1];
    pos = CVelumChecked::Add(last.iPos, last.iLen);
  }
  const QString old = RecordedParts();
  part = {aType, aControlId, aWay, aLen, pos};
  ++iNumKeyPart;
  RecordParts(old);
}

int CVelumSortKey::Compare(const QString& aKey1, const QString& aKey2) const {
  for (qint32 i = 0; i < iNumKeyPart; ++i) {
    const TVelumKeyPart& part = iKeyPart[i];
    const int order = ComparePart(part, QStringView(aKey1).mid(part.iPos, part.iLen),
                                  QStringView(aKey2).mid(part.iPos, part.iLen));
    if (order != 0) return (order > 0) != (part.iWay == EWayDescending) ? EAfter : EBefore;
  }
  const int order =
      CVelumCollation::Compare(QStringView(aKey1).right(EIdWidth), QStringView(aKey2).right(EIdWidth));
  return order == 0 ? EEqual : order > 0 ? EAfter : EBefore;
}

int CVelumSortKey::ComparePart(const TVelumKeyPart& aPart, QStringView aA, QStringView aB) const {
  switch (aPart.iType) {
  case EConText:
    return CVelumCollation::CompareKeys(aA, aB);
  case EConInteger:
  case EConDate:
  case EConTime:
  case EConBoolean:
    return CompareNum(aA, aB, true);
  case EConReal:
    return CompareNum(aA, aB, false);
  default:
    CVelumError::AssertObj(false, this, u"Compare"_s, u"type "_s + QString::number(aPart.iType));
    return 0;
  }
}

void CVelumSortKey::Clear() {
  const QString old = RecordedParts();
  iNumKeyPart = 0;
  RecordParts(old);
}

// The parts as the recorder hears of them.
QString CVelumSortKey::RecordedParts() const {
  QString text;
  for (qint32 i = 0; CVelumRecord::gRecorder && i < iNumKeyPart; ++i) {
    const TVelumKeyPart& part = iKeyPart[i];
    text += u"%1,%2,%3,%4;"_s.arg(part.iType).arg(part.iControlId).arg(part.iWay).arg(part.iLen);
  }
  return text;
}

void CVelumSortKey::RecordParts(const QString& aOld) {
  iChanged = true;
  if (CVelumRecord::gRecorder)
    CVelumRecord::gRecorder->MemberSet(*this, "KeyPart", TVelumValue::OfStr(aOld),
                                       TVelumValue::OfStr(RecordedParts()));
}

QString CVelumSortKey::BuildKey(CVelumCard& aCard) const {
  if (aCard.BackgroundId() != iBackgroundId)
    CVelumError::AssertObj(false, this, u"BuildKey"_s, u"background"_s);
  QString key;
  key.reserve(EUsualLen);
  for (qint32 i = 0; i < iNumKeyPart; ++i) {
    const TVelumKeyPart& part = iKeyPart[i];
    const qsizetype len = std::max<qsizetype>(part.iLen, 0);
    const QString text = CVelumValue::ValToIntText(aCard.GetControlVal(part.iControlId, false));
    AppendUpper(QStringView(text).left(len), key);
    key.resize(key.size() + std::max<qsizetype>(len - text.size(), 0), u' ');
  }
  AppendId(aCard.Id(), key);
  return key;
}

bool CVelumSortKey::ControlOccurs(qint32 aId) const {
  return std::any_of(iKeyPart, iKeyPart + iNumKeyPart,
                     [aId](const TVelumKeyPart& aPart) { return aPart.iControlId == aId; });
}

bool CVelumSortKey::GetFirstKeyPart(TVelumKeyPart& aPart, qint32& aIndex) const {
  aIndex = 0;
  return GetNextKeyPart(aPart, aIndex);
}

bool CVelumSortKey::GetNextKeyPart(TVelumKeyPart& aPart, qint32& aIndex) const {
  if (aIndex < 0 || aIndex >= iNumKeyPart) return false;
  aPart = iKeyPart[aIndex++];
  return true;
}

void CVelumSortKey::Internalize(CVelumFile& aFile) {
  static_cast<void>(CVelumLib::ReadBinObjStart(aFile, ETypeId, EGen, EGen));
  iId = aFile.ReadInt();
  iName = aFile.ReadStr();
  iBackgroundId = aFile.ReadInt();
  const qint32 num = aFile.ReadShort();
  iNumKeyPart = 0;
  for (qint32 i = 0; i < num; ++i) {
    TVelumKeyPart& part = iKeyPart[CVelumChecked::Index(i, qint32(EMaxParts))];
    part.iType = aFile.ReadShort();
    part.iControlId = aFile.ReadInt();
    part.iWay = aFile.ReadShort();
    part.iLen = aFile.ReadShort();
    part.iPos = aFile.ReadShort();
    ++iNumKeyPart;
  }
  iChanged = false;
}

void CVelumSortKey::Externalize(CVelumFile& aFile) {
  CVelumLib::WriteBinObjStart(aFile, ETypeId, EGen);
  aFile.WriteInt(iId);
  aFile.WriteStr(iName);
  aFile.WriteInt(iBackgroundId);
  aFile.WriteShort(static_cast<qint16>(iNumKeyPart));
  for (qint32 i = 0; i < iNumKeyPart; ++i) {
    const TVelumKeyPart& part = iKeyPart[i];
    aFile.WriteShort(static_cast<qint16>(part.iType));
    aFile.WriteInt(part.iControlId);
    aFile.WriteShort(static_cast<qint16>(part.iWay));
    aFile.WriteShort(part.iLen);
    aFile.WriteShort(part.iPos);
  }
}

qint64 CVelumSortKey::ExtLen() const {
  return 4 + 4 + CVelumFile::ExtStrLen(iName) + 4 + 2 + qint64(iNumKeyPart) * 12;
}

void CVelumSortKey::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadStructAttr(*this);
  iId = aParser.IntAttr(u"id"_s);
  iName = aParser.Attr(u"name"_s);
  iBackgroundId = aParser.IntAttr(u"backgroundId"_s);
  const qint32 num = aParser.CountAttr(u"numKeyPart"_s);
  iNumKeyPart = 0;
  for (qint32 i = 0; i < num; ++i) {
    TVelumKeyPart& part = iKeyPart[CVelumChecked::Index(i, qint32(EMaxParts))];
    aParser.ReadTheNext(EPart, false);
    bool term = false;
    aParser.ReadAttrAndSym(term);
    CVelumError::AssertObj(term, this, u"InternalizeXml"_s, u"Part term"_s);
    part.iType = aParser.ShortAttr(u"type"_s);
    part.iControlId = aParser.IntAttr(u"controlId"_s);
    part.iWay = aParser.ShortAttr(u"way"_s);
    part.iLen = aParser.ShortAttr(u"len"_s);
    part.iPos = aParser.ShortAttr(u"pos"_s);
    ++iNumKeyPart;
  }
  aParser.ReadTheNext(u"SortKey"_s, true);
  iChanged = false;
}

void CVelumSortKey::ExternalizeXml(CVelumXmlWriter& aWriter) {
  aWriter.BeginElem(u"SortKey"_s);
  aWriter.AddShortAttr(u"gen"_s, EGen);
  aWriter.AddIntAttr(u"id"_s, iId);
  aWriter.AddAttr(u"name"_s, iName);
  aWriter.AddIntAttr(u"backgroundId"_s, iBackgroundId);
  aWriter.AddShortAttr(u"numKeyPart"_s, static_cast<qint16>(iNumKeyPart));
  aWriter.BeginStruct();
  for (qint32 i = 0; i < iNumKeyPart; ++i) {
    const TVelumKeyPart& part = iKeyPart[i];
    aWriter.BeginElem(EPart);
    aWriter.AddShortAttr(u"type"_s, static_cast<qint16>(part.iType));
    aWriter.AddIntAttr(u"controlId"_s, part.iControlId);
    aWriter.AddShortAttr(u"way"_s, static_cast<qint16>(part.iWay));
    aWriter.AddShortAttr(u"len"_s, part.iLen);
    aWriter.AddShortAttr(u"pos"_s, part.iPos);
    aWriter.EndEmptyElem();
  }
  aWriter.EndElem(u"SortKey"_s);
}
