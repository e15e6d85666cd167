#include "aq/geometry/geometry_time_history.h"

#include "aq/detail/half_second.h"
#include "aq/detail/pointers.h"

namespace aq {

std::shared_ptr<AQ_GeometryTimeHistory> AQ_GeometryTimeHistory::Copy() const {
  const std::int32_t count = Count();
  auto copy = std::make_shared<AQ_GeometryTimeHistory>();
  for (std::int32_t record = 1; record <= count; ++record) {
    copy->Point(record, orThrow(Point(record)).Copy());
  }
  return copy;
}

void AQ_GeometryTimeHistory::setRelTimes(const std::shared_ptr<AQ_Time>& ReferenceTime,
                                         AQ_RefTimeType RefType) {
  referenceTime_ = ReferenceTime;
  referenceType_ = RefType;
  if (Count() == 0) return;
  static_cast<void>(orThrow(Point(1)));
  throw Error(ErrorCode::MemberNotSupported, "a geometry point has no member Time");
}

void AQ_GeometryTimeHistory::setTimeStamps(const AQ_Time& startTime, AQ_TimeStampType StartTimeType,
                                           const AQ_Time& RefTime, AQ_RefTimeType RefType) {
  copyDateAndTimeOfDay(startTime, *this->startTime());
  copyDateAndTimeOfDay(RefTime, *ReferenceTime());
  timeStampType_ = StartTimeType;
  referenceType_ = RefType;
  const HalfSecondStamps stamps(*this->startTime(), StartTimeType);
  const std::int32_t count = Count();
  for (std::int32_t record = 1; record <= count; ++record) {
    stamps.stamp(record, *orThrow(Point(record)).Tm());
  }
  for (std::int32_t record = 1; record <= count; ++record) {
    Point(record)->Tm()->setRelTime(RefTime);
  }
}

}  // namespace aq
