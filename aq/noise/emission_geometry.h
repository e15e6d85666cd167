#pragma once

#include <memory>

#include "aq/core/export.h"
#include "aq/geometry/geometry_time_history.h"
#include "aq/geometry/microphone.h"
#include "aq/geometry/position.h"
#include "aq/geometry/position_time_history.h"
#include "aq/spectral/spectral_time_history.h"

namespace aq {

/// The speed of sound in air in m/s, from the temperature in degrees Celsius (ISO 9613-1). Throws
/// `InvalidValue` at or below -273.15 degrees Celsius, and for a value that is not finite.
[[nodiscard]] AQ_API double speedOfSound(double celsius);

/// The point at which a microphone measures: X, Y and Z + Height.
[[nodiscard]] AQ_API std::shared_ptr<AQ_Position> membraneOf(const AQ_Microphone& microphone);

/// Where and when the sound of each record was emitted. The source flies straight from position to
/// position and reaches each at its time of day, also across midnight; the propagation time is the
/// distance to the microphone divided by the speed of sound. Coordinates are in metres; record and
/// point have the same number. `Tm` is the record's time, `Te` and `Pe` are the time of day and the
/// position at emission, `Tprope` is in seconds, `SRe` in metres. `THETAe` is the angle between the
/// direction of flight and the line to the microphone, 0 to 180 degrees. `BETAe` is the angle of
/// that line around the direction of flight, measured from the vertical plane below the source,
/// positive to the left, -180 to 180 degrees; 0 for a vertical flight. Between two equal positions,
/// the direction is that of the nearest segment in which the source moves; both angles are NaN if
/// the source does not move.
///
/// A record whose sound was emitted before the first or after the last position has no point:
/// nothing is extrapolated. With fewer than two positions there are no points. The start time, the
/// reference time and their types are those of the history `records`. If the source is supersonic,
/// a record may have several emissions; the point describes one of them.
///
/// Throws `InvalidValue` for a temperature that `speedOfSound` does not accept, a coordinate that
/// is not finite, or a position earlier than the previous one, and `ObjectNotSet` for a null
/// object.
[[nodiscard]] AQ_API std::shared_ptr<AQ_GeometryTimeHistory> emissionGeometry(
    const AQ_PositionTimeHistory& positions, const AQ_Position& microphone,
    const AQ_SpectralTimeHistory& records, double celsius);

}  // namespace aq
