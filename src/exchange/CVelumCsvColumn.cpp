#include "exchange/CVelumCsvColumn.h"

#include "core/text/CVelumLocale.h"
#include "exchange/CVelumCsvShapes.h"

#include <array>

namespace {

using namespace CVelumCsvShapes;

constexpr int EThree = 3;        // digits of a group
constexpr int ESureDigits = 15;  // of a real
constexpr int EShortWhole = 9;   // so many digits always fit 32 bits
constexpr size_t ELongest = 400; // no number or date is longer
constexpr std::array<char, 2> EDecimals = {'.', ','};
constexpr std::array<char, 2> EGroups = {',', '.'};

bool IsDigit(char aChar) {
  return aChar >= '0' && aChar <= '9';
}

} // namespace

void CVelumCsvColumn::Narrow(std::string_view aText) {
  iCan &= CanBe(aText);
}

quint8 CVelumCsvColumn::CanBe(std::string_view aText) {
  const char first = aText[0];
  if (first == 't' || first == 'f') return aText == "true" || aText == "false" ? ECanBoolean : 0;
  if (aText.size() > ELongest || !(IsDigit(first) || first == '-' || first == '+')) return 0;
  const quint8 number = (iCan & (ECanPoint | ECanComma)) != 0 ? CanBeNumber(aText) : 0;
  if (number != 0) return number;
  int second = 0;
  if ((iCan & ECanTime) != 0 && ReadTime(aText, second)) return ECanTime;
  return (iCan & (ECanIso | ECanDayMonth | ECanMonthDay)) != 0 ? CanBeDate(aText) : 0;
}

bool CVelumCsvColumn::TakeNumber(std::string_view aText, char aDecimal, char aGroup, TNumbers& aNumbers) {
  TNumber number;
  if (!ReadNumber(aText, aDecimal, aGroup, number)) return false;
  qint32 whole = 0;
  aNumbers.iOtherwise |= number.iZeroFirst || (number.iMinus && number.iZero);
  aNumbers.iGrouped |= number.iGroups > 0;
  aNumbers.iProven |= number.iGroups > 1 || (number.iGroups > 0 && number.iWithDecimals);
  aNumbers.iDecimals |= number.iWithDecimals;
  aNumbers.iNotThree |= number.iWithDecimals && number.iDecimals != EThree;
  aNumbers.iBig |= !number.iWithDecimals && number.iDigits > EShortWhole && !WholeOf(aText, whole);
  aNumbers.iManyDigits |= number.iDigits > ESureDigits;
  return true;
}

quint8 CVelumCsvColumn::CanBeNumber(std::string_view aText) {
  quint8 can = 0;
  if ((iCan & ECanPoint) != 0 && TakeNumber(aText, EDecimals[0], EGroups[0], iNumbers[0])) can |= ECanPoint;
  if ((iCan & ECanComma) != 0 && TakeNumber(aText, EDecimals[1], EGroups[1], iNumbers[1])) can |= ECanComma;
  return can;
}

quint8 CVelumCsvColumn::CanBeDate(std::string_view aText) {
  TDate date;
  qint64 day = 0;
  if (!ReadDate(aText, date)) return 0;
  if (date.iYearFirst) return DayOf(date.iYear, date.iFirst, date.iSecond, day) ? ECanIso : 0;
  if (iDateSeparator == 0) iDateSeparator = date.iSeparator;
  if (iDateSeparator != date.iSeparator) return 0;
  quint8 can = 0;
  if (DayOf(date.iYear, date.iSecond, date.iFirst, day)) can |= ECanDayMonth;
  if (DayOf(date.iYear, date.iFirst, date.iSecond, day)) can |= ECanMonthDay;
  return can;
}

std::optional<size_t> CVelumCsvColumn::Reading() const {
  for (size_t i = 0; i < EDecimals.size(); ++i) {
    const bool alive = (iCan & (i == 0 ? ECanPoint : ECanComma)) != 0;
    if (alive && (!iNumbers[i].iGrouped || iNumbers[i].iProven)) return i;
  }
  return {};
}

bool CVelumCsvColumn::IsAmbiguous() const {
  if (iFilled == 0) return false;
  const std::optional<size_t> reading = Reading();
  if (!reading) return false;
  const TNumbers& numbers = iNumbers[*reading];
  const bool foreign = !CVelumLocale::Locale().decimalPoint().startsWith(QLatin1Char(EDecimals[*reading]));
  return numbers.iDecimals && !numbers.iNotThree && !numbers.iGrouped && !numbers.iOtherwise && foreign;
}

CVelumCsvColumn::EWhyText CVelumCsvColumn::WhyText() const {
  const std::optional<size_t> reading = Reading();
  if (iFilled == 0 || !reading || IsAmbiguous()) return EWhyText::None;
  const TNumbers& numbers = iNumbers[*reading];
  if (numbers.iOtherwise) return EWhyText::ZeroFirst;
  if (numbers.iDecimals) return numbers.iManyDigits ? EWhyText::ManyDigits : EWhyText::None;
  return numbers.iBig ? EWhyText::Big : EWhyText::None;
}

std::optional<TCsvForm> CVelumCsvColumn::FoundNumber() const {
  const std::optional<size_t> reading = Reading();
  if (!reading || IsAmbiguous() || WhyText() != EWhyText::None) return {};
  const TNumbers& numbers = iNumbers[*reading];
  TCsvForm form;
  form.iType = numbers.iDecimals ? EConReal : EConInteger;
  form.iDecimal = EDecimals[*reading];
  form.iGroup = numbers.iGrouped ? EGroups[*reading] : '\0';
  return form;
}

bool CVelumCsvColumn::IsOrderAssumed() const {
  return iFilled > 0 && (iCan & ECanDayMonth) != 0 && (iCan & ECanMonthDay) != 0;
}

TCsvForm CVelumCsvColumn::Found() const {
  TCsvForm form;
  if (iFilled == 0 || iCan == 0) return form;
  if (const std::optional<TCsvForm> number = FoundNumber()) return *number;
  if ((iCan & (ECanIso | ECanDayMonth | ECanMonthDay)) != 0) return FormFor(EConDate);
  if ((iCan & ECanTime) != 0) form.iType = EConTime;
  if ((iCan & ECanBoolean) != 0) form.iType = EConBoolean;
  return form;
}

TCsvForm CVelumCsvColumn::FormFor(qint32 aType) const {
  TCsvForm form;
  form.iType = aType;
  if (aType == EConDate) {
    form.iOrder = CVelumCsvForms::LocaleOrder();
    if ((iCan & ECanDayMonth) == 0 && (iCan & ECanMonthDay) != 0) form.iOrder = ECsvOrder::MonthDay;
    if ((iCan & ECanMonthDay) == 0 && (iCan & ECanDayMonth) != 0) form.iOrder = ECsvOrder::DayMonth;
    return form;
  }
  size_t reading = Reading().value_or(0);
  // A whole number has no decimals, so that a separator that could part them parts thousands.
  if (aType == EConInteger && iNumbers[reading].iDecimals && !iNumbers[reading].iNotThree)
    reading = 1 - reading;
  form.iDecimal = EDecimals[reading];
  form.iGroup = iNumbers[reading].iGrouped ? EGroups[reading] : '\0';
  return form;
}
