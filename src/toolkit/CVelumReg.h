// The user's store of named strings, by section.
#pragma once

#include "core/CVelumObject.h"

#include <QList>
#include <QPair>

// The sections "Options" and "Windows" stand below "1.x" in the settings of the organisation "Brindleway" and
// the application "Orvelles". A settings file that cannot be read as one is set aside (renamed, its name gets
// ".broken" and a number) and counts as empty.
namespace CVelumReg {

// Keeps the settings below aFolder from now on; empty: in the user's configuration folder.
void SetFolder(const QString& aFolder);
// The path of the settings file.
[[nodiscard]] QString FileName();

// Reads a value of the user, or with aMachine of the machine. aFound is false for a missing value and for an
// empty one; aVal is then empty.
void GetVal(const QString& aSection, const QString& aName, QString& aVal, bool& aFound, bool aMachine);
// Writes at once; a failure asserts "PutVal res ", the result, ", key=" and the name.
void PutVal(const QString& aSection, const QString& aName, const QString& aVal, bool aMachine);
// Writes all pairs (name, value) at once.
void PutVals(const QString& aSection, const QList<QPair<QString, QString>>& aVals, bool aMachine);
// Reads from "Options". "TRUE" and "FALSE" in any case count; anything else gives aDefault.
void GetBoolVal(const QString& aName, bool& aVal, bool aDefault);
// Writes "True" or "False" to "Options".
void PutBoolVal(const QString& aName, bool aVal);
[[nodiscard]] QString BoolText(bool aVal);

} // namespace CVelumReg
