// Functions of CVelumDialogLib that need the open stack and the main window.
#pragma once

class QDialog;

namespace CVelumDialogLib {

// Keeps a dialog that is not shown yet above the main window.
void StayAboveFrame(QDialog& aDialog);

// Asks what to do with a changed stack. aProceed false: it stays open; aSave: it is to be saved first.
void CheckLeaveStack(bool& aProceed, bool& aSave);
// The same, and saves where the user wants it. Whether the stack may go: not if the user stays, or the save
// did not succeed. Without a stack it may.
[[nodiscard]] bool LeaveStackStep();
// Runs the close command of the main window; aStillOpen tells whether a stack is open afterwards.
void CloseStackStep(bool& aStillOpen);
// Brings up the windows of the open stack after cards have come or gone, at the first card if none is shown.
void ShowCards();

} // namespace CVelumDialogLib
