#include "SampleScripts.h"

#include "core/CVelumLib.h"
#include "script/CVelumCompiler.h"

namespace {

const QString ECount = u"# Each click counts one more.\n"
                       u"On select\n"
                       u"Put Field \"Clicks\" + 1 Into Field \"Clicks\"\n"
                       u"End\n"_s;

const QString EClicks = u"# Somebody typed a number and left the field.\n"
                        u"On closeField\n"
                        u"If Field \"Clicks\" > 99 Then\n"
                        u"Answer \"So many clicks? Let us begin anew.\"\n"
                        u"Put 0 Into Field \"Clicks\"\n"
                        u"End If\n"
                        u"End\n"_s;

const QString EReport = u"# People in thousands, so that the sum of all fits into a whole number.\n"
                        u"On select\n"
                        u"count = 0\n"
                        u"sum = 0\n"
                        u"most = 0\n"
                        u"Repeat For Each Card c Of Background \"Country\"\n"
                        u"people = Field \"Population\" Of Card c / 1000\n"
                        u"count = count + 1\n"
                        u"sum = sum + people\n"
                        u"If people > most Then\n"
                        u"most = people\n"
                        u"where = c & \"\"\n"
                        u"End If\n"
                        u"End Repeat\n"
                        u"Answer count & \" countries, \" & sum / 1000 & \" million people.\" & Return & "
                        u"\"Most of them live in \" & where & \".\"\n"
                        u"End\n"_s;

const QString ESurprise = u"On select\n"
                          u"Go Random(Number Of Cards)\n"
                          u"End\n"_s;

const QString ELeap = u"# A link names a background: to any of its cards.\n"
                      u"On select which\n"
                      u"left = Random(Number Of Cards Of Background which)\n"
                      u"Repeat For Each Card c Of Background which\n"
                      u"left = left - 1\n"
                      u"If left = 0 Then\n"
                      u"Go c & \"\"\n"
                      u"End If\n"
                      u"End Repeat\n"
                      u"End\n"_s;

void SetScript(CVelumScripted& aOwner, const QString& aSource) {
  const QString source = CVelumLib::ToCrLf(aSource);
  const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
  CVelumCompiler().Compile(source, *handlers);
  aOwner.SetScriptSource(source);
  aOwner.SetScript(handlers);
}

void AddButton(CVelumStack& aStack, CVelumControlSet& aBackground, const QString& aName,
               const QString& aSource) {
  const auto button = MakeRef<CVelumControl>(aStack.IdGen().NextId(), aName, qint32{EConCommand});
  button->SetLabel(aName);
  button->SetVisChar(ENoShort); // as wide as its caption
  for (const EConFlag flag : {EConAsButton, EConInMenu}) button->SetFlag(flag, true);
  SetScript(*button, aSource);
  aBackground.AddControl(button, ENoInt);
}

} // namespace

void SampleScripts::AddLeap(CVelumControl& aField) {
  SetScript(aField, ELeap);
}

void SampleScripts::AddTo(CVelumStack& aStack, CVelumControlSet& aBackground) {
  const auto clicks = MakeRef<CVelumControl>(aStack.IdGen().NextId(), u"Clicks"_s, qint32{EConInteger});
  clicks->SetLabel(u"Clicks"_s);
  clicks->SetVisChar(8);
  clicks->SetDefaultVal(u"0"_s);
  SetScript(*clicks, EClicks);
  aBackground.AddControl(clicks, ENoInt);
  AddButton(aStack, aBackground, u"Count"_s, ECount);
  AddButton(aStack, aBackground, u"Report"_s, EReport);
  AddButton(aStack, aBackground, u"Surprise me"_s, ESurprise);
}
