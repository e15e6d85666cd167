#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "aq/core/enumerations.h"
#include "aq/detail/lanes.h"
#include "aq/noise/counted_levels.h"
#include "aq/noise/tone_procedure.h"

// The metrics of records, from the levels that count.

namespace aq {

/// Levels by type, from `AQ_METRIC_AWT` to `AQ_METRIC_OA`; NaN if no level counts for that
/// type.
using WeightedLevels = std::array<double, AQ_METRIC_OA>;

/// See `weightedLevel`.
[[nodiscard]] WeightedLevels weightedLevelsOf(const CountedLevels& record);

/// The total noisiness, noys; infinite if the levels are too high.
[[nodiscard]] double totalNoisinessOf(const CountedLevels& record);
/// The perceived noise level of a total noisiness, PNdB.
[[nodiscard]] double perceivedLevelOf(double totalNoisiness);
/// The inverse of `perceivedLevelOf`, for levels above 0.
[[nodiscard]] double totalNoisinessAt(double perceivedLevel);

/// The largest tone correction of each of `kLanes` records, and its band; see `toneCorrection`.
class Tones {
 public:
  /// Leaves the bands unchanged unless `withBands`.
  void find(const std::array<CountedLevels, kLanes>& records, bool withBands);
  [[nodiscard]] double correction(std::size_t record) const { return corrections_[record]; }
  [[nodiscard]] std::int16_t band(std::size_t record) const { return bands_[record]; }

 private:
  ToneProcedure<Lanes> procedure_;
  std::array<double, kLanes> corrections_{};
  std::array<std::int16_t, kLanes> bands_{};
};

}  // namespace aq
