#pragma once

#include <memory>

#include "aq/core/error.h"
#include "aq/core/export.h"

namespace aq {

/// Throws `ObjectNotSet`. Not inline, which keeps `orThrow` small enough to be inlined.
[[noreturn]] AQ_API void throwMissingObject();

/// The object that `pointer` points to; created and kept there if the pointer is empty.
template <class T>
const std::shared_ptr<T>& orCreate(std::shared_ptr<T>& pointer) {
  if (!pointer) pointer = std::make_shared<T>();
  return pointer;
}

/// The object that a caller's pointer points to. Throws `ObjectNotSet` if the pointer is empty.
template <class T>
T& orThrow(const std::shared_ptr<T>& pointer) {
  if (!pointer) throwMissingObject();
  return *pointer;
}

}  // namespace aq
