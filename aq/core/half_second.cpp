#include "aq/core/half_second.h"

namespace aq {
namespace {

float offsetOf(double start, AQ_TimeStampType type) {
  switch (type) {
    case AQ_START: return static_cast<float>(start - 0.5);
    case AQ_MIDPT: return static_cast<float>(start - 0.25);
    case AQ_END: return static_cast<float>(start);
    case AQ_ICAOSLO: return static_cast<float>(start - 0.75);
    case AQ_OLDSLO: return static_cast<float>(start - 1);
  }
  return 0;  // an unknown type counts from midnight
}

}  // namespace

void copyDateAndTimeOfDay(const AQ_Time& from, AQ_Time& to) {
  to.CurrentDate(from.CurrentDate());
  to.TODseconds(from.TODseconds());
}

HalfSecondStamps::HalfSecondStamps(const AQ_Time& start, AQ_TimeStampType type)
    : date_(start.CurrentDate()), offset_(offsetOf(start.TODseconds(), type)) {}

void HalfSecondStamps::stamp(std::int32_t record, AQ_Time& time) const {
  time.CurrentDate(date_);
  time.TODseconds(record * 0.5 + static_cast<double>(offset_));
}

}  // namespace aq
