#include "aq/detail/half_second.h"

#include <cmath>

namespace aq {
namespace {

float offsetOf(double start, AQ_TimeStampType type) {
  switch (type) {
    case AQ_START: return Variant(start - 0.5).toSingle();
    case AQ_MIDPT: return Variant(start - 0.25).toSingle();
    case AQ_END: return Variant(start).toSingle();
    case AQ_ICAOSLO: return Variant(start - 0.75).toSingle();
    case AQ_OLDSLO: return Variant(start - 1).toSingle();
  }
  return 0;  // an unknown type puts record 0 at midnight
}

}  // namespace

void copyDateAndTimeOfDay(const AQ_Time& from, AQ_Time& to) {
  to.CurrentDate(from.CurrentDate());
  to.TODseconds(from.TODseconds());
}

double secondsFrom(double timeOfDay, double other) {
  return std::remainder(other - timeOfDay, kSecondsPerDay);
}

void moveTimeOfDay(AQ_Time& time, double seconds) {
  const double moved = time.TODseconds() + seconds;
  const double days = std::floor(moved / kSecondsPerDay);
  time.assignSeconds(moved - days * kSecondsPerDay, time.RelSeconds());
  if (time.CurrentDate() != 0) time.CurrentDate(time.CurrentDate() + days);
}

HalfSecondStamps::HalfSecondStamps(const AQ_Time& start, AQ_TimeStampType type)
    : date_(start.CurrentDate()), offset_(offsetOf(start.TODseconds(), type)) {}

void HalfSecondStamps::stamp(std::int32_t record, AQ_Time& time) const {
  time.CurrentDate(date_);
  time.TODseconds(record * 0.5 + static_cast<double>(offset_));
}

}  // namespace aq
