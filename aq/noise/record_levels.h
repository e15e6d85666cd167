#pragma once

#include <array>

#include "aq/core/enumerations.h"
#include "aq/noise/counted_levels.h"
#include "aq/noise/lanes.h"

// The metrics of records, from the levels that count.

namespace aq {

/// Levels by type, from `AQ_METRIC_AWT` to `AQ_METRIC_OA`; NaN if there is none.
using WeightedLevels = std::array<double, AQ_METRIC_OA>;

/// See `weightedLevel`.
[[nodiscard]] WeightedLevels weightedLevelsOf(const CountedLevels& record);

/// See `perceivedNoiseLevel`; infinite instead of throwing.
[[nodiscard]] double perceivedNoiseLevelOf(const CountedLevels& record);

/// See `toneCorrection`: the largest correction of each record and its band.
struct Tones {
  std::array<double, kLanes> corrections{};
  std::array<double, kLanes> bands{};
};
[[nodiscard]] Tones tonesOf(const std::array<CountedLevels, kLanes>& records);

}  // namespace aq
