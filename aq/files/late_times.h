#pragma once

#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"
#include "aq/geometry/position_time_history.h"
#include "aq/spectral/spectral_time_history.h"

// Writers round a time of day, as seconds after midnight in single precision, to seven significant
// digits. If that rounds the fraction up to a whole second, the text drops the fraction, as hosts
// expect: 12:34:56.996 becomes 12:34:56, nearly a second early. Such a time is called late here.
// Call `roundLateTimes` before writing a model: it rounds late times up to the next whole second
// and leaves the others unchanged.
namespace aq {

/// Whether the model has any late times; ignores null objects.
[[nodiscard]] AQ_API bool hasLateTimes(const AQ_PositionTimeHistory& positions);
[[nodiscard]] AQ_API bool hasLateTimes(const AQ_GeometryTimeHistory& geometry);
[[nodiscard]] AQ_API bool hasLateTimes(AQ_SpectralTimeHistory& history);

/// Rounds the time up if it is late; returns whether it was.
AQ_API bool roundLateTime(AQ_Time& time);

/// Rounds up the model's late times; returns whether there were any. Times shared with other models
/// change there too.
AQ_API bool roundLateTimes(const AQ_PositionTimeHistory& positions);
AQ_API bool roundLateTimes(const AQ_GeometryTimeHistory& geometry);
/// Also rounds the start and the reference time.
AQ_API bool roundLateTimes(AQ_SpectralTimeHistory& history);

}  // namespace aq
