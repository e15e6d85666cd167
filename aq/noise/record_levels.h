#pragma once

#include <array>

#include "aq/core/enumerations.h"
#include "aq/noise/counted_levels.h"

// The metrics of one record from the levels that count, for all who have taken them.

namespace aq {

/// Levels by type, from `AQ_METRIC_AWT` to `AQ_METRIC_OA`; NaN for none.
using WeightedLevels = std::array<double, AQ_METRIC_OA>;

/// See `weightedLevel`.
[[nodiscard]] WeightedLevels weightedLevelsOf(const CountedLevels& record);

/// See `perceivedNoiseLevel`; infinite instead of throwing.
[[nodiscard]] double perceivedNoiseLevelOf(const CountedLevels& record);

}  // namespace aq
