// The last catcher of a command of the user interface.
#pragma once

#include "core/CVelumMsg.h"

namespace CVelumGuard {

// Runs aCommand; a failure is caught with aProc and shown. Returns whether all went well.
template <class T> bool Run(const QString& aProc, T aCommand) {
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
