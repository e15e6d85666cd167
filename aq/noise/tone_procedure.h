#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "aq/noise/record_block.h"

namespace aq {

inline constexpr std::int16_t kFirstToneBand = 19;  // 80 Hz
inline constexpr std::int16_t kLastToneBand = 40;   // 10 kHz

/// The tone correction procedure of 14 CFR 36, A36.4.3, step by step, over the bands of each record
/// of a block from 80 Hz up to the first that does not count. Columns are by place, the first band
/// being 0, then by record. What a step does not define is NaN, so that no step asks where the
/// bands of a record end.
class ToneProcedure {
 public:
  ToneProcedure() = default;
  explicit ToneProcedure(const RecordBlock& block) { take(block); }

  /// Finds the corrections of another block.
  void take(const RecordBlock& block);

  static constexpr std::size_t kBands = kLastToneBand - kFirstToneBand + 1;
  using Column = std::array<BlockRow, kBands + 2>;  // two more, as steps look at those above

  Column level{};
  Column slope{};          ///< from place 1 on
  Column slopeChange{};    ///< from place 2 on
  Column levelMark{};      ///< 1 where a level is taken out, else 0
  Column adjusted{};       ///< the level, or what takes the place of a marked one
  Column adjustedSlope{};  ///< goes on by one above the last band, and below the first
  Column meanSlope{};      ///< without the last band
  Column background{};
  Column difference{};
  Column correction{};     ///< 0 where it does not count
  BlockRow largest{};      ///< of the corrections
  BlockRow largestBand{};  ///< the lowest with it; 0 for none

  /// How many bands were taken.
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
