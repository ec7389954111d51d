#include "model/change/CVelumKeyChange.h"

#include "model/change/CVelumReplay.h"

using namespace CVelumChangeIo;

bool CVelumKeyChange::Apply(CVelumReplay& aReplay) {
  return aReplay.FitsIndex(iIndexId, iAlloc) && Replay(aReplay, iAdded, ENoInt);
}

bool CVelumKeyBulkChange::Apply(CVelumReplay& aReplay) {
  return aReplay.FitsIndex(iIndexId, iOldAlloc) && Replay(aReplay, iAdded, iNewAlloc);
}

bool CVelumKeyChange::Replay(CVelumReplay& aReplay, bool aAdd, qint32 aAlloc) const {
  return aAdd ? aReplay.AddKey(iIndexId, iPlace, iKey, iCardId, aAlloc)
              : aReplay.RemoveKey(iIndexId, iPlace, iKey, iCardId, aAlloc);
}

qint64 CVelumKeyChange::Cost() const {
  return static_cast<qint64>(sizeof(*this)) + CostOf(iKey);
}

void CVelumKeyChange::WriteBody(CVelumFile& aFile) const {
  aFile.WriteBoolean(iAdded);
  aFile.WriteInt(iIndexId);
  aFile.WriteInt(iPlace);
  WriteText(aFile, iKey);
  aFile.WriteInt(iCardId);
  aFile.WriteInt(iAlloc);
}

void CVelumKeyChange::ReadBody(CVelumFile& aFile) {
  iAdded = aFile.ReadBoolean();
  iIndexId = aFile.ReadInt();
  iPlace = aFile.ReadInt();
  iKey = ReadText(aFile);
  iCardId = aFile.ReadInt();
  iAlloc = aFile.ReadInt();
}

bool CVelumKeyBulkChange::Replay(CVelumReplay& aReplay, bool aAdd, qint32 aAlloc) const {
  return aAdd ? aReplay.AddKeys(iIndexId, iEntries, aAlloc) : aReplay.RemoveKeys(iIndexId, iEntries, aAlloc);
}

qint64 CVelumKeyBulkChange::Cost() const {
  qint64 cost = static_cast<qint64>(sizeof(*this) + iEntries.size() * sizeof(TKeyEntry));
  for (const TKeyEntry& entry : iEntries) cost += CostOf(entry.iKey);
  return cost;
}

void CVelumKeyBulkChange::WriteBody(CVelumFile& aFile) const {
  aFile.WriteBoolean(iAdded);
  aFile.WriteInt(iIndexId);
  aFile.WriteInt(iOldAlloc);
  aFile.WriteInt(iNewAlloc);
  aFile.WriteInt(static_cast<qint32>(iEntries.size()));
  for (const TKeyEntry& entry : iEntries) {
    aFile.WriteInt(entry.iPlace);
    aFile.WriteInt(entry.iCardId);
    WriteText(aFile, entry.iKey);
  }
}

void CVelumKeyBulkChange::ReadBody(CVelumFile& aFile) {
  constexpr qint64 least = 3 * 4;
  iAdded = aFile.ReadBoolean();
  iIndexId = aFile.ReadInt();
  iOldAlloc = aFile.ReadInt();
  iNewAlloc = aFile.ReadInt();
  iEntries.resize(static_cast<size_t>(ReadCount(aFile, least)));
  qint32 last = -1;
  for (TKeyEntry& entry : iEntries) {
    entry.iPlace = aFile.ReadInt();
    entry.iCardId = aFile.ReadInt();
    entry.iKey = ReadText(aFile);
    Require(entry.iPlace > last, u"key places"_s);
    last = entry.iPlace;
  }
}
