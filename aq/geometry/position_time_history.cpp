#include "aq/geometry/position_time_history.h"

#include <cmath>

#include "aq/detail/pointers.h"

namespace aq {

std::shared_ptr<AQ_PositionTimeHistory> AQ_PositionTimeHistory::Copy() const {
  const std::int32_t count = Count();
  auto copy = std::make_shared<AQ_PositionTimeHistory>();
  for (std::int32_t place = 1; place <= count; ++place) {
    copy->Position(place, orThrow(Position(place)).Copy());
  }
  return copy;
}

std::shared_ptr<AQ_Position> AQ_PositionTimeHistory::PositionAt(const AQ_Time& aqTime) const {
  if (Count() < 2) return nullptr;
  const double time = aqTime.TODseconds();
  const auto& placed = positions_.placed();
  auto before = placed.begin();
  double timeBefore = orThrow(*before).lazyTime().secondsOfDay();
  for (auto after = before; ++after != placed.end(); before = after) {
    const double timeAfter = orThrow(*after).lazyTime().secondsOfDay();
    if (timeBefore <= time && timeAfter >= time) {
      return std::abs(timeBefore - time) < std::abs(timeAfter - time) ? *before : *after;
    }
    timeBefore = timeAfter;
  }
  return nullptr;
}

bool AQ_PositionTimeHistory::GoodTime(const AQ_Time& aqTime) const {
  const double first = orThrow(Position(1)).lazyTime().secondsOfDay();
  const double last = orThrow(Position(Count())).lazyTime().secondsOfDay();
  return first <= aqTime.TODseconds() && aqTime.TODseconds() <= last;
}

}  // namespace aq
