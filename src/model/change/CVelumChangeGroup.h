// The changes of one command, with the name that a person would give it.
#pragma once

#include "model/change/CVelumReplay.h"

// What a replay is about to take away: views must let go of it first.
struct TGoing {
  std::vector<Ref<CVelumControlSet>> iBackgrounds;
  std::vector<Ref<CVelumCard>> iCards;
};

class CVelumPictureStash;

class CVelumChangeGroup {
public:
  CVelumChangeGroup() = default;
  explicit CVelumChangeGroup(QString aName) : iName(std::move(aName)) {}

  // "Delete card 'Albania'"; empty for changes that no command claims.
  [[nodiscard]] const QString& Name() const { return iName; }
  void SetName(const QString& aName) { iName = aName; }
  [[nodiscard]] bool IsEmpty() const { return iChanges.empty(); }
  [[nodiscard]] const TChanges& Changes() const { return iChanges; }
  void Add(std::unique_ptr<CVelumChange> aChange);
  // The change that was added last, or null.
  [[nodiscard]] CVelumChange* Last() const { return iChanges.empty() ? nullptr : iChanges.back().get(); }
  // Bytes of memory, roughly; counted when first asked for after a change.
  [[nodiscard]] qint64 Cost() const;
  // Frees the memory of pictures, to be called when the group is complete and after each replay.
  void Stow(CVelumPictureStash& aStash, bool aReverted);
  // What goes when the group is taken back (or made again).
  [[nodiscard]] TGoing Going(bool aRevert) const;

  // Makes all changes again, or takes them back. If one of them finds the stack otherwise than it should,
  // those done so far are undone and EMsgChangeDoesNotFit is raised: the stack is as before.
  TReplayed Apply(CVelumStack& aStack) const;
  TReplayed Revert(CVelumStack& aStack) const;

  // The bytes of the group: a name, a count, the changes.
  void Write(CVelumFile& aFile) const;
  // Raises EMsgBadStruct for what is no group.
  [[nodiscard]] static CVelumChangeGroup Read(CVelumFile& aFile);

private:
  QString iName;
  TChanges iChanges;
  mutable qint64 iCost = -1;
};
