// What the tests of the interpreter share.
#pragma once

#include "ScriptStack.h"

#include <functional>

class CVelumInterpreterTest : public ScriptStack {
protected:
  using Answers = QList<QString>;

  // The failure of aBody as message, parameters and procedure.
  QString Error(const QString& aBody);
  // How aBody ends and what it answers, with fused instructions or without.
  Answers Outcome(const QString& aBody, bool aSingle);
  // The number of aBody's failure, whose text must hold aText.
  qint32 AssertText(const QString& aBody, const QString& aText);
};

// Does its work in one turn of events, and nothing in the others.
class CWork final : public CVelumEventPump {
public:
  explicit CWork(std::function<void()> aWork, int aTurn = 1);
  ~CWork() override { CVelumSeams::SetEventPump(nullptr); }
  void Pump() override;

private:
  std::function<void()> iWork;
  int iTurn;
};
