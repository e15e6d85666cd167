#pragma once

#include <memory>

#include "aq/core/error.h"

namespace aq {

/// The object behind a pointer that a caller may have left empty: then it throws `ObjectNotSet`.
template <class T>
T& required(const std::shared_ptr<T>& object) {
  if (!object) throw Error(ErrorCode::ObjectNotSet, "an object is missing");
  return *object;
}

}  // namespace aq
