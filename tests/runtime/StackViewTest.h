// An open stack view on three cards, shared by the tests of CVelumStackView.
#pragma once

#include "runtime/RuntimeFixture.h"

class StackViewTest : public RuntimeTest {
protected:
  // Three cards with a text field "Name".
  void OpenThree() {
    iName = AddField(iSet, u"Name"_s, EConText);
    for (const auto& name : {u"a"_s, u"b"_s, u"c"_s}) iCards.append(AddCard(name));
    Open();
    iRunner.iSent.clear();
  }
  // A list of the cards whose "Name" is what the field iRef says.
  Ref<CVelumControl> AddReferredList() {
    iRef = AddField(iSet, u"Ref"_s, EConText);
    const auto list = AddField(iSet, u"List"_s, EConList, EConCardList);
    list->SetSelBackgroundId(iSet->Id());
    list->SetSelControlId(iName->Id());
    list->SetRefControlId(iRef->Id());
    return list;
  }
  Ref<CVelumSortKey> KeepSortedByName() {
    const auto key = MakeRef<CVelumSortKey>(gStack->IdGen().NextId(), u"k"_s, iSet->Id());
    key->AddKeyPart(EConText, iName->Id(), EWayAscending, 5);
    gStack->AddSortKey(key);
    iSet->SetFlag(ECseKeepCardsSorted, true);
    gStack->NewIndexForSortKey(key);
    gStack->SetControlDynFlags();
    return key;
  }
  [[nodiscard]] QString Cur() { return View().CurCard() ? View().CurCard()->Name() : u"-"_s; }

  Ref<CVelumControl> iName;
  Ref<CVelumControl> iRef;
  QList<Ref<CVelumCard>> iCards;
  Ref<CVelumCard> iFound;
};
