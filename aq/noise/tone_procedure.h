#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "aq/detail/lanes.h"

namespace aq {

inline constexpr std::int16_t kFirstToneBand = 19;  // 80 Hz
inline constexpr std::int16_t kLastToneBand = 40;   // 10 kHz
inline constexpr double kMarkedSlopeChange = 5;     // dB; a slope that changes by more is marked
inline constexpr std::size_t kToneBands = kLastToneBand - kFirstToneBand + 1;

/// The tone correction in dB of the band at index `place`, counted from band 19, whose level
/// exceeds the background by `difference` dB: at most a third of the difference, and 0 up to 1.5
/// dB.
[[nodiscard]] double bandCorrection(std::size_t place, double difference);

/// The tone correction procedure of 14 CFR 36, A36.4.3, step by step, for one record or for lanes
/// of records with the same bands. A column holds one number per band, from band 19 at index 0, and
/// one more.
template <class Number>
class ToneProcedure {
 public:
  using Column = std::array<Number, kToneBands + 1>;  // some steps look at the band above

  Column level{};  ///< to be filled by the caller

  /// Runs every step for the first `count` levels.
  void run(std::size_t count);

  Column slope{};          ///< NaN at index 0 and above the last band
  Column isReplaced{};     ///< 1 for a level that is replaced, otherwise 0
  Column adjusted{};       ///< the level or its replacement
  Column adjustedSlope{};  ///< the first and the last slope each appear twice
  Column meanSlope{};      ///< not set for the last band
  Column background{};
  Column difference{};
  Number largest{};  ///< the largest correction of any band

  /// The sum of 2^index over the bands that may have the largest correction.
  [[nodiscard]] Number candidates(std::size_t count) const;

  /// The slope minus that of the band below.
  [[nodiscard]] Number slopeChange(std::size_t place) const {
    return slope[place] - slope[place - 1];
  }

 private:
  void findSlopes(std::size_t count);
  void adjustLevels(std::size_t count);
  void findBackground(std::size_t count);
  void findLargest(std::size_t count);
};

extern template class ToneProcedure<double>;
extern template class ToneProcedure<Lanes>;

}  // namespace aq
