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

/// The points of two geometries, numbered on from the last one of `before`. Points are shared with
/// both; start, reference and their types are those of `before`. Throws `InvalidArgument` when
/// `after` has another reference or type of stamps, does not begin after `before` has ended, or one
/// of them has no points.
[[nodiscard]] AQ_API std::shared_ptr<AQ_GeometryTimeHistory> joinGeometries(
    AQ_GeometryTimeHistory& before, AQ_GeometryTimeHistory& after);

}  // namespace aq
