// Functions of CVelumDialogLib that need the toolkit: what all dialogs have in common.
#pragma once

#include "core/CVelumObject.h"

class QLabel;
class QLineEdit;
class QWidget;

namespace CVelumDialogLib {

// Gives all dialogs the same look of an entry that cannot be changed: its background is the grey
// RGB(212, 208, 200), or on a dark desktop that of a window. A text box is locked, so that its text can still
// be read and copied, and disabled with aClear it is emptied. A combo box is locked and keeps its text. A
// label whose name contains "Color" is a colour sample: disabled it is grey, and with aClear it loses its
// text. Anything else is enabled or disabled.
void SetEnabled(QWidget& aCtl, bool aEnabled, bool aClear);

// The number that stands in a box; ENoShort for an empty one, host error 6 for one beyond 16 bits.
[[nodiscard]] qint16 TextBoxToI2(const QLineEdit& aBox);
// ENoShort empties the box.
void I2ToTextBox(QLineEdit& aBox, qint16 aValue);

// Shows a colour (0xBBGGRR) in a sample; with ENoInt the sample looks like what it stands on.
void ShowColor(QLabel& aBox, qint32 aColor);
// Lets the user choose another colour, from aColor on unless that is ENoInt, and shows it. Cancel changes
// nothing. Returns whether a colour was chosen.
bool SelectColor(QWidget* aOwner, QLabel& aBox, qint32& aColor);

} // namespace CVelumDialogLib
