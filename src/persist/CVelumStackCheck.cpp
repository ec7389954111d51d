#include "persist/CVelumStackCheck.h"

#include "core/CVelumFieldTypes.h"
#include "core/CVelumValue.h"
#include "persist/CVelumBlobCheck.h"
#include "persist/CVelumLayoutCheck.h"

namespace {

QString CardText(const CVelumCard& aCard) {
  return CVelumIndexCheck::CardText(aCard);
}

QString FieldText(const CVelumControlSet& aBackground, const CVelumControl& aControl) {
  return u"background '%1', field '%2'"_s.arg(aBackground.Name(), aControl.Name());
}

// The sort key or key index of an id by a walk: the lookups by id ask the user when there is none.
Ref<CVelumSortKey> FindSortKey(const CVelumStack& aStack, qint32 aId) {
  Ref<CVelumSortKey> key;
  qint32 index = 0;
  for (bool found = aStack.GetFirstSortKey(key, index); found; found = aStack.GetNextSortKey(key, index)) {
    if (key->Id() == aId) return key;
  }
  return nullptr;
}

Ref<CVelumArray> FindKeyIndex(const CVelumStack& aStack, qint32 aId) {
  Ref<CVelumArray> keyIndex;
  qint32 index = 0;
  for (bool found = aStack.GetFirstKeyIndex(keyIndex, index); found;
       found = aStack.GetNextKeyIndex(keyIndex, index)) {
    if (keyIndex->Id() == aId) return keyIndex;
  }
  return nullptr;
}

bool HasValue(const CVelumControl& aControl) {
  return aControl.ConType() != EConCommand;
}

} // namespace

QStringList CVelumStackCheck::Run() {
  iProblems = iStack.LoadProblems();
  CheckBackgrounds();
  CheckCards();
  iProblems += iIndexes.Order();
  iProblems += iIndexes.Names();
  CheckSortKeys();
  CheckKeyIndexes();
  CVelumBlobCheck blobs(iStack);
  for (const qint32 id : blobs.Ids()) CheckId(id, u"blob %1"_s.arg(id));
  return iProblems + blobs.Run() + CVelumLayoutCheck::Run(iStack);
}

void CVelumStackCheck::CheckId(qint32 aId, const QString& aOwner) {
  if (aId < 0 || aId >= iStack.IdGen().PeekId())
    Add(u"%1: id %2 was never handed out (the next one is %3)"_s.arg(aOwner).arg(aId).arg(
        iStack.IdGen().PeekId()));
  const QString other = iIds.value(aId);
  if (!other.isEmpty()) Add(u"%1: id %2 belongs to %3 too"_s.arg(aOwner).arg(aId).arg(other));
  iIds.insert(aId, aOwner);
}

void CVelumStackCheck::CheckBackgrounds() {
  Ref<CVelumControlSet> background;
  qint32 index = 0;
  for (bool found = iStack.GetFirstBackground(background, index); found;
       found = iStack.GetNextBackground(background, index)) {
    const QString name = u"background '%1'"_s.arg(background->Name());
    CheckId(background->Id(), name);
    if (iStack.Background(background->Id()) != background) Add(name + u": is not listed under its id"_s);
    for (qint32 i = 0; i < background->NumControls(); ++i) {
      const CVelumControl* control = background->ControlAt(i);
      if (control)
        CheckControl(*background, *control);
      else
        Add(u"%1: field %2 of %3 is missing"_s.arg(name).arg(i).arg(background->NumControls()));
    }
    if (background->Flag(ECseKeepCardsSorted)) CheckKeptSorted(*background);
  }
}

void CVelumStackCheck::CheckControl(const CVelumControlSet& aBackground, const CVelumControl& aControl) {
  const QString name = FieldText(aBackground, aControl);
  CheckId(aControl.Id(), name);
  if (aBackground.FindControl(aControl.Id()) != &aControl) Add(name + u": is not listed under its id"_s);
  if (!CVelumFieldTypes::IsType(aControl.ConType()))
    Add(u"%1: there is no field type %2"_s.arg(name).arg(aControl.ConType()));
  if (aControl.PartnerId() != ENoInt) CheckPartner(aBackground, aControl);
  if (aControl.Flag(EConCardList)) CheckCardList(aBackground, aControl);
}

void CVelumStackCheck::CheckPartner(const CVelumControlSet& aBackground, const CVelumControl& aControl) {
  const QString name = FieldText(aBackground, aControl);
  const CVelumControl* partner = aBackground.FindControl(aControl.PartnerId());
  if (!partner)
    Add(u"%1: its combo partner %2 does not exist"_s.arg(name).arg(aControl.PartnerId()));
  else if (partner->PartnerId() != aControl.Id())
    Add(u"%1: its combo partner '%2' has another partner"_s.arg(name, partner->Name()));
}

void CVelumStackCheck::CheckCardList(const CVelumControlSet& aBackground, const CVelumControl& aControl) {
  const QString name = FieldText(aBackground, aControl);
  if (aControl.RefControlId() != ENoInt && !aBackground.FindControl(aControl.RefControlId()))
    Add(u"%1: the field %2 that gives its selecting value does not exist"_s.arg(name).arg(
        aControl.RefControlId()));
  const Ref<CVelumControlSet> listed = iStack.Background(aControl.SelBackgroundId());
  if (!listed) {
    Add(u"%1: the background %2 of the cards to list does not exist"_s.arg(name).arg(
        aControl.SelBackgroundId()));
    return;
  }
  if (aControl.SelControlId() != ENoInt && !listed->FindControl(aControl.SelControlId()))
    Add(u"%1: the field %2 to check does not exist in background '%3'"_s.arg(name)
            .arg(aControl.SelControlId())
            .arg(listed->Name()));
  for (qint32 i = 0; i < aControl.NumListCols(); ++i) {
    const qint32 id = aControl.ListCol()->IntNum(i);
    if (!listed->FindControl(id))
      Add(u"%1: the column field %2 does not exist in background '%3'"_s.arg(name).arg(id).arg(
          listed->Name()));
  }
}

void CVelumStackCheck::CheckCards() {
  for (qint32 i = 0; i < iStack.Cards().Count(); ++i) {
    const Ref<CVelumCard> card = iStack.GetCardById(i);
    if (card) CheckCard(*card, i);
  }
}

void CVelumStackCheck::CheckCard(CVelumCard& aCard, qint32 aSlot) {
  const QString name = CardText(aCard);
  if (aCard.Id() != aSlot) Add(u"%1: stands in the slot of card %2"_s.arg(name).arg(aSlot));
  const Ref<CVelumControlSet> background = aCard.Background();
  if (!background) {
    Add(u"%1: its background %2 does not exist"_s.arg(name).arg(aCard.BackgroundId()));
    return;
  }
  const CVelumArray& values = aCard.Value();
  for (qint32 i = 0; i < values.Count(); ++i) {
    if (i > 0 && values.IntKeyAt(i) <= values.IntKeyAt(i - 1)) Add(name + u": its values are out of order"_s);
    CheckValue(aCard, *background, values.IntKeyAt(i), values.ValRef(i));
  }
}

void CVelumStackCheck::CheckValue(const CVelumCard& aCard, const CVelumControlSet& aBackground,
                                  qint32 aControlId, const TVelumValue& aVal) {
  const CVelumControl* control = aBackground.FindControl(aControlId);
  if (!control) {
    Add(u"%1: has a value for field %2, which background '%3' does not have"_s.arg(CardText(aCard))
            .arg(aControlId)
            .arg(aBackground.Name()));
    return;
  }
  if (aVal.Type() == EValUndef || !CVelumFieldTypes::IsType(control->ConType())) return;
  if (!HasValue(*control) || aVal.Type() != CVelumValue::ConToValType(control->ConType()))
    Add(u"%1: the value of field '%2' has the type %3, which does not go with %4"_s.arg(
        CardText(aCard), control->Name(), CVelumValue::TypeStr(aVal), control->TypeStr()));
}

void CVelumStackCheck::CheckSortKeys() {
  Ref<CVelumSortKey> key;
  qint32 index = 0;
  for (bool found = iStack.GetFirstSortKey(key, index); found; found = iStack.GetNextSortKey(key, index)) {
    const QString name = u"sort key '%1'"_s.arg(key->Name());
    CheckId(key->Id(), name);
    const Ref<CVelumControlSet> background = iStack.Background(key->BackgroundId());
    if (!background) {
      Add(u"%1: its background %2 does not exist"_s.arg(name).arg(key->BackgroundId()));
      continue;
    }
    TVelumKeyPart part;
    qint32 partIndex = 0;
    qint32 pos = 0;
    for (bool more = key->GetFirstKeyPart(part, partIndex); more;
         more = key->GetNextKeyPart(part, partIndex)) {
      if (!background->FindControl(part.iControlId))
        Add(u"%1: the field %2 does not exist in background '%3'"_s.arg(name)
                .arg(part.iControlId)
                .arg(background->Name()));
      if (part.iLen < 0 || part.iPos != pos)
        Add(u"%1: the part of field %2 stands at %3, not at %4"_s.arg(name)
                .arg(part.iControlId)
                .arg(part.iPos)
                .arg(pos));
      pos += part.iLen;
    }
  }
}

void CVelumStackCheck::CheckKeyIndexes() {
  Ref<CVelumArray> keyIndex;
  qint32 index = 0;
  for (bool found = iStack.GetFirstKeyIndex(keyIndex, index); found;
       found = iStack.GetNextKeyIndex(keyIndex, index)) {
    const QString name = u"key index %1"_s.arg(keyIndex->Id());
    CheckId(keyIndex->Id(), name);
    const Ref<CVelumSortKey> key = FindSortKey(iStack, keyIndex->SortKeyId());
    if (key)
      iProblems += iIndexes.Keys(*keyIndex, *key);
    else
      Add(u"%1: its sort key %2 does not exist"_s.arg(name).arg(keyIndex->SortKeyId()));
  }
}

void CVelumStackCheck::CheckKeptSorted(const CVelumControlSet& aBackground) {
  const QString name = u"background '%1'"_s.arg(aBackground.Name());
  const Ref<CVelumArray> keyIndex = FindKeyIndex(iStack, aBackground.KeyIndexId());
  if (!keyIndex) {
    Add(u"%1: its key index %2 does not exist"_s.arg(name).arg(aBackground.KeyIndexId()));
    return;
  }
  const Ref<CVelumSortKey> key = FindSortKey(iStack, keyIndex->SortKeyId());
  if (key && key->BackgroundId() != aBackground.Id())
    Add(u"%1: its sort key '%2' belongs to another background"_s.arg(name, key->Name()));
  Ref<CVelumCard> card;
  qint32 index = 0;
  qint32 place = 0;
  for (bool found = iStack.GetFirstCardInBackground(aBackground.Id(), card, index); found;
       found = iStack.GetNextCardInBackground(aBackground.Id(), card, index), ++place) {
    if (place < keyIndex->Count() && keyIndex->ValRef(place).Int() == card->Id()) continue;
    Add(u"%1: the order of its cards leaves that of its sort key at %2"_s.arg(name, CardText(*card)));
    return;
  }
}
