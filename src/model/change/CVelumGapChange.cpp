#include "model/change/CVelumGapChange.h"

#include "model/change/CVelumReplay.h"

bool CVelumGapChange::Apply(CVelumReplay& aReplay) {
  return aReplay.FitsCards(iCount, iAlloc) && aReplay.CloseGap(iFirst, iGap, iCount);
}

bool CVelumGapChange::Revert(CVelumReplay& aReplay) {
  return aReplay.OpenGap(iFirst, iGap, iCount, iAlloc);
}

void CVelumGapChange::WriteBody(CVelumFile& aFile) const {
  for (const qint32 num : {iFirst, iGap, iCount, iAlloc}) aFile.WriteInt(num);
}

void CVelumGapChange::ReadBody(CVelumFile& aFile) {
  for (qint32* num : {&iFirst, &iGap, &iCount, &iAlloc}) *num = aFile.ReadInt();
}
