#pragma once

#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"
#include "aq/geometry/position_time_history.h"
#include "aq/spectral/spectral_time_history.h"

// The text of a time of day has seven digits in all, and hosts rely on it that a fraction which
// needs more is dropped: 12:34:56.996 is written as 12:34:56, nearly a second early. Who writes a
// model makes such times the second that they round to first; all others stay as they are.
namespace aq {

/// Gives whether the time was late in its second.
AQ_API bool roundLateTime(AQ_Time& time);

/// Gives whether any time of the model was late in its second. A time that other models share
/// changes there too.
AQ_API bool roundLateTimes(const AQ_PositionTimeHistory& positions);
AQ_API bool roundLateTimes(const AQ_GeometryTimeHistory& geometry);
/// Rounds start and reference time too.
AQ_API bool roundLateTimes(AQ_SpectralTimeHistory& history);

}  // namespace aq
