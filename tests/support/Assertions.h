// What an assertion said.
#pragma once

#include "core/CVelumMsg.h"

#include <functional>
#include <gtest/gtest.h>

namespace Assertions {

// Procedure and text of the assertion that aWork fails, parted by "|". The text goes as far as the
// description of the object.
inline std::string Of(const std::function<void()>& aWork) {
  try {
    aWork();
  } catch (const CVelumException& e) {
    const TVelumError error = CVelumError::GetErrorRecord();
    if (e.Number() != EMsgAssertFailed) return "error " + std::to_string(e.Number());
    const QString text = error.iP0.isEmpty() ? error.iP1 : error.iP1.left(error.iP1.lastIndexOf(error.iP0));
    return (error.iProc + u'|' + text).toStdString();
  }
  return "nothing failed";
}

} // namespace Assertions
