// The values of a card: reading, the change hub, computed lists.
#include "core/CVelumChecked.h"
#include "core/CVelumFieldTypes.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "model/CVelumCard.h"
#include "model/CVelumStack.h"
#include "model/change/CVelumRecorder.h"

bool CVelumCard::Dirty() const {
  if (iState & EDirty) return true;
  const CVelumControlSet* background = FindBackground();
  return background && background->ListStamp() != iListStamp;
}

void CVelumCard::SetDirty(bool aDirty) {
  iState = static_cast<quint8>(aDirty ? iState | EDirty : iState & ~EDirty);
  const CVelumControlSet* background = FindBackground();
  if (!aDirty && background) iListStamp = background->ListStamp();
}

bool CVelumCard::ControlValDef(qint32 aId) const {
  return iValue.FindIntKey(aId) >= 0;
}

TVelumValue CVelumCard::GetControlVal(qint32 aId, bool aWithZero) {
  // A list whose own selecting value is asked for while it is computed is taken as it stands.
  if (!(iState & EUpdating) && Dirty()) {
    const Ref<CVelumControl> control = ControlById(aId);
    if (control && control->Flag(EConCardList)) UpdateCardLists();
  }
  const qint32 index = iValue.FindIntKey(aId);
  return index >= 0 ? iValue.ValRef(index) : DefaultVal(aId, aWithZero);
}

const TVelumValue* CVelumCard::Settled(qint32 aId) const {
  const qint32 index = Dirty() ? -1 : iValue.FindIntKey(aId);
  return index >= 0 ? &iValue.ValRef(index) : nullptr;
}

TVelumValue CVelumCard::DefaultVal(qint32 aId, bool aWithZero) const {
  const CVelumControlSet* background = FindBackground();
  CVelumError::AssertObj(background, this, u"GetControlVal"_s, u"background"_s);
  if (!background) return {};
  const Ref<CVelumControl> control = background->FindControl(aId);
  CVelumError::AssertObj(static_cast<bool>(control), this, u"GetControlValue"_s, u"background control"_s);
  if (!control || control->ConType() == EConCommand || control->ConType() == EConPicture) return {};
  if (CVelumLib::IsNotBlank(control->DefaultVal()))
    return CVelumValue::IntTextToVal(control->DefaultVal(), control->FieldInfo());
  TVelumValue val;
  if (aWithZero)
    CVelumValue::SetZero(val, CVelumValue::ConToValType(control->ConType()), CreDate(), CreTime());
  return val;
}

CVelumArray& CVelumCard::NewValues() {
  if (iStack) CVelumError::RaiseHost(EHostBadCall);
  return iValue;
}

void CVelumCard::SetComputedText(qint32 aControlId, const QString& aText, bool aChanged) {
  iValue.SetValAt(iValue.FindIntKey(aControlId) + 1, TVelumValue::OfStr(aText));
  iValue.SetChanged(aChanged);
}

void CVelumCard::SetControlVal(qint32 aId, const TVelumValue& aVal) {
  // Values come in hundreds of thousands: nothing is made for a check that holds.
  const Ref<CVelumControlSet> background = Background();
  if (!background) CVelumError::AssertObj(false, this, u"SetControlVal"_s, u"Background def"_s);
  const Ref<CVelumControl> control = CVelumChecked::Deref(background).FindControl(aId);
  if (!control) CVelumError::AssertObj(false, this, u"SetControlVal"_s, u"Control found"_s);
  SetControlVal(CVelumChecked::Deref(control), aVal);
}

void CVelumCard::SetControlVal(const CVelumControl& aControl, const TVelumValue& aVal) {
  if (!iStack) CVelumError::AssertObj(false, this, u"SetControlVal"_s, u"Background def"_s);
  static_cast<void>(CVelumChecked::Deref(iStack));
  const qint32 id = aControl.Id();
  if (aVal.Type() != EValUndef && aVal.Type() != CVelumValue::ConToValType(aControl.ConType()))
    CVelumError::AssertObj(false, this, u"SetControlVal"_s, u"type"_s);

  if (aControl.DynFlag(EDynKeyPart)) iStack->StoreKeys(*this, id);
  if (!StoreVal(id, aVal)) return;
  iStack->iCardFinder.Note(*this, id);
  if (aControl.DynFlag(EDynRefControl)) SetDirty(true);
  if (aControl.DynFlag(EDynSelControl)) iStack->SetCardListsDirty(nullptr);
  if (aControl.DynFlag(EDynListCol)) iStack->SetCardListsDirty(nullptr);
  if (aControl.DynFlag(EDynKeyPart)) iStack->ReplaceKeys(*this, id, *Background());
  if (aControl.Flag(EConCardName))
    iStack->TakeName(*this, CVelumValue::ValToExtText(aVal, aControl.FieldInfo()));
  Touch();
}

// Replaces or makes the element. False if nothing is to be changed.
bool CVelumCard::StoreVal(qint32 aId, const TVelumValue& aVal) {
  const qint32 index = iValue.FindIntKey(aId);
  if (index < 0 && aVal.Type() == EValUndef) return false;
  if (index < 0) {
    TVelumElem elem;
    iValue.InitElem(elem);
    elem.iIntKey = aId;
    elem.iVal = aVal;
    CountBlob(aVal, true);
    const qint32 alloc = iValue.Alloc();
    iValue.CreateIntKey(elem);
    RecordVal(aId, nullptr, &aVal, alloc);
    return true;
  }
  const TVelumValue old = iValue.ValRef(index);
  const bool sameBlob = old.Type() == EValBlobId && aVal.Type() == EValBlobId && old.Int() == aVal.Int();
  if (!sameBlob) {
    CountBlob(aVal, true);
    CountBlob(old, false);
  }
  iValue.SetValAt(index + 1, aVal);
  RecordVal(aId, &old, &aVal, iValue.Alloc());
  return true;
}

void CVelumCard::RecordVal(qint32 aId, const TVelumValue* aOld, const TVelumValue* aNew,
                           qint32 aAlloc) const {
  if (CVelumRecorder* recorder = CVelumRecord::Of(iStack)) recorder->Value(*this, aId, aOld, aNew, aAlloc);
}

// The blob of a value gets a reference or releases one; other values are left alone.
void CVelumCard::CountBlob(const TVelumValue& aVal, bool aUp) {
  if (aVal.Type() != EValBlobId || !iStack || !iStack->BlobStore()) return;
  const Ref<CVelumBlobStore> store = iStack->BlobStore();
  if (aUp)
    store->AddReference(aVal.Int());
  else
    store->ReleaseReference(aVal.Int());
}

// What the values of a card that goes refer to is released; the values stay.
void CVelumCard::DropBlobs() {
  for (qint32 i = 0; i < iValue.Count(); ++i) CountBlob(iValue.ValRef(i), false);
}

void CVelumCard::DeleteControlVal(qint32 aId) {
  const Ref<CVelumControl> control = ControlById(aId);
  const bool keyed = control && control->DynFlag(EDynKeyPart) && ControlValDef(aId);
  if (keyed) iStack->StoreKeys(*this, aId);
  DropVal(aId);
  if (keyed) iStack->ReplaceKeys(*this, aId, *FindBackground());
}

// The value goes, and the keys that were built from it stay.
void CVelumCard::DropVal(qint32 aId) {
  if (const qint32 index = iValue.FindIntKey(aId); index >= 0) {
    const TVelumValue old = iValue.ValRef(index);
    CountBlob(old, false);
    iValue.DeleteIntKey(aId);
    RecordVal(aId, &old, nullptr, iValue.Alloc());
    const Ref<CVelumControl> control = ControlById(aId);
    if (control) iStack->iCardFinder.Note(*this, aId);
    if (control && control->DynFlag(EDynSelControl | EDynListCol)) iStack->NewListBasis();
  }
  Touch();
}

void CVelumCard::InitVal(const Ref<CVelumControl>& aControl) {
  const CVelumControl& control = CVelumChecked::Deref(aControl);
  const qint32 type = control.ConType();
  if (type == EConCommand || type == EConPicture || type == EConList) return;
  const TVelumValue val = control.DefaultVal().isEmpty()
                              ? InitialVal(control)
                              : CVelumValue::IntTextToVal(control.DefaultVal(), control.FieldInfo());
  if (val.Type() != EValUndef) SetControlVal(control.Id(), val);
}

TVelumValue CVelumCard::InitialVal(const CVelumControl& aControl) {
  switch (CVelumFieldTypes::Of(aControl.ConType()).iValType) {
  case EValStr:
    return InitialText(aControl);
  case EValInt:
    return TVelumValue::OfInt(0);
  case EValReal:
    return TVelumValue::OfReal(0.0);
  case EValDate:
    return TVelumValue::OfDate(CVelumValue::Today());
  case EValTime:
    return TVelumValue::OfTime(CVelumValue::Now());
  case EValBoolean:
    return TVelumValue::OfBoolean(false);
  default:
    CVelumError::AssertObj(false, this, u"InitVal"_s, u"conType"_s);
    return {};
  }
}

// The text of a combo box begins with the first line of its list.
TVelumValue CVelumCard::InitialText(const CVelumControl& aControl) {
  if (!aControl.Flag(EConComboText)) return {};
  const TVelumValue list = GetControlVal(aControl.PartnerId(), true);
  const qsizetype end = list.Str().indexOf(u"\r\n"_s);
  return CVelumValue::StrToVal(list.Str().left(end));
}

void CVelumCard::InitAllVal() {
  const Ref<CVelumControlSet> background = Background();
  for (qint32 i = 0; background && i < background->NumControls(); ++i) {
    if (const Ref<CVelumControl> control = background->ControlAt(i)) InitVal(control);
  }
}

void CVelumCard::UpdateCardLists() {
  const Ref<CVelumControlSet> background = Background();
  if (!background || (iState & EUpdating) || !iStack->EnterListUpdate()) return;
  const CVelumRecord::CUnrecorded computed;
  struct TLeave {
    CVelumCard& iCard;
    CVelumStack& iOwner;
    ~TLeave() {
      iCard.iState = static_cast<quint8>(iCard.iState & ~EUpdating);
      iOwner.LeaveListUpdate();
    }
  } leave{*this, *iStack};
  iState |= EUpdating;
  for (qint32 i = 0; i < background->NumControls(); ++i) {
    const Ref<CVelumControl> control = background->ControlAt(i);
    if (control && control->Flag(EConCardList)) UpdateCardList(*control);
  }
  SetDirty(false);
  iStack->iListRun.push_back(this);
}

// The same list for all cards of the background: computed once for all of them.
void CVelumCard::TakeDefaultList(CVelumControl& aControl) {
  const quint32 basis = iStack->ListBasis();
  if (aControl.ListBasis() == basis) return;
  aControl.SetDefaultVal(aControl.GetCardList(*iStack, {}));
  aControl.SetListBasis(basis);
}

void CVelumCard::UpdateCardList(CVelumControl& aControl) {
  if (aControl.RefControlId() != ENoInt) {
    const TVelumValue ref = GetControlVal(aControl.RefControlId(), false);
    SetControlVal(aControl.Id(), CVelumValue::StrToVal(aControl.GetCardList(*iStack, ref)));
  } else {
    if (ControlValDef(aControl.Id())) DeleteControlVal(aControl.Id());
    TakeDefaultList(aControl);
    iStack->ChangeCard(*this);
  }
  iChanged = true;
}
