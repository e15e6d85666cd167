#pragma once

#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"
#include "aq/geometry/position_time_history.h"
#include "aq/spectral/spectral_time_history.h"

// The text of a time of day has seven digits in all and drops a fraction that needs more, which
// hosts rely on: 12:34:56.996 becomes 12:34:56, nearly a second early. Before writing a model,
// replace such times by the second that they round to; other times stay unchanged.
namespace aq {

/// Whether any time that a file of the model has is late in its second; an empty object has none.
[[nodiscard]] AQ_API bool hasLateTimes(const AQ_PositionTimeHistory& positions);
[[nodiscard]] AQ_API bool hasLateTimes(const AQ_GeometryTimeHistory& geometry);
[[nodiscard]] AQ_API bool hasLateTimes(AQ_SpectralTimeHistory& history);

/// Returns whether the time was late in its second.
AQ_API bool roundLateTime(AQ_Time& time);

/// Returns whether any time of the model was late in its second. Times shared with other models
/// change there too.
AQ_API bool roundLateTimes(const AQ_PositionTimeHistory& positions);
AQ_API bool roundLateTimes(const AQ_GeometryTimeHistory& geometry);
/// Rounds start and reference time too.
AQ_API bool roundLateTimes(AQ_SpectralTimeHistory& history);

}  // namespace aq
