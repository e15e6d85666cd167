#pragma once

#include <optional>

#include "aq/core/enumerations.h"
#include "aq/noise/counted_levels.h"

// The metrics of one record from the levels that count, for all who have taken them.

namespace aq {

/// See `weightedLevel`.
[[nodiscard]] std::optional<double> weightedLevelOf(const CountedLevels& record,
                                                    AQ_METRIC_TYPE weighting);

/// See `perceivedNoiseLevel`; infinite instead of throwing.
[[nodiscard]] double perceivedNoiseLevelOf(const CountedLevels& record);

}  // namespace aq
