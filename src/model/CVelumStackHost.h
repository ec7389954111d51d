// The open stack, as imports see it.
#pragma once

#include "model/CVelumStack.h"

// Implemented by the stack view, which also leaves a card before it goes, and by CVelumPlainStackHost where
// there is no window.
class CVelumStackHost {
public:
  virtual ~CVelumStackHost() = default;
  [[nodiscard]] virtual Ref<CVelumStack> Stack() const = 0;
  // Deletes the cards of a background, and the background too unless aOnlyCards.
  virtual void DeleteBackground(const Ref<CVelumControlSet>& aBackground, bool aOnlyCards) = 0;
  // Deletes the cards of a background whose ids are below aEnd: those that were there before others came.
  virtual void DeleteOldCards(const Ref<CVelumControlSet>& aBackground, qint32 aEnd) = 0;
};

// A stack without a window.
class CVelumPlainStackHost final : public CVelumStackHost {
public:
  explicit CVelumPlainStackHost(Ref<CVelumStack> aStack) : iStack(std::move(aStack)) {}
  [[nodiscard]] Ref<CVelumStack> Stack() const override { return iStack; }
  void DeleteBackground(const Ref<CVelumControlSet>& aBackground, bool aOnlyCards) override {
    iStack->DeleteBackground(aBackground, aOnlyCards);
  }
  void DeleteOldCards(const Ref<CVelumControlSet>& aBackground, qint32 aEnd) override {
    iStack->DeleteCardsOf(*aBackground, aEnd);
  }

private:
  Ref<CVelumStack> iStack;
};
