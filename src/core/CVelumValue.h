// All conversions of values. The external text is what the user sees and types (locale, field settings);
// the internal text goes into files and defaults and knows no locale.
#pragma once

#include "core/CVelumSeams.h"
#include "core/TVelumValue.h"

namespace CVelumValue {

// Date of yyyymmdd by the calendar's date building (month 13 runs into the next year); ENoInt gives the
// no-date.
[[nodiscard]] double IntToDate(qint32 aInt);
// Time of hhmmss likewise; ENoInt gives 0.
[[nodiscard]] double IntToTime(qint32 aInt);
[[nodiscard]] qint32 DateToInt(double aDate);
[[nodiscard]] qint32 TimeToInt(double aTime);

// Undefined only equals undefined; otherwise the tags must agree (assertion "Equal type").
[[nodiscard]] bool Equal(const TVelumValue& aVal1, const TVelumValue& aVal2);
[[nodiscard]] QString ValToExtText(const TVelumValue& aVal, const TVelumFieldInfo& aField);
[[nodiscard]] QString ValToIntText(const TVelumValue& aVal);
// Value tag of a control type; commands and unknown types assert.
[[nodiscard]] int ConToValType(int aConType);
// Never fails: what the strict conversion of the locale does not read to its end keeps what the lenient scan
// found ("12 34" is 12; a blank by which the locale groups digits is passed over). A real is rounded to the
// field's number of decimals, a half away from zero.
[[nodiscard]] TVelumValue ExtTextToVal(const QString& aText, const TVelumFieldInfo& aField);
[[nodiscard]] TVelumValue IntTextToVal(const QString& aText, const TVelumFieldInfo& aField);
// The empty text gives an undefined value.
[[nodiscard]] TVelumValue StrToVal(const QString& aStr);
void UndefToStr(TVelumValue& aVal);
[[nodiscard]] qint32 ToInt(const TVelumValue& aVal);
[[nodiscard]] double ToReal(const TVelumValue& aVal);
// Fills aTo according to its present type.
void Convert(const TVelumValue& aFrom, const TVelumFieldInfo& aField, TVelumValue& aTo);
void SetZero(TVelumValue& aVal, int aType, double aDate, double aTime);
void Copy(const TVelumValue& aFrom, TVelumValue& aTo);
[[nodiscard]] QString TypeStr(const TVelumValue& aVal);
[[nodiscard]] QString TypeStr(int aType);

// The lenient left-to-right numeric scan: blanks in front skipped, point as separator, optional exponent;
// stops at the first character that cannot continue a number, a blank too; 0 when there is none, host error 6
// when it is too large.
[[nodiscard]] double LenientNum(QStringView aText);
// Rounded to the nearest whole number, a half to the even neighbour; host error 6 beyond 32 bits.
[[nodiscard]] qint32 RoundToInt(double aReal);
// Fewest digits that read back, point as separator, no grouping; 1E+16 and 1E-05 beyond 15 digits.
[[nodiscard]] QString ShortestReal(double aReal);
// Today and now by the clock: whole days, fraction of a day in whole seconds.
[[nodiscard]] double Today();
[[nodiscard]] double Now();

} // namespace CVelumValue
