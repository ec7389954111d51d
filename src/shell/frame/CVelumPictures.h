// Pictures of the program's windows, for machines without a display.
#pragma once

#include <QString>

namespace CVelumPictures {

// Opens aStack and writes PNG files of the windows to aFolder, in a light and a dark palette. The names end
// in the scale of the screen. Returns an exit status.
int Write(const QString& aFolder, const QString& aStack);

} // namespace CVelumPictures
