// What a cell of a CSV file looks like, told by its characters alone: numbers, dates and times. Nothing is
// trimmed, and everything that counts is ASCII, so that the texts may be bytes of UTF-8.
#pragma once

#include <QtGlobal>
#include <string_view>

namespace CVelumCsvShapes {

// A number of digits, with at most one decimal separator between two of them, and a sign in front.
struct TNumber {
  bool iSigned = false; // with a plus or a minus
  bool iMinus = false;
  bool iZeroFirst = false; // a 0 in front of another digit of the whole part
  bool iZero = false;      // all digits are 0
  bool iWithDecimals = false;
  int iDigits = 0;   // before and behind the decimal separator
  int iDecimals = 0; // digits behind it
  int iGroups = 0;   // separators between whole groups of three digits
};

// aGroup may be 0: none.
[[nodiscard]] bool ReadNumber(std::string_view aText, char aDecimal, char aGroup, TNumber& aNumber);
// The value of a number without decimals, without its group separators; false beyond 32 bits.
[[nodiscard]] bool WholeOf(std::string_view aText, qint32& aValue);
// The value of a number, without its group separators; false beyond what a real can be.
[[nodiscard]] bool RealOf(std::string_view aText, char aDecimal, double& aValue);

// Three numbers of a date: yyyy-mm-dd, or two of one or two digits each and a year of four, with the same
// separator ("/", "." or "-") between them.
struct TDate {
  bool iYearFirst = false;
  char iSeparator = '-';
  int iFirst = 0; // what stands first of day and month
  int iSecond = 0;
  int iYear = 0;
};
[[nodiscard]] bool ReadDate(std::string_view aText, TDate& aDate);
// The day, counted from 30 December 1899; false for what is not in the calendar or lies outside of 100-03-01
// to 9999-12-31, between which a stack file keeps a date.
[[nodiscard]] bool DayOf(int aYear, int aMonth, int aDay, qint64& aDays);
// h:mm or h:mm:ss, 0:00 to 23:59:59.
[[nodiscard]] bool ReadTime(std::string_view aText, int& aSecond);

} // namespace CVelumCsvShapes
