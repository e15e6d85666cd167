#include "aq/files/late_times.h"

#include <algorithm>
#include <cmath>

namespace aq {
namespace {

bool isLate(double seconds) {
  constexpr double kFirst = 0.99;  // of a second; from 10,000 s on, times keep two decimals
  if (!(seconds >= 0 && seconds < kSecondsPerDay)) return false;
  if (seconds - std::floor(seconds) < kFirst) return false;
  AQ_Time time;
  time.assignSeconds(seconds, 0);
  time.TODstring(time.TODstring());
  return std::abs(seconds - time.TODseconds()) > 0.5;
}

}  // namespace

bool roundLateTime(AQ_Time& time) {
  if (!isLate(time.TODseconds())) return false;
  time.assignSeconds(std::ceil(time.TODseconds()), time.RelSeconds());
  return true;
}

bool hasLateTimes(const AQ_PositionTimeHistory& positions) {
  return std::any_of(positions.begin(), positions.end(), [](const auto& entry) {
    return entry.second && isLate(entry.second->lazyTime().secondsOfDay());
  });
}

bool hasLateTimes(const AQ_GeometryTimeHistory& geometry) {
  return std::any_of(geometry.begin(), geometry.end(), [](const auto& entry) {
    return entry.second &&
           (isLate(entry.second->Tm()->TODseconds()) || isLate(entry.second->Te()->TODseconds()));
  });
}

bool hasLateTimes(AQ_SpectralTimeHistory& history) {
  return isLate(history.startTime()->TODseconds()) ||
         isLate(history.ReferenceTime()->TODseconds()) ||
         std::any_of(history.begin(), history.end(), [](const auto& entry) {
           return entry.second && isLate(entry.second->lazyTime().secondsOfDay());
         });
}

bool roundLateTimes(const AQ_PositionTimeHistory& positions) {
  bool any = false;
  for (const auto& [place, position] : positions) {
    if (!position || !isLate(position->lazyTime().secondsOfDay())) continue;
    any = roundLateTime(*position->Time()) || any;
  }
  return any;
}

bool roundLateTimes(const AQ_GeometryTimeHistory& geometry) {
  bool any = false;
  for (const auto& [record, point] : geometry) {
    if (!point) continue;
    any = roundLateTime(*point->Tm()) || any;
    any = roundLateTime(*point->Te()) || any;
  }
  return any;
}

bool roundLateTimes(AQ_SpectralTimeHistory& history) {
  bool any = false;
  for (const auto& [record, spectrum] : history) {
    if (!spectrum || !isLate(spectrum->lazyTime().secondsOfDay())) continue;
    any = roundLateTime(*spectrum->Time()) || any;
  }
  for (const auto& time : {history.startTime(), history.ReferenceTime()}) {
    if (time) any = roundLateTime(*time) || any;
  }
  return any;
}

}  // namespace aq
