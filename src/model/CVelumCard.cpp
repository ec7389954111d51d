#include "model/CVelumCard.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "model/CVelumStack.h"
#include "model/change/CVelumRecorder.h"

#include <ctime>

using CVelumRecord::Store;

namespace {
constexpr int ETypeId = 1;
constexpr int EGen = 1;

// The clock. Breaking it up into a date costs more than all else that a change of a value does, so it is
// done once a second.
TCardMoment Clock() {
  static std::time_t second = -1;
  static TCardMoment moment;
  if (const std::time_t now = std::time(nullptr); now != second) {
    second = now;
    moment = {CVelumValue::DateToInt(CVelumValue::Today()), CVelumValue::TimeToInt(CVelumValue::Now())};
  }
  return moment;
}

// A date of a file as it is held in memory: a real one, in the form in which it is saved.
qint32 NormalDate(qint32 aDate) {
  const qint32 month = aDate / 100 % 100;
  const qint32 day = aDate % 100;
  const bool plain =
      aDate >= 10000101 && aDate <= 99991231 && month >= 1 && month <= 12 && day >= 1 && day <= 28;
  return plain ? aDate : CVelumValue::DateToInt(CVelumValue::IntToDate(aDate));
}

qint32 NormalTime(qint32 aTime) {
  const bool plain = aTime >= 0 && aTime < 240000 && aTime / 100 % 100 < 60 && aTime % 100 < 60;
  return plain ? aTime : CVelumValue::TimeToInt(CVelumValue::IntToTime(aTime));
}

constexpr qint32 EValueFlags = EArrIntKey | EArrMixed;
} // namespace

CVelumCard::CVelumCard() : iValue(EValueFlags, EValStr) {
  iValue.AddRef();
}

CVelumCard::CVelumCard(const QString& aName, const Ref<CVelumControlSet>& aBackground) : CVelumCard() {
  iName = aName;
  CVelumError::AssertObj(static_cast<bool>(aBackground), this, u"Construct"_s, u"Construct background set"_s);
  iBackgroundId = CVelumChecked::Deref(aBackground).Id();
  const TCardMoment now = Clock();
  iCreDate = iModDate = now.iDate;
  iCreTime = iModTime = now.iTime;
}

QString CVelumCard::ObjDescr() const {
  return u"CVelumCard name="_s + iName;
}

void CVelumCard::SetName(const QString& aName) {
  Store(*this, EMemberName, iName, aName, iChanged);
  if (iStack) iStack->ChangeCard(*this);
}

qint32 CVelumCard::OrderNum() const {
  return iStack ? iStack->OrderNumOf(*this) : iOrderNum;
}

void CVelumCard::SetOrderNum(qint32 aNum) {
  Store(*this, EMemberOrderNum, iOrderNum, aNum, iChanged);
}

double CVelumCard::CreDate() const {
  return CVelumValue::IntToDate(iCreDate);
}

double CVelumCard::CreTime() const {
  return CVelumValue::IntToTime(iCreTime);
}

double CVelumCard::ModDate() const {
  return CVelumValue::IntToDate(iModDate);
}

double CVelumCard::ModTime() const {
  return CVelumValue::IntToTime(iModTime);
}

void CVelumCard::SetCreDate(double aDate) {
  Store(*this, EMemberCreDate, iCreDate, CVelumValue::DateToInt(aDate));
  if (iStack) iStack->iCardFinder.Note(*this, ENoInt); // its zero values
}

void CVelumCard::SetCreTime(double aTime) {
  Store(*this, EMemberCreTime, iCreTime, CVelumValue::TimeToInt(aTime));
  if (iStack) iStack->iCardFinder.Note(*this, ENoInt); // its zero values
}

void CVelumCard::SetModDate(double aDate) {
  Store(*this, EMemberModDate, iModDate, CVelumValue::DateToInt(aDate));
}

void CVelumCard::SetModTime(double aTime) {
  Store(*this, EMemberModTime, iModTime, CVelumValue::TimeToInt(aTime));
}

CVelumControlSet* CVelumCard::FindBackground() const {
  return iStack ? iStack->FindBackground(iBackgroundId) : nullptr;
}

Ref<CVelumControlSet> CVelumCard::Background() const {
  return FindBackground();
}

void CVelumCard::SetBackground(const Ref<CVelumControlSet>& aBackground) {
  const qint32 old = iBackgroundId;
  Store(*this, EMemberBackgroundId, iBackgroundId, CVelumChecked::Deref(aBackground).Id(), iChanged);
  if (iStack) iStack->BackgroundSet(*this, old);
}

Ref<CVelumControl> CVelumCard::ControlById(qint32 aId) const {
  const CVelumControlSet* background = FindBackground();
  return background ? background->FindControl(aId) : nullptr;
}

bool CVelumCard::Changed() const {
  return iChanged || iValue.Changed() || ExtrasChanged();
}

void CVelumCard::SetChanged(bool aChanged) {
  iChanged = aChanged;
  if (aChanged) return;
  iValue.SetChanged(false);
  ClearExtrasChanged();
}

// What every change of a value ends with.
void CVelumCard::Touch() {
  const TCardMoment now = Clock();
  iChanged = true;
  if (CVelumRecorder* recorder = CVelumRecord::Of(iStack)) recorder->Moment(*this, {iModDate, iModTime}, now);
  iModDate = now.iDate;
  iModTime = now.iTime;
  if (iStack) iStack->ChangeCard(*this);
}

void CVelumCard::Internalize(CVelumFile& aFile) {
  InternalizeCommon(aFile, ETypeId, EGen, EGen);
  iOrderNum = aFile.ReadInt();
  iBackgroundId = aFile.ReadInt();
  iCreDate = NormalDate(aFile.ReadInt());
  iCreTime = NormalTime(aFile.ReadInt());
  iModDate = NormalDate(aFile.ReadInt());
  iModTime = NormalTime(aFile.ReadInt());
  iValue.Internalize(aFile);
  const bool keyedByInt = (iValue.Flags() & (EArrStrKey | EArrIntKey)) == EArrIntKey;
  CVelumLib::CheckRead(aFile, keyedByInt, this, u"CVelumCard.Internalize"_s, u"value"_s);
  // Without this flag no value of another field could be set.
  if (!(iValue.Flags() & EArrMixed)) {
    iValue.SetFlags(iValue.Flags() | EArrMixed);
    iValue.SetChanged(false);
  }
  if (!ValuesAscend()) iState |= EUnsorted;
  iChanged = false;
}

bool CVelumCard::ValuesAscend() const {
  qint32 i = 1;
  while (i < iValue.Count() && iValue.IntKeyAt(i - 1) < iValue.IntKeyAt(i)) ++i;
  return i >= iValue.Count();
}

// A file can hold the values in an order in which they would not be found. Of two values of a field the first
// one stays.
void CVelumCard::SortValues() {
  CVelumArray sorted(EValueFlags, EValStr);
  for (qint32 i = 0; i < iValue.Count(); ++i) {
    TVelumElem elem;
    sorted.InitElem(elem);
    elem.iIntKey = iValue.IntKeyAt(i);
    elem.iVal = iValue.ValRef(i);
    if (sorted.FindIntKey(elem.iIntKey) < 0 && elem.iVal.Type() != EValUndef) sorted.CreateIntKey(elem);
  }
  sorted.SetChanged(false);
  iValue.Swap(sorted);
  iState = static_cast<quint8>(iState & ~EUnsorted);
}

void CVelumCard::Externalize(CVelumFile& aFile) {
  ExternalizeCommon(aFile, ETypeId, EGen);
  aFile.WriteInt(OrderNum());
  aFile.WriteInt(iBackgroundId);
  aFile.WriteInt(iCreDate);
  aFile.WriteInt(iCreTime);
  aFile.WriteInt(iModDate);
  aFile.WriteInt(iModTime);
  iValue.Externalize(aFile);
}

qint64 CVelumCard::ExtLen() const {
  return ExtLenCommon() + 6 * 4 + iValue.ExtLen();
}

void CVelumCard::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadStructAttr(*this);
  CVelumError::AssertObj(aParser.ShortAttr(u"gen"_s) == EGen, this, u"InternalizeXml"_s, u"gen"_s);
  iId = aParser.IntAttr(u"id"_s);
  iOrderNum = aParser.IntAttr(u"orderNum"_s);
  iName = aParser.Attr(u"name"_s);
  iFlags = aParser.CountAttr(u"flags"_s);
  iBackgroundId = aParser.IntAttr(u"backgroundId"_s);
  iBackColor = aParser.IntAttr(u"backColor"_s);
  iCreDate = NormalDate(aParser.IntAttr(u"creDate"_s));
  iCreTime = NormalTime(aParser.IntAttr(u"creTime"_s));
  iModDate = NormalDate(aParser.IntAttr(u"modDate"_s));
  iModTime = NormalTime(aParser.IntAttr(u"modTime"_s));
  const TXmlExtras extras = ReadExtrasAttr(aParser);
  ReadExtrasXml(aParser, extras);
  aParser.ReadChild(iValue, *this, u"InternalizeXml iValue"_s);
  aParser.ReadTheNext(u"Card"_s, true);
  const bool keyedByInt = (iValue.Flags() & (EArrStrKey | EArrIntKey)) == EArrIntKey;
  CVelumError::ThrowBadStruct(keyedByInt, this, u"CVelumCard.InternalizeXml"_s, u"value"_s);
  iChanged = false;
}

void CVelumCard::ExternalizeXml(CVelumXmlWriter& aWriter) {
  if (Dirty()) UpdateCardLists();
  aWriter.BeginElem(u"Card"_s);
  aWriter.AddShortAttr(u"gen"_s, EGen);
  aWriter.AddIntAttr(u"id"_s, iId);
  aWriter.AddIntAttr(u"orderNum"_s, OrderNum());
  aWriter.AddAttr(u"name"_s, iName);
  aWriter.AddIntAttr(u"flags"_s, iFlags);
  aWriter.AddIntAttr(u"backgroundId"_s, iBackgroundId);
  aWriter.AddIntAttr(u"backColor"_s, iBackColor);
  aWriter.AddIntAttr(u"creDate"_s, iCreDate);
  aWriter.AddIntAttr(u"creTime"_s, iCreTime);
  aWriter.AddIntAttr(u"modDate"_s, iModDate);
  aWriter.AddIntAttr(u"modTime"_s, iModTime);
  WriteExtrasAttr(aWriter);
  aWriter.BeginStruct();
  WriteExtrasXml(aWriter);
  iValue.ExternalizeXml(aWriter);
  aWriter.EndElem(u"Card"_s);
}
