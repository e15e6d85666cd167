#pragma once

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/cut_history.h"

namespace aq {

/// The records of the event, from the last one before its PNLT rises above `decibels` below the
/// largest to the first one after it falls below: a history cut to them has the same event. Where
/// the records begin or end above that, the range goes to that end. Throws `InvalidArgument` when
/// no record has a PNLT or `decibels` is not above 0, and as `setMetrics`.
[[nodiscard]] AQ_API RecordRange recordsDown(const AQ_SpectralTimeHistory& history,
                                             const AQ_MaskMap* map = nullptr, double decibels = 10);

}  // namespace aq
