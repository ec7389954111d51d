#include "core/CVelumEntry.h"

#include "core/CVelumConst.h"
#include "core/CVelumError.h"
#include "core/CVelumLib.h"
#include "core/CVelumLocale.h"
#include "core/CVelumValue.h"

#include <QRegularExpression>

namespace {

// Takes out the blanks that part groups of digits in the locale; the lenient scan passes over them.
QString WithoutGroupBlanks(QString aText) {
  const QString group = CVelumLocale::Locale().groupSeparator();
  if (group.isEmpty() || !group.front().isSpace()) return aText;
  static const QRegularExpression blank(u"(?<=[0-9])[ \u00a0\u202f](?=[0-9])"_s);
  return aText.remove(blank);
}

// Whether the lenient scan goes on to the end, and what it finds fits.
bool ScansWhole(const QString& aText, bool aWholeNumber) {
  static const QRegularExpression number(u"^[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([Ee][+-]?[0-9]+)?$"_s);
  if (!number.match(WithoutGroupBlanks(aText)).hasMatch()) return false;
  try {
    const double real = CVelumValue::LenientNum(aText);
    if (aWholeNumber) static_cast<void>(CVelumValue::RoundToInt(real));
    return true;
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
  switch (aField.iConType) {
  case EConInteger:
    return CVelumLocale::ToShort(text, whole) || ScansWhole(text, true);
  case EConReal:
    return CVelumLocale::ToReal(text, real) || ScansWhole(text, false);
  case EConDate:
  case EConTime:
    return CVelumLocale::ToDateTime(text, real);
  default:
    return true;
  }
}
