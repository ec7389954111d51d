// The last catcher of a command of the user interface.
#pragma once

#include "core/CVelumMsg.h"

namespace CVelumGuard {

// Runs aCommand as one command of the user, within which an assertion that fails again is not asked again; a
// failure is caught with aProc and shown. Returns whether all went well.
template <class T> bool Run(const QString& aProc, T aCommand) {
  const CVelumError::CCommand command;
  try {
    aCommand();
    return true;
  } catch (...) {
    CVelumError::CatchError(aProc);
    CVelumMsg::ShowLastError();
    return false;
  }
}

} // namespace CVelumGuard
