// What a running script sees of the open stack.
#pragma once

#include "model/CVelumStack.h"

// Implemented by the stack view, and by a host without windows for the command line and tests.
class CVelumScriptHost {
public:
  virtual ~CVelumScriptHost() = default;
  // The open stack; never nothing while a script runs.
  [[nodiscard]] virtual Ref<CVelumStack> Stack() = 0;
  // The current card, or nothing.
  [[nodiscard]] virtual Ref<CVelumCard> CurCard() = 0;
  virtual void GoToCard(const Ref<CVelumCard>& aCard) = 0;
  // Goes to the card behind the current one; nothing at the end.
  virtual void GoToNextCard() = 0;
  // aControl is one of the card's background, and aVal of its type.
  virtual void SetCardValue(const Ref<CVelumCard>& aCard, CVelumControl& aControl,
                            const TVelumValue& aVal) = 0;
  // Shows aText until it is dismissed.
  virtual void Answer(const QString& aText) = 0;
  // How far the progress bar is, 0 to 100; it goes round. 100 when the script has ended.
  virtual void ShowProgress(int aPercent) { static_cast<void>(aPercent); }
};
