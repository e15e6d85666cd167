#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"

namespace aq {

/// The points `first` to `last`, numbered from 1; the start time moves by the same amount as `Tm`
/// of the first point. Points are shared with the geometry. Throws `InvalidArgument` if a point is
/// missing.
[[nodiscard]] AQ_API std::shared_ptr<AQ_GeometryTimeHistory> cutGeometry(
    AQ_GeometryTimeHistory& geometry, std::int32_t first, std::int32_t last);

}  // namespace aq
