#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"

namespace aq {

/// The points `first` to `last`, numbered from 1; the start time moves by as much as `Tm` of the
/// first one does. Points are shared with the geometry. Throws `InvalidArgument` at a point that is
/// missing.
[[nodiscard]] AQ_API std::shared_ptr<AQ_GeometryTimeHistory> cutGeometry(
    AQ_GeometryTimeHistory& geometry, std::int32_t first, std::int32_t last);

}  // namespace aq
