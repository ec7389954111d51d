// What a piece of a test raises.
#pragma once

#include "core/CVelumError.h"

// The number that aAction raises, or -1.
template <class F> qint32 Raised(F aAction) {
  try {
    aAction();
  } catch (const CVelumException& e) {
    return e.Number();
  }
  return -1;
}
