// A small stack for scripts that nobody trusts: a background with a field of each type, three cards.
#pragma once

#include "script/CVelumCompiler.h"
#include "script/CVelumPlainHost.h"
#include "support/ScriptedPresenter.h"

class FuzzStack {
public:
  // aOverrule: assertions are answered with yes. aSingle: no fused instructions.
  FuzzStack(bool aOverrule, bool aSingle);

  // Sends aMsg to the current card, at most EMaxSteps instructions long. Only failures that are described
  // come out of a script; afterwards the interpreter must be idle and the cards be there. Anything else
  // aborts.
  void Send(const QString& aMsg);
  // What was answered, and how messages failed: the same with fused instructions as without.
  [[nodiscard]] QList<QString> Outcome() const { return iFailures + iPresenter.Told(); }
  // Shows two outcomes that differ, and aborts.
  static void ExpectSame(const QList<QString>& aFused, const QList<QString>& aSingle);
  [[nodiscard]] CVelumControlSet& Page() { return *iPage; }
  [[nodiscard]] CVelumControl& Field() { return *iField; }
  // Makes room for one handler of aOwner.
  static void AddHandler(CVelumScripted& aOwner, const QString& aName, const QByteArray& aCode);

private:
  static constexpr qint64 EMaxSteps = 400;

  void NoteFailure(qint32 aNumber);

  ScriptedPresenter iPresenter;
  QList<QString> iFailures;
  Ref<CVelumStack> iStack;
  Ref<CVelumControlSet> iPage;
  Ref<CVelumControl> iField;
  Ref<CVelumInterpreter> iInterpreter;
  std::unique_ptr<CVelumPlainHost> iHost;
};
