#include "model/change/CVelumValueChange.h"

#include "model/change/CVelumReplay.h"

using namespace CVelumChangeIo;

CVelumValueChange::CVelumValueChange(qint32 aCardId, qint32 aControlId, const TVelumValue* aOld,
                                     const TVelumValue* aNew, qint32 aAlloc)
    : iCardId(aCardId), iControlId(aControlId), iAlloc(aAlloc), iHadOld(aOld != nullptr),
      iHasNew(aNew != nullptr) {
  if (aOld) iOld = *aOld;
  if (aNew) iNew = *aNew;
}

void CVelumValueChange::SetMoment(TCardMoment aOld, TCardMoment aNew) {
  if (!iHasMoment) iOldMoment = aOld;
  iNewMoment = aNew;
  iHasMoment = true;
}

void CVelumValueChange::SetNew(const TVelumValue* aNew, TCardMoment aMoment) {
  iHasNew = aNew != nullptr;
  iNew = aNew ? *aNew : TVelumValue();
  if (iHasMoment) iNewMoment = aMoment;
}

bool CVelumValueChange::Apply(CVelumReplay& aReplay) {
  if (!aReplay.SetValue(iCardId, iControlId, iHadOld ? &iOld : nullptr, iHasNew ? &iNew : nullptr, ENoInt))
    return false;
  if (iHasMoment) aReplay.SetMoment(iCardId, iNewMoment.iDate, iNewMoment.iTime);
  return true;
}

bool CVelumValueChange::Revert(CVelumReplay& aReplay) {
  if (!aReplay.SetValue(iCardId, iControlId, iHasNew ? &iNew : nullptr, iHadOld ? &iOld : nullptr, iAlloc))
    return false;
  if (iHasMoment) aReplay.SetMoment(iCardId, iOldMoment.iDate, iOldMoment.iTime);
  return true;
}

qint64 CVelumValueChange::Cost() const {
  return static_cast<qint64>(sizeof(*this)) + CostOf(iOld) + CostOf(iNew);
}

void CVelumValueChange::WriteBody(CVelumFile& aFile) const {
  aFile.WriteInt(iCardId);
  aFile.WriteInt(iControlId);
  aFile.WriteInt(iAlloc);
  aFile.WriteByte(static_cast<quint8>((iHadOld ? 1 : 0) | (iHasNew ? 2 : 0) | (iHasMoment ? 4 : 0)));
  if (iHadOld) WriteValue(aFile, iOld);
  if (iHasNew) WriteValue(aFile, iNew);
  if (!iHasMoment) return;
  for (const TCardMoment& moment : {iOldMoment, iNewMoment}) {
    aFile.WriteInt(moment.iDate);
    aFile.WriteInt(moment.iTime);
  }
}

void CVelumValueChange::ReadBody(CVelumFile& aFile) {
  iCardId = aFile.ReadInt();
  iControlId = aFile.ReadInt();
  iAlloc = aFile.ReadInt();
  bool eof = false;
  const quint8 parts = aFile.ReadByte(eof);
  Require(parts < 8, u"value parts"_s);
  iHadOld = (parts & 1) != 0;
  iHasNew = (parts & 2) != 0;
  iHasMoment = (parts & 4) != 0;
  if (iHadOld) iOld = ReadValue(aFile);
  if (iHasNew) iNew = ReadValue(aFile);
  if (!iHasMoment) return;
  for (TCardMoment* moment : {&iOldMoment, &iNewMoment}) {
    moment->iDate = aFile.ReadInt();
    moment->iTime = aFile.ReadInt();
  }
}
