#include "aq/noise/emission_geometry.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <string>

#include "aq/core/error.h"
#include "aq/detail/half_second.h"
#include "aq/detail/pointers.h"
#include "aq/noise/flight_path.h"

namespace aq {
namespace {

constexpr double kDegrees = 180 / std::numbers::pi;
constexpr double kKelvinAtZero = 273.15;

/// The angle between a unit vector and a line, in degrees.
double angleBetween(const Vector3& direction, const Vector3& line) {
  const Vector3 cross{direction[1] * line[2] - direction[2] * line[1],
                      direction[2] * line[0] - direction[0] * line[2],
                      direction[0] * line[1] - direction[1] * line[0]};
  return std::atan2(lengthOf(cross), dot(direction, line)) * kDegrees;
}

/// The angle of a line about a unit vector, measured from below towards the left, in degrees.
double angleAbout(const Vector3& direction, const Vector3& line) {
  const double level = std::hypot(direction[0], direction[1]);
  if (level == 0) return 0;  // a vertical flight has no left or right
  const Vector3 left{-direction[1] / level, direction[0] / level, 0};
  const Vector3 below{direction[0] * direction[2] / level, direction[1] * direction[2] / level,
                      -level};
  return std::atan2(dot(line, left), dot(line, below)) * kDegrees;
}

/// The time of emission. `seconds` and `received`, the times of emission and reception, do not wrap
/// at midnight; the date is the record's, less the midnights in between.
std::shared_ptr<AQ_Time> emissionTime(const AQ_Time& recorded, double received, double seconds) {
  auto time = std::make_shared<AQ_Time>();
  const double day = std::floor(seconds / kSecondsPerDay);
  if (recorded.CurrentDate() != 0) {  // 0 means no date
    time->CurrentDate(recorded.CurrentDate() + day - std::floor(received / kSecondsPerDay));
  }
  time->TODseconds(seconds - day * kSecondsPerDay);
  return time;
}

std::shared_ptr<AQ_Geometry> pointAt(const FlightPath& path, const FlightPath::Place& place,
                                     const Vector3& receiver, const AQ_Time& recorded) {
  const double received = path.secondsOf(recorded.TODseconds());
  const Vector3 line = receiver - place.position;
  const auto direction = path.direction(place);
  constexpr float kNoAngle = std::numeric_limits<float>::quiet_NaN();

  auto point = std::make_shared<AQ_Geometry>();
  point->SRe = lengthOf(line);
  point->Tprope = received - place.seconds;
  point->THETAe = direction ? static_cast<float>(angleBetween(*direction, line)) : kNoAngle;
  point->BETAe = direction ? static_cast<float>(angleAbout(*direction, line)) : kNoAngle;
  point->Tm(std::make_shared<AQ_Time>(recorded));
  point->Te(emissionTime(recorded, received, place.seconds));
  point->Pe()->X(place.position[0]);
  point->Pe()->Y(place.position[1]);
  point->Pe()->Z(place.position[2]);
  point->Pe()->Time(point->Te()->Copy());
  return point;
}

}  // namespace

double speedOfSound(double celsius) {
  if (celsius > -kKelvinAtZero && std::isfinite(celsius)) {
    return 343.2 * std::sqrt((celsius + kKelvinAtZero) / (20 + kKelvinAtZero));
  }
  throw Error(
      ErrorCode::InvalidValue,
      "expected a temperature above -273.15 degrees Celsius, found " + std::to_string(celsius));
}

std::shared_ptr<AQ_Position> membraneOf(const AQ_Microphone& microphone) {
  auto position = std::make_shared<AQ_Position>();
  position->X(microphone.X);
  position->Y(microphone.Y);
  position->Z(microphone.Z + microphone.Height);
  return position;
}

std::shared_ptr<AQ_GeometryTimeHistory> emissionGeometry(const AQ_PositionTimeHistory& positions,
                                                         const AQ_Position& microphone,
                                                         const AQ_SpectralTimeHistory& records,
                                                         double celsius) {
  const double speed = speedOfSound(celsius);
  const Vector3 receiver{microphone.X(), microphone.Y(), microphone.Z()};
  if (!std::isfinite(dot(receiver, receiver))) {
    throw Error(ErrorCode::InvalidValue, "the microphone has a coordinate that is not finite");
  }
  const FlightPath path(positions);
  auto geometry = std::make_shared<AQ_GeometryTimeHistory>();
  for (const auto& [number, spectrum] : records) {
    const AQ_Time recorded = orThrow(spectrum).timeValue();
    const auto place = path.emission(receiver, recorded.TODseconds(), speed);
    if (place) geometry->Point(number, pointAt(path, *place, receiver, recorded));
  }
  AQ_SpectralTimeHistory shared = records;  // a copy, so that missing times are created only there
  copyDateAndTimeOfDay(*shared.startTime(), *geometry->startTime());
  copyDateAndTimeOfDay(*shared.ReferenceTime(), *geometry->ReferenceTime());
  geometry->TimeStampType(records.TimeStampType());
  geometry->ReferenceType(records.ReferenceType());
  return geometry;
}

}  // namespace aq
