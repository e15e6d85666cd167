#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "aq/noise/record_block.h"

namespace aq {

inline constexpr std::int16_t kFirstToneBand = 19;  // 80 Hz
inline constexpr std::int16_t kLastToneBand = 40;   // 10 kHz

/// The tone correction procedure of 14 CFR 36, A36.4.3, step by step, over the bands of each record
/// of a block from 80 Hz up to the first that does not count. Columns are by index, 0 for the first
/// band, then by record. Values that a step does not define are NaN, so that no step needs to know
/// where the bands of a record end.
class ToneProcedure {
 public:
  ToneProcedure() = default;
  explicit ToneProcedure(const RecordBlock& block) { take(block); }

  /// Computes the corrections of another block.
  void take(const RecordBlock& block);

  static constexpr std::size_t kBands = kLastToneBand - kFirstToneBand + 1;
  using Column = std::array<BlockRow, kBands + 2>;  // two more, since steps look two bands ahead

  Column level{};
  Column slope{};          ///< from index 1
  Column slopeChange{};    ///< from index 2
  Column levelMark{};      ///< 1 where a level is removed, otherwise 0
  Column adjusted{};       ///< the level, or the replacement of a marked one, dB
  Column adjustedSlope{};  ///< extends by one above the last band, and below the first
  Column meanSlope{};      ///< without the last band
  Column background{};
  Column difference{};
  Column correction{};     ///< 0 where it does not count
  BlockRow largest{};      ///< of the corrections
  BlockRow largestBand{};  ///< the lowest band that has it; 0 if there is none

  /// How many bands were used.
  [[nodiscard]] std::size_t count(std::size_t record) const;

  /// Whether a slope changes by more than 5 dB.
  [[nodiscard]] bool slopeMarked(std::size_t place, std::size_t record) const;

 private:
  void findSlopes(const RecordBlock& block);
  void adjustLevels();
  void findBackground();
  void correct();
  void findLargest();
};

}  // namespace aq
