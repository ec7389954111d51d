// The order of the cards: card ids with sparse, ascending order numbers.
#pragma once

#include "core/array/CVelumArray.h"

#include <memory>
#include <span>
#include <vector>

// On file it is a keyed array (key: order number, value: card id). In memory it is a list of blocks of some
// 512 cards with a count tree above, so that a card is inserted or found in the middle of a million without
// touching the others. Renumbering is put off: a block only notes the position at which it stood, and works
// its numbers out when one of them is asked for or a card enters or leaves. So a renumbering for every few
// cards that are put before the same card, as the numbers demand it, costs little.
class CVelumCardOrder final : public CVelumStored {
public:
  CVelumCardOrder();
  ~CVelumCardOrder() override;

  [[nodiscard]] QString ObjDescr() const override;
  [[nodiscard]] qint32 Count() const { return iCount; }
  [[nodiscard]] bool Changed() const override { return iChanged; }
  void SetChanged(bool aChanged) override { iChanged = aChanged; }

  // Card id and order number at a position from 0; host error 9 beyond Count().
  [[nodiscard]] qint32 IdAt(qint32 aPos) const;
  // The ids from a position on, at least one, as far as they lie side by side; good until the order changes.
  // Host error 9 as above.
  [[nodiscard]] std::span<const qint32> IdsFrom(qint32 aPos) const;
  [[nodiscard]] qint32 NumAt(qint32 aPos) const;
  // Position of a card, or -1.
  [[nodiscard]] qint32 PosOf(qint32 aId) const;
  // Order number of a card, or ENoInt.
  [[nodiscard]] qint32 NumOf(qint32 aId) const;
  // The order numbers by card id, ENoInt for ids without a card; for work on all cards.
  [[nodiscard]] std::vector<qint32> NumsById() const;

  // aBit is BackgroundBit of the card's background. aPos may be Count().
  void InsertAt(qint32 aPos, qint32 aId, qint32 aNum, quint64 aBit);
  void RemoveAt(qint32 aPos);
  // The numbers become aStep, 2 * aStep, ...; host error 6 when they don't fit.
  void Renumber(qint32 aStep);
  // Puts another card into the slot of a position; the number stays.
  void SetIdAt(qint32 aPos, qint32 aId);
  // Replaces everything by aIds with the numbers aStep, 2 * aStep, ...; aBits are their bits.
  void Assign(const std::vector<qint32>& aIds, const std::vector<quint64>& aBits, qint32 aStep);
  // Moves aNum cards from aFrom on to stand before aTo, which lies outside of them, and renumbers.
  void Move(qint32 aFrom, qint32 aNum, qint32 aTo, qint32 aStep);

  // All of it, for changes that are taken back.
  struct TState {
    std::vector<qint32> iIds;
    std::vector<qint32> iNums;
    qint32 iId = ENoInt;
    qint32 iFlags = EArrIntKey;
    qint32 iAllocStep = 50;
    qint32 iAlloc = 10;
    qint32 iSortKeyId = ENoInt;
    friend bool operator==(const TState&, const TState&) = default;
  };
  [[nodiscard]] TState State() const;
  // aBits are the bits of the cards of aState.
  void Restore(const TState& aState, const std::vector<quint64>& aBits);
  [[nodiscard]] qint32 Alloc() const { return iAlloc; }
  void RestoreAlloc(qint32 aAlloc);

  // A filter for walks over one background: blocks without its bit hold no card of it.
  [[nodiscard]] static quint64 BackgroundBit(qint32 aId) { return quint64(1) << (quint32(aId) % 64); }
  void AddBit(qint32 aId, quint64 aBit);
  // No block has any bit: to be followed by AddBit for all cards.
  void ClearBits();
  // Finds every card anew where it stands: a card that stood twice is not found once RemoveAt took one of
  // them.
  void RenewPlaces();
  // The first position >= aPos, or the last one <= aPos, in a block with aBit; Count() or -1 without one.
  [[nodiscard]] qint32 SkipForward(qint32 aPos, quint64 aBit) const;
  [[nodiscard]] qint32 SkipBackward(qint32 aPos, quint64 aBit) const;

  // The same as an array of keys and ids.
  [[nodiscard]] Ref<CVelumArray> ToArray() const;

  // Ids from aBound on have no place in memory of their own: they are not found by PosOf. So a damaged id
  // does not cost memory; to be lifted when the ids have been checked.
  void SetIdBound(qint32 aBound) { iIdBound = aBound; }
  void LiftIdBound() { iIdBound = EMaxId; }

  // Leaves all bits set.
  void Internalize(CVelumFile& aFile) override;
  void Externalize(CVelumFile& aFile) override;
  [[nodiscard]] qint64 ExtLen() const override;
  [[nodiscard]] QStringView XmlTag() const override { return u"Array"; }
  void InternalizeXml(CVelumXmlParser& aParser) override;
  void ExternalizeXml(CVelumXmlWriter& aWriter) override;

private:
  static constexpr qint32 EMaxId = 50'000'000; // beyond every capacity that a file may have
  struct TBlock;
  struct TPlace {
    TBlock* iBlock;
    qint32 iIndex; // in the block
  };

  [[nodiscard]] TPlace Locate(qint32 aPos) const;
  [[nodiscard]] TPlace Search(qint32 aPos) const;
  [[nodiscard]] qint32 StartOf(qint32 aBlockNo) const;
  void Mark(qint32 aBlockNo, quint64 aBit);
  void RebuildGroups();
  [[nodiscard]] qint32 BlockFrom(qint32 aBlockNo, quint64 aBit) const;
  [[nodiscard]] qint32 BlockUpTo(qint32 aBlockNo, quint64 aBit) const;
  void AddToTree(qint32 aBlockNo, qint32 aDelta);
  void RebuildTree();
  void Split(TBlock& aBlock);
  void DropBlock(TBlock& aBlock);
  void Append(qint32 aId, qint32 aNum);
  void SetHome(qint32 aId, TBlock* aBlock);
  void SetBit(qint32 aId, quint64 aBit);
  // The bits of all cards of a block.
  [[nodiscard]] quint64 BitsOf(const TBlock& aBlock) const;
  void Grow(qint32 aNum);
  void Clear();
  void Adopt(const CVelumArray& aArray);

  std::vector<std::unique_ptr<TBlock>> iBlocks;
  std::vector<quint64> iBits;      // per block: backgrounds that may occur there
  std::vector<quint64> iGroups;    // the same for each EGroup blocks
  std::vector<qint32> iTree;       // Fenwick tree over the counts of the blocks
  std::vector<TBlock*> iHome;      // by card id
  std::vector<quint8> iBitNo;      // by card id: which bit its background has; ENoBit when unknown
  mutable TBlock* iMemo = nullptr; // block of the last access, if it is still there, and its first position
  mutable qint32 iMemoStart = 0;
  qint32 iCount = 0;
  qint32 iIdBound = EMaxId;
  bool iChanged = true;
  // Members of the array on file that only travel along.
  qint32 iId = ENoInt;
  qint32 iFlags = EArrIntKey;
  qint32 iAllocStep = 50;
  qint32 iAlloc = 10;
  qint32 iSortKeyId = ENoInt;
};
