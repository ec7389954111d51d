// Functions of CVelumDialogLib that need the toolkit: what all dialogs have in common.
#pragma once

class QWidget;

namespace CVelumDialogLib {

// Gives all dialogs the same look of an entry that cannot be changed: its background is that of a window. A
// text box is locked, so that its text can still be read and copied, and with aClear it is emptied. A combo
// box is locked and keeps its text. A label whose name contains "Color" is a colour sample: disabled it shows
// no colour, and with aClear no text. Anything else is enabled or disabled.
void SetEnabled(QWidget& aCtl, bool aEnabled, bool aClear);

} // namespace CVelumDialogLib
