// A small stack to run scripts on: one background "Page" with a field of each type, four cards.
#pragma once

#include "script/CVelumCompiler.h"
#include "script/CVelumPlainHost.h"
#include "support/ScriptedPresenter.h"

#include <gtest/gtest.h>

class ScriptStack : public testing::Test {
protected:
  ScriptStack();

  // Compiles aSource and gives it to aOwner.
  void SetScript(CVelumScripted& aOwner, const QString& aSource);
  // Runs the statements of aBody (lines parted by "\n") as a handler of the background, on the card "one".
  // Returns what was answered.
  QList<QString> Run(const QString& aBody);
  // The same, for a body that fails: the number of the failure.
  qint32 RunFails(const QString& aBody);
  // Runs raw byte code as a handler of the background.
  void RunCode(const QByteArray& aCode);
  qint32 CodeFails(const QByteArray& aCode);
  Ref<CVelumCard> Card(const QString& aName) const;
  Ref<CVelumControl> Control(const QString& aName) const;

  ScriptedPresenter iPresenter;
  Ref<CVelumStack> iStack;
  Ref<CVelumControlSet> iPage;
  Ref<CVelumInterpreter> iInterpreter;
  std::unique_ptr<CVelumPlainHost> iHost;
};

// The bytes of a handler: generation, then aCode.
QByteArray Handler(std::initializer_list<int> aCode);
