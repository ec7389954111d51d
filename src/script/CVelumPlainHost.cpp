#include "script/CVelumPlainHost.h"

#include "core/CVelumChecked.h"

CVelumPlainHost::CVelumPlainHost(const Ref<CVelumStack>& aStack, const Ref<CVelumInterpreter>& aInterpreter)
    : iStack(aStack), iInterpreter(aInterpreter) {
  static_cast<void>(iStack->OrderFirst(iCurCard));
  iInterpreter->SetHost(this);
}

CVelumPlainHost::~CVelumPlainHost() {
  iInterpreter->SetHost(nullptr);
}

Ref<CVelumScripted> CVelumPlainHost::Send(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl,
                                          const QString& aMsg) {
  try {
    return iInterpreter->LocateAndExecScript(aCard, aControl, aMsg);
  } catch (...) {
    iInterpreter->Reset();
    throw;
  }
}

void CVelumPlainHost::GoToCard(const Ref<CVelumCard>& aCard) {
  if (aCard == iCurCard) return;
  iCurCard = aCard;
  iInterpreter->LocateAndExecScript(aCard, nullptr, u"openCard"_s);
}

void CVelumPlainHost::GoToNextCard() {
  Ref<CVelumCard> next;
  if (iCurCard && iStack->OrderNext(*iCurCard, next)) GoToCard(next);
}

void CVelumPlainHost::SetCardValue(const Ref<CVelumCard>& aCard, CVelumControl& aControl,
                                   const TVelumValue& aVal) {
  aCard->SetControlVal(aControl, aVal);
  if (iCurCard && iCurCard->Dirty()) iCurCard->UpdateCardLists();
}

void CVelumPlainHost::Answer(const QString& aText) {
  if (CVelumSeams::Presenter().Answer(aText)) iInterpreter->Break();
}
