// Entries of the name index and of key indexes.
#pragma once

#include "model/change/CVelumChange.h"

// One entry came or went.
class CVelumKeyChange final : public CVelumChange {
public:
  CVelumKeyChange() = default;
  // aIndexId ENoInt is the name index. aAlloc: capacity of the index before.
  CVelumKeyChange(bool aAdded, qint32 aIndexId, qint32 aPlace, QString aKey, qint32 aCardId, qint32 aAlloc)
      : iKey(std::move(aKey)), iIndexId(aIndexId), iPlace(aPlace), iCardId(aCardId), iAlloc(aAlloc),
        iAdded(aAdded) {}

  [[nodiscard]] EChangeForm Form() const override { return EFormKey; }
  [[nodiscard]] bool Apply(CVelumReplay& aReplay) override;
  [[nodiscard]] bool Revert(CVelumReplay& aReplay) override { return Replay(aReplay, !iAdded, iAlloc); }
  [[nodiscard]] qint64 Cost() const override;

protected:
  void WriteBody(CVelumFile& aFile) const override;
  void ReadBody(CVelumFile& aFile) override;

private:
  [[nodiscard]] bool Replay(CVelumReplay& aReplay, bool aAdd, qint32 aAlloc) const;

  QString iKey;
  qint32 iIndexId = ENoInt;
  qint32 iPlace = 0;
  qint32 iCardId = ENoInt;
  qint32 iAlloc = 0;
  bool iAdded = true;
};

// One entry of many: its place in the index that has all of them.
struct TKeyEntry {
  qint32 iPlace = 0;
  qint32 iCardId = ENoInt;
  QString iKey;
};

// Many entries came or went at once.
class CVelumKeyBulkChange final : public CVelumChange {
public:
  CVelumKeyBulkChange() = default;
  // aEntries by ascending place. The capacities of the index are those before and after.
  CVelumKeyBulkChange(bool aAdded, qint32 aIndexId, std::vector<TKeyEntry> aEntries, qint32 aOldAlloc,
                      qint32 aNewAlloc)
      : iIndexId(aIndexId), iEntries(std::move(aEntries)), iOldAlloc(aOldAlloc), iNewAlloc(aNewAlloc),
        iAdded(aAdded) {}

  [[nodiscard]] EChangeForm Form() const override { return EFormKeyBulk; }
  [[nodiscard]] bool Apply(CVelumReplay& aReplay) override;
  [[nodiscard]] bool Revert(CVelumReplay& aReplay) override { return Replay(aReplay, !iAdded, iOldAlloc); }
  [[nodiscard]] qint64 Cost() const override;

protected:
  void WriteBody(CVelumFile& aFile) const override;
  void ReadBody(CVelumFile& aFile) override;

private:
  [[nodiscard]] bool Replay(CVelumReplay& aReplay, bool aAdd, qint32 aAlloc) const;

  qint32 iIndexId = ENoInt;
  std::vector<TKeyEntry> iEntries;
  qint32 iOldAlloc = 0;
  qint32 iNewAlloc = 0;
  bool iAdded = true;
};
