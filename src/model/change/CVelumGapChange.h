// The cards from an id on took the ids from a lower one on.
#pragma once

#include "model/change/CVelumChange.h"

// The table of cards and the name index follow; the order is recorded on its own.
class CVelumGapChange final : public CVelumChange {
public:
  CVelumGapChange() = default;
  // The cards from id aFirst on went down by aGap ids, which nobody had. aCount, aAlloc: slots and capacity
  // of the table before.
  CVelumGapChange(qint32 aFirst, qint32 aGap, qint32 aCount, qint32 aAlloc)
      : iFirst(aFirst), iGap(aGap), iCount(aCount), iAlloc(aAlloc) {}

  [[nodiscard]] EChangeForm Form() const override { return EFormGap; }
  [[nodiscard]] bool Apply(CVelumReplay& aReplay) override;
  [[nodiscard]] bool Revert(CVelumReplay& aReplay) override;
  [[nodiscard]] qint64 Cost() const override { return static_cast<qint64>(sizeof(*this)); }

protected:
  void WriteBody(CVelumFile& aFile) const override;
  void ReadBody(CVelumFile& aFile) override;

private:
  qint32 iFirst = 0;
  qint32 iGap = 0;
  qint32 iCount = 0;
  qint32 iAlloc = 0;
};
