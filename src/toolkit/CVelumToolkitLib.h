// Functions of CVelumLib that need the toolkit: fonts, clipboard, window frames. Lengths are twips
// (15 to a logical pixel).
#pragma once

#include "core/CVelumObject.h"

#include <QFont>
#include <QSizeF>

class QComboBox;
class QTextEdit;
class QWidget;

namespace CVelumLib {

// aPointSize is in points; sizes outside 1 to 1000 become the nearer of the two.
[[nodiscard]] QFont MakeToolkitFont(const QString& aFaceName, double aPointSize, bool aBold, bool aItalic,
                                    bool aUnderline);

// The text of the clipboard as it is (no-break blanks stay); one line end at its end is dropped.
[[nodiscard]] QString GetClipboardText();

// Asks for a folder that exists; empty when the user cancels. aStart, if not empty, is where the dialog
// begins.
[[nodiscard]] QString BrowseForFolder(QWidget* aOwner, const QString& aTitle, const QString& aStart = {});

// Makes the list that drops from a combo box wide enough for its longest line, but not wider than the screen
// of aForm.
void SetComboDropWidth(QComboBox& aCombo, const QWidget& aForm);

// Gives links a colour that can be read on the background of aBox, in the text that is set next.
void ColorLinks(QTextEdit& aBox);

// Puts the middle of aForm over the middle of aOver; does nothing without one.
void CentreOver(QWidget& aForm, const QWidget* aOver);

// Shows a window, also one that was minimised, and makes it the active one.
void BringUp(QWidget& aForm);

// Pixels that caption and frame of a child window add to its content.
[[nodiscard]] QSize ChildFrameSize();
// Outer size of a child window with a client area of this size.
[[nodiscard]] QSizeF ClientSizeToWindow(const QSizeF& aClientSize);

} // namespace CVelumLib
