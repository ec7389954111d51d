// The last failure of a script.
#pragma once

#include "model/CVelumScripted.h"

struct TRunError {
  qint32 iMsg = 0; // EMsg... of EMsgRunError
  QString iParam0;
  QString iParam1;
  Ref<CVelumScripted> iObj; // owner of the script
  qint32 iLine = ENoInt;    // source line index, from 0
};

namespace CVelumRunError {

// Where it happened, for people, with the text that the line has now: "Script of background 'Page', line 3:
// Go 0". Empty without an owner.
[[nodiscard]] QString Place(const TRunError& aError);

} // namespace CVelumRunError
