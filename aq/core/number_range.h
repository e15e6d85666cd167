#pragma once

#include <algorithm>
#include <cstdint>

#include "aq/core/enumerations.h"

namespace aq {

/// The lowest and highest band or record number ever stored. It only widens; an empty one is 9999
/// to -1, and 9999 stays the low end when only larger numbers are stored, as hosts know it.
struct NumberRange {
  std::int16_t low = AQ_INVALID_LEVEL;
  std::int16_t high = -1;

  void widen(std::int16_t number) {
    low = std::min(low, number);
    high = std::max(high, number);
  }

  /// Whether the bands of `other` lie inside this range.
  template <class Banded>
  [[nodiscard]] bool encompasses(const Banded& other) const {
    return low <= other.LowBand() && high >= other.HighBand();
  }
};

}  // namespace aq
