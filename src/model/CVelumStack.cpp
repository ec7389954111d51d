#include "model/CVelumStack.h"

#include "core/CVelumChecked.h"
#include "model/change/CVelumRecorder.h"

using CVelumModel::ObjAs;
using CVelumRecord::Store;

Ref<CVelumStack> gStack;

namespace {
Ref<CVelumArray> NewIndexed(qint32 aType) {
  return MakeRef<CVelumArray>(EArrIntKey, aType);
}

// An element of an array of objects that is keyed by id.
void CreateObj(CVelumArray& aArray, qint32 aId, int aTag, const Ref<CVelumStored>& aObj) {
  TVelumElem elem;
  aArray.InitElem(elem);
  elem.iIntKey = aId;
  elem.iVal = TVelumValue::OfObj(aTag, aObj);
  aArray.CreateIntKey(elem);
}

// The object of an id, or null.
template <class T> T* FindObj(const CVelumArray& aArray, qint32 aId, int aTag) {
  const qint32 index = aArray.FindIntKey(aId);
  return index < 0 ? nullptr : ObjAs<T>(aArray.ValRef(index), aTag);
}

// The next object from aIndex on; places without one are passed.
template <class T> bool NextObj(const CVelumArray& aArray, int aTag, Ref<T>& aObj, qint32& aIndex) {
  aObj = nullptr;
  while (!aObj && aIndex >= 0 && aIndex < aArray.Count()) aObj = ObjAs<T>(aArray.ValRef(aIndex++), aTag);
  return static_cast<bool>(aObj);
}
} // namespace

CVelumStack::CVelumStack() {
  MakeContainers();
}

CVelumStack::CVelumStack(const QString& aName) {
  iName = aName;
  MakeContainers();
  const auto background = MakeRef<CVelumControlSet>(u"First Background"_s, iIdGen->NextId());
  iBlobStore = MakeRef<CVelumBlobStore>(EBstRamBased);
  AddBackground(background);
  ResetChangeInfo();
}

CVelumStack::~CVelumStack() {
  for (qint32 i = 0; i < iCard->Count(); ++i)
    if (CVelumCard* card = FindCard(i); card && card->Stack() == this) card->SetStack(nullptr);
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  for (bool found = GetFirstBackground(background, index); found;
       found = GetNextBackground(background, index))
    if (background->Stack() == this) background->SetStack(nullptr);
}

void CVelumStack::MakeContainers() {
  iIdGen = MakeRef<CVelumIdGen>();
  iCard = MakeRef<CVelumArray>(0, EValCard);
  iNameIndex = MakeRef<CVelumArray>(EArrStrKey | EArrDuplicates | EArrExactCase, EValInt);
  iBackground = NewIndexed(EValControlSet);
  iKeyIndex = NewIndexed(EValArray);
  iSortKey = NewIndexed(EValSortKey);
}

QString CVelumStack::ObjDescr() const {
  return u"CVelumStack name="_s + iName;
}

void CVelumStack::SetDescr(const QString& aDescr) {
  Store(*this, EMemberDescr, iDescr, aDescr, iChanged);
}

void CVelumStack::SetFilename(const QString& aFilename) {
  iFilename = aFilename;
  iChanged = true;
}

void CVelumStack::SetListFont(const Ref<CVelumFont>& aFont) {
  Store(*this, EMemberListFont, iListFont, aFont, iChanged);
}

void CVelumStack::SetBlobStore(const Ref<CVelumBlobStore>& aStore) {
  CVelumError::AssertObj(!iBlobStore, this, u"LetBlobStore"_s, u"nothing"_s);
  iBlobStore = aStore;
  iChanged = true;
}

bool CVelumStack::Changed() const {
  return iChanged || iBackground->Changed() || iSortKey->Changed() || iOrder.Changed() ||
         iNameIndex->Changed() || iKeyIndex->Changed() || iIdGen->Changed() || ExtrasChanged() ||
         iCard->Changed() || (iBlobStore && iBlobStore->Changed()) || (iListFont && iListFont->Changed());
}

void CVelumStack::SetChanged(bool aChanged) {
  iChanged = aChanged;
  if (aChanged) return;
  iBackground->SetChanged(false);
  iSortKey->SetChanged(false);
  iOrder.SetChanged(false);
  iNameIndex->SetChanged(false);
  iKeyIndex->SetChanged(false);
  iIdGen->SetChanged(false);
  ClearExtrasChanged();
  iCard->SetChanged(false);
  if (iBlobStore) iBlobStore->SetChanged(false);
  if (iListFont) iListFont->SetChanged(false);
}

void CVelumStack::ResetChanged() {
  iChanged = false;
}

// What is recorded of a collection that changes; aAlloc is its capacity before.
void CVelumStack::RecordChild(bool aAdded, EChild aKind, qint32 aId, CVelumStored& aChild,
                              qint32 aAlloc) const {
  if (CVelumRecorder* recorder = CVelumRecord::Of(this))
    recorder->Child(aAdded, aKind, ENoInt, aId, aChild, ENoInt, {aAlloc, ENoInt});
}

// Backgrounds.

void CVelumStack::AddBackground(const Ref<CVelumControlSet>& aBackground) {
  CVelumControlSet& background = CVelumChecked::Deref(aBackground);
  const qint32 alloc = iBackground->Alloc();
  CreateObj(*iBackground, background.Id(), EValControlSet, aBackground);
  background.SetStack(this);
  background.SetNumCards(0);
  RecordChild(true, EChildBackground, background.Id(), background, alloc);
}

CVelumControlSet* CVelumStack::FindBackground(qint32 aId) const {
  return FindObj<CVelumControlSet>(*iBackground, aId, EValControlSet);
}

Ref<CVelumControlSet> CVelumStack::Background(qint32 aId) const {
  return FindBackground(aId);
}

bool CVelumStack::GetFirstBackground(Ref<CVelumControlSet>& aBackground, qint32& aIndex) const {
  aIndex = 0;
  return GetNextBackground(aBackground, aIndex);
}

bool CVelumStack::GetNextBackground(Ref<CVelumControlSet>& aBackground, qint32& aIndex) const {
  return NextObj(*iBackground, EValControlSet, aBackground, aIndex);
}

bool CVelumStack::GetBackgroundByName(const QString& aName, Ref<CVelumControlSet>& aBackground) const {
  qint32 index = 0;
  bool found = GetFirstBackground(aBackground, index);
  while (found && aBackground->Name() != aName) found = GetNextBackground(aBackground, index);
  return found;
}

// Sort keys and key indexes.

Ref<CVelumSortKey> CVelumStack::SortKey(qint32 aId) const {
  CVelumSortKey* key = FindObj<CVelumSortKey>(*iSortKey, aId, EValSortKey);
  CVelumError::Assert(key, u"SortKey found "_s + QString::number(aId));
  return key;
}

CVelumSortKey* CVelumStack::SortKeyAt(qint32 aIndex) const {
  return ObjAs<CVelumSortKey>(iSortKey->ValRef(aIndex), EValSortKey);
}

bool CVelumStack::GetFirstSortKey(Ref<CVelumSortKey>& aKey, qint32& aIndex) const {
  aIndex = 0;
  return GetNextSortKey(aKey, aIndex);
}

bool CVelumStack::GetNextSortKey(Ref<CVelumSortKey>& aKey, qint32& aIndex) const {
  return NextObj(*iSortKey, EValSortKey, aKey, aIndex);
}

bool CVelumStack::GetSortKeyByName(const QString& aName, Ref<CVelumSortKey>& aKey) const {
  qint32 index = 0;
  bool found = GetFirstSortKey(aKey, index);
  while (found && aKey->Name() != aName) found = GetNextSortKey(aKey, index);
  return found;
}

void CVelumStack::AddSortKey(const Ref<CVelumSortKey>& aKey) {
  CVelumSortKey& key = CVelumChecked::Deref(aKey);
  const qint32 alloc = iSortKey->Alloc();
  CreateObj(*iSortKey, key.Id(), EValSortKey, aKey);
  RecordChild(true, EChildSortKey, key.Id(), key, alloc);
}

void CVelumStack::DeleteSortKey(qint32 aId) {
  if (auto* key = FindObj<CVelumSortKey>(*iSortKey, aId, EValSortKey))
    RecordChild(false, EChildSortKey, aId, *key, iSortKey->Alloc());
  iSortKey->DeleteIntKey(aId);
}

Ref<CVelumArray> CVelumStack::KeyIndex(qint32 aId) const {
  CVelumArray* index = FindObj<CVelumArray>(*iKeyIndex, aId, EValArray);
  CVelumError::Assert(index, u"KeyIndex found "_s + QString::number(aId));
  return index;
}

CVelumArray* CVelumStack::KeyIndexAt(qint32 aIndex) const {
  return ObjAs<CVelumArray>(iKeyIndex->ValRef(aIndex), EValArray);
}

bool CVelumStack::GetFirstKeyIndex(Ref<CVelumArray>& aIndex, qint32& aCursor) const {
  aCursor = 0;
  return GetNextKeyIndex(aIndex, aCursor);
}

bool CVelumStack::GetNextKeyIndex(Ref<CVelumArray>& aIndex, qint32& aCursor) const {
  return NextObj(*iKeyIndex, EValArray, aIndex, aCursor);
}

void CVelumStack::AddKeyIndex(const Ref<CVelumArray>& aKeyIndex) {
  CVelumArray& index = CVelumChecked::Deref(aKeyIndex);
  CVelumError::AssertObj(index.SortKeyId() != ENoInt, this, u"AddKeyIndex"_s, u"aKeyIndex sortKey defined"_s);
  const qint32 alloc = iKeyIndex->Alloc();
  CreateObj(*iKeyIndex, index.Id(), EValArray, aKeyIndex);
  RecordChild(true, EChildKeyIndex, index.Id(), index, alloc);
}

void CVelumStack::DeleteKeyIndex(qint32 aId) {
  if (auto* index = FindObj<CVelumArray>(*iKeyIndex, aId, EValArray))
    RecordChild(false, EChildKeyIndex, aId, *index, iKeyIndex->Alloc());
  iKeyIndex->DeleteIntKey(aId);
}
