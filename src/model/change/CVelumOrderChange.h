// The order of the cards.
#pragma once

#include "model/change/CVelumChange.h"
#include "model/order/CVelumCardOrder.h"

// A card entered or left the order. Its place is told by the card after which it stands, since numbers can be
// given anew.
class CVelumOrderChange final : public CVelumChange {
public:
  CVelumOrderChange() = default;
  // aAfterId ENoInt: at the front. aAlloc: capacity of the order before.
  CVelumOrderChange(bool aAdded, qint32 aCardId, qint32 aAfterId, qint32 aNum, qint32 aAlloc)
      : iCardId(aCardId), iAfterId(aAfterId), iNum(aNum), iAlloc(aAlloc), iAdded(aAdded) {}

  [[nodiscard]] EChangeForm Form() const override { return EFormOrder; }
  [[nodiscard]] bool Apply(CVelumReplay& aReplay) override;
  [[nodiscard]] bool Revert(CVelumReplay& aReplay) override { return Replay(aReplay, !iAdded, iAlloc); }
  [[nodiscard]] qint64 Cost() const override { return static_cast<qint64>(sizeof(*this)); }

protected:
  void WriteBody(CVelumFile& aFile) const override;
  void ReadBody(CVelumFile& aFile) override;

private:
  [[nodiscard]] bool Replay(CVelumReplay& aReplay, bool aAdd, qint32 aAlloc) const;

  qint32 iCardId = ENoInt;
  qint32 iAfterId = ENoInt;
  qint32 iNum = 0;
  qint32 iAlloc = 0;
  bool iAdded = true;
};

// The order, or its numbers, changed as a whole: it stands here as it was and, once the group of changes is
// complete, as it then is. Changes of the order after it in the group are not recorded.
class CVelumOrderAllChange final : public CVelumChange {
public:
  CVelumOrderAllChange() = default;
  explicit CVelumOrderAllChange(CVelumCardOrder::TState aBefore) : iBefore(std::move(aBefore)) {}
  void Complete(CVelumCardOrder::TState aAfter) { iAfter = std::move(aAfter); }

  [[nodiscard]] EChangeForm Form() const override { return EFormOrderAll; }
  [[nodiscard]] bool Apply(CVelumReplay& aReplay) override;
  [[nodiscard]] bool Revert(CVelumReplay& aReplay) override;
  [[nodiscard]] qint64 Cost() const override;

protected:
  void WriteBody(CVelumFile& aFile) const override;
  void ReadBody(CVelumFile& aFile) override;

private:
  CVelumCardOrder::TState iBefore;
  CVelumCardOrder::TState iAfter;
};
