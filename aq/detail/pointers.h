#pragma once

#include <memory>

#include "aq/core/error.h"

namespace aq {

/// The object of `pointer`; it is created, and kept there, if there is none.
template <class T>
const std::shared_ptr<T>& orCreate(std::shared_ptr<T>& pointer) {
  if (!pointer) pointer = std::make_shared<T>();
  return pointer;
}

/// The object of a pointer that a caller may have left empty. Throws `ObjectNotSet` if so.
template <class T>
T& orThrow(const std::shared_ptr<T>& pointer) {
  if (!pointer) throw Error(ErrorCode::ObjectNotSet, "an object is missing");
  return *pointer;
}

}  // namespace aq
