#pragma once

#include <memory>

namespace aq {

/// The object behind `pointer`, made on first use and then kept.
template <class T>
const std::shared_ptr<T>& created(std::shared_ptr<T>& pointer) {
  if (!pointer) pointer = std::make_shared<T>();
  return pointer;
}

}  // namespace aq
