// What a command checks of the files that it is given, before it does anything.
#pragma once

#include <QTemporaryDir>

#include <memory>

// Thrown by a command that will not do what it was asked for: the text goes to standard error, the exit
// status is 1, and nothing has changed.
struct TVelumRefusal {
  QString iText;
};

namespace CVelumCliFiles {

// Whether a file begins as a stack does, binary or XML. One that cannot be read is none.
[[nodiscard]] bool IsStack(const QString& aPath);
// The following throw a TVelumRefusal.

// Refuses a stack as the source of an import, which is called aName, or else by its path.
void CheckSource(const QString& aPath, const QString& aName = {});
// Refuses a name in a folder that is not there, and a folder.
void CheckFolder(const QString& aOut);
// Refuses to save a stack as aOut where that is what was read (aSource), or something else than a stack; one
// of the standard streams, or a pipe, can be written to.
void CheckNewStack(const QString& aOut, const QString& aSource);
// Whether both name the same file, by whatever path.
[[nodiscard]] bool SameFile(const QString& aA, const QString& aB);
// A folder for files that nobody else is to see, which goes with its object.
[[nodiscard]] std::unique_ptr<QTemporaryDir> TempFolder();

} // namespace CVelumCliFiles
