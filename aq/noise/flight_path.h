#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "aq/geometry/position_time_history.h"

namespace aq {

/// A position in metres, a velocity in m/s or a unit vector.
using Vector3 = std::array<double, 3>;

[[nodiscard]] Vector3 operator-(const Vector3& a, const Vector3& b);
[[nodiscard]] double dot(const Vector3& a, const Vector3& b);
[[nodiscard]] double lengthOf(const Vector3& a);

/// The path of a source: straight segments between its positions. Seconds continue across midnight.
class FlightPath {
 public:
  /// Throws `InvalidValue` if a coordinate is not finite or a position is earlier than the previous
  /// one, `ObjectNotSet` if a position is null.
  explicit FlightPath(const AQ_PositionTimeHistory& positions);

  /// A point of the path.
  struct Place {
    double seconds;
    Vector3 position;
    std::size_t piece;
  };

  /// Where the sound that reaches `receiver` at a time of day was emitted. Nothing if that was
  /// before the first position or after the last one, or if there are fewer than two positions.
  [[nodiscard]] std::optional<Place> emission(const Vector3& receiver, double timeOfDay,
                                              double speedOfSound) const;

  /// Converts a time of day to seconds of the path; a time before that of the first position is on
  /// the next day.
  [[nodiscard]] double secondsOf(double timeOfDay) const;

  /// The direction of flight, as a unit vector, from the nearest segment in which the source moves.
  /// Nothing if the path has no such segment.
  [[nodiscard]] std::optional<Vector3> direction(const Place& place) const;

 private:
  [[nodiscard]] std::size_t movingPiece(const Place& place) const;

  std::vector<double> seconds_;
  std::vector<Vector3> positions_;
  std::vector<std::size_t> moving_;  // segments in which the source moves, in order
};

}  // namespace aq
