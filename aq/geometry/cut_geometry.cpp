#include "aq/geometry/cut_geometry.h"

#include "aq/core/error.h"
#include "aq/detail/half_second.h"
#include "aq/detail/pointers.h"

namespace aq {
namespace {

double measured(const std::shared_ptr<AQ_Geometry>& point) {
  return orThrow(point).Tm()->TODseconds();
}

void copySettings(AQ_GeometryTimeHistory& from, AQ_GeometryTimeHistory& to) {
  copyDateAndTimeOfDay(*from.startTime(), *to.startTime());
  to.TimeStampType(from.TimeStampType());
  copyDateAndTimeOfDay(*from.ReferenceTime(), *to.ReferenceTime());
  to.ReferenceType(from.ReferenceType());
}

}  // namespace

std::shared_ptr<AQ_GeometryTimeHistory> cutGeometry(AQ_GeometryTimeHistory& geometry,
                                                    std::int32_t first, std::int32_t last) {
  auto part = std::make_shared<AQ_GeometryTimeHistory>();
  for (std::int32_t number = first; number <= last; ++number) {
    part->Point(number - first + 1, geometry.Point(number));
  }
  copySettings(geometry, *part);
  if (first <= last) {
    const double begin = measured((*geometry.begin()).second);
    moveTimeOfDay(*part->startTime(), secondsFrom(begin, measured(part->Point(1))));
  }
  return part;
}

std::shared_ptr<AQ_GeometryTimeHistory> joinGeometries(AQ_GeometryTimeHistory& before,
                                                       AQ_GeometryTimeHistory& after) {
  const auto expect = [](bool holds, const char* why) {
    if (!holds) throw Error(ErrorCode::InvalidArgument, why);
  };
  expect(before.begin() != before.end() && after.begin() != after.end(),
         "a geometry has no points");
  expect(before.TimeStampType() == after.TimeStampType() &&
             before.ReferenceType() == after.ReferenceType() &&
             before.ReferenceTime()->TODseconds() == after.ReferenceTime()->TODseconds(),
         "the geometries have different references or types of time stamps");
  auto whole = std::make_shared<AQ_GeometryTimeHistory>();
  std::int32_t last = 0;
  for (const auto& [number, point] : before) whole->Point(last = number, point);
  expect(secondsFrom(measured(whole->Point(last)), measured((*after.begin()).second)) > 0,
         "the second geometry does not begin after the first one ends");
  for (const auto& [number, point] : after) whole->Point(++last, point);
  copySettings(before, *whole);
  return whole;
}

}  // namespace aq
