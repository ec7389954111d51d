#include "script/CVelumRunError.h"

#include "core/CVelumLib.h"
#include "model/CVelumStack.h"

namespace {

QString Kind(const CVelumScripted* aObj) {
  if (dynamic_cast<const CVelumControl*>(aObj)) return u"field"_s;
  if (dynamic_cast<const CVelumCard*>(aObj)) return u"card"_s;
  if (dynamic_cast<const CVelumControlSet*>(aObj)) return u"background"_s;
  return u"stack"_s;
}

// Characters of a line that are told.
constexpr qsizetype EMaxLine = 200;

QString LineText(const CVelumScripted& aObj, qint32 aLine) {
  QList<QString> lines;
  CVelumLib::SplitLines(aObj.ScriptSource(), lines);
  const QString line = lines.value(aLine).trimmed();
  return line.size() > EMaxLine ? line.left(EMaxLine) + u'…' : line;
}

} // namespace

QString CVelumRunError::Place(const TRunError& aError) {
  if (!aError.iObj) return {};
  QString place = u"Script of %1 '%2'"_s.arg(Kind(aError.iObj.Get()), aError.iObj->Name());
  if (aError.iLine == ENoInt) return place;
  place += u", line %1"_s.arg(aError.iLine + 1);
  const QString text = LineText(*aError.iObj, aError.iLine);
  return text.isEmpty() ? place : place + u": "_s + text;
}
