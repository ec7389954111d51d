// The open stack on the screen as scripts see it.
#pragma once

#include "script/CVelumInterpreter.h"

// Passes everything on to gStackView, whichever that is at the moment.
class CVelumViewScriptHost final : public CVelumScriptHost {
public:
  [[nodiscard]] Ref<CVelumStack> Stack() override;
  [[nodiscard]] Ref<CVelumCard> CurCard() override;
  void GoToCard(const Ref<CVelumCard>& aCard) override;
  void GoToNextCard() override;
  void SetCardValue(const Ref<CVelumCard>& aCard, qint32 aControlId, const TVelumValue& aVal) override;
  void Answer(const QString& aText) override;
  // On the card window's bar, and in the main window.
  void ShowProgress(int aPercent) override;
};
