#include "exchange/CVelumCsvLoss.h"

#include "core/CVelumValue.h"
#include "exchange/CVelumCsvForm.h"
#include "exchange/CVelumCsvShapes.h"

#include <algorithm>
#include <array>

namespace {

using namespace CVelumCsvShapes;

// What is longer, or not ASCII, is no number and no date.
constexpr qsizetype ELongest = 64;

bool IsDigit(QChar aChar) {
  return aChar >= u'0' && aChar <= u'9';
}

// Digits as they come from a whole number: nearly all that do.
bool IsPlainWhole(QStringView aItem) {
  constexpr qsizetype most = 9;
  if (aItem.isEmpty() || aItem.size() > most || !std::all_of(aItem.begin(), aItem.end(), IsDigit))
    return false;
  return aItem.front() != u'0' || aItem.size() == 1;
}

// Whether the separators of thousands, if there are any, can be nothing else.
bool IsProven(std::string_view aText, const TCsvForm& aForm) {
  TNumber number;
  if (!ReadNumber(aText, aForm.iDecimal, aForm.iGroup, number)) return true;
  return number.iGroups != 1 || number.iWithDecimals;
}

bool GivesBackNumber(std::string_view aText, const TVelumValue& aValue) {
  const qint32 type = aValue.Type() == EValInt ? EConInteger : EConReal;
  for (const TCsvForm& form :
       {TCsvForm{type, '.', ',', ECsvOrder::DayMonth}, TCsvForm{type, ',', '.', ECsvOrder::DayMonth}}) {
    TVelumValue value;
    if (CVelumCsvForms::Read(aText, form, value) == ECsvFit::Same && CVelumValue::Equal(value, aValue) &&
        IsProven(aText, form))
      return true;
  }
  return false;
}

bool GivesBackMoment(std::string_view aText, const TVelumValue& aValue) {
  const qint32 type = aValue.Type() == EValDate ? EConDate : EConTime;
  for (const ECsvOrder order : {ECsvOrder::DayMonth, ECsvOrder::MonthDay}) {
    TVelumValue value;
    if (CVelumCsvForms::Read(aText, {type, '.', '\0', order}, value) == ECsvFit::Same &&
        CVelumValue::Equal(value, aValue))
      return true;
  }
  const TVelumFieldInfo field{type};
  return CVelumValue::ValToExtText(aValue, field) ==
         QLatin1StringView(aText.data(), static_cast<qsizetype>(aText.size()));
}

bool GivesBackBoolean(std::string_view aText, bool aValue) {
  return aText == (aValue ? "true" : "false") || aText == (aValue ? "T" : "F");
}

} // namespace

bool CVelumCsvLoss::GivesBack(QStringView aItem, const TVelumValue& aValue) {
  if (aValue.Type() == EValStr)
    return aItem.size() == aValue.Str().size() && aItem == aValue.Str() && !aItem.contains(u"\"\"");
  if (aItem.isEmpty()) return aValue.Type() == EValUndef;
  if (aValue.Type() == EValInt && IsPlainWhole(aItem)) return true;
  if (aItem.size() > ELongest) return false;
  std::array<char, ELongest> chars{};
  for (qsizetype i = 0; i < aItem.size(); ++i) {
    if (aItem[i].unicode() >= 0x80) return false;
    chars[static_cast<size_t>(i)] = static_cast<char>(aItem[i].unicode());
  }
  const std::string_view text(chars.data(), static_cast<size_t>(aItem.size()));
  switch (aValue.Type()) {
  case EValInt:
  case EValReal:
    return GivesBackNumber(text, aValue);
  case EValDate:
  case EValTime:
    return GivesBackMoment(text, aValue);
  case EValBoolean:
    return GivesBackBoolean(text, aValue.Boolean());
  default:
    return false;
  }
}
