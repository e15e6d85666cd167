#include "aq/geometry/cut_geometry.h"

#include "aq/detail/half_second.h"
#include "aq/detail/pointers.h"

namespace aq {

std::shared_ptr<AQ_GeometryTimeHistory> cutGeometry(AQ_GeometryTimeHistory& geometry,
                                                    std::int32_t first, std::int32_t last) {
  auto part = std::make_shared<AQ_GeometryTimeHistory>();
  for (std::int32_t number = first; number <= last; ++number) {
    part->Point(number - first + 1, geometry.Point(number));
  }
  const auto measured = [](const auto& point) { return orThrow(point).Tm()->TODseconds(); };
  copyDateAndTimeOfDay(*geometry.startTime(), *part->startTime());
  if (first <= last) {
    const double begin = measured((*geometry.begin()).second);
    moveTimeOfDay(*part->startTime(), secondsFrom(begin, measured(part->Point(1))));
  }
  part->TimeStampType(geometry.TimeStampType());
  copyDateAndTimeOfDay(*geometry.ReferenceTime(), *part->ReferenceTime());
  part->ReferenceType(geometry.ReferenceType());
  return part;
}

}  // namespace aq
