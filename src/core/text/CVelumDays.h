// Moments as the program stores them: days since 30 December 1899, the time of day as a fraction. They have
// a resolution of one second.
#pragma once

#include <QDate>
#include <QDateTime>

namespace CVelumDays {

inline constexpr int ESecondsPerDay = 86400;

// A moment taken apart.
struct TMoment {
  qint64 iDay = 0; // since 30 December 1899
  int iSecond = 0; // 0 to 86399
};

// Rounded to the nearest second; host error 6 for what is no date of the years 0 to some 27,000.
[[nodiscard]] TMoment Split(double aDays);
[[nodiscard]] double Join(qint64 aDay, qint64 aSecond);
[[nodiscard]] QDate DateOf(qint64 aDay);
[[nodiscard]] qint64 DayOf(QDate aDate);
// Date and time of day as they stand, in the given zone.
[[nodiscard]] QDateTime ToDateTime(double aDays, Qt::TimeSpec aSpec);
[[nodiscard]] double FromDateTime(const QDateTime& aDateTime);
// The calendar's date building: month 13 is January of the next year, day 0 the last of the month before.
// Years 0 to 29 are 2000 to 2029, 30 to 99 are 1930 to 1999. Host error 5 when the result does not lie in
// the years 100 to 9999.
[[nodiscard]] double Build(qint64 aYear, qint64 aMonth, qint64 aDay);
// The year that a number of two digits means.
[[nodiscard]] constexpr qint64 FullYear(qint64 aYear) {
  if (aYear < 0 || aYear > 99) return aYear;
  return aYear + (aYear < 30 ? 2000 : 1900);
}

} // namespace CVelumDays
