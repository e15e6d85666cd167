#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"

namespace aq {

/// Points `first` to `last`, renumbered from 1. The start time moves by the time between the `Tm`
/// of the geometry's first point and that of point `first`. Points are shared with the geometry.
/// Throws `InvalidArgument` if a point is missing.
[[nodiscard]] AQ_API std::shared_ptr<AQ_GeometryTimeHistory> cutGeometry(
    AQ_GeometryTimeHistory& geometry, std::int32_t first, std::int32_t last);

/// The points of two geometries; those of `after` are renumbered to follow the last one of
/// `before`. Points are shared with both; the start time, the reference time and their types are
/// those of `before`. Throws `InvalidArgument` if the two differ in the time of day of their
/// reference, in reference type or in time stamp type, if `after` does not begin after `before`
/// ends, or if either has no points.
[[nodiscard]] AQ_API std::shared_ptr<AQ_GeometryTimeHistory> joinGeometries(
    AQ_GeometryTimeHistory& before, AQ_GeometryTimeHistory& after);

}  // namespace aq
