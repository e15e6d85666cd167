#pragma once

#include <cstddef>
#include <cstdint>

#include "aq/core/error.h"

namespace aq {

/// A size as the 16-bit count of the interface. Throws `Overflow` above 32767.
[[nodiscard]] inline std::int16_t count16(std::size_t size) {
  if (size > 32767) throw Error(ErrorCode::Overflow, "more than 32767 entries to count");
  return static_cast<std::int16_t>(size);
}

}  // namespace aq
