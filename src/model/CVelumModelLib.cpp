#include "model/CVelumModelLib.h"

#include "core/CVelumFieldTypes.h"
#include "core/CVelumValue.h"

namespace {

qint16 TextKeyLen(const CVelumControl& aControl, qint16 aMost) {
  const qint16 len = aControl.MaxChar() != ENoShort ? aControl.MaxChar() : aControl.VisChar();
  return qMin(len, aMost);
}

} // namespace

qint16 CVelumLib::SortKeyLen(const CVelumControl& aControl) {
  const TVelumFieldType& type = CVelumFieldTypes::Of(aControl.ConType());
  CVelumError::AssertObj(type.IsSortable(), &aControl, u"SortKeyLen"_s, u"SortKeyLen type"_s);
  return type.iKey == EFieldTextKey ? TextKeyLen(aControl, type.iKeyLen) : type.iKeyLen;
}

Ref<CVelumFont> CVelumLib::EvalFont(const CVelumCard& aCard, const CVelumControl* aControl) {
  Ref<CVelumFont> font = MakeRef<CVelumFont>();
  if (aCard.Stack()) font->AddFont(aCard.Stack()->Font().Get());
  if (const Ref<CVelumControlSet> background = aCard.Background()) font->AddFont(background->Font().Get());
  font->AddFont(aCard.Font().Get());
  if (aControl) font->AddFont(aControl->Font().Get());
  font->SetDefaults();
  return font;
}

Ref<CVelumFont> CVelumLib::EvalListFont(const CVelumStack* aStack) {
  Ref<CVelumFont> font = MakeRef<CVelumFont>();
  if (aStack) font->AddFont(aStack->ListFont().Get());
  font->SetDefaults();
  return font;
}

bool CVelumLib::ObjChanged(const CVelumObject* aObj) {
  return aObj && aObj->Changed();
}

QString CVelumLib::LevelToStr(int aLevel) {
  switch (aLevel) {
  case 0:
    return u"Stack"_s;
  case 1:
    return u"Background"_s;
  case 2:
    return u"Card"_s;
  case 3:
    return u"Control"_s;
  default:
    CVelumError::Assert(false, u"LevelToStr aLevel"_s);
    return {};
  }
}

QString CVelumLib::LineOfCard(CVelumCard& aCard, bool aWithName) {
  QString line = aWithName ? aCard.Name() : QString();
  bool first = !aWithName;
  const Ref<CVelumControlSet> background = aCard.Background();
  for (qint32 i = 0; background && i < background->NumControls(); ++i) {
    const CVelumControl* control = background->ControlAt(i);
    if (!control->InCardList()) continue;
    if (!first) line += u'\t';
    first = false;
    line += CVelumValue::ValToExtText(aCard.GetControlVal(control->Id(), false), control->FieldInfo());
  }
  return line;
}
