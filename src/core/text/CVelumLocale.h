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
// The shortest text that reads back, with the locale's decimal separator and no grouping.
[[nodiscard]] QString General(double aReal);

// Whether digits are grouped by blanks.
[[nodiscard]] bool GroupsByBlanks();

// Strict readings of user text; false when the text is not wholly a value of the kind. What the functions
// above write reads back. Whole numbers may have decimals, and are rounded, a half to the even neighbour.
// Numbers may be grouped; groups must be whole ("1,5" is no number where the comma groups). An exponent may
// follow.
[[nodiscard]] bool ToShort(const QString& aText, qint16& aInt);
[[nodiscard]] bool ToInt(const QString& aText, qint32& aInt);
[[nodiscard]] bool ToReal(const QString& aText, double& aReal);
// Days since 30 December 1899; a time behind a date gives a fraction, and may stand alone. Dates are read in
// the order of the locale with its separators (day and month of one or two digits, year of two or four, 00 to
// 29 being 20xx and 30 to 99 19xx) or as yyyy-MM-dd; times as h:mm or h:mm:ss, with the locale's day halves
// or in 24 hours.
[[nodiscard]] bool ToDateTime(const QString& aText, double& aDateTime);
// False for most texts that ToDateTime refuses, at a small part of its price; never for one that it takes.
[[nodiscard]] bool MayBeDateTime(QStringView aText);

} // namespace CVelumLocale
