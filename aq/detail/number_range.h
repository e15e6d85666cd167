#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "aq/core/enumerations.h"
#include "aq/core/error.h"

namespace aq {

/// A size as a 16-bit count. Throws `Overflow` above 32767.
[[nodiscard]] inline std::int16_t count16(std::size_t size) {
  if (size > 32767) throw Error(ErrorCode::Overflow, "more than 32767 entries to count");
  return static_cast<std::int16_t>(size);
}

/// The lowest and highest band or record number ever stored. An empty range is 9999 to -1. As hosts
/// expect, the low end is never above 9999 and the high end never below -1.
struct NumberRange {
  std::int16_t low = AQ_INVALID_LEVEL;
  std::int16_t high = -1;

  void widen(std::int16_t number) {
    low = std::min(low, number);
    high = std::max(high, number);
  }

  /// Widens to include `count` numbers starting at `first`.
  void widen(std::int16_t first, std::size_t count) {
    if (count == 0) return;
    widen(first);
    widen(static_cast<std::int16_t>(first + static_cast<int>(count) - 1));
  }

  /// Whether the range spans exactly `count` numbers; false for an empty range. If all stored
  /// numbers are below -1 or all are above 9999, it spans more numbers than were stored.
  [[nodiscard]] bool holds(std::size_t count) const {
    return high - low + 1 == static_cast<int>(count);
  }

  /// Whether the bands of `other` lie inside this range.
  template <class Banded>
  [[nodiscard]] bool encompasses(const Banded& other) const {
    return low <= other.LowBand() && high >= other.HighBand();
  }
};

}  // namespace aq
