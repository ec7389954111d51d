#include "FuzzStack.h"

#include "core/CVelumLib.h"
#include "core/CVelumMsg.h"
#include "core/text/CVelumLocale.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr qint32 ENumCards = 3;

void InstallOnce() {
  static const bool installed = [] {
    CVelumModel::Install();
    CVelumMsg::InitMessages();
    CVelumLocale::Init(u"en_US"_s);
    return true;
  }();
  static_cast<void>(installed);
}

} // namespace

FuzzStack::FuzzStack(bool aOverrule, bool aSingle) : iInterpreter(MakeRef<CVelumInterpreter>()) {
  InstallOnce();
  iPresenter.SetDefaultAnswer(aOverrule);
  iInterpreter->SetLimit(EMaxSteps);
  iInterpreter->SetPumpAlways(aSingle);
  iInterpreter->SeedRandom(1);
  iStack = MakeRef<CVelumStack>(u"Fuzz"_s);
  iPage = iStack->Background(0);
  iPage->SetName(u"B"_s);
  for (const qint32 type : {EConText, EConInteger, EConReal, EConDate, EConTime, EConBoolean, EConList,
                            EConCommand, EConPicture}) {
    const auto control = MakeRef<CVelumControl>(iStack->IdGen().NextId(), u"f%1"_s.arg(type), type);
    iPage->AddControl(control, ENoInt);
    if (!iField) iField = control;
  }
  for (qint32 i = 0; i < ENumCards; ++i) {
    const auto card = MakeRef<CVelumCard>(u"c%1"_s.arg(i), iPage);
    iStack->AddCard(card, nullptr, false);
    if (i > 0) card->SetControlVal(iField->Id(), TVelumValue::OfStr(u"%1 text"_s.arg(i)));
  }
  iHost = std::make_unique<CVelumPlainHost>(iStack, iInterpreter);
}

void FuzzStack::AddHandler(CVelumScripted& aOwner, const QString& aName, const QByteArray& aCode) {
  if (!aOwner.Script()) aOwner.SetScript(MakeRef<CVelumArray>(qint32{EArrStrKey}, qint32{EValStr}));
  TVelumElem elem;
  aOwner.Script()->InitElem(elem);
  elem.iStrKey = aName;
  elem.iVal = TVelumValue::OfStr(CVelumLib::BytesToHex(aCode, false));
  aOwner.Script()->CreateStrKey(elem);
}

void FuzzStack::NoteFailure(qint32 aNumber) {
  iFailures.append(QString::number(aNumber));
  if (aNumber >= 1000) iFailures.append(CVelumError::GetErrorRecord().iProc);
  const TRunError& error = iInterpreter->GetError();
  iFailures.append(u"line %1"_s.arg(error.iLine));
  if (aNumber == EMsgRunError)
    iFailures.append(u"%1|%2|%3"_s.arg(error.iMsg).arg(error.iParam0, error.iParam1));
}

void FuzzStack::ExpectSame(const QList<QString>& aFused, const QList<QString>& aSingle) {
  if (aFused == aSingle) return;
  for (const QString& line : aFused) std::fprintf(stderr, "fused: %s\n", qPrintable(line.left(1000)));
  for (const QString& line : aSingle) std::fprintf(stderr, "single: %s\n", qPrintable(line.left(1000)));
  std::abort();
}

void FuzzStack::Send(const QString& aMsg) {
  const CVelumError::CCommand command;
  try {
    iHost->Send(iHost->CurCard(), iField, aMsg);
  } catch (const CVelumException& e) {
    NoteFailure(e.Number());
  }
  if (iInterpreter->Running() || iStack->NumCards() != ENumCards) std::abort();
}
