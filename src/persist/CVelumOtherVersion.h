// Keeping a version of the document that another program has put in its place.
#pragma once

#include <QString>

namespace CVelumOtherVersion {

// Gives the file aPath a second name in its folder, "NAME (other version DATE TIME).ENDING", and returns
// that; the file stays under its first name too. The date is that of its last change. Raises.
QString Keep(const QString& aPath);

// Tells the user that another version of aFilename was kept as aKept; nothing when aKept is empty.
void Tell(const QString& aFilename, const QString& aKept);

} // namespace CVelumOtherVersion
