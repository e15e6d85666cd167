#pragma once

#include <memory>

#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"
#include "aq/spectral/cut_history.h"

namespace aq {

/// The points of the records in a range, numbered from 1. Finds the first point by its time, since
/// a geometry need not begin with record 1; the others must follow under consecutive numbers, at
/// the times of their records. The times of a record and its point may differ by less than 6 ms.
/// Points are shared with the geometry. Throws `InvalidArgument` if there is no record in the
/// range, or one has no point.
[[nodiscard]] AQ_API std::shared_ptr<AQ_GeometryTimeHistory> geometryOf(
    AQ_GeometryTimeHistory& geometry, const AQ_SpectralTimeHistory& history,
    const RecordRange& range);

}  // namespace aq
