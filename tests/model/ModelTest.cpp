#include "model/ModelTest.h"

namespace ModelTest {

TSampleStack::TSampleStack() : iStack(MakeRef<CVelumStack>(u"Sample"_s)) {
  qint32 index = 0;
  EXPECT_TRUE(iStack->GetFirstBackground(iFirst, index));
  iSecond = MakeRef<CVelumControlSet>(u"Second"_s, iStack->IdGen().NextId());
  iStack->AddBackground(iSecond);
  iTown = AddField(iFirst, u"Town"_s, EConText);
  iSize = AddField(iFirst, u"Size"_s, EConInteger);
  iSince = AddField(iFirst, u"Since"_s, EConDate);
  iNote = AddField(iFirst, u"Note"_s, EConText);
  iKey = AddField(iSecond, u"Key"_s, EConText);
  iAll = AddField(iSecond, u"All"_s, EConList);
  iAll->SetFlag(EConCardList, true);
  iAll->SetSelBackgroundId(iFirst->Id());
  iSome = AddField(iSecond, u"Some"_s, EConList);
  iSome->SetFlag(EConCardList, true);
  iSome->SetSelBackgroundId(iFirst->Id());
  iSome->SetSelControlId(iTown->Id());
  iSome->SetRefControlId(iKey->Id());
  const Ref<CVelumArray> cols = MakeRef<CVelumArray>(0, EValInt);
  for (const Ref<CVelumControl>& col : {iNote, iSize}) {
    TVelumElem elem;
    cols->InitElem(elem);
    elem.iVal = TVelumValue::OfInt(col->Id());
    cols->CreateAtEnd(elem);
  }
  iSome->SetListCol(cols);
  iStack->SetControlDynFlags();
}

Ref<CVelumControl> TSampleStack::AddField(const Ref<CVelumControlSet>& aBackground, const QString& aName,
                                          qint32 aConType) const {
  const Ref<CVelumControl> control = MakeRef<CVelumControl>(iStack->IdGen().NextId(), aName, aConType);
  aBackground->AddControl(control, ENoInt);
  return control;
}

Ref<CVelumCard> TSampleStack::AddCard(const Ref<CVelumControlSet>& aBackground, const QString& aName) const {
  const Ref<CVelumCard> card = MakeRef<CVelumCard>(aName, aBackground);
  iStack->AddCard(card, nullptr, false);
  return card;
}

} // namespace ModelTest
