#pragma once

#include <cstdint>
#include <vector>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// A metric that a record carries and that is not what its levels give.
struct MetricDifference {
  std::int16_t record = 0;
  AQ_METRIC_TYPE metric = AQ_METRIC_AWT;
  double stored = 0;
  double computed = 0;  ///< in the stored type; NaN when the record has no such value
};

/// Compares every metric that a record carries with the computed one, narrowed to the stored type:
/// levels and corrections differ when more than `tolerance` dB apart, bands and flags when not
/// equal. By record, then by metric. A stored 0 is no difference where there is no value, since
/// that is what a metric without one reads as. The last good band is compared with a map only.
/// Throws as `setMetrics`, and `InvalidArgument` for a tolerance that is negative or NaN; the
/// history stays unchanged.
[[nodiscard]] AQ_API std::vector<MetricDifference> auditMetrics(
    const AQ_SpectralTimeHistory& history, const AQ_MaskMap* map, double tolerance);

}  // namespace aq
