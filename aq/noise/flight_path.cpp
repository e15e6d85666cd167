#include "aq/noise/flight_path.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "aq/core/error.h"
#include "aq/core/time.h"
#include "aq/detail/pointers.h"

namespace aq {
namespace {

Vector3 along(const Vector3& from, const Vector3& to, double part) {
  Vector3 place{};
  for (std::size_t i = 0; i < place.size(); ++i) place[i] = from[i] + part * (to[i] - from[i]);
  return place;
}

/// The time of day `next` in seconds that continue from `before` without restarting at midnight.
double continued(double before, double next, std::size_t place) {
  const double step = std::fmod(next - before, kSecondsPerDay);
  // A step back of more than half a day means that midnight has passed.
  if (step < -kSecondsPerDay / 2.0) return before + step + kSecondsPerDay;
  if (step >= 0) return before + step;
  throw Error(ErrorCode::InvalidValue,
              "position " + std::to_string(place) + " is earlier than the one before");
}

/// The seconds from the start of a segment, flown at `velocity`, until the source emits the sound
/// that reaches the receiver `remaining` seconds after that start; `offset` is the start point
/// relative to the receiver. Solves |offset + velocity x| = speed (remaining - x) without loss of
/// significance.
double secondsIntoPiece(const Vector3& offset, const Vector3& velocity, double remaining,
                        double speed) {
  const double reach = speed * remaining;
  const double distance = lengthOf(offset);
  const double a = speed * speed - dot(velocity, velocity);
  const double b = speed * reach + dot(offset, velocity);
  const double c = (reach - distance) * (reach + distance);
  return c == 0 ? 0 : c / (b + std::sqrt(std::max(0.0, b * b - a * c)));
}

}  // namespace

Vector3 operator-(const Vector3& a, const Vector3& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

double lengthOf(const Vector3& a) { return std::hypot(a[0], a[1], a[2]); }

FlightPath::FlightPath(const AQ_PositionTimeHistory& positions) {
  for (const auto& [place, object] : positions) {
    const AQ_Position& position = orThrow(object);
    const Vector3 point{position.X(), position.Y(), position.Z()};
    if (!std::isfinite(dot(point, point))) {
      throw Error(ErrorCode::InvalidValue,
                  "position " + std::to_string(place) + " has a coordinate that is not finite");
    }
    const double time = position.lazyTime().secondsOfDay();
    const double seconds =
        seconds_.empty() ? time : continued(seconds_.back(), time, static_cast<std::size_t>(place));
    if (!positions_.empty() && point != positions_.back()) moving_.push_back(positions_.size() - 1);
    seconds_.push_back(seconds);
    positions_.push_back(point);
  }
}

double FlightPath::secondsOf(double timeOfDay) const {
  const bool nextDay = !seconds_.empty() && timeOfDay < seconds_.front();
  return nextDay ? timeOfDay + kSecondsPerDay : timeOfDay;
}

std::optional<FlightPath::Place> FlightPath::emission(const Vector3& receiver, double timeOfDay,
                                                      double speedOfSound) const {
  const double received = secondsOf(timeOfDay);
  // Whether the sound emitted at position i has arrived by `received`.
  const auto hasPassed = [&](std::size_t i) {
    return speedOfSound * (received - seconds_[i]) >= lengthOf(positions_[i] - receiver);
  };
  if (seconds_.size() < 2 || !hasPassed(0)) return std::nullopt;
  std::size_t begin = 0;
  std::size_t end = seconds_.size();
  while (end - begin > 1) {
    const std::size_t middle = begin + (end - begin) / 2;
    (hasPassed(middle) ? begin : end) = middle;
  }
  if (end == seconds_.size()) {
    const double travel = lengthOf(positions_.back() - receiver) / speedOfSound;
    if (received > seconds_.back() + travel) return std::nullopt;
    --begin;  // emitted at the last position, where the last segment ends
  }
  const double step = seconds_[begin + 1] - seconds_[begin];
  Vector3 velocity = positions_[begin + 1] - positions_[begin];
  for (double& each : velocity) each = step > 0 ? each / step : 0;
  const double into = std::clamp(secondsIntoPiece(positions_[begin] - receiver, velocity,
                                                  received - seconds_[begin], speedOfSound),
                                 0.0, step);
  const double part = step > 0 ? into / step : 0;
  return Place{seconds_[begin] + into, along(positions_[begin], positions_[begin + 1], part),
               begin};
}

std::size_t FlightPath::movingPiece(const Place& place) const {
  const auto after = std::lower_bound(moving_.begin(), moving_.end(), place.piece);
  if (after == moving_.end()) return moving_.back();
  if (after == moving_.begin() || *after == place.piece) return *after;
  const std::size_t before = *(after - 1);
  const bool nearerBefore =
      place.seconds - seconds_[before + 1] <= seconds_[*after] - place.seconds;
  return nearerBefore ? before : *after;
}

std::optional<Vector3> FlightPath::direction(const Place& place) const {
  if (moving_.empty()) return std::nullopt;
  const std::size_t piece = movingPiece(place);
  Vector3 direction = positions_[piece + 1] - positions_[piece];
  const double length = lengthOf(direction);
  for (double& each : direction) each /= length;
  return direction;
}

}  // namespace aq
