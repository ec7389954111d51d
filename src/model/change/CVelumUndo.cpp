#include "model/change/CVelumUndo.h"

CVelumUndo::CVelumUndo(CVelumStack& aStack, qint64 aBound)
    : iStack(aStack), iBound(aBound), iSavedAt(aStack.Changed() ? -1 : 0), iRecorder(aStack, *this) {}

void CVelumUndo::Take(CVelumChangeGroup aGroup, bool aMore) {
  if (iWatch && !aGroup.IsEmpty()) iWatch->Stepped(aGroup, false);
  if (std::exchange(iInPieces, aMore) || aMore) return Overflow();
  DropRedo();
  aGroup.Stow(iStash, false);
  iCost += aGroup.Cost();
  iDone.push_back(std::move(aGroup));
  Bring(iBound);
}

// A step that is not kept whole cannot be taken back, nor what was before it.
void CVelumUndo::Overflow() {
  Clear();
  iSavedAt = -1;
}

// A new change makes what was taken back unreachable, and with it a saved state that lies there.
void CVelumUndo::DropRedo() {
  if (iSavedAt > Position()) iSavedAt = -1;
  for (const CVelumChangeGroup& group : iUndone) iCost -= group.Cost();
  iUndone.clear();
}

void CVelumUndo::Bring(qint64 aBound) {
  while (iCost > aBound && !iDone.empty()) {
    iCost -= iDone.front().Cost();
    iDone.pop_front();
    ++iGivenUp;
  }
}

TReplayed CVelumUndo::Replay(std::deque<CVelumChangeGroup>& aFrom, std::deque<CVelumChangeGroup>& aTo,
                             bool aRevert) {
  iRecorder.EndGroup();
  if (aFrom.empty()) return {};
  CVelumChangeGroup& group = aFrom.back();
  const qint64 before = group.Cost();
  TReplayed replayed;
  try {
    replayed = aRevert ? group.Revert(iStack) : group.Apply(iStack);
  } catch (...) {
    Clear();
    throw;
  }
  if (iWatch) iWatch->Stepped(group, aRevert);
  // What the step holds alone can differ: a deleted card was the step's, and is the document's again.
  group.Stow(iStash, aRevert);
  iCost += group.Cost() - before;
  aTo.push_back(std::move(group));
  aFrom.pop_back();
  return replayed;
}

TReplayed CVelumUndo::Undo() {
  return Replay(iDone, iUndone, true);
}

TReplayed CVelumUndo::Redo() {
  return Replay(iUndone, iDone, false);
}

void CVelumUndo::SetSaved() {
  iRecorder.EndGroup();
  iSavedAt = Position();
}

void CVelumUndo::Clear() {
  if (!IsSaved()) iSavedAt = -1;
  const bool saved = iSavedAt != -1;
  iDone.clear();
  iUndone.clear();
  iCost = 0;
  iGivenUp = 0;
  iSavedAt = saved ? 0 : -1;
}
