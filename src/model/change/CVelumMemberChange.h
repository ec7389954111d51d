// A member of an object got another value.
#pragma once

#include "model/change/CVelumChange.h"
#include "model/change/TDocAddress.h"

namespace CVelumChangeIo {

// The value of a member; fonts and arrays in their stored form.
void WriteMember(CVelumFile& aFile, const TMemberVal& aVal);
[[nodiscard]] TMemberVal ReadMember(CVelumFile& aFile);

} // namespace CVelumChangeIo

class CVelumMemberChange final : public CVelumChange {
public:
  CVelumMemberChange() = default;
  CVelumMemberChange(TDocAddress aObj, EMember aMember, TMemberVal aOld, TMemberVal aNew)
      : iObj(aObj), iMember(aMember), iOld(std::move(aOld)), iNew(std::move(aNew)) {}

  [[nodiscard]] EChangeForm Form() const override { return EFormMember; }
  [[nodiscard]] bool Apply(CVelumReplay& aReplay) override;
  [[nodiscard]] bool Revert(CVelumReplay& aReplay) override;
  [[nodiscard]] qint64 Cost() const override;

  [[nodiscard]] const TDocAddress& Obj() const { return iObj; }
  [[nodiscard]] EMember Member() const { return iMember; }
  [[nodiscard]] const TMemberVal& Old() const { return iOld; }
  [[nodiscard]] const TMemberVal& New() const { return iNew; }
  // A later value of the same member takes the place of the new one.
  void SetNew(TMemberVal aNew) { iNew = std::move(aNew); }

protected:
  void WriteBody(CVelumFile& aFile) const override;
  void ReadBody(CVelumFile& aFile) override;

private:
  TDocAddress iObj;
  EMember iMember = EMemberName;
  TMemberVal iOld;
  TMemberVal iNew;
};
