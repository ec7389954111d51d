// What the open stack's windows need of the interpreter.
#pragma once

#include "script/CVelumRunError.h"

#include "model/CVelumCard.h"

class CVelumScriptRunner {
public:
  virtual ~CVelumScriptRunner() = default;
  // The installed runner; while it is null no handler is found and no script runs. Set once, by what starts
  // the program, which also takes it away.
  [[nodiscard]] static CVelumScriptRunner* Installed();
  static void Install(CVelumScriptRunner* aRunner);
  // Whether the installed runner runs a script.
  [[nodiscard]] static bool ScriptRuns() { return Installed() && Installed()->Running(); }

  // Looks for a handler of aMsg on the control (or nothing), the card, its background and the stack, and runs
  // the first one.
  virtual void LocateAndExecScript(const Ref<CVelumCard>& aCard, const Ref<CVelumControl>& aControl,
                                   const QString& aMsg) = 0;
  // What ParamVal gives to the scripts that run next.
  virtual void SetParamVal(const QString& aVal) { static_cast<void>(aVal); }
  // Whether a script runs.
  [[nodiscard]] virtual bool Running() const = 0;
  // Stops the running script; harmless when none runs.
  virtual void Break() = 0;
  // To be called when a script has failed.
  virtual void Reset() = 0;
  // Where the last one failed, and with what when that was EMsgRunError; without an owner when none did.
  [[nodiscard]] virtual TRunError RunError() const { return {}; }
};
