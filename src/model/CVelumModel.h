// The model as a whole: its object factory, and safe access to objects in arrays.
#pragma once

#include "core/array/CVelumArray.h"

namespace CVelumModel {

// Installs the object factory of the model (CVelumSeams). Called once at start.
void Install();

// The object of a value if its tag is aTag, else null. A damaged file can hold any object anywhere, so the
// tag is asked each time; aTag must be the tag of class T.
template <class T> [[nodiscard]] T* ObjAs(const TVelumValue& aVal, int aTag) {
  return aVal.Type() == aTag ? static_cast<T*>(aVal.Obj()) : nullptr;
}

} // namespace CVelumModel
