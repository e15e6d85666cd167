#pragma once

#include <memory>

#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"
#include "aq/spectral/cut_history.h"

namespace aq {

/// The points of the records of a range, numbered from 1. They are found by their times, to 6 ms,
/// since a geometry need not begin with record 1, and follow each other. Points are shared with the
/// geometry. Throws `InvalidArgument` when there is no record, and at one without a point.
[[nodiscard]] AQ_API std::shared_ptr<AQ_GeometryTimeHistory> geometryOf(
    AQ_GeometryTimeHistory& geometry, const AQ_SpectralTimeHistory& history,
    const RecordRange& range);

}  // namespace aq
