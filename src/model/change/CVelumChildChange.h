// A background, field, sort key, key index or picture entered or left its collection.
#pragma once

#include "core/CVelumObject.h"
#include "model/change/CVelumChange.h"

// The collections, as they stand in stored changes.
enum EChild : quint8 { EChildBackground = 0, EChildControl, EChildSortKey, EChildKeyIndex, EChildBlob };

// The capacities of the arrays of a collection: of the objects, and of the index of ids if there is one.
struct TChildAllocs {
  qint32 iObjs = ENoInt;
  qint32 iIds = ENoInt;
};

class CVelumPictureStash;

class CVelumChildChange final : public CVelumChange {
public:
  CVelumChildChange() = default;
  // aOwnerId: the background of a field, else ENoInt. aAfterId: the field after which a field stands, ENoInt
  // at the front; without meaning for the rest, which stand by their ids.
  CVelumChildChange(bool aAdded, EChild aKind, qint32 aOwnerId, qint32 aId, Ref<CVelumStored> aChild,
                    qint32 aAfterId, TChildAllocs aAllocs)
      : iChild(std::move(aChild)), iOwnerId(aOwnerId), iId(aId), iAfterId(aAfterId), iAllocs(aAllocs),
        iKind(aKind), iAdded(aAdded) {}

  ~CVelumChildChange() override;

  [[nodiscard]] EChangeForm Form() const override { return EFormChild; }
  [[nodiscard]] bool Apply(CVelumReplay& aReplay) override { return Replay(aReplay, iAdded, {}); }
  [[nodiscard]] bool Revert(CVelumReplay& aReplay) override { return Replay(aReplay, !iAdded, iAllocs); }
  [[nodiscard]] qint64 Cost() const override;

  [[nodiscard]] bool IsAdded() const { return iAdded; }
  [[nodiscard]] EChild Kind() const { return iKind; }
  [[nodiscard]] qint32 Id() const { return iId; }
  [[nodiscard]] qint32 OwnerId() const { return iOwnerId; }
  [[nodiscard]] qint32 AfterId() const { return iAfterId; }
  [[nodiscard]] const Ref<CVelumStored>& Child() const { return iChild; }
  // The object that stood there, which is another one if the change was read from bytes.
  void SetChild(const Ref<CVelumStored>& aChild) { iChild = aChild; }
  // Needs no memory for a picture any more: one that stands in the document is that of the document, another
  // one goes into the stash, which lives on.
  void Stow(CVelumPictureStash& aStash, bool aInDocument);

protected:
  void WriteBody(CVelumFile& aFile) const override;
  void ReadBody(CVelumFile& aFile) override;

private:
  [[nodiscard]] bool Replay(CVelumReplay& aReplay, bool aAdd, TChildAllocs aAllocs);

  void Unstow();

  Ref<CVelumStored> iChild;
  CVelumPictureStash* iStash = nullptr; // holds the picture, at iStashPos
  qint64 iStashPos = 0;
  qint32 iOwnerId = ENoInt;
  qint32 iId = ENoInt;
  qint32 iAfterId = ENoInt;
  TChildAllocs iAllocs;
  EChild iKind = EChildBackground;
  bool iAdded = true;
};
