// The open stack without windows: for the command line and for tests.
#pragma once

#include "script/CVelumInterpreter.h"

// Goes to cards and sets values as the windows would, with nothing to show.
class CVelumPlainHost final : public CVelumScriptHost {
public:
  // Makes itself the host of aInterpreter while it lives.
  CVelumPlainHost(const Ref<CVelumStack>& aStack, const Ref<CVelumInterpreter>& aInterpreter);
  ~CVelumPlainHost() override;
  CVelumPlainHost(const CVelumPlainHost&) = delete;
  CVelumPlainHost& operator=(const CVelumPlainHost&) = delete;

  // Makes a card the current one without sending a message.
  void SetCurCard(const Ref<CVelumCard>& aCard) { iCurCard = aCard; }
  // Sends aMsg to a control of a card (or to the card, where aControl is nothing) and returns the owner of
  // the handler that ran. A failure leaves the interpreter reset, and passes on.
  Ref<CVelumScripted> Send(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl,
                           const QString& aMsg);

  [[nodiscard]] Ref<CVelumStack> Stack() override { return iStack; }
  [[nodiscard]] Ref<CVelumCard> CurCard() override { return iCurCard; }
  void GoToCard(const Ref<CVelumCard>& aCard) override;
  void GoToNextCard() override;
  void SetCardValue(const Ref<CVelumCard>& aCard, CVelumControl& aControl, const TVelumValue& aVal) override;
  void Answer(const QString& aText) override;

private:
  Ref<CVelumStack> iStack;
  Ref<CVelumInterpreter> iInterpreter;
  Ref<CVelumCard> iCurCard;
};
