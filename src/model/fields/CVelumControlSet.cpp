#include "model/fields/CVelumControlSet.h"

#include "core/CVelumChecked.h"
#include "core/CVelumLib.h"
#include "core/file/CVelumFile.h"
#include "core/text/CVelumXmlParser.h"
#include "core/text/CVelumXmlWriter.h"
#include "model/CVelumStack.h"
#include "model/change/CVelumRecorder.h"

using CVelumRecord::Store;

namespace {

constexpr int ETypeId = 2;
constexpr int EGen = 3;
constexpr qint32 EKeyFlags = EArrStrKey | EArrIntKey | EArrSortKey | EArrMixed;
const QString EReadProc = u"CVelumControlSet.Internalize"_s;

Ref<CVelumArray> NewSet() {
  return MakeRef<CVelumArray>(0, EValControl);
}

Ref<CVelumArray> NewIdIndex() {
  return MakeRef<CVelumArray>(EArrIntKey, EValInt);
}

// An element for aArray with the value aVal, and the key aKey if the array has one.
TVelumElem NewElem(const CVelumArray& aArray, TVelumValue aVal, qint32 aKey = ENoInt) {
  TVelumElem elem;
  aArray.InitElem(elem);
  elem.iIntKey = aKey;
  elem.iVal = std::move(aVal);
  return elem;
}

} // namespace

CVelumControlSet::CVelumControlSet() : iSet(NewSet()), iIdIndex(NewIdIndex()) {}

CVelumControlSet::CVelumControlSet(const QString& aName, qint32 aId) : CVelumControlSet() {
  iName = aName;
  iId = aId;
  iFlags = ECseCardNameInList | ECseShowCardName;
}

CVelumControlSet::~CVelumControlSet() {
  SetOwners(nullptr);
}

void CVelumControlSet::SetOwners(CVelumControlSet* aOwner) {
  // What was read may be no controls.
  for (qint32 i = 0; i < NumControls(); ++i)
    if (auto* control = dynamic_cast<CVelumControl*>(iSet->ValRef(i).Obj())) control->SetOwner(aOwner);
}

QString CVelumControlSet::ObjDescr() const {
  return u"CVelumControlSet name="_s + iName;
}

void CVelumControlSet::SetDescr(const QString& aDescr) {
  Store(*this, EMemberDescr, iDescr, aDescr, iChanged);
}

void CVelumControlSet::SetKeyIndexId(qint32 aId) {
  Store(*this, EMemberKeyIndexId, iKeyIndexId, aId, iChanged);
  iKeyIndex = nullptr;
}

Ref<CVelumArray> CVelumControlSet::KeyIndex() {
  CVelumError::AssertObj(Flag(ECseKeepCardsSorted), this, u"GetKeyIndex"_s, u"ECseKeepCardsSorted"_s);
  if (iKeyIndex) return iKeyIndex;
  CVelumError::AssertObj(iKeyIndexId != ENoInt, this, u"GetKeyIndex"_s, u"id set"_s);
  if (iStack) iKeyIndex = iStack->KeyIndex(iKeyIndexId);
  return iKeyIndex;
}

void CVelumControlSet::SetWallPaperId(qint32 aId) {
  Store(*this, EMemberWallPaperId, iWallPaperId, aId, iChanged);
}

CVelumControl* CVelumControlSet::ControlAt(qint32 aIndex) const {
  if (aIndex < 0 || aIndex >= iSet->Count()) return nullptr;
  return static_cast<CVelumControl*>(iSet->ValRef(aIndex).Obj());
}

CVelumControl* CVelumControlSet::FindControl(qint32 aId) const {
  const qint32 pos = iIdIndex->FindIntKey(aId);
  return pos < 0 ? nullptr : ControlAt(iIdIndex->ValRef(pos).Int());
}

bool CVelumControlSet::GetFirstControl(Ref<CVelumControl>& aControl, qint32& aIndex) const {
  aIndex = 0;
  return GetNextControl(aControl, aIndex);
}

bool CVelumControlSet::GetNextControl(Ref<CVelumControl>& aControl, qint32& aIndex) const {
  if (!GetControlByNum(aIndex, aControl)) return false;
  ++aIndex;
  return true;
}

bool CVelumControlSet::GetControl(qint32 aId, Ref<CVelumControl>& aControl) const {
  aControl = FindControl(aId);
  CVelumError::AssertObj(!aControl || aControl->Id() == aId, this, u"GetControl"_s, u"GetControl GetId"_s);
  return static_cast<bool>(aControl);
}

bool CVelumControlSet::GetControlByName(const QString& aName, Ref<CVelumControl>& aControl) const {
  qint32 index = 0;
  bool found = GetFirstControl(aControl, index);
  while (found && aControl->Name() != aName) found = GetNextControl(aControl, index);
  return found;
}

bool CVelumControlSet::GetControlByFlag(qint32 aMask, Ref<CVelumControl>& aControl) const {
  qint32 index = 0;
  bool found = GetFirstControl(aControl, index);
  while (found && !aControl->Flag(aMask)) found = GetNextControl(aControl, index);
  return found;
}

bool CVelumControlSet::GetControlByNum(qint32 aNum, Ref<CVelumControl>& aControl) const {
  aControl = ControlAt(aNum);
  return static_cast<bool>(aControl);
}

bool CVelumControlSet::WithCardList() const {
  Ref<CVelumControl> control;
  return GetControlByFlag(EConCardList, control);
}

void CVelumControlSet::AddControl(const Ref<CVelumControl>& aControl, qint32 aBeforeId) {
  const qint32 id = CVelumChecked::Deref(aControl).Id();
  CVelumError::AssertObj(iIdIndex->FindIntKey(id) < 0, this, u"AddControl"_s, u"AddControl unique id"_s);
  qint32 place = iSet->Count();
  if (aBeforeId != ENoInt) {
    const qint32 pos = iIdIndex->FindIntKey(aBeforeId);
    CVelumError::AssertObj(pos >= 0, this, u"AddControl"_s,
                           u"AddControl beforeId found, "_s + QString::number(aBeforeId));
    if (pos >= 0) place = iIdIndex->ValRef(pos).Int();
  }
  const TChildAllocs allocs{iSet->Alloc(), iIdIndex->Alloc()};
  iSet->CreateAt(NewElem(*iSet, TVelumValue::OfObj(EValControl, aControl)), place);
  iIdIndex->AdjustInt(place, 1);
  iIdIndex->CreateIntKey(NewElem(*iIdIndex, TVelumValue::OfInt(place), id));
  aControl->SetOwner(this);
  iChanged = true;
  RecordControl(true, *aControl, place, allocs);
}

void CVelumControlSet::RecordControl(bool aAdded, CVelumControl& aControl, qint32 aPlace,
                                     const TChildAllocs& aAllocs) const {
  CVelumRecorder* recorder = CVelumRecord::Of(iStack);
  if (!recorder || iStack->FindBackground(iId) != this) return;
  const CVelumControl* before = ControlAt(aPlace - 1);
  recorder->Child(aAdded, EChildControl, iId, aControl.Id(), aControl, before ? before->Id() : ENoInt,
                  aAllocs);
}

void CVelumControlSet::DeleteControl(qint32 aId) {
  const qint32 pos = iIdIndex->FindIntKey(aId);
  CVelumError::AssertObj(pos >= 0, this, u"DeleteControl"_s, u"DeleteControl found"_s);
  if (pos < 0) return;
  const qint32 place = iIdIndex->ValRef(pos).Int();
  if (CVelumControl* control = ControlAt(place)) {
    RecordControl(false, *control, place, {iSet->Alloc(), iIdIndex->Alloc()});
    control->SetOwner(nullptr);
  }
  iIdIndex->DeleteIntKey(aId);
  iIdIndex->AdjustInt(place + 1, -1);
  iSet->DeleteAt(place);
  iChanged = true;
}

bool CVelumControlSet::Changed() const {
  return iChanged || ExtrasChanged() || iSet->Changed() || iIdIndex->Changed();
}

void CVelumControlSet::SetChanged(bool aChanged) {
  iChanged = aChanged;
  if (aChanged) return;
  ClearExtrasChanged();
  iSet->SetChanged(false);
  iIdIndex->SetChanged(false);
}

// The lookups trust the set and its index, so a file gets no further with other objects than controls.
void CVelumControlSet::CheckSet() const {
  const bool plain = iSet->Type() == EValControl && (iSet->Flags() & EKeyFlags) == 0;
  CVelumError::ThrowBadStruct(plain, this, EReadProc, u"Set"_s);
  for (qint32 i = 0; i < iSet->Count(); ++i) {
    const TVelumValue& val = iSet->ValRef(i);
    const bool control = val.Type() == EValControl && (!val.Obj() || dynamic_cast<CVelumControl*>(val.Obj()));
    CVelumError::ThrowBadStruct(control, this, EReadProc, u"Set type"_s);
  }
}

// Other writers delete a control by clearing its slot. Such slots are left out, so that each index below
// NumControls has its control. Returns how many there were.
qint32 CVelumControlSet::DropEmptySlots() {
  const Ref<CVelumArray> set = NewSet();
  for (qint32 i = 0; i < iSet->Count(); ++i)
    if (const TVelumValue& val = iSet->ValRef(i); val.Obj()) set->CreateAtEnd(NewElem(*set, val));
  const qint32 dropped = iSet->Count() - set->Count();
  if (dropped > 0) iSet = set;
  iSet->SetChanged(false);
  return dropped;
}

// Whether the index leads from the id of each control to its slot, and knows no other id.
bool CVelumControlSet::IdIndexAgrees() const {
  if (iIdIndex->Type() != EValInt || (iIdIndex->Flags() & EKeyFlags) != EArrIntKey) return false;
  for (qint32 i = 0; i < iIdIndex->Count(); ++i) {
    const qint32 id = iIdIndex->IntKeyAt(i);
    const TVelumValue& place = iIdIndex->ValRef(i);
    const CVelumControl* control = place.Type() == EValInt ? ControlAt(place.Int()) : nullptr;
    const bool ascending = i == 0 || iIdIndex->IntKeyAt(i - 1) < id;
    if (!ascending || !control || control->Id() != id) return false;
  }
  qint32 controls = 0;
  for (qint32 i = 0; i < iSet->Count(); ++i) controls += ControlAt(i) ? 1 : 0;
  return iIdIndex->Count() == controls;
}

void CVelumControlSet::RebuildIdIndex() {
  iIdIndex = NewIdIndex();
  for (qint32 i = 0; i < iSet->Count(); ++i) {
    const qint32 id = ControlAt(i)->Id();
    CVelumError::ThrowBadStruct(iIdIndex->FindIntKey(id) < 0, this, EReadProc, u"Set id"_s);
    iIdIndex->CreateIntKey(NewElem(*iIdIndex, TVelumValue::OfInt(i), id));
  }
  iIdIndex->SetChanged(false);
}

void CVelumControlSet::Internalize(CVelumFile& aFile) {
  static_cast<void>(InternalizeCommon(aFile, ETypeId, EGen, EGen));
  iDescr = aFile.ReadStr();
  iWallPaperId = aFile.ReadInt();
  iSet->Internalize(aFile);
  iIdIndex->Internalize(aFile);
  iKeyIndexId = aFile.ReadInt();
  iKeyIndex = nullptr;
  iLoadProblem.clear();
  if (!aFile.PastEnd()) CheckLoaded();
  iChanged = false;
}

void CVelumControlSet::CheckLoaded() {
  CheckSet();
  const bool agrees = IdIndexAgrees();
  if (DropEmptySlots() > 0 || !agrees) RebuildIdIndex();
  SetOwners(this);
  if (!agrees) iLoadProblem = ObjDescr() + u": the index of the field ids was wrong"_s;
}

void CVelumControlSet::Externalize(CVelumFile& aFile) {
  ExternalizeCommon(aFile, ETypeId, EGen);
  aFile.WriteStr(iDescr);
  aFile.WriteInt(iWallPaperId);
  iSet->Externalize(aFile);
  iIdIndex->Externalize(aFile);
  aFile.WriteInt(iKeyIndexId);
}

qint64 CVelumControlSet::ExtLen() const {
  return ExtLenCommon() + CVelumFile::ExtStrLen(iDescr) + 4 + iSet->ExtLen() + iIdIndex->ExtLen() + 4;
}

void CVelumControlSet::InternalizeXml(CVelumXmlParser& aParser) {
  aParser.ReadStructAttr(*this);
  CVelumError::AssertObj(aParser.ShortAttr(u"gen"_s) == EGen, this, u"InternalizeXml"_s, u"gen"_s);
  iName = aParser.Attr(u"name"_s);
  iDescr = aParser.Attr(u"descr"_s);
  iId = aParser.IntAttr(u"id"_s);
  iFlags = aParser.CountAttr(u"flags"_s);
  iWallPaperId = aParser.IntAttr(u"wallPaperId"_s);
  iBackColor = aParser.IntAttr(u"backColor"_s);
  iKeyIndexId = aParser.IntAttr(u"keyIndexId"_s);
  const TXmlExtras extras = ReadExtrasAttr(aParser);
  aParser.ReadChild(*iSet, *this, u"InternalizeXml iSet"_s);
  aParser.ReadChild(*iIdIndex, *this, u"InternalizeXml iIdIndex"_s);
  ReadExtrasXml(aParser, extras);
  aParser.ReadTheNext(u"ControlSet"_s, true);
  iKeyIndex = nullptr;
  iLoadProblem.clear();
  CheckLoaded();
  iChanged = false;
}

void CVelumControlSet::ExternalizeXml(CVelumXmlWriter& aWriter) {
  aWriter.BeginElem(u"ControlSet"_s);
  aWriter.AddShortAttr(u"gen"_s, EGen);
  aWriter.AddAttr(u"name"_s, iName);
  aWriter.AddAttr(u"descr"_s, iDescr);
  aWriter.AddIntAttr(u"id"_s, iId);
  aWriter.AddIntAttr(u"flags"_s, iFlags);
  aWriter.AddIntAttr(u"wallPaperId"_s, iWallPaperId);
  aWriter.AddIntAttr(u"backColor"_s, iBackColor);
  aWriter.AddIntAttr(u"keyIndexId"_s, iKeyIndexId);
  WriteExtrasAttr(aWriter);
  aWriter.BeginStruct();
  iSet->ExternalizeXml(aWriter);
  iIdIndex->ExternalizeXml(aWriter);
  WriteExtrasXml(aWriter);
  aWriter.EndElem(u"ControlSet"_s);
}
