// Runs the built command-line program.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

struct TCliResult {
  int iStatus = -1; // exit status; -1 when the program crashed or hung
  QByteArray iOut;
  QByteArray iErr;
};

namespace CliRun {

// Runs with aArguments in the locale en_US, unless they name one, and the time zone of the tests.
[[nodiscard]] TCliResult Run(const QStringList& aArguments);
// The same as a user without rights, which needs root; iStatus is -1 when that is not possible.
[[nodiscard]] TCliResult RunWithoutRights(const QStringList& aArguments);
// The same with standard output going into a file.
[[nodiscard]] TCliResult RunInto(const QString& aPath, const QStringList& aArguments);
[[nodiscard]] TCliResult RunProgram(const QString& aProgram, const QStringList& aArguments,
                                    const QString& aOutPath = {}, const QByteArray& aInput = {});
// As Run, with aInput coming through a pipe.
[[nodiscard]] TCliResult RunFed(const QByteArray& aInput, const QStringList& aArguments);
// Whether RunWithoutRights can be used, or the present user has no special rights anyway.
[[nodiscard]] bool CanDropRights();
// The path of the program, for calls by way of a shell.
[[nodiscard]] QString Program();
// A file of tests/data/stacks/good, or of the folder samples.
[[nodiscard]] QString Data(const QString& aName);
[[nodiscard]] QString Sample();
// A stack in XML.
[[nodiscard]] QString XmlStack();

} // namespace CliRun
