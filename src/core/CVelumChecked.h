// Arithmetic and access that raise host errors instead of undefined behaviour.
#pragma once

#include "core/CVelumError.h"

#include <utility>

namespace CVelumChecked {

// aA + aB, aA - aB, aA * aB; host error 6 when the result does not fit.
template <class T> [[nodiscard]] T Add(T aA, T aB) {
  T r;
  if (__builtin_add_overflow(aA, aB, &r)) CVelumError::RaiseHost(EHostOverflow);
  return r;
}
template <class T> [[nodiscard]] T Sub(T aA, T aB) {
  T r;
  if (__builtin_sub_overflow(aA, aB, &r)) CVelumError::RaiseHost(EHostOverflow);
  return r;
}
template <class T> [[nodiscard]] T Mul(T aA, T aB) {
  T r;
  if (__builtin_mul_overflow(aA, aB, &r)) CVelumError::RaiseHost(EHostOverflow);
  return r;
}

// The whole number aValue as To; host error 6 when it does not fit.
template <class To, class From> [[nodiscard]] To Narrow(From aValue) {
  if (!std::in_range<To>(aValue)) CVelumError::RaiseHost(EHostOverflow);
  return static_cast<To>(aValue);
}

// aIndex, which must lie in 0 to aCount - 1; host error 9 otherwise.
template <class T> [[nodiscard]] T Index(T aIndex, T aCount) {
  if (aIndex < 0 || aIndex >= aCount) CVelumError::RaiseHost(EHostIndex);
  return aIndex;
}

// The same as a check alone.
template <class T> void CheckIndex(T aIndex, T aCount) {
  if (aIndex < 0 || aIndex >= aCount) CVelumError::RaiseHost(EHostIndex);
}

// *aRef; host error 91 for nothing.
template <class T> [[nodiscard]] T& Deref(const Ref<T>& aRef) {
  if (!aRef) CVelumError::RaiseHost(EHostObjectNotSet);
  return *aRef;
}
template <class T> [[nodiscard]] T& Deref(T* aPtr) {
  if (!aPtr) CVelumError::RaiseHost(EHostObjectNotSet);
  return *aPtr;
}

} // namespace CVelumChecked
