// The open stack on the screen as scripts see it, and the interpreter as its windows see it.
#pragma once

#include "runtime/script/CVelumScriptRunner.h"
#include "script/CVelumInterpreter.h"

// Passes everything on to gStackView, whichever that is at the moment, and to its interpreter.
class CVelumViewScriptHost final : public CVelumScriptHost, public CVelumScriptRunner {
public:
  // Makes the interpreter, which is gInterpreter then, and installs itself on both sides.
  CVelumViewScriptHost();
  ~CVelumViewScriptHost() override;
  CVelumViewScriptHost(const CVelumViewScriptHost&) = delete;
  CVelumViewScriptHost& operator=(const CVelumViewScriptHost&) = delete;

  // CVelumScriptHost
  [[nodiscard]] Ref<CVelumStack> Stack() override;
  [[nodiscard]] Ref<CVelumCard> CurCard() override;
  void GoToCard(const Ref<CVelumCard>& aCard) override;
  void GoToNextCard() override;
  void SetCardValue(const Ref<CVelumCard>& aCard, CVelumControl& aControl, const TVelumValue& aVal) override;
  void Answer(const QString& aText) override;
  // On the card window's bar, and in the main window.
  void ShowProgress(int aPercent) override;

  // CVelumScriptRunner
  void LocateAndExecScript(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl,
                           const QString& aMsg) override;
  void SetParamVal(const QString& aVal) override { iInterpreter->SetParamVal(aVal); }
  [[nodiscard]] bool Running() const override { return iInterpreter->Running(); }
  void Break() override { iInterpreter->Break(); }
  void Reset() override { iInterpreter->Reset(); }
  [[nodiscard]] TRunError RunError() const override { return iInterpreter->GetError(); }

private:
  const Ref<CVelumInterpreter> iInterpreter;
};
