#include "model/order/CVelumSortKey.h"

#include "core/CVelumChecked.h"
#include "core/CVelumFieldTypes.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumCollation.h"
#include "core/text/CVelumDecimal.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "model/CVelumCard.h"
#include "model/change/CVelumRecorder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {
constexpr int ETypeId = 9;
constexpr int EGen = 0;
constexpr int EIdWidth = 10;
const QString EPart = u"Part"_s;

// Results of Compare, as the array's binary search takes them.
enum EOrder : int { EBefore = 0, EEqual = 1, EAfter = 2 };

// A text that is no key of a number, as a field that had another type leaves them, can be too large for one.
double NumOf(QStringView aText) {
  try {
    return CVelumValue::LenientNum(aText);
  } catch (const CVelumException&) {
    return aText.startsWith(u'-') ? -HUGE_VAL : HUGE_VAL;
  }
}

// Negative, 0 or positive; whole numbers are compared as doubles, so that no text can overflow.
int CompareNum(QStringView aA, QStringView aB, bool aWhole) {
  double a = NumOf(aA);
  double b = NumOf(aB);
  if (aWhole) {
    a = std::nearbyint(a);
    b = std::nearbyint(b);
  }
  return a < b ? -1 : a > b ? 1 : 0;
}

// Keys are built by the million, so each is written into one piece of memory. aTo has room for aLen
// characters, of which those behind the text stay as they are.

void WriteText(QStringView aText, QChar* aTo, qsizetype aLen) {
  const QStringView text = aText.left(aLen);
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char16_t c = text[i].unicode();
    if (c > 127) {
      const QString upper = CVelumLib::ToUpperByLetter(text.toString());
      std::copy(upper.begin(), upper.end(), aTo);
      return;
    }
    aTo[i] = QChar(static_cast<char16_t>(c >= u'a' && c <= u'z' ? c - u'a' + u'A' : c));
  }
}

// Pairs stand in damaged files only, and have no text.
void WritePart(const TVelumValue& aVal, QChar* aTo, qsizetype aLen) {
  if (aVal.Type() == EValStr) {
    WriteText(aVal.Str(), aTo, aLen);
  } else if (aVal.Type() == EValInt) {
    std::array<char, 12> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), aVal.Int());
    std::transform(text.data(), text.data() + std::min<qsizetype>(end.ptr - text.data(), aLen), aTo,
                   [](char aChar) { return QLatin1Char(aChar); });
  } else if (aVal.Type() == EValReal && std::isfinite(aVal.Real())) {
    WriteText(CVelumDecimal(aVal.Real()).ToText(aLen), aTo, aLen);
  } else if (aVal.Type() != EValIntPair) {
    WriteText(CVelumValue::ValToIntText(aVal), aTo, aLen);
  }
}

// At the right end of EIdWidth characters.
void WriteId(qint32 aId, QChar* aTo) {
  QChar* c = aTo + EIdWidth;
  qint64 rest = std::abs(qint64{aId});
  do {
    *--c = QChar(static_cast<char16_t>(u'0' + rest % 10));
    rest /= 10;
  } while (rest > 0 && c > aTo);
  if (aId < 0 && c > aTo) *--c = u'-';
}
} // namespace

CVelumSortKey::CVelumSortKey(qint32 aId, QString aName, qint32 aBackgroundId)
    : iId(aId), iName(std::move(aName)), iBackgroundId(aBackgroundId) {}

QString CVelumSortKey::ObjDescr() const {
  return u"CVelumSortKey name="_s + iName + u",id="_s + QString::number(iId);
}

void CVelumSortKey::SetName(const QString& aName) {
  CVelumRecord::Store(*this, EMemberName, iName, aName, iChanged);
}

void CVelumSortKey::AddKeyPart(qint32 aType, qint32 aControlId, qint32 aWay, qint16 aLen) {
  TVelumKeyPart& part = iKeyPart[CVelumChecked::Index(iNumKeyPart, EMaxParts)];
  qint16 pos = 0;
  if (iNumKeyPart > 0) {
    const TVelumKeyPart& last = iKeyPart[iNumKeyPart - 1];
    pos = CVelumChecked::Add(last.iPos, last.iLen);
  }
  const QByteArray old = RecordedParts();
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
  switch (CVelumFieldTypes::Of(aPart.iType).iKey) {
  case EFieldTextKey:
    return CVelumCollation::CompareKeys(aA, aB);
  case EFieldWholeKey:
    return CompareNum(aA, aB, true);
  case EFieldRealKey:
    return CompareNum(aA, aB, false);
  default:
    CVelumError::AssertObj(false, this, u"Compare"_s, u"type "_s + QString::number(aPart.iType));
    return 0;
  }
}

void CVelumSortKey::Clear() {
  const QByteArray old = RecordedParts();
  iNumKeyPart = 0;
  RecordParts(old);
}

// The parts as a change holds them; without a recorder nobody wants them.
QByteArray CVelumSortKey::RecordedParts() const {
  return CVelumRecord::gRecorder ? CVelumReplay::PartsOf(*this) : QByteArray();
}

void CVelumSortKey::RecordParts(const QByteArray& aOld) {
  iChanged = true;
  if (CVelumRecord::gRecorder)
    CVelumRecord::gRecorder->Member(*this, Address(), EMemberKeyParts, aOld, RecordedParts());
}

bool CVelumSortKey::CanBuild(const CVelumControlSet* aBackground) const {
  return aBackground &&
         std::all_of(iKeyPart, iKeyPart + iNumKeyPart, [aBackground](const TVelumKeyPart& aPart) {
           const CVelumControl* control = aBackground->FindControl(aPart.iControlId);
           return control && CVelumFieldTypes::IsType(control->ConType());
         });
}

QString CVelumSortKey::BuildKey(CVelumCard& aCard) const {
  QString key;
  BuildKey(aCard, key);
  return key;
}

void CVelumSortKey::BuildKey(CVelumCard& aCard, QString& aKey) const {
  if (aCard.BackgroundId() != iBackgroundId)
    CVelumError::AssertObj(false, this, u"BuildKey"_s, u"background"_s);
  qsizetype len = EIdWidth;
  for (qint32 i = 0; i < iNumKeyPart; ++i) len += std::max<qsizetype>(iKeyPart[i].iLen, 0);
  aKey.resize(len);
  QChar* to = aKey.data();
  std::fill(to, to + len, u' ');
  for (qint32 i = 0; i < iNumKeyPart; ++i) {
    const TVelumKeyPart& part = iKeyPart[i];
    const qsizetype width = std::max<qsizetype>(part.iLen, 0);
    if (const TVelumValue* own = aCard.Settled(part.iControlId))
      WritePart(*own, to, width);
    else
      WritePart(aCard.GetControlVal(part.iControlId, false), to, width);
    to += width;
  }
  WriteId(aCard.Id(), to);
}

void CVelumSortKey::SetControlType(qint32 aControlId, qint32 aConType) {
  if (!ControlOccurs(aControlId) || !CVelumFieldTypes::Of(aConType).IsSortable()) return;
  const QByteArray old = RecordedParts();
  for (qint32 i = 0; i < iNumKeyPart; ++i)
    if (iKeyPart[i].iControlId == aControlId) iKeyPart[i].iType = aConType;
  RecordParts(old);
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
