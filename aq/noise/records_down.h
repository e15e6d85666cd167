#pragma once

#include "aq/core/export.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/cut_history.h"

namespace aq {

/// The records of the event: from the first to the last one with a PNLT at most `decibels` below
/// the largest, plus the record before and the record after them, if they exist. With 10 dB or
/// more, a history cut to these records has the same 10 dB-down limits. Throws `InvalidArgument` if
/// no record has a PNLT or `decibels` is not above 0; otherwise throws in the same cases as
/// `setMetrics`.
[[nodiscard]] AQ_API RecordRange recordsDown(const AQ_SpectralTimeHistory& history,
                                             const AQ_MaskMap* map = nullptr, double decibels = 10);

}  // namespace aq
