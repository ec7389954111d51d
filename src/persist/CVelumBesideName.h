// Names of the files that stand beside a document for a while.
#pragma once

#include <QDateTime>
#include <QString>

namespace CVelumBesideName {

// A name in the folder of aPath: that of aPath with aSuffix behind it; or, as no file system holds names of
// more than 255 bytes, one made of a checksum of it. The same for the same file at any time.
[[nodiscard]] QString For(const QString& aPath, const QString& aSuffix);
// "NAME (aWhat DATE TIME).ENDING" in the folder of aPath; aNum above 1 stands behind the time.
[[nodiscard]] QString Dated(const QString& aPath, const QString& aWhat, const QDateTime& aTime, int aNum = 1);
// aBase cut so that it and aRest make a name that a file system holds. Neither has a folder.
[[nodiscard]] QString Cut(const QString& aBase, const QString& aRest);

} // namespace CVelumBesideName
