#include "runtime/script/CVelumViewScriptHost.h"

#include "core/CVelumChecked.h"
#include "core/CVelumSeams.h"
#include "runtime/view/CVelumStackView.h"

namespace {

// A script cannot outlive the view: what closes the stack breaks it first. Host error 91 all the same.
CVelumStackView& View() {
  return CVelumChecked::Deref(gStackView);
}

// A script that could not leave the card would go on as if it had.
void CheckEntry() {
  if (View().RefuseEntry())
    CVelumError::RaiseHost(EHostBadCall, u"the field that has the focus holds what is no value of it"_s);
}

} // namespace

CVelumViewScriptHost::CVelumViewScriptHost() : iInterpreter(MakeRef<CVelumInterpreter>()) {
  iInterpreter->SetHost(this);
  gInterpreter = iInterpreter;
  Install(this);
}

CVelumViewScriptHost::~CVelumViewScriptHost() {
  Install(nullptr);
  gInterpreter = nullptr;
}

void CVelumViewScriptHost::LocateAndExecScript(const Ref<CVelumCard>& aCard,
                                               const Ref<CVelumControl>& aControl, const QString& aMsg) {
  iInterpreter->LocateAndExecScript(aCard, aControl, aMsg);
}

Ref<CVelumStack> CVelumViewScriptHost::Stack() {
  return View().Stack();
}

Ref<CVelumCard> CVelumViewScriptHost::CurCard() {
  return gStackView ? gStackView->CurCard() : nullptr;
}

void CVelumViewScriptHost::GoToCard(const Ref<CVelumCard>& aCard) {
  CheckEntry();
  View().GoToCard(aCard);
}

void CVelumViewScriptHost::GoToNextCard() {
  CheckEntry();
  Ref<CVelumCard> card;
  static_cast<void>(View().OrderNext(card));
}

void CVelumViewScriptHost::SetCardValue(const Ref<CVelumCard>& aCard, CVelumControl& aControl,
                                        const TVelumValue& aVal) {
  View().SetCardValue(aCard, aControl.Id(), aVal);
}

void CVelumViewScriptHost::Answer(const QString& aText) {
  if (CVelumSeams::Presenter().Answer(aText)) iInterpreter->Break();
}

void CVelumViewScriptHost::ShowProgress(int aPercent) {
  if (gStackView && gStackView->CardView()) gStackView->CardView()->ShowProgress(aPercent);
  CVelumSeams::Presenter().ScriptProgress(aPercent);
}
