// Undo and redo of an open stack.
#pragma once

#include "model/change/CVelumPictureStash.h"
#include "model/change/CVelumRecorder.h"

#include <deque>

// Hears of each step of a stack as it is made, taken back or made again.
class CVelumStepWatch {
public:
  virtual ~CVelumStepWatch() = default;
  virtual void Stepped(const CVelumChangeGroup& aGroup, bool aReverted) = 0;
};

// Keeps the groups of changes that can be taken back, bounded by memory: the oldest go first. A group that
// would not fit by itself empties it.
class CVelumUndo final : public CVelumChangeTaker {
public:
  static constexpr qint64 EBound = 256LL * 1024 * 1024;

  // Records the changes of aStack until it goes; aStack must outlive it. aBound in bytes.
  explicit CVelumUndo(CVelumStack& aStack, qint64 aBound = EBound);

  void Take(CVelumChangeGroup aGroup, bool aMore) override;
  // Bytes that a step may need.
  [[nodiscard]] qint64 Bound() const override { return iBound; }
  // Tells a watch, or null, of each step.
  void SetWatch(CVelumStepWatch* aWatch) { iWatch = aWatch; }

  [[nodiscard]] bool CanUndo() const { return !iDone.empty(); }
  [[nodiscard]] bool CanRedo() const { return !iUndone.empty(); }
  // Name of the step that Undo, or Redo, would take; empty without one.
  [[nodiscard]] QString UndoName() const { return CanUndo() ? iDone.back().Name() : QString(); }
  [[nodiscard]] QString RedoName() const { return CanRedo() ? iUndone.back().Name() : QString(); }
  // What goes with the next step.
  [[nodiscard]] TGoing GoingWithUndo() const { return CanUndo() ? iDone.back().Going(true) : TGoing(); }
  [[nodiscard]] TGoing GoingWithRedo() const { return CanRedo() ? iUndone.back().Going(false) : TGoing(); }
  // Takes the last step back, or makes it again; nothing without one. Raises EMsgChangeDoesNotFit, and
  // forgets all steps, if the stack is not as the step left it.
  TReplayed Undo();
  TReplayed Redo();

  // The stack is now the one on file.
  void SetSaved();
  // Whether the stack is, by steps taken and taken back, the one on file. Then it has no unsaved changes.
  [[nodiscard]] bool IsSaved() const { return iSavedAt == Position() && iRecorder.IsEmpty(); }
  // Forgets all steps; the stack stays as it is.
  void Clear();
  [[nodiscard]] qint64 Cost() const { return iCost; }
  [[nodiscard]] const CVelumPictureStash& Stash() const { return iStash; }
  [[nodiscard]] qsizetype NumSteps() const { return static_cast<qsizetype>(iDone.size()); }
  [[nodiscard]] CVelumRecorder& Recorder() { return iRecorder; }

private:
  // Steps since the stack was opened, those given up included.
  [[nodiscard]] qint64 Position() const { return iGivenUp + static_cast<qint64>(iDone.size()); }
  void Overflow();
  void DropRedo();
  void Bring(qint64 aBound);
  TReplayed Replay(std::deque<CVelumChangeGroup>& aFrom, std::deque<CVelumChangeGroup>& aTo, bool aRevert);

  CVelumStack& iStack;
  const qint64 iBound;
  CVelumPictureStash iStash; // outlives the steps
  CVelumStepWatch* iWatch = nullptr;
  std::deque<CVelumChangeGroup> iDone;
  std::deque<CVelumChangeGroup> iUndone;
  qint64 iCost = 0;
  qint64 iGivenUp = 0;
  qint64 iSavedAt = 0;    // position at which the stack was saved; -1: it can't be reached any more
  bool iInPieces = false; // of a command that is too large
  CVelumRecorder iRecorder;
};
