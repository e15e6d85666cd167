#pragma once

#include <cstdint>
#include <vector>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// A stored metric that differs from the one computed from the levels.
struct MetricDifference {
  std::int16_t record = 0;
  AQ_METRIC_TYPE metric = AQ_METRIC_AWT;
  double stored = 0;
  double computed = 0;  ///< rounded like the stored value; NaN when the levels give no value
};

/// Compares every stored metric with the computed one, which is rounded to single precision if the
/// stored one is single: levels and corrections differ if they are more than `tolerance` dB apart,
/// bands and flags if they are not equal. The result is sorted by record, then by metric. A stored
/// 0 counts as equal to a missing value, since an unset metric reads as 0. Compares the last good
/// band only if there is a map. Throws in the same cases as `setMetrics`, and `InvalidArgument` for
/// a tolerance that is negative or NaN. Never changes the history.
[[nodiscard]] AQ_API std::vector<MetricDifference> auditMetrics(
    const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map, double tolerance);

}  // namespace aq
