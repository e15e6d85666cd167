#pragma once

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/cut_history.h"

namespace aq {

/// The records of the event: from the last one before PNLT rises to within `decibels` of the
/// largest to the first one after it falls below. A history that is cut to them has the same event.
/// If the records begin or end within the event, the range extends to that end. Throws
/// `InvalidArgument` if no record has a PNLT or `decibels` is not above 0, and as `setMetrics`.
[[nodiscard]] AQ_API RecordRange recordsDown(const AQ_SpectralTimeHistory& history,
                                             const AQ_MaskMap* map = nullptr, double decibels = 10);

}  // namespace aq
