// Who may read and write a file that takes the place of another.
#pragma once

#include <QString>

namespace CVelumFileRights {

// Gives the open file aFd (aPath names it in failures) the permissions, the access list and the extended
// attributes of the file aLike, and its owner and group as far as that is allowed. Where group or access list
// cannot be kept, the group may do no more than everybody. Where there is no aLike, the file gets what every
// new file gets in its folder. Raises.
void Copy(int aFd, const QString& aPath, const QString& aLike);

} // namespace CVelumFileRights
