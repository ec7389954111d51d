#include "script/CVelumRunError.h"

#include "model/CVelumStack.h"

namespace {

QString Kind(const CVelumScripted* aObj) {
  if (dynamic_cast<const CVelumControl*>(aObj)) return u"field"_s;
  if (dynamic_cast<const CVelumCard*>(aObj)) return u"card"_s;
  if (dynamic_cast<const CVelumControlSet*>(aObj)) return u"background"_s;
  return u"stack"_s;
}

} // namespace

QString CVelumRunError::Place(const TRunError& aError) {
  QString place = u"Script"_s;
  if (aError.iObj) place += u" of %1 '%2'"_s.arg(Kind(aError.iObj.Get()), aError.iObj->Name());
  if (aError.iLine != ENoInt) place += u", line %1"_s.arg(aError.iLine + 1);
  return place;
}
