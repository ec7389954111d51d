// Numbers, dates and times in the user's locale.
#pragma once

#include <QLocale>
#include <QString>

namespace CVelumLocale {

// Sets the locale by name (empty: the user's). Called at start and by tests; also sets up the collation.
void Init(const QString& aName = {});
[[nodiscard]] const QLocale& Locale();

// "Short date", always with a four-digit year.
[[nodiscard]] QString ShortDate(double aDate);
// "Long time", without a zone.
[[nodiscard]] QString LongTime(double aTime);
// A number picture: grouped, with up to (aFixed false) or exactly (true) aDigits decimals, the separator
// always present.
[[nodiscard]] QString Real(double aReal, int aDigits, bool aFixed);

// Strict readings of user text; false when the text is not wholly a value of the kind.
[[nodiscard]] bool ToShort(const QString& aText, qint16& aInt);
[[nodiscard]] bool ToInt(const QString& aText, qint32& aInt);
[[nodiscard]] bool ToReal(const QString& aText, double& aReal);
// Days since 30 December 1899; a time behind a date gives a fraction.
[[nodiscard]] bool ToDateTime(const QString& aText, double& aDateTime);

} // namespace CVelumLocale
