#include "ScriptStack.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/CVelumValue.h"
#include "core/text/CVelumLocale.h"

namespace {

struct TField {
  const char16_t* iName;
  qint32 iType;
};

const TField EFields[] = {{u"T", EConText},  {u"I", EConInteger}, {u"R", EConReal},    {u"D", EConDate},
                          {u"Ti", EConTime}, {u"B", EConBoolean}, {u"P", EConPicture}, {u"C", EConCommand}};

} // namespace

QByteArray Handler(std::initializer_list<int> aCode) {
  QByteArray code(2, '\0');
  for (int byte : aCode) code.append(static_cast<char>(byte));
  return code;
}

ScriptStack::ScriptStack() : iInterpreter(MakeRef<CVelumInterpreter>()) {
  CVelumModel::Install();
  CVelumMsg::InitMessages();
  CVelumLocale::Init(u"en_US"_s);
  iStack = MakeRef<CVelumStack>(u"Scripts"_s);
  iPage = iStack->Background(0);
  iPage->SetName(u"Page"_s);
  for (const TField& field : EFields) {
    const auto control =
        MakeRef<CVelumControl>(iStack->IdGen().NextId(), QString::fromUtf16(field.iName), field.iType);
    iPage->AddControl(control, ENoInt);
  }
  for (const QString& name : {u"one"_s, u"two"_s, u"three"_s, u"x"_s})
    iStack->AddCard(MakeRef<CVelumCard>(name, iPage), nullptr, false);
  const Ref<CVelumCard> one = Card(u"one"_s);
  one->SetControlVal(Control(u"T"_s)->Id(), TVelumValue::OfStr(u"hello"_s));
  one->SetControlVal(Control(u"I"_s)->Id(), TVelumValue::OfInt(7));
  one->SetControlVal(Control(u"R"_s)->Id(), TVelumValue::OfReal(2.5));
  one->SetControlVal(Control(u"D"_s)->Id(), TVelumValue::OfDate(CVelumValue::IntToDate(20200131)));
  one->SetControlVal(Control(u"B"_s)->Id(), TVelumValue::OfBoolean(true));
  iHost = std::make_unique<CVelumPlainHost>(iStack, iInterpreter);
}

Ref<CVelumCard> ScriptStack::Card(const QString& aName) const {
  Ref<CVelumCard> card;
  EXPECT_TRUE(iStack->GetCard(aName, card)) << aName.toStdString();
  return card;
}

Ref<CVelumControl> ScriptStack::Control(const QString& aName) const {
  Ref<CVelumControl> control;
  EXPECT_TRUE(iPage->GetControlByName(aName, control)) << aName.toStdString();
  return control;
}

void ScriptStack::SetScript(CVelumScripted& aOwner, const QString& aSource) {
  CVelumCompiler compiler;
  const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
  compiler.Compile(CVelumLib::ToCrLf(aSource), *handlers);
  aOwner.SetScript(handlers);
}

QList<QString> ScriptStack::Run(const QString& aBody) {
  SetScript(*iPage, u"On test p\n"_s + aBody + u"\nEnd\n"_s);
  const auto before = iPresenter.Told().size();
  iHost->Send(Card(u"one"_s), nullptr, u"test"_s);
  return iPresenter.Told().mid(before);
}

qint32 ScriptStack::RunFails(const QString& aBody) {
  try {
    Run(aBody);
  } catch (const CVelumException& e) {
    EXPECT_FALSE(iInterpreter->Running());
    return e.Number();
  }
  ADD_FAILURE() << "no failure";
  return 0;
}

void ScriptStack::RunCode(const QByteArray& aCode) {
  const auto handlers = MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr});
  TVelumElem elem;
  handlers->InitElem(elem);
  elem.iStrKey = u"test"_s;
  elem.iVal = TVelumValue::OfStr(CVelumLib::BytesToHex(aCode, false));
  handlers->CreateStrKey(elem);
  iPage->SetScript(handlers);
  iHost->Send(Card(u"one"_s), nullptr, u"test"_s);
}

qint32 ScriptStack::CodeFails(const QByteArray& aCode) {
  try {
    RunCode(aCode);
  } catch (const CVelumException& e) {
    return e.Number();
  }
  return 0;
}
