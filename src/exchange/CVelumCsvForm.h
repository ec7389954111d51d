// How the cells of a column are read as values, and how values are written for other programs.
#pragma once

#include "core/TVelumValue.h"

#include <string>
#include <string_view>

// Which of day and month stands first where the year is last.
enum class ECsvOrder : quint8 { DayMonth, MonthDay };

struct TCsvForm {
  qint32 iType = EConText; // of a field: EConText to EConBoolean
  char iDecimal = '.';     // parts the decimals of numbers
  char iGroup = 0;         // parts their thousands; 0: nothing does
  ECsvOrder iOrder = ECsvOrder::DayMonth;

  bool operator==(const TCsvForm&) const = default;
};

// What becomes of a cell. Its value is the same if the shortest text of the value is that of the cell, but
// for separators of thousands, a plus in front, zeros at the end of decimals, and the form of dates and
// times.
enum class ECsvFit { Same, Changed, Refused };

namespace CVelumCsvForms {

// The value of a cell in UTF-8 that is not empty; aValue is left alone where it is refused. A text is always
// the same.
[[nodiscard]] ECsvFit Read(std::string_view aText, const TCsvForm& aForm, TVelumValue& aValue);
// The order in which the user's locale writes day and month.
[[nodiscard]] ECsvOrder LocaleOrder();

// Appends the text of a value for other programs, in UTF-8: numbers with a point, ungrouped and with as few
// digits as read back; dates as yyyy-mm-dd, times as hh:mm:ss; true and false; nothing for no value, and for
// pictures.
void AppendPlain(const TVelumValue& aValue, std::string& aTo);
[[nodiscard]] QString PlainText(const TVelumValue& aValue);

} // namespace CVelumCsvForms
