#pragma once

#include <array>

#include "aq/core/enumerations.h"
#include "aq/noise/record_block.h"

// The metrics of the records of a block.

namespace aq {

/// Levels by type, from `AQ_METRIC_AWT` to `AQ_METRIC_OA`; NaN if there is none.
using WeightedLevels = std::array<BlockRow, AQ_METRIC_OA>;

/// See `weightedLevel`.
[[nodiscard]] WeightedLevels weightedLevelsOf(const RecordBlock& block);

/// See `perceivedNoiseLevel`; infinite instead of throwing.
[[nodiscard]] BlockRow perceivedNoiseLevelsOf(const RecordBlock& block);

}  // namespace aq
