// A card got another value of its own for a field, or lost it; and what changes with it, the card's date.
#pragma once

#include "model/change/CVelumChange.h"

// When a card was changed last: yyyymmdd and hhmmss.
struct TCardMoment {
  qint32 iDate = ENoInt;
  qint32 iTime = ENoInt;
  friend bool operator==(const TCardMoment&, const TCardMoment&) = default;
};

// There are as many of them as a script sets values, so this one is kept small.
class CVelumValueChange final : public CVelumChange {
public:
  CVelumValueChange() = default;
  // Null stands for no value. aAlloc: capacity of the card's array of values before.
  CVelumValueChange(qint32 aCardId, qint32 aControlId, const TVelumValue* aOld, const TVelumValue* aNew,
                    qint32 aAlloc);

  [[nodiscard]] EChangeForm Form() const override { return EFormValue; }
  [[nodiscard]] bool Apply(CVelumReplay& aReplay) override;
  [[nodiscard]] bool Revert(CVelumReplay& aReplay) override;
  [[nodiscard]] qint64 Cost() const override;

  [[nodiscard]] qint32 CardId() const { return iCardId; }
  [[nodiscard]] qint32 ControlId() const { return iControlId; }
  [[nodiscard]] const TVelumValue& Old() const { return iOld; }
  [[nodiscard]] const TVelumValue& New() const { return iNew; }
  [[nodiscard]] bool HasMoment() const { return iHasMoment; }
  void SetMoment(TCardMoment aOld, TCardMoment aNew);
  // A later value of the same field of the same card takes the place of the new one.
  void SetNew(const TVelumValue* aNew, TCardMoment aMoment);

protected:
  void WriteBody(CVelumFile& aFile) const override;
  void ReadBody(CVelumFile& aFile) override;

private:
  TVelumValue iOld;
  TVelumValue iNew;
  qint32 iCardId = ENoInt;
  qint32 iControlId = ENoInt;
  qint32 iAlloc = 0;
  TCardMoment iOldMoment;
  TCardMoment iNewMoment;
  bool iHadOld = false;
  bool iHasNew = false;
  bool iHasMoment = false;
};
