// Cards entered or left the table of cards, with all that they hold.
#pragma once

#include "model/CVelumCard.h"
#include "model/change/CVelumChange.h"

// Cards that have left their stack keep their values, and nobody changes them. Those that entered stand in
// the change as they are when it is complete: what happened to them later in the same group is not recorded.
class CVelumCardChange final : public CVelumChange {
public:
  CVelumCardChange() = default;
  // aCount, aAlloc: slots and capacity of the table before.
  CVelumCardChange(bool aAdded, Ref<CVelumCard> aCard, qint32 aCount, qint32 aAlloc);

  [[nodiscard]] EChangeForm Form() const override { return EFormCard; }
  [[nodiscard]] bool Apply(CVelumReplay& aReplay) override;
  [[nodiscard]] bool Revert(CVelumReplay& aReplay) override;
  [[nodiscard]] qint64 Cost() const override;

  // Bytes of a card that has left, roughly.
  [[nodiscard]] static qint64 CostOf(const CVelumCard& aCard);
  [[nodiscard]] bool IsAdded() const { return iAdded; }
  [[nodiscard]] const std::vector<Ref<CVelumCard>>& Cards() const { return iCards; }
  // Another card that entered, or left, right after; false if it must be a change of its own.
  [[nodiscard]] bool Join(bool aAdded, const Ref<CVelumCard>& aCard);

protected:
  void WriteBody(CVelumFile& aFile) const override;
  void ReadBody(CVelumFile& aFile) override;

private:
  [[nodiscard]] bool Put(CVelumReplay& aReplay, bool aBack);
  [[nodiscard]] bool Take(CVelumReplay& aReplay, bool aBack);

  std::vector<Ref<CVelumCard>> iCards; // in the order in which they came or went
  std::vector<qint32> iIds;
  qint32 iCount = 0;
  qint32 iAlloc = 0;
  bool iAdded = true;
};
