// Brings remembered windows back onto a screen that is smaller than the one they were on.
#pragma once

#include <QRect>

class QWidget;

namespace CVelumScreenFit {

// aPlace (pixels; the position is that of the frame, the size that of the content) so moved, and where it
// must be cut, that its right and lower edges and its title bar of aTitle pixels lie in aScreen. A window
// that sticks out to the left stays there: another screen may come back.
[[nodiscard]] QRect Fit(QRect aPlace, const QRect& aScreen, int aTitle);
// The same for a window of its own, on the screen that it lies on for the most part, else the first. A size
// that the user cannot change stays as it is.
void KeepOnScreen(QWidget& aWindow, bool aSizable);

} // namespace CVelumScreenFit
