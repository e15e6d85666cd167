#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "aq/noise/counted_levels.h"

namespace aq {

inline constexpr std::int16_t kFirstToneBand = 19;  // 80 Hz
inline constexpr std::int16_t kLastToneBand = 40;   // 10 kHz

/// The tone correction procedure of 14 CFR 36, A36.4.3, step by step, over the bands of a record
/// from 80 Hz up to the first that does not count. Arrays are by place, the first band being 0.
class ToneProcedure {
 public:
  explicit ToneProcedure(const CountedLevels& record);

  using Column = std::array<double, kLastToneBand - kFirstToneBand + 1>;
  using Marks = std::array<bool, kLastToneBand - kFirstToneBand + 1>;

  std::size_t count = 0;  ///< bands taken
  Column level{};
  Column slope{};  ///< from place 1 on
  Marks slopeMarked{};
  Marks levelMarked{};
  Column adjusted{};
  Column adjustedSlope{};  ///< for more than one band
  Column meanSlope{};      ///< without the last place
  Column background{};
  Column difference{};
  Column correction{};
  double largest = 0;            ///< of the corrections
  std::int16_t largestBand = 0;  ///< the lowest with it; 0 for none

 private:
  void findSlopes();
  void markLevels();
  void adjustLevels();
  void findBackground();
  void correct();
};

}  // namespace aq
