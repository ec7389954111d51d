#include "InterpreterTest.h"

#include "core/CVelumMsg.h"

QString CVelumInterpreterTest::Error(const QString& aBody) {
  EXPECT_EQ(RunFails(aBody), EMsgRunError);
  const TRunError& error = iInterpreter->GetError();
  return CVelumMsg::Name(error.iMsg).mid(4) + u'|' + error.iParam0 + u'|' + error.iParam1 + u'|' +
         CVelumError::GetErrorRecord().iProc.mid(18);
}

CVelumInterpreterTest::Answers CVelumInterpreterTest::Outcome(const QString& aBody, bool aSingle) {
  iInterpreter->SetPumpAlways(aSingle);
  iInterpreter->SeedRandom(1);
  iHost->SetCurCard(Card(u"one"_s));
  Answers outcome;
  const auto before = iPresenter.Told().size();
  try {
    Run(aBody);
  } catch (const CVelumException& e) {
    const TRunError& error = iInterpreter->GetError();
    outcome = {QString::number(e.Number()), error.iParam0, QString::number(error.iLine),
               CVelumError::GetErrorRecord().iP1};
  }
  return outcome + iPresenter.Told().mid(before);
}

qint32 CVelumInterpreterTest::AssertText(const QString& aBody, const QString& aText) {
  const qint32 number = RunFails(aBody);
  EXPECT_TRUE(iPresenter.LastText().contains(aText)) << iPresenter.LastText().toStdString();
  return number;
}

CWork::CWork(std::function<void()> aWork, int aTurn) : iWork(std::move(aWork)), iTurn(aTurn) {
  CVelumSeams::SetEventPump(this);
}

void CWork::Pump() {
  if (--iTurn == 0) iWork();
}
