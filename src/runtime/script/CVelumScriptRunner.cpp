#include "runtime/script/CVelumScriptRunner.h"

namespace {
CVelumScriptRunner* gInstalled = nullptr;
}

CVelumScriptRunner* CVelumScriptRunner::Installed() {
  return gInstalled;
}

void CVelumScriptRunner::Install(CVelumScriptRunner* aRunner) {
  gInstalled = aRunner;
}
