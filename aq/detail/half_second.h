#pragma once

#include <cstdint>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/core/time.h"

namespace aq {

/// Copies the date and the time of day from `from` to `to`; a time of day above 86400 s wraps, and
/// the date advances by a day.
AQ_API void copyDateAndTimeOfDay(const AQ_Time& from, AQ_Time& to);

/// Seconds from one time of day to another, at most half a day either way: a run lasts minutes, so
/// a larger difference means that midnight lies in between.
[[nodiscard]] AQ_API double secondsFrom(double timeOfDay, double other);

/// Adds seconds, which may be negative, to a time of day; across midnight, the date changes too if
/// it is set.
AQ_API void moveTimeOfDay(AQ_Time& time, double seconds);

/// The time stamps of records that are half a second long.
class AQ_API HalfSecondStamps {
 public:
  HalfSecondStamps(const AQ_Time& start, AQ_TimeStampType type);

  /// Stamps record `record`, counted from 1.
  void stamp(std::int32_t record, AQ_Time& time) const;

 private:
  double date_;
  float offset_;  // time of day of record 0, s; hosts rely on its single precision
};

}  // namespace aq
