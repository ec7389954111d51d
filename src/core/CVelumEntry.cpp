#include "core/CVelumEntry.h"

#include "core/CVelumError.h"
#include "core/CVelumFieldTypes.h"
#include "core/CVelumLib.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"
#include "core/text/CVelumNumScan.h"

namespace {

// Whether the lenient scan goes on to the end, and what it finds fits.
bool ScansWhole(const QString& aText, bool aWholeNumber) {
  try {
    bool toTheEnd = false;
    const double real = CVelumNumScan::Read(aText, CVelumLocale::GroupsByBlanks(), toTheEnd);
    if (aWholeNumber) static_cast<void>(CVelumValue::RoundToInt(real));
    return toTheEnd;
  } catch (const CVelumException&) {
    return false; // too large
  }
}

} // namespace

bool CVelumEntry::IsWhole(const QString& aText, const TVelumFieldInfo& aField) {
  if (CVelumLib::IsBlank(aText)) return true;
  const QString text = aText.trimmed();
  qint16 whole = 0;
  double real = 0.0;
  switch (CVelumFieldTypes::Of(aField.iConType).iValType) {
  case EValInt:
    return CVelumLocale::ToShort(text, whole) || ScansWhole(text, true);
  case EValReal:
    return CVelumLocale::ToReal(text, real) || ScansWhole(text, false);
  case EValDate:
  case EValTime:
    return CVelumLocale::ToDateTime(text, real);
  default:
    return true;
  }
}
