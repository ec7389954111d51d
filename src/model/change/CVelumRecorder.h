// The one place through which every change of a document passes on its way to undo and to whoever else
// listens.
#pragma once

#include "core/CVelumSeams.h"
#include "model/change/CVelumChangeGroup.h"
#include "model/change/CVelumValueChange.h"

// Takes finished groups of changes.
class CVelumChangeTaker {
public:
  virtual ~CVelumChangeTaker() = default;
  // Empty groups are not handed over, except as the last of several pieces. A command whose changes need more
  // than Bound() bytes is handed over in pieces, of which only the last one is not aMore.
  virtual void Take(CVelumChangeGroup aGroup, bool aMore) = 0;
  [[nodiscard]] virtual qint64 Bound() const = 0;
};

// Makes changes of what the model tells, for one stack, and gathers them in groups that commands open and
// close (CVelumError::CCommand). Groups nest: the outermost one counts. What is computed, a second stack, an
// object that does not stand in the document, and a value that stays the same are no changes.
class CVelumRecorder final : public CVelumCommandWatch {
public:
  // Listens until it goes, or until another one is made; when that goes, again. Both must outlive it.
  CVelumRecorder(CVelumStack& aStack, CVelumChangeTaker& aTaker);
  ~CVelumRecorder() override;
  CVelumRecorder(const CVelumRecorder&) = delete;
  CVelumRecorder& operator=(const CVelumRecorder&) = delete;

  // The group gets the outermost name that is there when something changes.
  void CommandBegun(const QString& aName) override;
  void CommandEnded() override;
  // Changes that came while no command was open. They are handed over before the next command begins.
  [[nodiscard]] qint32 Strays() const { return iStrays; }
  // Whether nothing has changed since groups were handed over.
  [[nodiscard]] bool IsEmpty() const { return iGroup.IsEmpty(); }
  // Hands over what has come so far, also in the middle of a command: what follows is a step of its own.
  void EndGroup();

  [[nodiscard]] bool Records(const CVelumStack& aStack) const { return &iStack == &aStack; }
  [[nodiscard]] CVelumStack& Stack() const { return iStack; }
  // What the model tells. aObj is the object of the address, to tell one that stands elsewhere.
  void Member(const CVelumObject& aObj, TDocAddress aAddress, EMember aMember, const TMemberVal& aOld,
              const TMemberVal& aNew);
  void Value(const CVelumCard& aCard, qint32 aControlId, const TVelumValue* aOld, const TVelumValue* aNew,
             qint32 aAlloc);
  void Moment(const CVelumCard& aCard, TCardMoment aOld, TCardMoment aNew);
  // An entry of the name index (aIndexId ENoInt) or of a key index.
  void Key(bool aAdded, qint32 aIndexId, qint32 aPlace, const QString& aKey, qint32 aCardId, qint32 aAlloc);
  // Many of them: aEntries by ascending place, in the index that has them.
  void Keys(bool aAdded, qint32 aIndexId, std::vector<TKeyEntry> aEntries, qint32 aOldAlloc,
            qint32 aNewAlloc);
  void Order(bool aAdded, qint32 aCardId, qint32 aAfterId, qint32 aNum, qint32 aAlloc);
  // To be called before the order or its numbers change as a whole.
  void OrderAll(const CVelumCardOrder& aOrder);
  void Card(bool aAdded, CVelumCard& aCard, qint32 aCount, qint32 aAlloc);
  // The cards from aFirst on are about to go down by aGap ids.
  void Gap(qint32 aFirst, qint32 aGap, qint32 aCount, qint32 aAlloc);
  void Child(bool aAdded, EChild aKind, qint32 aOwnerId, qint32 aId, CVelumStored& aChild, qint32 aAfterId,
             TChildAllocs aAllocs);

private:
  [[nodiscard]] bool IsNew(qint32 aCardId) const { return aCardId >= iFirstNew; }
  void Add(std::unique_ptr<CVelumChange> aChange);
  void TakeName();
  void Weigh(qint64 aCost);
  void HandOver(bool aMore);

  CVelumStack& iStack;
  CVelumChangeTaker& iTaker;
  CVelumChangeGroup iGroup;
  CVelumOrderAllChange* iOrderAll = nullptr; // in iGroup: the order is kept as a whole from there on
  CVelumValueChange* iLastValue = nullptr;   // in iGroup: its last change, when that is one of a value
  // Cards from this id on were added in the open group: they are recorded with all that they hold then.
  qint32 iFirstNew = std::numeric_limits<qint32>::max();
  QStringList iNames;   // of the commands that are open, empty ones too
  qint64 iWeight = 0;   // bytes of what is in iGroup, roughly
  bool iPieces = false; // the open command has handed over a piece
  qint32 iStrays = 0;
};

namespace CVelumRecord {

// The installed recorder, or null: with nobody listening nothing else is done.
inline CVelumRecorder* gRecorder = nullptr;

// Nothing is recorded while one lives: for what is computed, and for loading.
class CUnrecorded {
public:
  CUnrecorded() : iRecorder(std::exchange(gRecorder, nullptr)) {}
  ~CUnrecorded() { gRecorder = iRecorder; }
  CUnrecorded(const CUnrecorded&) = delete;
  CUnrecorded& operator=(const CUnrecorded&) = delete;

private:
  CVelumRecorder* iRecorder;
};

// The recorder if it listens to this stack, else null.
[[nodiscard]] inline CVelumRecorder* Of(const CVelumStack* aStack) {
  return gRecorder && aStack && gRecorder->Records(*aStack) ? gRecorder : nullptr;
}

// Stores a member of an object that has an Address(), and records the change; the caller marks it changed.
template <class TObj, class T> void Store(const TObj& aObj, EMember aMember, T& aSlot, T aNew) {
  if (gRecorder)
    gRecorder->Member(aObj, aObj.Address(), aMember, CVelumMember::ToVal(aSlot), CVelumMember::ToVal(aNew));
  aSlot = std::move(aNew);
}
// The same, and sets the mark: what most setters are made of.
template <class TObj, class T>
void Store(const TObj& aObj, EMember aMember, T& aSlot, T aNew, bool& aChanged) {
  Store(aObj, aMember, aSlot, std::move(aNew));
  aChanged = true;
}

} // namespace CVelumRecord
