#include "core/text/CVelumDays.h"

#include "core/CVelumError.h"

#include <cmath>

namespace {

constexpr qint64 EBaseJulianDay = 2415019; // 30 December 1899
constexpr double EMaxDays = 1e7;           // keeps seconds and calendar within their types

} // namespace

CVelumDays::TMoment CVelumDays::Split(double aDays) {
  if (!(std::fabs(aDays) <= EMaxDays)) CVelumError::RaiseHost(EHostOverflow);
  const qint64 seconds = std::llround(aDays * ESecondsPerDay);
  qint64 day = seconds / ESecondsPerDay;
  qint64 second = seconds % ESecondsPerDay;
  if (second < 0) {
    second += ESecondsPerDay;
    --day;
  }
  return {day, static_cast<int>(second)};
}

double CVelumDays::Join(qint64 aDay, qint64 aSecond) {
  return static_cast<double>(aDay) + static_cast<double>(aSecond) / ESecondsPerDay;
}

QDate CVelumDays::DateOf(qint64 aDay) {
  return QDate::fromJulianDay(EBaseJulianDay + aDay);
}

qint64 CVelumDays::DayOf(QDate aDate) {
  return aDate.toJulianDay() - EBaseJulianDay;
}

QDateTime CVelumDays::ToDateTime(double aDays, Qt::TimeSpec aSpec) {
  const TMoment moment = Split(aDays);
  return QDateTime(DateOf(moment.iDay), QTime(0, 0).addSecs(moment.iSecond), aSpec);
}

double CVelumDays::FromDateTime(const QDateTime& aDateTime) {
  return Join(DayOf(aDateTime.date()), aDateTime.time().msecsSinceStartOfDay() / 1000);
}

double CVelumDays::Build(qint64 aYear, qint64 aMonth, qint64 aDay) {
  // Nearly every date is one that stands in the calendar as it is, and needs no check.
  if (aYear >= 100 && aYear <= 9999 && aMonth >= 1 && aMonth <= 12 && aDay >= 1 && aDay <= 28)
    return static_cast<double>(
        DayOf(QDate(static_cast<int>(aYear), static_cast<int>(aMonth), static_cast<int>(aDay))));
  const qint64 months = FullYear(aYear) * 12 + aMonth - 1;
  // Years just outside may come back in by the day.
  if (months < 12 || months > 12 * 10001) CVelumError::RaiseHost(EHostBadCall);
  const QDate first(static_cast<int>(months / 12), static_cast<int>(months % 12) + 1, 1);
  const QDate date = first.addDays(aDay - 1);
  if (date.year() < 100 || date.year() > 9999) CVelumError::RaiseHost(EHostBadCall);
  return static_cast<double>(DayOf(date));
}
